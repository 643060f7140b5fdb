#pragma once
// The codes a product line may carry, read from the compiled-in rule catalogue: for every dimension
// the codes its active rules accept, with the catalogue's designation, and the weight steps of each
// product. No database is needed.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "nimbara/export.hpp"

namespace nimbara {

enum class CodeKind { Zone, Product, Speed, Format, Discount, Scope, PreTreatment, Sampling, Service, Weight };

struct CatalogueCode {
    std::string code;         // as a line gives it; "0" where the dimension does not apply
    std::string designation;  // the catalogue's label; empty for "0"
    friend bool operator==(const CatalogueCode&, const CatalogueCode&) = default;
};

// A weight step of a product's active rule: a weight above `above` and up to `up_to` (grams).
struct WeightStep {
    std::string product;
    std::int32_t above = 0;
    std::int32_t up_to = 0;
    friend bool operator==(const WeightStep&, const WeightStep&) = default;
};

// The codes of one kind that the active rules accept, in code order without repeats; only those of
// `product`'s rules when one is given. Pre-treatment answers "0" (not selected) and, where a rule
// offers it, "1" (selected: any whole number above 0), as the validator reads it. Weight is not a
// code: ask CatalogueWeightSteps.
NIMBARA_API std::vector<CatalogueCode> CatalogueCodes(CodeKind kind, std::optional<std::string_view> product = {});

// The weight steps of the active rules, by product and then by step, without repeats; only those of
// `product` when one is given.
NIMBARA_API std::vector<WeightStep> CatalogueWeightSteps(std::optional<std::string_view> product = {});

// Whether the product has an active rule, which a line of it needs to be judged at all.
NIMBARA_API bool CatalogueHasProduct(std::string_view product);

}  // namespace nimbara
