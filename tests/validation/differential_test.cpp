// The indexed validator against the literal one, which assembles and parses its documents at every
// check: over a grid drawn from the rule table and over a fixed-seed random sample, both must give
// the same answer for every line.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "nimbara/cls_ValProdutosA.hpp"
#include "support/literal_validator.hpp"
#include "support/rule_table_file.hpp"
#include "support/validation_text.hpp"

using nimbara::ListArray;
using nimbara::ValidationResult;
using nimbara::testing::read_rule_table_file;
using nimbara::testing::show;
using nimbara::testing::split_blanks;
using nimbara::testing::TableRow;

namespace {

enum Field { kId, kProduct, kActive, kMin, kMax, kZones, kSpeed, kFormat, kPre, kDiscount, kScope, kSampling, kServices };

// A line with owned texts, as both validators take it.
struct Line {
    std::string product, zone;
    std::int32_t weight = 0;
    std::string speed, format, pre, discount, scope, sampling, services;

    nimbara::validation::LineInput input() const
    {
        return {product, zone, weight, speed, format, pre, discount, scope, sampling, services};
    }
    std::string show() const
    {
        return product + "|" + zone + "|" + std::to_string(weight) + "|" + speed + "|" + format + "|" + pre + "|" +
               discount + "|" + scope + "|" + sampling + "|" + services;
    }
};

// Every value the table holds for each field, and a few it never holds (the empty text, a stranger).
struct Pools {
    std::vector<std::string> of[kServices + 1];
    std::vector<std::int32_t> weights;  // each rule's edges and their neighbours
};

Pools pools(const std::vector<TableRow>& table)
{
    std::set<std::string> sets[kServices + 1];
    std::set<std::int32_t> weights{-1, 0, 1, 20001};
    for (const auto& row : table) {
        sets[kProduct].insert(row.f[kProduct]);
        for (const int f : {kZones, kSpeed, kFormat, kPre, kDiscount, kScope, kSampling, kServices})
            for (const auto& code : split_blanks(row.f[f])) sets[f].insert(code);
        for (const int f : {kMin, kMax}) {
            if (row.f[f] == "-") continue;
            const auto w = static_cast<std::int32_t>(std::stol(row.f[f]));
            weights.insert({w - 1, w, w + 1});
        }
    }
    Pools out;
    for (int f = kProduct; f <= kServices; ++f) {
        sets[f].insert({"", "X9"});
        out.of[f].assign(sets[f].begin(), sets[f].end());
    }
    out.of[kPre] = {"0", "1", "2", "9", "", "sim", "-1"};
    out.of[kSampling].push_back("0");
    out.weights.assign(weights.begin(), weights.end());
    return out;
}

std::string first_or_zero(const std::string& codes)
{
    const auto c = split_blanks(codes);
    return c.empty() ? "0" : c.front();
}

// Each rule's own line: its product, lowest weight and first code of every field.
std::vector<Line> own_lines(const std::vector<TableRow>& table)
{
    std::vector<Line> out;
    for (const auto& row : table) {
        if (row.f[kMin] == "-") continue;  // a row of the dimension documents alone has no line of its own
        out.push_back({row.f[kProduct],
                  first_or_zero(row.f[kZones]),
                  static_cast<std::int32_t>(std::stol(row.f[kMin])),
                  first_or_zero(row.f[kSpeed]),
                  first_or_zero(row.f[kFormat]),
                  first_or_zero(row.f[kPre]),
                  first_or_zero(row.f[kDiscount]),
                  first_or_zero(row.f[kScope]),
                  first_or_zero(row.f[kSampling]),
                  first_or_zero(row.f[kServices])});
    }
    return out;
}

// Every rule's own line, then that line with one field at a time run through all its values; the
// services also as the rule's whole list and with one code twice.
std::vector<Line> grid(const std::vector<TableRow>& table, const Pools& p)
{
    std::vector<Line> out;
    for (const auto& row : table) {
        if (row.f[kMin] == "-") continue;
        const Line base = own_lines({row}).front();
        out.push_back(base);
        const auto vary = [&](std::string Line::*field, int pool) {
            for (const auto& v : p.of[pool]) {
                Line l = base;
                l.*field = v;
                out.push_back(l);
            }
        };
        vary(&Line::product, kProduct);
        vary(&Line::zone, kZones);
        vary(&Line::speed, kSpeed);
        vary(&Line::format, kFormat);
        vary(&Line::pre, kPre);
        vary(&Line::discount, kDiscount);
        vary(&Line::scope, kScope);
        vary(&Line::sampling, kSampling);
        vary(&Line::services, kServices);
        for (const auto w : p.weights) {
            Line l = base;
            l.weight = w;
            out.push_back(l);
        }
        std::string all;
        for (const auto& code : split_blanks(row.f[kServices])) all += (all.empty() ? "" : ",") + code;
        Line whole = base;
        whole.services = all;
        out.push_back(whole);
        whole.services = all + "," + base.services;
        out.push_back(whole);
    }
    return out;
}

// Lines that start from a random rule's own line and have each field, with odds of one in three,
// drawn from its pool instead; services gain up to three more codes. The draws use the engine's own
// output, whose sequence the standard fixes, so the sample is the same everywhere.
std::vector<Line> random_lines(const std::vector<Line>& own, const Pools& p, std::uint32_t seed, std::size_t count)
{
    std::mt19937 engine(seed);
    const auto maybe = [&](std::string& field, int pool) {
        if (engine() % 3 == 0) field = p.of[pool][engine() % p.of[pool].size()];
    };
    std::vector<Line> out;
    out.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        Line l = own[engine() % own.size()];
        maybe(l.product, kProduct);
        maybe(l.zone, kZones);
        if (engine() % 3 == 0) l.weight = p.weights[engine() % p.weights.size()];
        maybe(l.speed, kSpeed);
        maybe(l.format, kFormat);
        maybe(l.pre, kPre);
        maybe(l.discount, kDiscount);
        maybe(l.scope, kScope);
        maybe(l.sampling, kSampling);
        maybe(l.services, kServices);
        for (auto more = engine() % 4; more > 0; --more) l.services += "," + p.of[kServices][engine() % p.of[kServices].size()];
        out.push_back(std::move(l));
    }
    return out;
}

// Every line whose answers differ, at most a few of them shown.
void expect_same_answers(const std::vector<Line>& lines)
{
    const nimbara::cls_ValProdutosA validator;
    std::size_t differing = 0;
    for (const auto& l : lines) {
        const auto indexed = show(validator.DoValidaProduto(l.product, l.zone, l.weight, l.speed, l.format, l.pre,
                                                            l.discount, l.scope, l.sampling, l.services));
        const auto literal = show(nimbara::testing::literal_validate_line(l.input()));
        if (indexed != literal && ++differing <= 10)
            ADD_FAILURE() << l.show() << ": indexed " << indexed << ", literal " << literal;
    }
    EXPECT_EQ(differing, 0u) << "of " << lines.size() << " lines";
}

}  // namespace

TEST(IndexedAgainstLiteral, EveryRuleWithEachFieldRunThroughTheTable)
{
    const auto table = read_rule_table_file();
    const auto lines = grid(table, pools(table));
    ASSERT_GT(lines.size(), table.size() * 100);
    expect_same_answers(lines);
}

// 100,000 lines in four shards of their own seeds, so that the test runner can spread them.
class IndexedAgainstLiteralSample : public ::testing::TestWithParam<std::uint32_t> {};

TEST_P(IndexedAgainstLiteralSample, FixedSeedRandomLines)
{
    const auto table = read_rule_table_file();
    expect_same_answers(random_lines(own_lines(table), pools(table), 20261124 + GetParam(), 25000));
}

INSTANTIATE_TEST_SUITE_P(Shards, IndexedAgainstLiteralSample, ::testing::Range<std::uint32_t>(0, 4));
