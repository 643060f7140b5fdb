#pragma once
// Access to the compiled-in rule table and possible-value rows for the subsystems above the catalogue.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "rules/build/designations.hpp"
#include "rules/build/possible_value_documents.hpp"
#include "rules/build/rule_table.hpp"

namespace nimbara::rules {

// Where a cell's text stands among its table's texts. Offsets rather than pointers, so the tables
// need no relocation when the library loads.
struct PossibleValueCell {
    static constexpr std::uint32_t kAbsent = 0xFFFFFFFF;
    std::uint32_t offset = 0;
    std::uint32_t length = kAbsent;  // kAbsent where the row lacks the tag
};

// A possible-value document's rows as its text reads back, in static storage.
struct PossibleValueTable {
    std::string_view function;
    std::span<const std::string_view> tags;
    std::string_view texts;                        // every distinct cell text, one after another
    std::span<const PossibleValueCell> cells;      // row-major, a cell per tag
    std::span<const WeightBounds> bounds;          // a pair per row

    std::size_t rows() const { return bounds.size(); }

    // The column of a tag, or nothing when the document has no such tag.
    std::optional<std::size_t> column(std::string_view tag) const
    {
        for (std::size_t c = 0; c < tags.size(); ++c)
            if (tags[c] == tag) return c;
        return std::nullopt;
    }

    // The row's text under the column's tag; nothing when the row lacks the tag, which an empty text is not.
    std::optional<std::string_view> cell(std::size_t row, std::size_t column) const
    {
        const PossibleValueCell c = cells[row * tags.size() + column];
        if (c.length == PossibleValueCell::kAbsent) return std::nullopt;
        return texts.substr(c.offset, c.length);
    }
};

std::span<const RuleRow> rule_table();

// The tables of data/ other than the rule table, as the catalogue was generated from them: what a
// catalogue built from rule rows handed in needs besides the rows.
struct SourceTexts {
    std::string_view document_shapes;
    std::string_view designations;
    std::string_view possible_values;
    std::string_view possible_values_left_out;
};
const SourceTexts& source_texts();

// The rows that the dimension documents write twice before their closing tag.
std::span<const RepeatedRow> repeated_rows();

// The generator names the keys in rules/possible_value_key.hpp, which the generator itself cannot include.
enum class PossibleValueKey : std::size_t;

// The rows of a possible-value document of the compiled-in catalogue.
const PossibleValueTable& possible_value_table(PossibleValueKey key);

// The labels of the codes, by set, as data/designations.tsv gives them.
const Designations& designations();

}  // namespace nimbara::rules
