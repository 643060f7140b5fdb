#pragma once
// The codes a product line may carry, from the compiled-in rule catalogue, as `codes --json` writes
// them and the web API answers them.
#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace nimbara::cli {

// The kinds' names in their order: zone, product, speed, ...
std::vector<std::string> code_kind_names();

// {"status": 0, "product", "kinds": [{"kind", "field", "codes": [{"code", "designation"}...]} or, for
// weight, {"kind", "field", "unit", "steps": [{"product", "above", "up_to"}...]}]}: the kinds named
// (every kind when none is), only the codes `product`'s rules accept when one is given. Throws
// std::runtime_error for a product without an active rule.
nlohmann::ordered_json codes_document(const std::vector<std::string>& kinds, const std::optional<std::string>& product);

}  // namespace nimbara::cli
