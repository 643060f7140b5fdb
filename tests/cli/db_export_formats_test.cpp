// db export read back by Python's csv and json modules, on Guias whose texts hold commas, quotes,
// semicolons, line breaks and accents: every record has the header's fields, every text comes back.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <fstream>

#include "cli/db_program.hpp"
#include "support/guia_listing_rows.hpp"
#include "support/temp_folder.hpp"
#include "support/test_database.hpp"

using nimbara::testing::kBothStores;
using nimbara::testing::store_name;
using nimbara::testing::SeededStoreTest;

namespace {

const std::string kName = "Ção; \"Aspas\", Lda\r\nSegunda linha";
const std::string kCampaign = "A,B;\"C\"";

class DbExportFormatsTest : public SeededStoreTest {
protected:
    void SetUp() override
    {
        SeededStoreTest::SetUp();
        if (IsSkipped() || HasFailure()) return;
        nimbara::testing::store_listing_guias(db);
        nimbara::testing::store_client(db, 3, kName);
        auto g = nimbara::testing::new_guia(db, 3, 1, 3, 14);
        g->mColLinha.Item(1).vCodigo_Campanha = kCampaign;
        g->DoSave();
        ASSERT_EQ(g->LastError(), "");
    }
    nimbara::testing::Run program(const std::string& args) { return nimbara::testing::run_db(scratch->conn(), args); }
};

// What Python's reader makes of `text` as `kind`; its exit status is 0 only when every record has
// the header's number of fields.
std::pair<int, std::string> read_back(const std::string& kind, const std::string& text)
{
    const nimbara::testing::TempFolder dir;
    const auto file = dir.path() / "export";
    std::ofstream(file, std::ios::binary) << text;
    const std::string cmd = std::string(NIMBARA_PYTHON) + " " + NIMBARA_SOURCE_DIR + "/tests/cli/read_back.py " +
                            kind + " " + file.string();
    FILE* pipe = ::popen(cmd.c_str(), "r");
    std::string out;
    char buf[4096];
    while (const auto n = std::fread(buf, 1, sizeof buf, pipe)) out.append(buf, n);
    return {WEXITSTATUS(::pclose(pipe)), out};
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Stores, DbExportFormatsTest, kBothStores, store_name);

TEST_P(DbExportFormatsTest, EveryFormatReadsBack)
{
    const std::vector<std::string> header = {
        "Req1",    "Req2",       "Req",    "Guia",       "N_linha",        "Data",       "Cliente",    "Nome",
        "Contrato", "Velocidade", "Produto", "Zona",      "Peso",           "Formato",    "Ambito",     "Quantidade",
        "CodigoCampanha"};
    struct Case {
        std::string args;
        std::string kind;
        std::string name;  // the client's name as the format carries it
    };
    const Case cases[] = {
        {"export", "csv", kName},
        {"export --format csv", "csv", kName},
        {"export --format tsv", "tsv", "Ção; \"Aspas\", Lda  Segunda linha"},
        {"list --format csv", "csv", kName},
        {"list", "tsv", "Ção; \"Aspas\", Lda  Segunda linha"},
    };
    for (const auto& c : cases) {
        const auto r = program(c.args);
        ASSERT_EQ(r.status, 0) << c.args << ": " << r.err;
        const auto [status, parsed] = read_back(c.kind, r.out);
        ASSERT_EQ(status, 0) << c.args << ": Python could not read it back:\n" << r.out;
        const auto table = nlohmann::json::parse(parsed);
        const std::vector<std::string> got_header = table["header"];
        ASSERT_GE(got_header.size(), header.size()) << c.args;
        EXPECT_TRUE(std::equal(header.begin(), header.end(), got_header.begin()))
            << c.args << ": db list and db export share their first columns";
        ASSERT_EQ(table["rows"].size(), 8u) << c.args << ": every line of the four Guias and the fourteenth";
        const auto& last = table["rows"].back();
        EXPECT_EQ(last[7], c.name) << c.args;
        EXPECT_EQ(last[16], kCampaign) << c.args;
        if (c.kind == "csv")
            EXPECT_EQ(r.out.substr(r.out.size() - 2), "\r\n") << c.args << ": CSV records end in CR LF";
        if (c.args.starts_with("export")) {
            const std::vector<std::string> services(got_header.begin() + 17, got_header.end());
            ASSERT_EQ(services.size(), static_cast<std::size_t>(count("Tbl_I_ServicosEspeciais WHERE Codigo <> '0'")))
                << c.args << ": one column per service code of the database";
            EXPECT_EQ(services.front(), "ServEsp_01");
            EXPECT_EQ(services.back(), "ServEsp_15");
            EXPECT_EQ(last[17], "150") << c.args << ": the amount as the Guia file writes it, in cents";
            EXPECT_EQ(last[18], "300") << c.args;
            EXPECT_EQ(last[20], "") << c.args << ": a service the line lacks is an empty field";
        }
    }
}

TEST_P(DbExportFormatsTest, JsonNestsTheServices)
{
    for (const std::string args : {"export --format json", "export --json"}) {
        const auto r = program(args + " --client 1003");
        ASSERT_EQ(r.status, 0) << args << ": " << r.err;
        const auto [status, parsed] = read_back("json", r.out);
        ASSERT_EQ(status, 0) << args << ": " << r.out;
        const auto rows = nlohmann::json::parse(parsed);
        ASSERT_EQ(rows.size(), 1u) << args;
        EXPECT_EQ(rows[0]["Nome"], kName) << args;
        EXPECT_EQ(rows[0]["CodigoCampanha"], kCampaign) << args;
        EXPECT_EQ(rows[0]["Req"], 14) << args;
        ASSERT_EQ(rows[0]["servicos"].size(), 3u) << args;
        EXPECT_EQ(rows[0]["servicos"][1]["CodServEsp"], "02") << args;
        EXPECT_EQ(rows[0]["servicos"][1]["Valor"], "300") << args;
        EXPECT_EQ(rows[0]["servicos"][1]["Designacao"], "Aviso de Recepção") << args;
    }
}

TEST_P(DbExportFormatsTest, LegacyKeepsTheOldText)
{
    const auto r = program("export --format legacy --sep , --client 1003");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.out.find("A B;\"C\",01 - "), std::string::npos) << "the separator inside a value becomes a blank: "
                                                                << r.out;
    EXPECT_NE(r.out.find(",1,50,02 - "), std::string::npos) << "the amount with its decimal comma: " << r.out;
}

TEST_P(DbExportFormatsTest, RefusesContradictionsAsJsonToo)
{
    struct Case {
        std::string args;
        std::string message;
        bool json;
    };
    const Case cases[] = {
        {"export --sep ';'", "--sep belongs to --format legacy", false},
        {"export --format tsv --sep ';'", "--sep belongs to --format legacy", false},
        {"export --json --format csv", "ask for two formats", true},
        {"list --json --format tsv", "ask for two formats", true},
        {"export --format json --client x", "the client number \"x\" is no whole number", true},
        {"list --json --year dois", "the year \"dois\" is no whole number", true},
    };
    for (const auto& c : cases) {
        const auto r = program(c.args);
        EXPECT_EQ(r.status, 2) << c.args;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << c.args << ": " << r.err;
        if (!c.json) {
            EXPECT_EQ(r.out, "") << c.args;
            continue;
        }
        const auto refusal = nlohmann::json::parse(r.out);
        EXPECT_EQ(refusal["status"], 2) << c.args;
        EXPECT_NE(refusal["error"].get<std::string>().find(c.message), std::string::npos) << c.args;
    }
}
