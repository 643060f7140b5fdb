#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli_run.hpp"

using nimbara::testing::run;

TEST(CodesCommand, ListsEachKindFromTheCatalogue)
{
    struct Case { std::string args; std::vector<std::string> shown, not_shown; };
    const Case cases[] = {
        {"codes zone --product C01", {"zone (A_Zona_Taxacao) for product C01:\n", "  01   Continente, Açores e Madeira\n",
                                      "  49   Estados Unidos\n"}, {"  02 ", "  03 "}},
        {"codes format", {"  01   Normalizado\n", "  09   Pré e pós mailing\n"}, {"Objectos  RSF"}},
        {"codes speed --product C03", {"  0    (not applicable)\n", "  02   Normal\n", "  03   Económico - Superficie\n"},
         {"  01 "}},
        {"codes service --product C06", {"  06   Serviço Especial de Registo\n"}, {"  01 "}},
        {"codes weight --product C01", {"weight (Escalao, grams) for product C01:\n", "  C01  above 0, up to 50\n",
                                        "  C01  above 50, up to 100\n", "  C01  above 100, up to 2000\n"}, {}},
        {"codes pretreatment --product C10", {"  0    Não Seleccionar\n"}, {"Seleccionar\n  1"}},
        {"codes scope discount", {"scope (CodAmbitoDist):\n", "discount (Desconto):\n", "  02   Standard\n"}, {"zone"}},
        {"codes", {"zone (", "product (", "speed (", "format (", "discount (", "scope (", "pretreatment (",
                   "sampling (", "service (", "weight ("}, {}},
    };
    for (const auto& c : cases) {
        const auto r = run(c.args);
        EXPECT_EQ(r.status, 0) << c.args << ": " << r.err;
        for (const auto& s : c.shown) EXPECT_NE(r.out.find(s), std::string::npos) << c.args << ": " << s << "\n" << r.out;
        for (const auto& s : c.not_shown) EXPECT_EQ(r.out.find(s), std::string::npos) << c.args << ": " << s;
    }
}

// The lists of values of the old documents give zones, speeds and formats the same rows; these do not.
TEST(CodesCommand, JsonGivesEachKindItsOwnCodes)
{
    const auto all = run("codes --json");
    ASSERT_EQ(all.status, 0) << all.err;
    const auto j = nlohmann::json::parse(all.out);
    EXPECT_EQ(j["status"], 0);
    ASSERT_EQ(j["kinds"].size(), 10u);
    std::map<std::string, nlohmann::json> by_kind;
    for (const auto& k : j["kinds"]) by_kind[k["kind"]] = k;
    EXPECT_NE(by_kind["zone"]["codes"], by_kind["format"]["codes"]);
    EXPECT_NE(by_kind["speed"]["codes"], by_kind["discount"]["codes"]);
    EXPECT_GT(by_kind["zone"]["codes"].size(), 40u);
    EXPECT_GT(by_kind["product"]["codes"].size(), 30u);
    EXPECT_EQ(by_kind["weight"]["unit"], "grams");
    EXPECT_EQ(by_kind["service"]["field"], "ListaServesp");

    const auto c01 = nlohmann::json::parse(run("codes zone weight --product C01 --json").out);
    EXPECT_EQ(c01["product"], "C01");
    ASSERT_EQ(c01["kinds"].size(), 2u);
    EXPECT_EQ(c01["kinds"][0]["codes"].size(), 5u);
    EXPECT_EQ(c01["kinds"][1]["steps"][0], (nlohmann::json{{"product", "C01"}, {"above", 0}, {"up_to", 50}}));
}

TEST(CodesCommand, AProductWithoutRulesIsRefused)
{
    const auto r = run("codes zone --product X99");
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.out, "");
    EXPECT_NE(r.err.find("nimbara codes: product \"X99\" has no active rule"), std::string::npos) << r.err;
    const auto j = run("codes zone --product X99 --json");
    EXPECT_EQ(j.status, 2);
    const auto refusal = nlohmann::json::parse(j.out);
    EXPECT_EQ(refusal["status"], 2);
    EXPECT_EQ(refusal["command"], "nimbara codes");
}
