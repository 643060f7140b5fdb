// The codes a line may carry, gathered from the active rules of the compiled-in rule table.
#include "nimbara/catalogue_codes.hpp"

#include <algorithm>
#include <set>
#include <tuple>

#include "rules/catalogue.hpp"

namespace nimbara {
namespace {

using rules::Dimension;

bool counts(const rules::RuleRow& rule, std::optional<std::string_view> product)
{
    return rule.listing == rules::Listing::Active && !rule.product.empty() && (!product || rule.product == *product);
}

std::optional<Dimension> dimension_of(CodeKind kind)
{
    switch (kind) {
    case CodeKind::Zone: return Dimension::Zone;
    case CodeKind::Speed: return Dimension::Speed;
    case CodeKind::Format: return Dimension::Format;
    case CodeKind::Discount: return Dimension::Discount;
    case CodeKind::Scope: return Dimension::Scope;
    case CodeKind::Sampling: return Dimension::Sampling;
    case CodeKind::Service: return Dimension::Service;
    default: return std::nullopt;
    }
}

// The set of designations.tsv that labels a kind's codes.
std::string_view label_set(CodeKind kind)
{
    switch (kind) {
    case CodeKind::Zone: return "Zones";
    case CodeKind::Product: return "Prod";
    case CodeKind::Speed: return "Speed";
    case CodeKind::Format: return "Format";
    case CodeKind::Discount: return "Disc";
    case CodeKind::Scope: return "Scope";
    case CodeKind::Sampling: return "Sampl";
    case CodeKind::Service: return "Serv";
    default: return {};
    }
}

std::string label(CodeKind kind, std::string_view code)
{
    try {
        return std::string(rules::designations().label(label_set(kind), code));
    } catch (const std::exception&) {
        return {};  // a code the catalogue gives no label: shown without one
    }
}

}  // namespace

std::vector<CatalogueCode> CatalogueCodes(CodeKind kind, std::optional<std::string_view> product)
{
    std::set<std::string, std::less<>> codes;
    bool offers_pre_treatment = false;
    for (const auto& rule : rules::rule_table()) {
        if (!counts(rule, product)) continue;
        if (kind == CodeKind::Product) {
            codes.emplace(rule.product);
        } else if (kind == CodeKind::PreTreatment) {
            // The validator asks only whether the rule has a pre-treatment row, never its value.
            offers_pre_treatment = offers_pre_treatment || !rule.codes_of(Dimension::PreTreatment).empty();
        } else if (const auto dimension = dimension_of(kind)) {
            rules::for_each_code(rule.codes_of(*dimension), [&](std::string_view code) { codes.emplace(code); });
        }
    }
    std::vector<CatalogueCode> out;
    if (kind == CodeKind::PreTreatment) {
        // A product without an active rule accepts nothing at all.
        if (product && !CatalogueHasProduct(*product)) return out;
        // The labels the possible values of the report give a pre-treatment.
        out.push_back({"0", "Não Seleccionar"});
        if (offers_pre_treatment) out.push_back({"1", "Seleccionar"});
        return out;
    }
    for (const auto& code : codes) out.push_back({code, code == "0" ? std::string() : label(kind, code)});
    return out;
}

std::vector<WeightStep> CatalogueWeightSteps(std::optional<std::string_view> product)
{
    std::vector<WeightStep> steps;
    for (const auto& rule : rules::rule_table())
        if (counts(rule, product)) steps.push_back({std::string(rule.product), rule.min, rule.max});
    const auto key = [](const WeightStep& s) { return std::tie(s.product, s.above, s.up_to); };
    std::sort(steps.begin(), steps.end(), [&](const WeightStep& a, const WeightStep& b) { return key(a) < key(b); });
    steps.erase(std::unique(steps.begin(), steps.end()), steps.end());
    return steps;
}

bool CatalogueHasProduct(std::string_view product)
{
    const auto rules = rules::rule_table();
    return std::any_of(rules.begin(), rules.end(), [&](const rules::RuleRow& r) { return counts(r, product); });
}

}  // namespace nimbara
