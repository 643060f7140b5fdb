// nimbara db receive: a Guia printed by db print and read back from its PDF is received once; a paper
// that differs from the database is named field by field and left unreceived; on both stores.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>

#include "cli/db_program.hpp"
#include "nimbara/Database.hpp"
#include "support/temp_folder.hpp"
#include "support/test_database.hpp"

using nimbara::testing::example;
using nimbara::testing::kSampleClient;
using nimbara::testing::kBothStores;
using nimbara::testing::run;
using nimbara::testing::store_name;
namespace fs = std::filesystem;

namespace {

class DbReceive : public nimbara::testing::DbProgramTest {
protected:
    void SetUp() override
    {
        DbProgramTest::SetUp();
        if (IsSkipped() || HasFailure()) return;
        std::ofstream(folder.path() / "client.json") << kSampleClient;
        ASSERT_EQ(program("client save " + (folder.path() / "client.json").string()).status, 0);
        for (const char* n : {"1", "2"}) {
            const auto saved = program("save " + example("valid-guia.json"));
            ASSERT_EQ(saved.status, 0) << saved.err;
            ASSERT_EQ(saved.out.substr(0, 1), n);
        }
    }
    // The PDF of Guia n as db print writes it.
    fs::path printed(int n)
    {
        const auto out = folder.path() / ("printed" + std::to_string(n));
        const auto r = program("print " + std::to_string(n) + " --out-dir " + out.string() + " --print-log " +
                               (folder.path() / "p.log").string());
        EXPECT_EQ(r.status, 0) << r.err;
        for (const auto& entry : fs::directory_iterator(out))
            if (entry.path().extension() == ".pdf") return entry.path();
        ADD_FAILURE() << "no PDF for Guia " << n;
        return {};
    }
    std::string state(int n)
    {
        const auto db = nimbara::OpenDatabase(scratch->conn());
        nimbara::Recordset rs = db->open("SELECT Recolhido, Situacao FROM Tbl_Cab WHERE N_Req = ?", {n});
        return std::string(rs["Recolhido"].yes_no() ? "yes " : "no ") + (rs["Situacao"].is_null() ? "" : rs["Situacao"].text());
    }
    nimbara::testing::TempFolder folder{"db-receive-" + std::to_string(static_cast<int>(GetParam()))};
};
INSTANTIATE_TEST_SUITE_P(Stores, DbReceive, kBothStores, store_name);

}  // namespace

TEST_P(DbReceive, ReceivedOnceThenRefusedWithTheFirstTime)
{
    const fs::path pdf = printed(1);
    auto r = program("receive " + pdf.string() + " --json");
    ASSERT_EQ(r.status, 0) << r.err;
    const auto d = nlohmann::json::parse(r.out);
    EXPECT_EQ(d["guias"][0]["N_Req"], 1);
    EXPECT_EQ(d["guias"][0]["outcome"], "received");
    const std::string at = d["guias"][0]["received_at"];
    EXPECT_EQ(state(1), "yes Recolhida em " + at);
    EXPECT_EQ(state(2).substr(0, 3), "no ") << "only the Guia on the paper is received";

    r = program("receive " + pdf.string());
    EXPECT_EQ(r.status, 3) << r.err;
    EXPECT_NE(r.err.find("was received before at " + at), std::string::npos) << r.err;
    EXPECT_EQ(state(1), "yes Recolhida em " + at) << "the first reception stands";
}

TEST_P(DbReceive, EveryDifferenceIsNamedAndNothingIsMarked)
{
    const fs::path pdf = printed(2);
    {
        const auto db = nimbara::OpenDatabase(scratch->conn());
        db->execute("UPDATE Tbl_Linha SET D_Quantidade = 301 WHERE N_Req = 2 AND N_Linha = 1");
        db->execute("UPDATE Tbl_Cab SET Pagamento = 2 WHERE N_Req = 2");
    }
    const auto r = program("receive " + pdf.string() + " --json");
    EXPECT_EQ(r.status, 1) << r.err;
    const auto d = nlohmann::json::parse(r.out);
    const auto& differences = d["guias"][0]["differences"];
    ASSERT_EQ(differences.size(), 2u) << differences;
    EXPECT_EQ(differences[0], (nlohmann::json{{"place", "/cabecalho/cb_Pagamento"}, {"paper", "1"}, {"database", "2"}}));
    EXPECT_EQ(differences[1], (nlohmann::json{{"place", "/produtos/0/D_Quantidade"}, {"paper", "300"}, {"database", "301"}}));
    EXPECT_EQ(state(2).substr(0, 3), "no ");
}

TEST_P(DbReceive, APaperOfNoStoredGuiaOrNoScan)
{
    // The headless edition's paper of the example names its yearly number 1027, which no stored Guia has.
    const auto printed_by_file = run("print " + example("valid-guia.json") + " -q --report-dir " +
                                     folder.path().string() + " --out-dir " + folder.path().string());
    ASSERT_EQ(printed_by_file.status, 0) << printed_by_file.err;
    auto r = program("receive " + (folder.path() / "Guia_2026-1027_via1.pdf").string());
    EXPECT_EQ(r.status, 2);
    EXPECT_NE(r.err.find("no stored Guia of client 456, contract 300042, yearly number 1027 and day code 6327"),
              std::string::npos)
        << r.err;
    r = program("receive " + example("valid-guia.json"));
    EXPECT_EQ(r.status, 2);
    EXPECT_NE(r.err.find("nothing was received"), std::string::npos) << r.err;
}
