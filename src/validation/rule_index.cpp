#include "validation/rule_index.hpp"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <utility>

namespace nimbara::validation {
namespace {

// A rule holds weight w when min < w <= max, which changes only where w passes a min or a max: every
// weight in the stretch (end[n-1], end[n]] has the rules that end[n] has, and those above the last end
// the rules of the last end plus one.
void index_weights(RuleIndex::Product& product)
{
    for (const IndexedRule* rule : product.rules)
        if (rule->weight_row) product.weight_ends.insert(product.weight_ends.end(), {rule->min, rule->max});
    std::sort(product.weight_ends.begin(), product.weight_ends.end());
    product.weight_ends.erase(std::unique(product.weight_ends.begin(), product.weight_ends.end()),
                              product.weight_ends.end());
    const auto holding = [&](std::int64_t w) {
        RuleSet set = 0;
        for (std::size_t i = 0; i < product.rules.size(); ++i) {
            const IndexedRule& r = *product.rules[i];
            if (r.weight_row && r.min < w && r.max >= w) set |= RuleSet{1} << i;
        }
        return set;
    };
    for (const std::int32_t end : product.weight_ends) product.weight_sets.push_back(holding(end));
    product.weight_sets.push_back(product.weight_ends.empty() ? 0 : holding(std::int64_t{product.weight_ends.back()} + 1));
}

CodeKey required_key(std::string_view code, int rule)
{
    const auto key = code_key(code);
    if (!key) throw std::invalid_argument("rule " + std::to_string(rule) + ": code \"" + std::string(code) + "\" is too long");
    return *key;
}

// Every dimension but the services is judged by the sets; the services are judged against the settled rule.
constexpr std::size_t kSetDimensions = static_cast<std::size_t>(Dimension::Service);

}  // namespace

RuleIndex::RuleIndex(std::span<const rules::RuleRow> table, std::span<const rules::RepeatedRow> repeated_rows)
{
    // Dimension rows exist for rules outside the rule list too; keep them so that ids resolve alike.
    rules_.reserve(table.size());
    std::map<CodeKey, std::uint32_t> code_ids;
    for (const auto& row : table) {
        IndexedRule rule;
        rule.id = row.id;
        rule.min = row.min;
        rule.max = row.max;
        rule.weight_row = row.in_rule_list();
        for (std::size_t d = 0; d < rules::kDimensionCount; ++d) {
            rules::for_each_code(row.codes[d], [&](std::string_view code) {
                if (d == kSetDimensions) {
                    rule.services.emplace_back(code);
                    return;
                }
                const auto key = tagged(required_key(code, row.id), static_cast<unsigned>(d));
                code_ids.try_emplace(key, static_cast<std::uint32_t>(code_ids.size()));
                if (static_cast<Dimension>(d) == Dimension::PreTreatment) rule.pre_treatment_row = true;
            });
        }
        for (const auto& repeat : repeated_rows)
            if (repeat.dimension == Dimension::Service && repeat.id == row.id) rule.services.emplace_back(repeat.code);
        for (const auto& code : rule.services) rule.service_keys.push_back(key_or_long(code));
        rules_.push_back(std::move(rule));
        if (row.in_rule_list()) weight_rows_.push_back({row.id, row.min, row.max, std::string(row.product)});
    }

    std::map<CodeKey, std::vector<std::size_t>> by_product;  // rows of the active rules
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (table[i].listing != rules::Listing::Active) continue;
        auto& list = by_product[required_key(table[i].product, table[i].id)];
        list.push_back(i);
        if (list.size() > kMaxRulesPerProduct)
            throw std::invalid_argument("product " + std::string(table[i].product) + " has more than 64 active rules");
    }

    std::vector<std::pair<CodeKey, std::uint32_t>> ids(code_ids.begin(), code_ids.end());
    sets_.assign(by_product.size() * code_ids.size(), 0);
    for (auto& [key, rows] : by_product) {
        Product product;
        product.sets = products_.size() * code_ids.size();
        const auto code = table[rows.front()].product;
        product.walks_weight_rows = code == "C38" || code == "C39";
        product.service_family = service_family_of(code);
        for (std::size_t bit = 0; bit < rows.size(); ++bit) {
            const RuleSet self = RuleSet{1} << bit;
            const auto& row = table[rows[bit]];
            const IndexedRule& rule = rules_[rows[bit]];
            product.rules.push_back(&rule);
            product.all |= self;
            if (rule.pre_treatment_row) product.pre_treatment |= self;
            for (std::size_t d = 0; d < kSetDimensions; ++d)
                rules::for_each_code(row.codes[d], [&](std::string_view c) {
                    sets_[product.sets + code_ids.at(tagged(*code_key(c), static_cast<unsigned>(d)))] |= self;
                });
        }
        index_weights(product);
        ids.emplace_back(tagged(key, kProductKind), static_cast<std::uint32_t>(products_.size()));
        products_.push_back(std::move(product));
    }
    ids_ = CodeIds(ids);
}

std::span<const IndexedRule* const> RuleIndex::active_rules(std::string_view code) const
{
    if (const Product* p = product(code)) return p->rules;
    return {};
}

}  // namespace nimbara::validation
