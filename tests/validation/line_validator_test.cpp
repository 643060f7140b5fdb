#include <gtest/gtest.h>

#include "nimbara/cls_ValProdutosA.hpp"
#include "support/validation_text.hpp"

using nimbara::ErrorArray;
using nimbara::ListArray;
using nimbara::ValidationResult;
using nimbara::testing::show;

namespace {

// A line on the defaults of a national C01 letter, with the named fields changed.
struct Line {
    std::string product = "C01", zone = "01";
    std::int32_t weight = 20;
    std::string speed = "0", format = "01", pre = "1", discount = "0", scope = "0", sampling = "0", services = "0";
};

ValidationResult validate(const Line& l)
{
    return nimbara::cls_ValProdutosA{}.DoValidaProduto(l.product, l.zone, l.weight, l.speed, l.format, l.pre, l.discount,
                                                        l.scope, l.sampling, l.services);
}

ErrorArray err(std::int32_t n, std::string text) { return {n, std::move(text)}; }

std::string many_zeros(int count)
{
    std::string out = "0";
    for (int i = 1; i < count; ++i) out += ",0";
    return out;
}
ErrorArray err(std::int32_t n, ListArray list) { return {n, std::move(list)}; }

}  // namespace

TEST(DoValidaProduto, RuleSelectionAndFirstErrorWins)
{
    const std::string read = "Ocorreu um erro na leitura do XML";
    struct Case { const char* what; Line line; ValidationResult expected; };
    const Case cases[] = {
        {"weight 50 is the top of rule 1", Line{.weight = 50, .format = "02"}, std::nullopt},
        {"weight 51 selects rule 2", Line{.weight = 51, .format = "02"}, std::nullopt},
        {"rule 2 has no format 01", Line{.weight = 51}, err(-5, "Erro no Formato")},
        {"weight 0 is below every minimum", Line{.weight = 0}, err(-3, "Erro na Validação do Peso")},
        {"negative weight", Line{.weight = -1}, err(-3, "Erro na Validação do Peso")},
        {"C01 format 03 weight 2000 is rule 128", Line{.weight = 2000, .format = "03"}, std::nullopt},
        {"weight 2001 is above every rule", Line{.weight = 2001, .format = "03"}, err(-3, "Erro na Validação do Peso")},
        {"unknown product", Line{.product = "X99"}, err(-100, read)},
        {"lower-case product", Line{.product = "c01"}, err(-100, read)},
        {"C38 has no active rule", Line{.product = "C38"}, err(-100, read)},
        {"C39 has no active rule", Line{.product = "C39"}, err(-100, read)},
        {"C25 rules are all inactive", Line{.product = "C25", .format = "0"}, err(-100, read)},
        {"empty product finds rule 0 and fails on the zone", Line{.product = ""}, err(-2, "Erro na Zona de Taxação")},
        {"zone of another product's territory", Line{.zone = "33"}, err(-2, "Erro na Zona de Taxação")},
        {"zone error comes before weight error", Line{.zone = "99", .weight = 0}, err(-2, "Erro na Zona de Taxação")},
        {"speed", Line{.speed = "02"}, err(-4, "Erro na Velocidade")},
        {"empty speed is not 0", Line{.speed = ""}, err(-4, "Erro na Velocidade")},
        {"format", Line{.format = "04"}, err(-5, "Erro no Formato")},
        {"format error before discount error", Line{.format = "04", .discount = "09"}, err(-5, "Erro no Formato")},
        {"discount", Line{.discount = "02"}, err(-7, "Erro no Desconto")},
        {"scope", Line{.scope = "02"}, err(-8, "Erro no Ambito da Distribuição")},
        {"sampling", Line{.sampling = "01"}, err(-21, "Erro na Entrega Sampling")},
        {"empty sampling stands for 0", Line{.sampling = ""}, std::nullopt},
        {"pre-treatment that is no number", Line{.pre = "sim"}, err(-100, read)},
        {"pre-treatment empty", Line{.pre = ""}, err(-100, read)},
        {"pre-treatment 0 on a rule with rows", Line{.pre = "0"}, std::nullopt},
        {"pre-treatment 0 on a rule without rows (C20 rule 33)",
         Line{.product = "C20", .weight = 100, .format = "0", .pre = "0"}, std::nullopt},
        {"pre-treatment 1 on a rule without rows",
         Line{.product = "C20", .weight = 100, .format = "0", .pre = "1"}, err(-6, "Erro no Pre-tratamento")},
        {"pre-treatment value is not compared (P01 rule 83 has only 0)", Line{.product = "P01", .pre = "5"}, std::nullopt},
        {"C31 sampling 03 weight 100 is rule 38",
         Line{.product = "C31", .weight = 100, .format = "0", .scope = "02", .sampling = "03"}, std::nullopt},
        {"C31 sampling 05 is rule 60",
         Line{.product = "C31", .weight = 1500, .format = "0", .scope = "02", .sampling = "05"}, std::nullopt},
        {"C31 sampling 01 weight 500 is rule 59",
         Line{.product = "C31", .weight = 500, .format = "0", .scope = "02", .sampling = "01"}, std::nullopt},
        {"C31 sampling 01 weight 501", Line{.product = "C31", .weight = 501, .format = "0", .scope = "02", .sampling = "01"},
         err(-21, "Erro na Entrega Sampling")},
        {"C07 weight 20 format 08 is rule 78",
         Line{.product = "C07", .weight = 20, .format = "08", .discount = "01"}, std::nullopt},
        {"C07 weight 21 format 0 is rule 15",
         Line{.product = "C07", .weight = 21, .format = "0", .discount = "01"}, std::nullopt},
        {"C07 weight 20 format 0: rule 15 starts above 20",
         Line{.product = "C07", .weight = 20, .format = "0", .discount = "01"}, err(-5, "Erro no Formato")},
        {"codes are exact text", Line{.zone = "1"}, err(-2, "Erro na Zona de Taxação")},
    };
    for (const auto& c : cases) EXPECT_EQ(show(validate(c.line)), show(c.expected)) << c.what;
}

TEST(DoValidaProduto, SpecialServices)
{
    struct Case { const char* what; Line line; ValidationResult expected; };
    const auto c24 = [](std::string services) { return Line{.product = "C24", .weight = 10, .speed = "01", .services = services}; };
    const auto c13 = [](std::string services, std::string zone = "01") {
        return Line{.product = "C13", .zone = zone, .weight = 50, .format = "03", .discount = "02", .services = services};
    };
    const auto c10 = [](std::string services) {
        return Line{.product = "C10", .zone = "31", .weight = 100, .format = "0", .pre = "0", .services = services};
    };
    // Rule 132 (P01, zone 53, up to 50) has "0" twice through the document's repeated last row.
    const auto p01 = [](std::string services) {
        return Line{.product = "P01", .zone = "53", .weight = 30, .format = "03", .pre = "9", .services = services};
    };
    const Case cases[] = {
        {"services outside the rule", Line{.services = "02"}, err(-10, ListArray{"02"})},
        {"only the refused ones are listed", Line{.services = "0,02,07"}, err(-10, ListArray{"02", "07"})},
        {"a code twice against one row", c24("02,02,06"), err(-10, ListArray{"02"})},
        {"a code twice against two rows", p01("0,0"), std::nullopt},
        {"a code three times against two rows", p01("0,0,0"), err(-10, ListArray{"0"})},
        {"empty service list", c24(""), std::nullopt},
        {"empty elements vanish when all else passes", Line{.services = "0,,"}, std::nullopt},
        {"an empty element behind a refused code stays", Line{.services = "99,"}, err(-10, ListArray{"99", ""})},
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
        {"more codes than are split on the stack", Line{.services = "0,0,0,0,0,0,0,0,0,0"}, err(-10, ListArray(9, "0"))},
        {"more codes than one bit set holds", Line{.services = many_zeros(70)}, err(-10, ListArray(69, "0"))},
    };
    for (const auto& c : cases) EXPECT_EQ(show(validate(c.line)), show(c.expected)) << c.what;
}


// Views that hold no pointer at all, as a host may hand in for an empty field, are empty texts.
TEST(DoValidaProduto, EmptyViewsWithoutAPointer)
{
    const std::string_view none;
    const nimbara::cls_ValProdutosA v;
    EXPECT_EQ(show(v.DoValidaProduto("C01", none, 20, "0", "01", "1", "0", "0", none, none)),
              show(validate(Line{.zone = "", .sampling = "", .services = ""})));
    EXPECT_EQ(show(v.DoValidaProduto(none, "01", 20, none, none, "1", none, none, none, none)),
              show(validate(Line{.product = "", .speed = "", .format = "", .discount = "", .scope = "", .sampling = "",
                                 .services = ""})));
}
