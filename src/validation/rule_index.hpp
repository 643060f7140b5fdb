#pragma once
// The rule table indexed once for validation: the active rules of each product in rule-list order,
// and for each rule the codes it accepts per dimension and the rows of its special services.
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "rules/build/rule_table.hpp"
#include "validation/code_key.hpp"

namespace nimbara::validation {

using rules::Dimension;

struct IndexedRule {
    int id = 0;
    int min = 0;
    int max = 0;
    bool weight_row = false;  // false for a rule that has no weight row at all
    std::array<std::vector<CodeKey>, rules::kDimensionCount> accepted;  // Service unused: see services
    std::vector<std::string> services;  // one entry per service row, repeats included

    bool accepts(Dimension d, std::string_view code) const;
};

// A row of the weight document, for the walk that products C38 and C39 take.
struct WeightRow {
    int id = 0;
    int min = 0;
    int max = 0;
    std::string product;
};

class RuleIndex {
public:
    // Throws std::invalid_argument when a product has more than 64 active rules or a code is too long.
    // Of the repeated rows only the services' count, since every other dimension tests for presence.
    RuleIndex(std::span<const rules::RuleRow> table, std::span<const rules::RepeatedRow> repeated_rows);

    // The active rules of a product in rule-list order; empty for an unknown product.
    std::span<const IndexedRule* const> active_rules(std::string_view product) const;
    std::span<const WeightRow> weight_rows() const { return weight_rows_; }

private:
    struct ProductEntry {
        CodeKey product;
        std::vector<const IndexedRule*> rules;
    };
    std::vector<IndexedRule> rules_;
    std::vector<ProductEntry> products_;  // sorted by key
    std::vector<WeightRow> weight_rows_;
};

}  // namespace nimbara::validation
