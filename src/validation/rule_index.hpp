#pragma once
// The rule table indexed once for validation: the active rules of each product in rule-list order,
// and for each product and code the set of its rules that accept the code, so that a dimension's pass
// over a line is one lookup and one AND.
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "rules/build/rule_table.hpp"
#include "validation/code_ids.hpp"
#include "validation/service_family.hpp"

namespace nimbara::validation {

using rules::Dimension;

// A set of a product's active rules: bit i stands for its i-th rule in rule-list order.
using RuleSet = std::uint64_t;
inline constexpr std::size_t kMaxRulesPerProduct = 64;

struct IndexedRule {
    int id = 0;
    int min = 0;
    int max = 0;
    bool weight_row = false;         // false for a rule that has no weight row at all
    bool pre_treatment_row = false;  // a pre-treatment row of any value offers pre-treatment
    std::vector<std::string> services;  // one entry per service row, repeats included
    std::vector<CodeKey> service_keys;  // each service's key, or kLongCode beside it
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
    struct Product {
        std::vector<const IndexedRule*> rules;  // the active rules, in rule-list order
        // The weight pass as one lookup: the rules' range ends, sorted, cut the weights into
        // stretches in which the same rules hold; weight_sets[n] is the stretch above n ends.
        std::vector<std::int32_t> weight_ends;
        std::vector<RuleSet> weight_sets;

        RuleSet holding_weight(std::int32_t weight) const
        {
            std::size_t below = 0;
            for (const std::int32_t end : weight_ends) below += end < weight;  // short, and free of branches
            return weight_sets[below];
        }
        RuleSet all = 0;
        RuleSet pre_treatment = 0;              // the rules with a pre-treatment row
        bool walks_weight_rows = false;         // C38 and C39 judge the weight over the whole weight document
        ServiceFamily service_family = ServiceFamily::None;
        std::size_t sets = 0;                   // where the product's accepting sets begin
    };

    // Throws std::invalid_argument when a product has more than 64 active rules or a code is too long.
    // Of the repeated rows only the services' count, since every other dimension tests for presence.
    RuleIndex(std::span<const rules::RuleRow> table, std::span<const rules::RepeatedRow> repeated_rows);
    RuleIndex(const RuleIndex&) = delete;  // the products point into the rules
    RuleIndex& operator=(const RuleIndex&) = delete;

    // The product of that exact code with at least one active rule; nothing otherwise.
    const Product* product(std::string_view code) const
    {
        const auto key = code_key(code);
        if (!key) return nullptr;
        const auto id = ids_.find(tagged(*key, kProductKind));
        return id == CodeIds::kNone ? nullptr : &products_[id];
    }

    // The product's rules that list the code in the dimension (Service excluded); none for a code
    // that no rule lists.
    RuleSet accepting(const Product& product, Dimension d, std::string_view code) const
    {
        const auto key = code_key(code);
        if (!key) return 0;
        const auto id = ids_.find(tagged(*key, static_cast<unsigned>(d)));
        return id == CodeIds::kNone ? 0 : sets_[product.sets + id];
    }

    // The active rules of a product in rule-list order; empty for an unknown product.
    std::span<const IndexedRule* const> active_rules(std::string_view code) const;
    std::span<const WeightRow> weight_rows() const { return weight_rows_; }

private:
    static constexpr unsigned kProductKind = rules::kDimensionCount;

    std::vector<IndexedRule> rules_;
    std::vector<Product> products_;
    CodeIds ids_;                  // products by their kind, codes by their dimension
    std::vector<RuleSet> sets_;    // per product, one set per code id
    std::vector<WeightRow> weight_rows_;
};

}  // namespace nimbara::validation
