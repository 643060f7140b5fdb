#pragma once
// The possible-value documents of data/possible_values.tsv: the rule table joined over the dimensions
// each document names, one row per distinct combination, less the rows of possible_values_left_out.tsv.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "rules/build/designations.hpp"
#include "rules/build/rule_table.hpp"
#include "rules/build/xml_text.hpp"

namespace nimbara::rules {

struct PossibleValueShape {
    // Where a tag's value comes from: a field of the rule, a dimension's code or its label, or nothing.
    struct Source {
        enum class Kind { Empty, Id, Product, Min, Max, Code, Label };
        Kind kind = Kind::Empty;
        Dimension dimension = Dimension::Zone;  // for Code and Label
    };
    struct Tag {
        std::string name;
        Source source;
        ValueForm form = ValueForm::CData;
        bool omitted_when_empty = false;
    };
    // Every row that the rule gives in one of the zones stays out of the document.
    struct LeftOut {
        int rule = 0;
        std::vector<std::string> zones;
    };

    std::string function;
    std::vector<Tag> tags;
    bool sorted = false;  // by the rows' values in tag order; otherwise in rule-table order
    std::vector<LeftOut> left_out;
};

// Throws std::runtime_error naming the file and line of a malformed entry, or a left-out entry for
// a document that does not exist.
std::vector<PossibleValueShape> parse_possible_value_specs(std::string_view specs_text, std::string_view left_out_text);

// A row's weight bounds as the possible-value procedures read them: the text of CESCALAOMIN and
// CESCALAOMAX as 32-bit numbers, 0 where the row lacks the tag, nothing where it is no number.
struct WeightBounds {
    std::optional<std::int32_t> min, max;
};

// A possible-value document twice over: its text, and its rows as that text reads back, so that
// readers walk ready-made rows instead of parsing the text.
struct PossibleValueDocument {
    std::vector<std::string> tags;                              // the shape's tags, in order
    std::vector<std::vector<std::optional<std::string>>> rows;  // a cell per tag; nothing where the row leaves it out
    std::vector<WeightBounds> bounds;                           // a pair per row
    std::string text;
};

// The document, its last row written twice (in the text and in the rows); mixed case kept. Throws
// when a left-out entry removes nothing, since the data then no longer says what it means.
PossibleValueDocument build_possible_value_document(const PossibleValueShape& shape, const std::vector<RuleRow>& table,
                                                    const Designations& designations);

}  // namespace nimbara::rules
