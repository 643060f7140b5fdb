#pragma once
// The compiled-in catalogue documents, each exactly as its function has always returned it.
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>
#include "nimbara/export.hpp"

namespace nimbara::GlobalXML {

NIMBARA_API std::string_view getXML_getIDCodValidacao();
NIMBARA_API std::string_view getXML_DoValPeso();
NIMBARA_API std::string_view getXML_DoValZonaTaxacao();
NIMBARA_API std::string_view getXML_DoValVelocidade();
NIMBARA_API std::string_view getXML_DoValFormato();
NIMBARA_API std::string_view getXML_DoValPreTratamento();
NIMBARA_API std::string_view getXML_DoValDesconto();
NIMBARA_API std::string_view getXML_DoValAmbitoDist();
NIMBARA_API std::string_view getXML_DoValEntrega_Sampling();
NIMBARA_API std::string_view getXML_DoValServEsp();

// Lists of values: the codes and labels of a dimension, in mixed case.
NIMBARA_API std::string_view getXML_ProdutoLOV();
NIMBARA_API std::string_view getXML_VelocidadeLOV();
NIMBARA_API std::string_view getXML_FormatoLOV();
NIMBARA_API std::string_view getXML_DescontosLOV();
NIMBARA_API std::string_view getXML_SEspeciaisLOV();
NIMBARA_API std::string_view getXML_EntregaSamplingLOV();
NIMBARA_API std::string_view getXML_AmbitoDistribuicaoLOV();
NIMBARA_API std::string_view getXML_ZonaTaxacaoLOV();

// Possible-value documents: the rule set flattened for saying what would have been accepted.
NIMBARA_API std::string_view GetXMLPossibleValues_ZonaTaxacao();
NIMBARA_API std::string_view GetXMLPossibleValues_Peso();
NIMBARA_API std::string_view GetXMLPossibleValues_Velocidade();
NIMBARA_API std::string_view GetXMLPossibleValues_Formato();
NIMBARA_API std::string_view GetXMLPossibleValues_PreTratamento();
NIMBARA_API std::string_view GetXMLPossibleValues_Desconto();
NIMBARA_API std::string_view GetXMLPossibleValues_AmbitoDistribuicao();
NIMBARA_API std::string_view GetXMLPossibleValues_EntregaSampling();
NIMBARA_API std::string_view GetXMLPossibleValues_ServicosEspeciais();

// A document by its function's name, or nothing for an unknown name.
NIMBARA_API std::optional<std::string_view> document(std::string_view function_name);

// Every document's function name, in catalogue order.
NIMBARA_API std::vector<std::string_view> document_names();

}  // namespace nimbara::GlobalXML
