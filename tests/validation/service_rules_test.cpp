#include <gtest/gtest.h>

#include "validation/line_validator.hpp"
#include "validation/service_rules.hpp"

using nimbara::ListArray;
using nimbara::validation::DoValServEspByProduto;

namespace {

struct Verdict {
    int code;
    ListArray list;
    bool operator==(const Verdict&) const = default;
};

Verdict judge(std::string_view product, std::string_view zone, std::optional<std::vector<std::string_view>> services)
{
    nimbara::validation::Services s;
    if (services) s = std::span<const std::string_view>(*services);
    auto v = DoValServEspByProduto(product, zone, s);
    return {v.code, ListArray(v.list.begin(), v.list.end())};
}

using V = std::vector<std::string_view>;

}  // namespace

// The rules a line's validation already shows (C24, C10, C13) are pinned there with their numbers.
TEST(DoValServEspByProduto, RulesGuardsAndOrder)
{
    struct Case { const char* what; std::string_view product, zone; std::optional<V> services; Verdict expected; };
    const Case cases[] = {
        {"C6 spelling", "C6", "01", V{"05"}, {-1, {"06"}}},
        {"C06 04 with 06", "C06", "01", V{"04", "06"}, {0, {}}},
        {"C20 02", "C20", "01", V{"02"}, {-1, {"06"}}},
        {"C10 04", "C10", "01", V{"04"}, {-2, {"01"}}},
        {"E2 spelling, 03 and 11", "E2", "16", V{"03", "11"}, {-3, {"03", "11"}}},
        {"E02 03 alone", "E02", "16", V{"03"}, {0, {}}},
        {"E01 zone 17 without 03 or 13", "E01", "17", V{"02"}, {-4, {"03", "13"}}},
        {"E1 zone 26 with 13", "E1", "26", V{"13"}, {0, {}}},
        {"E01 zone 27 without 02, 04, 13", "E01", "27", V{"03"}, {-5, {"02", "13"}}},
        {"E01 zone 33 with 04", "E01", "33", V{"04"}, {0, {}}},
        {"E01 zone 34", "E01", "34", V{"03"}, {0, {}}},
        {"E01 first service 0 skips both rows", "E01", "17", V{"0", "02"}, {0, {}}},
        {"E01 first service no number", "E01", "17", V{"AB"}, {-100, {}}},
        {"E01 without services", "E01", "17", std::nullopt, {-100, {}}},
        {"E01 zone no number", "E01", "XX", V{"02"}, {-100, {}}},
        {"C13 the second row replaces the first", "C13", "01", V{"07", "02"}, {-8, {"10"}}},
        {"C13 without services", "C13", "01", std::nullopt, {-100, {}}},
        {"04 and 05 for any product", "P01", "01", V{"05", "04"}, {-9, {"04", "05"}}},
        {"04 and 05 after a product rule fired", "C10", "01", V{"04", "05"}, {-2, {"01"}}},
        {"no services, no guard", "C24", "01", std::nullopt, {0, {}}},
    };
    for (const auto& c : cases) EXPECT_EQ(judge(c.product, c.zone, c.services), c.expected) << c.what;
}

TEST(DoValPeso, C38AndC39WalkTheirOwnRows)
{
    using nimbara::rules::Listing;
    using nimbara::rules::RuleRow;
    // A table that has the rows the compiled one lacks: a C38 rule, a C39 rule and an ordinary one.
    const RuleRow table[] = {
        {1, "C01", Listing::Active, 0, 50, {"01", "0", "0", "1", "0", "0", "0", "0"}},
        {2, "C38", Listing::Active, 10, 100, {"01 04", "0", "0", "1", "0", "0", "0", "0"}},
        {3, "C39", Listing::Active, 0, 100, {"01 04", "0", "0", "1", "0", "0", "0", "0"}},
    };
    const nimbara::validation::RuleIndex index(table, {});
    const auto& c38 = *index.active_rules("C38")[0];
    const auto& c39 = *index.active_rules("C39")[0];
    struct Case { const nimbara::validation::IndexedRule* rule; std::int32_t weight; std::string_view zone, product; bool passes; int code; };
    const Case cases[] = {
        {&c38, 5, "01", "C38", false, -1},
        {&c38, 0, "01", "C38", true, 0},
        {&c38, 10, "04", "C38", false, -2},
        {&c38, 11, "04", "C38", true, 0},
        {&c38, 101, "04", "C38", false, -4},
        {&c39, 5, "01", "C39", false, -3},
        {&c39, 5, "04", "C39", true, 0},
    };
    for (const auto& c : cases) {
        const auto v = nimbara::validation::DoValPeso(index, *c.rule, c.weight, c.zone, c.product);
        EXPECT_EQ(v.passes, c.passes) << c.product << " " << c.zone << " " << c.weight;
        EXPECT_EQ(v.code, c.code) << c.product << " " << c.zone << " " << c.weight;
    }
    const nimbara::validation::LineInput line{"C38", "01", 5, "0", "0", "1", "0", "0", "0", ""};
    const auto result = nimbara::validation::validate_line(index, line);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->number, -17);
    EXPECT_EQ(std::get<std::string>(result->description), "Escalao Tera de ser Zero - C38");
}
