#include <gtest/gtest.h>

#include <random>

#include "nimbara/cls_ValProdutosA.hpp"
#include "rules/catalogue.hpp"
#include "support/literal_validator.hpp"
#include "validation/line_validator.hpp"

using nimbara::ErrorArray;
using nimbara::ListArray;
using nimbara::ValidationResult;
using nimbara::validation::LineInput;

namespace {

// A line on the defaults of a national C01 letter, with the named fields changed.
struct Line {
    std::string product = "C01", zone = "01";
    std::int32_t weight = 20;
    std::string speed = "0", format = "01", pre = "1", discount = "0", scope = "0", sampling = "0", services = "0";
    LineInput input() const { return {product, zone, weight, speed, format, pre, discount, scope, sampling, services}; }
};

ValidationResult validate(const Line& l)
{
    return nimbara::cls_ValProdutosA{}.DoValidaProduto(l.product, l.zone, l.weight, l.speed, l.format, l.pre, l.discount,
                                                        l.scope, l.sampling, l.services);
}

std::string show(const ValidationResult& r)
{
    if (!r) return "passes";
    std::string s = std::to_string(r->number) + " ";
    if (const auto* list = std::get_if<ListArray>(&r->description)) {
        for (const auto& c : *list) s += "[" + c + "]";
    } else {
        s += std::get<std::string>(r->description);
    }
    return s;
}

ErrorArray err(std::int32_t n, std::string text) { return {n, std::move(text)}; }
ErrorArray err(std::int32_t n, ListArray list) { return {n, std::move(list)}; }

template <class F>
Line with(F f)
{
    Line l;
    f(l);
    return l;
}

}  // namespace

TEST(DoValidaProduto, RuleSelectionAndFirstErrorWins)
{
    const std::string read = "Ocorreu um erro na leitura do XML";
    struct Case { const char* what; Line line; ValidationResult expected; };
    const Case cases[] = {
        {"weight 50 is the top of rule 1", with([](Line& l) { l.weight = 50; l.format = "02"; }), std::nullopt},
        {"weight 51 selects rule 2", with([](Line& l) { l.weight = 51; l.format = "02"; }), std::nullopt},
        {"rule 2 has no format 01", with([](Line& l) { l.weight = 51; }), err(-5, "Erro no Formato")},
        {"weight 0 is below every minimum", with([](Line& l) { l.weight = 0; }), err(-3, "Erro na Validação do Peso")},
        {"negative weight", with([](Line& l) { l.weight = -1; }), err(-3, "Erro na Validação do Peso")},
        {"C01 format 03 weight 2000 is rule 128", with([](Line& l) { l.weight = 2000; l.format = "03"; }), std::nullopt},
        {"weight 2001 is above every rule", with([](Line& l) { l.weight = 2001; l.format = "03"; }), err(-3, "Erro na Validação do Peso")},
        {"unknown product", with([](Line& l) { l.product = "X99"; }), err(-100, read)},
        {"lower-case product", with([](Line& l) { l.product = "c01"; }), err(-100, read)},
        {"C38 has no active rule", with([](Line& l) { l.product = "C38"; }), err(-100, read)},
        {"C39 has no active rule", with([](Line& l) { l.product = "C39"; }), err(-100, read)},
        {"C25 rules are all inactive", with([](Line& l) { l.product = "C25"; l.format = "0"; }), err(-100, read)},
        {"empty product finds rule 0 and fails on the zone", with([](Line& l) { l.product = ""; }), err(-2, "Erro na Zona de Taxação")},
        {"zone of another product's territory", with([](Line& l) { l.zone = "33"; }), err(-2, "Erro na Zona de Taxação")},
        {"zone error comes before weight error", with([](Line& l) { l.zone = "99"; l.weight = 0; }), err(-2, "Erro na Zona de Taxação")},
        {"speed", with([](Line& l) { l.speed = "02"; }), err(-4, "Erro na Velocidade")},
        {"empty speed is not 0", with([](Line& l) { l.speed = ""; }), err(-4, "Erro na Velocidade")},
        {"format", with([](Line& l) { l.format = "04"; }), err(-5, "Erro no Formato")},
        {"format error before discount error", with([](Line& l) { l.format = "04"; l.discount = "09"; }), err(-5, "Erro no Formato")},
        {"discount", with([](Line& l) { l.discount = "02"; }), err(-7, "Erro no Desconto")},
        {"scope", with([](Line& l) { l.scope = "02"; }), err(-8, "Erro no Ambito da Distribuição")},
        {"sampling", with([](Line& l) { l.sampling = "01"; }), err(-21, "Erro na Entrega Sampling")},
        {"empty sampling stands for 0", with([](Line& l) { l.sampling = ""; }), std::nullopt},
        {"pre-treatment that is no number", with([](Line& l) { l.pre = "sim"; }), err(-100, read)},
        {"pre-treatment empty", with([](Line& l) { l.pre = ""; }), err(-100, read)},
        {"pre-treatment 0 on a rule with rows", with([](Line& l) { l.pre = "0"; }), std::nullopt},
        {"pre-treatment 0 on a rule without rows (C20 rule 33)",
         with([](Line& l) { l.product = "C20"; l.weight = 100; l.format = "0"; l.pre = "0"; }), std::nullopt},
        {"pre-treatment 1 on a rule without rows",
         with([](Line& l) { l.product = "C20"; l.weight = 100; l.format = "0"; l.pre = "1"; }), err(-6, "Erro no Pre-tratamento")},
        {"pre-treatment value is not compared (P01 rule 83 has only 0)",
         with([](Line& l) { l.product = "P01"; l.pre = "5"; }), std::nullopt},
        {"C31 sampling 03 weight 100 is rule 38",
         with([](Line& l) { l.product = "C31"; l.weight = 100; l.format = "0"; l.scope = "02"; l.sampling = "03"; }), std::nullopt},
        {"C31 sampling 05 is rule 60",
         with([](Line& l) { l.product = "C31"; l.weight = 1500; l.format = "0"; l.scope = "02"; l.sampling = "05"; }), std::nullopt},
        {"C31 sampling 01 weight 500 is rule 59",
         with([](Line& l) { l.product = "C31"; l.weight = 500; l.format = "0"; l.scope = "02"; l.sampling = "01"; }), std::nullopt},
        {"C31 sampling 01 weight 501",
         with([](Line& l) { l.product = "C31"; l.weight = 501; l.format = "0"; l.scope = "02"; l.sampling = "01"; }),
         err(-21, "Erro na Entrega Sampling")},
        {"C07 weight 20 format 08 is rule 78",
         with([](Line& l) { l.product = "C07"; l.weight = 20; l.format = "08"; l.discount = "01"; }), std::nullopt},
        {"C07 weight 21 format 0 is rule 15",
         with([](Line& l) { l.product = "C07"; l.weight = 21; l.format = "0"; l.discount = "01"; }), std::nullopt},
        {"C07 weight 20 format 0: rule 15 starts above 20",
         with([](Line& l) { l.product = "C07"; l.weight = 20; l.format = "0"; l.discount = "01"; }), err(-5, "Erro no Formato")},
        {"codes are exact text", with([](Line& l) { l.zone = "1"; }), err(-2, "Erro na Zona de Taxação")},
    };
    for (const auto& c : cases) EXPECT_EQ(show(validate(c.line)), show(c.expected)) << c.what;
}

TEST(DoValidaProduto, SpecialServices)
{
    struct Case { const char* what; Line line; ValidationResult expected; };
    const auto c24 = [](std::string services) {
        return with([&](Line& l) { l.product = "C24"; l.weight = 10; l.speed = "01"; l.services = services; });
    };
    const auto c13 = [](std::string services, std::string zone = "01") {
        return with([&](Line& l) {
            l.product = "C13"; l.zone = zone; l.weight = 50; l.format = "03"; l.discount = "02"; l.services = services;
        });
    };
    const auto c10 = [](std::string services) {
        return with([&](Line& l) { l.product = "C10"; l.zone = "31"; l.weight = 100; l.format = "0"; l.pre = "0"; l.services = services; });
    };
    const Case cases[] = {
        {"services outside the rule", with([](Line& l) { l.services = "02"; }), err(-10, ListArray{"02"})},
        {"only the refused ones are listed", with([](Line& l) { l.services = "0,02,07"; }), err(-10, ListArray{"02", "07"})},
        {"a code twice against one row", c24("02,02,06"), err(-10, ListArray{"02"})},
        {"empty service list", c24(""), std::nullopt},
        {"empty elements vanish when all else passes", with([](Line& l) { l.services = "0,,"; }), std::nullopt},
        {"an empty element behind a refused code stays", with([](Line& l) { l.services = "99,"; }), err(-10, ListArray{"99", ""})},
        {"C24 02 needs 06", c24("02"), err(-16, ListArray{"06"})},
        {"C24 02 with 06", c24("02,06"), std::nullopt},
        {"C24 06 alone", c24("06"), std::nullopt},
        {"C10 02 needs 01", c10("02"), err(-12, ListArray{"01"})},
        {"C10 05 needs 01", c10("05"), err(-12, ListArray{"01"})},
        {"C10 04 and 05 with 01", c10("01,04,05"), err(-24, ListArray{"04", "05"})},
        {"C13 10 needs 02", c13("10"), err(-22, ListArray{"02"})},
        {"C13 07 needs 10 in zone 01", c13("07"), err(-23, ListArray{"10"})},
        {"C13 10 and 07 without 02: the first row fires alone", c13("10,07"), err(-22, ListArray{"02"})},
        {"C13 07 outside zone 01", c13("07", "05"), std::nullopt},
        {"C13 first service 0 skips its rows", c13("0,07"), std::nullopt},
        {"C13 04 and 05", c13("04,05"), err(-24, ListArray{"04", "05"})},
        {"C13 0 alone", c13("0"), std::nullopt},
    };
    for (const auto& c : cases) EXPECT_EQ(show(validate(c.line)), show(c.expected)) << c.what;
}

TEST(DoValidaProduto, RuleWithTwoServiceRowsAdmitsACodeTwice)
{
    // Rule 132 (P01, zone 53, up to 50) has "0" twice through the document's repeated last row.
    Line l = with([](Line& l) { l.product = "P01"; l.zone = "53"; l.weight = 30; l.format = "03"; l.pre = "9"; });
    l.services = "0,0";
    EXPECT_EQ(validate(l), std::nullopt);
    l.services = "0,0,0";
    EXPECT_EQ(show(validate(l)), show(err(-10, ListArray{"0"})));
}

// Every field value that occurs in the catalogue, and some that do not, combined at random; the
// indexed validator must answer exactly as the literal one that parses the documents.
TEST(DoValidaProduto, AgreesWithTheLiteralValidator)
{
    std::vector<std::string> products{"", "X99", "C38", "c01", "C6", "E1"}, zones{"", "99", "1"}, codes{"", "0", "99"},
        pres{"0", "1", "2", "-1", "x", "8"}, services{"", "0", "0,0", "02,06", "04,05", "01,02", "03,13", "10,02", "07", "0,,"};
    std::vector<std::int32_t> weights{0, 1, -5};
    for (const auto& r : nimbara::rules::rule_table()) {
        if (!r.product.empty()) products.emplace_back(r.product);
        weights.insert(weights.end(), {r.min, r.min + 1, r.max, r.max + 1});
        nimbara::rules::for_each_code(r.codes_of(nimbara::rules::Dimension::Zone), [&](auto c) { zones.emplace_back(c); });
        for (auto d : {nimbara::rules::Dimension::Speed, nimbara::rules::Dimension::Format, nimbara::rules::Dimension::Discount,
                       nimbara::rules::Dimension::Scope, nimbara::rules::Dimension::Sampling, nimbara::rules::Dimension::Service})
            nimbara::rules::for_each_code(r.codes_of(d), [&](auto c) { codes.emplace_back(c); });
    }
    std::mt19937 rng(12345);
    const auto pick = [&](const auto& v) { return v[std::uniform_int_distribution<std::size_t>(0, v.size() - 1)(rng)]; };

    // Lines that start from a valid rule and vary one or two fields reach the late stages too.
    const auto& table = nimbara::rules::rule_table();
    for (int i = 0; i < 1500; ++i) {
        Line l;
        const auto& r = table[std::uniform_int_distribution<std::size_t>(0, table.size() - 1)(rng)];
        const auto first = [](std::string_view codes) { return std::string(codes.substr(0, codes.find(' '))); };
        l.product = std::string(r.product);
        l.zone = first(r.codes_of(nimbara::rules::Dimension::Zone));
        l.weight = r.max;
        l.speed = first(r.codes_of(nimbara::rules::Dimension::Speed));
        l.format = first(r.codes_of(nimbara::rules::Dimension::Format));
        l.pre = r.codes_of(nimbara::rules::Dimension::PreTreatment).empty() ? "0" : "1";
        l.discount = first(r.codes_of(nimbara::rules::Dimension::Discount));
        l.scope = first(r.codes_of(nimbara::rules::Dimension::Scope));
        l.sampling = first(r.codes_of(nimbara::rules::Dimension::Sampling));
        l.services = pick(services);
        switch (i % 8) {
        case 0: l.zone = pick(zones); break;
        case 1: l.weight = pick(weights); break;
        case 2: l.speed = pick(codes); break;
        case 3: l.format = pick(codes); break;
        case 4: l.pre = pick(pres); break;
        case 5: l.discount = pick(codes); l.scope = pick(codes); break;
        case 6: l.sampling = pick(codes); break;
        default: l.product = pick(products); break;
        }
        const auto fast = nimbara::validation::validate_line(nimbara::validation::RuleIndex::compiled(), l.input());
        const auto slow = nimbara::testing::literal_validate_line(l.input());
        ASSERT_EQ(show(fast), show(slow)) << l.product << " " << l.zone << " " << l.weight << " " << l.speed << " " << l.format
                                          << " " << l.pre << " " << l.discount << " " << l.scope << " " << l.sampling << " ["
                                          << l.services << "]";
    }
}
