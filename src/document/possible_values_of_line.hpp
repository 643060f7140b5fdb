#pragma once
// What would have been accepted for a failed line: the question the report asks of the
// possible-value documents for each error number, from the fields that precede the failing one.
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "nimbara/cls_ValProdutosA.hpp"
#include "validation/possible_values.hpp"

namespace nimbara::document {

// The fields of a failed line as the questions read them.
struct FailedLine {
    std::string_view product, zone, speed, format, pre_treatment, discount, weight_text;
    std::int32_t weight = 0;
    // The scope read as a number, asked only by the sampling question (-21); it may throw.
    std::function<std::int32_t()> scope_number;
};

// The weight errors list steps (smallest and largest weight) rather than codes.
bool is_weight_error(std::int32_t number);

// The answer of the question error `number` asks; nothing for errors without one.
std::optional<validation::PossibleValues> possible_values_of_line(std::int32_t number, const FailedLine& line,
                                                                  const validation::RuleCatalogue& catalogue);

// The rows of an answer as a host reads them; empty for a failed or empty answer, or no question.
std::vector<PossibleValue> possible_value_rows(const std::optional<validation::PossibleValues>& answer);

}  // namespace nimbara::document
