#pragma once
// Judging one product line by elimination over the indexed rules.
#include <cstdint>
#include <string_view>

#include "nimbara/error_array.hpp"
#include "validation/rule_index.hpp"

namespace nimbara::validation {

struct LineInput {
    std::string_view product;
    std::string_view zone;
    std::int32_t weight = 0;
    std::string_view speed;
    std::string_view format;
    std::string_view pre_treatment;  // a whole number in text; above 0 means selected
    std::string_view discount;
    std::string_view scope;
    std::string_view sampling;       // the empty text stands for "0"
    std::string_view services;       // codes joined by ","
};

ValidationResult validate_line(const RuleIndex& index, const LineInput& line);

// The weight test of one rule: the half-open range, with the walk of C38 and C39 that may answer an
// error code of its own (-1 to -4) besides false.
struct WeightVerdict {
    bool passes = false;
    int code = 0;
};
WeightVerdict DoValPeso(const RuleIndex& index, const IndexedRule& rule, std::int32_t weight, std::string_view zone,
                        std::string_view product);

}  // namespace nimbara::validation
