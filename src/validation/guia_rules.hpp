#pragma once
// The rules that span the lines of a Guia: minimum quantities summed over the Guia, inserts that
// follow their carrier, and the products a client's access type allows. `lines` is arrGuia and
// `header` arrCabecalho. Each check answers by itself; one that cannot read what it needs answers
// false (0 for the insert check), as a failed check.
#include <cstdint>
#include <string_view>

#include "nimbara/error_array.hpp"
#include "nimbara/guia_arrays.hpp"

namespace nimbara::validation {

// The thirteen checks in their fixed order; the first that fails gives the error.
ValidationResult DoValidaGuia(const guia::Table& lines, const cab::Table& header);

// Sum tests: the quantities of the matching lines must reach the minimum once any line matches.
bool DoValDM(const guia::Table& lines, std::string_view product, std::int32_t minimum);
bool DoValDMNacional(const guia::Table& lines, std::string_view product, std::int32_t minimum);
bool DoValDMInternacional(const guia::Table& lines, std::string_view product, std::int32_t minimum);
bool DoValDMComAmbitoDistribuicao(const guia::Table& lines, std::string_view product, std::int32_t minimum,
                                  std::string_view scope);
// The minimum holds over all zones, but only for a Guia with a national line of the product.
bool DoValEdicaoPostal(const guia::Table& lines, std::string_view product, std::int32_t minimum);
bool isGuiaMista(const guia::Table& lines, std::string_view product);

// 0 when every C25 insert follows a carrier (C05, C03, C50) of equal zone, speed and quantity;
// -3 without a carrier, -2 when they differ.
std::int32_t DoValEncartes(const guia::Table& lines);

// Access type 2 allows only products of the P family; types 0 and 1 allow none of them.
bool DoValAcessoRede(const guia::Table& lines, const cab::Table& header);
bool DoValProdutoAcessoRede(const guia::Table& lines, const cab::Table& header);
// Access type 0 allows no line of the sender's division "1".
bool DoValDivisaoRemetente(const guia::Table& lines, const cab::Table& header);

}  // namespace nimbara::validation
