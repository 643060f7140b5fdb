#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <thread>
#include <vector>

#include "cli/db_program.hpp"
#include "support/temp_folder.hpp"
#include "support/test_database.hpp"

using nimbara::testing::example;
using nimbara::testing::kBothStores;
using nimbara::testing::run;
using nimbara::testing::store_name;
using nlohmann::json;

namespace {

class DbCheckCommandsTest : public nimbara::testing::DbProgramTest {
protected:
    nimbara::testing::TempFolder folder{"db-check-" + std::to_string(static_cast<int>(GetParam()))};
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Stores, DbCheckCommandsTest, kBothStores, store_name);

TEST_P(DbCheckCommandsTest, ChecksAStoredGuiaLineByLineThenWhole)
{
    const auto client = program("client save " + folder.write("client.json", R"({"vCod_Cliente": "456", "vNome": "X",
        "contratos": [{"vCodContrato": "300042", "bActivo": true}]})"));
    ASSERT_EQ(client.status, 0) << client.err;
    // The example as it stands: line 1 sits on the bound of two C01 steps, line 3 (E01) has a rule
    // without pre-treatment, and its 300 objects of C03 in zone 01 fall short of 500.
    ASSERT_EQ(program("save " + example("valid-guia.json")).status, 0);
    auto r = program("check 1");
    EXPECT_EQ(r.status, 1) << r.err;
    EXPECT_EQ(r.out, "-9\tExistem diversas regras de validação de serviços\n0\n-6\tErro no Pre-tratamento\n0\n0\n0\n"
                     "-1\tErro Minimo de 500 Objectos\n");

    // Its C13 line alone, with its services, passes.
    json guia = json::parse(std::ifstream(example("valid-guia.json")));
    guia["produtos"] = json::array({guia["produtos"][1]});
    guia["servicos"] = json::array({guia["servicos"][0], guia["servicos"][1]});
    ASSERT_EQ(program("save " + folder.write("c13.json", guia.dump())).status, 0);
    r = program("check 2");
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "0\n0\n");

    r = program("check 9");
    EXPECT_EQ(r.status, 2);
    EXPECT_NE(r.err.find("no Guia with N_Req 9"), std::string::npos) << r.err;
}

TEST_P(DbCheckCommandsTest, TwoStationsCheckingAtOnceKeepTheirOwnVerdicts)
{
    ASSERT_EQ(program("client save " + folder.write("client.json", R"({"vCod_Cliente": "456", "vNome": "X",
        "contratos": [{"vCodContrato": "300042", "bActivo": true}]})")).status, 0);
    // Two Guias of 300 objects of C03 in zone 01 each: alone, each falls short of 500; summed over
    // one shared table they would reach it.
    ASSERT_EQ(program("save " + example("valid-guia.json")).status, 0);
    ASSERT_EQ(program("save " + example("valid-guia.json")).status, 0);
    const std::string short_of_500 = "-1\tErro Minimo de 500 Objectos\n";
    for (int round = 0; round < 12; ++round) {
        std::vector<nimbara::testing::Run> runs(2);
        std::vector<std::thread> stations;
        for (int n = 0; n < 2; ++n)
            stations.emplace_back([&, n] { runs[n] = program("check " + std::to_string(n + 1)); });
        for (auto& s : stations) s.join();
        for (const auto& r : runs) {
            EXPECT_EQ(r.status, 1) << r.err;
            ASSERT_TRUE(r.out.ends_with(short_of_500)) << "round " << round << ":\n" << r.out << r.err;
        }
    }
}

TEST_P(DbCheckCommandsTest, ChecksLinesAgainstTheTablesWithTheBatchRules)
{
    struct Case { const char* row; const char* result; };
    const Case cases[] = {
        {"C01\t01\t50\t0\t02\t1\t0\t0\t0\t0", "-9\tExistem diversas regras de validação de serviços"},
        {"C01\t01\t51\t0\t02\t1\t0\t0\t\t0", "0"},
        {"C27\t01\t10\t02\t0\t0\t0\t0\t9\t0", "-6\tErro no Pre-tratamento"},  // sampling 9 is not read
        {"C13\t01\t10\t0\t03\t1\t02\t0\t0\t04,05", "0"},
        {"C13\t01\t10\t0\t03\t1\t02\t0\t0\t02,02", "-10\t02"},
        {"XYZ\t01\t10\t0\t0\t0\t0\t0\t0\t0", "-1\tNão Existem Regras de Validação"},
    };
    std::string input, expected;
    for (const auto& c : cases) {
        input += std::string(c.row) + "\n";
        expected += std::string(c.result) + "\n";
    }
    auto r = program("check-lines", input);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, expected);
    EXPECT_EQ(program("check-lines " + folder.write("lines.tsv", input)).out, expected);

    r = program("check-lines", "C01\t01\t20\t0\t01\tsim\t0\t0\t0\t0\nC01\t01\t20\t0\t01\t1\t0\t0\t0\n" + input);
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.out, "!pre-treatment \"sim\" is not a whole number\n!expected 10 tab-separated fields, found 9\n" + expected);
    EXPECT_NE(r.err.find("<stdin>:2: expected 10"), std::string::npos) << r.err;

    r = program("check-lines " + (folder.path() / "none.tsv").string());
    EXPECT_EQ(r.status, 2);
    EXPECT_NE(r.err.find("cannot open"), std::string::npos) << r.err;
    EXPECT_EQ(run("db check-lines --db sqlite:" + (folder.path() / "absent.db").string(), input).status, 2);
}
