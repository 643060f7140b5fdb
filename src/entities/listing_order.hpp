#pragma once
// The order a caller chooses for the listing of Guia lines, turned into the columns it names.
#include <string>
#include <string_view>

namespace nimbara::entities {

// The ORDER BY list of a caller's order text: column words ("guia", "data", "cliente", "nome",
// "contrato", "velocidade", "produto", "zona", "peso", "formato", "ambito", "quantidade"), each
// optionally followed by "asc" or "desc", separated by commas, in any case. Throws
// std::invalid_argument naming the first word or sign that is not of that form, so that nothing
// but known columns reaches a statement.
std::string listing_order_columns(std::string_view order);

}  // namespace nimbara::entities
