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

// A document by its function's name, or nothing for an unknown name.
std::optional<std::string_view> document(std::string_view function_name);

// Every document's function name, in catalogue order.
std::vector<std::string_view> document_names();

// The special services of one line: the rows of arrServEsp whose line number equals `lngLinha`, in
// table order, as a new three-field table; no row at all when the line has none.
FieldTable getArrServEspByLinha(const FieldTable& arrServEsp, std::int32_t lngLinha);

}  // namespace nimbara::GlobalXML
