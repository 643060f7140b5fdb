#pragma once
// Access to the compiled-in rule table and possible-value rows for the subsystems above the catalogue.
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

#include "rules/build/possible_value_documents.hpp"
#include "rules/build/rule_table.hpp"

namespace nimbara::rules {

// A possible-value document's rows as its text reads back, in static storage.
struct PossibleValueTable {
    std::string_view function;
    std::span<const std::string_view> tags;
    std::span<const std::optional<std::string_view>> cells;  // row-major, a cell per tag; nothing where the row lacks the tag
    std::span<const WeightBounds> bounds;                    // a pair per row

    std::size_t rows() const { return bounds.size(); }

    // The column of a tag, or nothing when the document has no such tag.
    std::optional<std::size_t> column(std::string_view tag) const
    {
        for (std::size_t c = 0; c < tags.size(); ++c)
            if (tags[c] == tag) return c;
        return std::nullopt;
    }

    const std::optional<std::string_view>& cell(std::size_t row, std::size_t column) const
    {
        return cells[row * tags.size() + column];
    }
};

std::span<const RuleRow> rule_table();

// The rows that the dimension documents write twice before their closing tag.
std::span<const RepeatedRow> repeated_rows();

// The rows of the possible-value document of a GetXMLPossibleValues_ function. Throws
// std::logic_error for a name the catalogue lacks, which is a build fault.
const PossibleValueTable& possible_value_table(std::string_view function);

}  // namespace nimbara::rules
