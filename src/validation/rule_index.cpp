#include "validation/rule_index.hpp"

#include <algorithm>
#include <map>
#include <stdexcept>


namespace nimbara::validation {
namespace {

CodeKey required_key(std::string_view code, int rule)
{
    const auto key = code_key(code);
    if (!key) throw std::invalid_argument("rule " + std::to_string(rule) + ": code \"" + std::string(code) + "\" is too long");
    return *key;
}

}  // namespace

bool IndexedRule::accepts(Dimension d, std::string_view code) const
{
    const auto key = code_key(code);
    if (!key) return false;
    const auto& keys = accepted[static_cast<std::size_t>(d)];
    return std::find(keys.begin(), keys.end(), *key) != keys.end();
}

RuleIndex::RuleIndex(std::span<const rules::RuleRow> table, std::span<const rules::RepeatedRow> repeated_rows)
{
    // Dimension rows exist for rules outside the rule list too; keep them so that ids resolve alike.
    rules_.reserve(table.size());
    for (const auto& row : table) {
        IndexedRule rule;
        rule.id = row.id;
        rule.min = row.min;
        rule.max = row.max;
        rule.weight_row = row.in_rule_list();
        for (std::size_t d = 0; d < rules::kDimensionCount; ++d) {
            rules::for_each_code(row.codes[d], [&](std::string_view code) {
                if (static_cast<Dimension>(d) == Dimension::Service)
                    rule.services.emplace_back(code);
                else
                    rule.accepted[d].push_back(required_key(code, row.id));
            });
        }
        for (const auto& repeat : repeated_rows)
            if (repeat.dimension == Dimension::Service && repeat.id == row.id) rule.services.emplace_back(repeat.code);
        rules_.push_back(std::move(rule));
        if (row.in_rule_list()) weight_rows_.push_back({row.id, row.min, row.max, std::string(row.product)});
    }

    std::map<CodeKey, std::vector<const IndexedRule*>> by_product;
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (table[i].listing != rules::Listing::Active) continue;
        auto& list = by_product[required_key(table[i].product, table[i].id)];
        list.push_back(&rules_[i]);
        if (list.size() > 64)
            throw std::invalid_argument("product " + std::string(table[i].product) + " has more than 64 active rules");
    }
    for (auto& [key, list] : by_product) products_.push_back({key, std::move(list)});
}

std::span<const IndexedRule* const> RuleIndex::active_rules(std::string_view product) const
{
    const auto key = code_key(product);
    if (!key) return {};
    const auto it = std::lower_bound(products_.begin(), products_.end(), *key,
                                     [](const ProductEntry& e, CodeKey k) { return e.product < k; });
    if (it == products_.end() || it->product != *key) return {};
    return it->rules;
}

}  // namespace nimbara::validation
