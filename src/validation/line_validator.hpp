#pragma once
// Judging one product line by elimination over the indexed rules.
#include <cstdint>
#include <span>
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

// What judging a line found, referring to the error's fixed text or codes rather than copying them,
// so that a line is judged without allocating; error() makes the error array when one is wanted.
struct LineVerdict {
    std::int32_t number = 0;                  // 0 when the line passes
    std::string_view text;                    // the description of the errors that carry a text
    std::span<const std::string_view> codes;  // the codes a product's service rule expects
    const IndexedRule* rule = nullptr;        // for -10, the settled rule that refused some services

    bool passes() const { return number == 0; }
    // The error array; `line` must be the line judged, whose refused services error -10 lists.
    ErrorArray error(const LineInput& line) const;
};

LineVerdict check_line(const RuleIndex& index, const LineInput& line);

// check_line with its error made, as the public operation answers.
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
