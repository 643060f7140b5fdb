#pragma once
// The compiled-in catalogue documents, each exactly as its function has always returned it.
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "nimbara/guia_arrays.hpp"

namespace nimbara::GlobalXML {

std::string_view getXML_getIDCodValidacao();
std::string_view getXML_DoValPeso();
std::string_view getXML_DoValZonaTaxacao();
std::string_view getXML_DoValVelocidade();
std::string_view getXML_DoValFormato();
std::string_view getXML_DoValPreTratamento();
std::string_view getXML_DoValDesconto();
std::string_view getXML_DoValAmbitoDist();
std::string_view getXML_DoValEntrega_Sampling();
std::string_view getXML_DoValServEsp();

// Lists of values: the codes and labels of a dimension, in mixed case.
std::string_view getXML_ProdutoLOV();
std::string_view getXML_VelocidadeLOV();
std::string_view getXML_FormatoLOV();
std::string_view getXML_DescontosLOV();
std::string_view getXML_SEspeciaisLOV();
std::string_view getXML_EntregaSamplingLOV();
std::string_view getXML_AmbitoDistribuicaoLOV();
std::string_view getXML_ZonaTaxacaoLOV();

// Possible-value documents: the rule set flattened for saying what would have been accepted.
std::string_view GetXMLPossibleValues_ZonaTaxacao();
std::string_view GetXMLPossibleValues_Peso();
std::string_view GetXMLPossibleValues_Velocidade();
std::string_view GetXMLPossibleValues_Formato();
std::string_view GetXMLPossibleValues_PreTratamento();
std::string_view GetXMLPossibleValues_Desconto();
std::string_view GetXMLPossibleValues_AmbitoDistribuicao();
std::string_view GetXMLPossibleValues_EntregaSampling();
std::string_view GetXMLPossibleValues_ServicosEspeciais();

// A document by its function's name, or nothing for an unknown name.
std::optional<std::string_view> document(std::string_view function_name);

// Every document's function name, in catalogue order.
std::vector<std::string_view> document_names();

// The special services of one line: the rows of arrServEsp whose line number equals `lngLinha`, in
// table order, as a new three-field table; no row at all when the line has none.
FieldTable getArrServEspByLinha(const FieldTable& arrServEsp, std::int32_t lngLinha);

}  // namespace nimbara::GlobalXML
