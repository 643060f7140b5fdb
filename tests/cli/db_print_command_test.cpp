// nimbara db print: a Guia stored with db save comes out as one PDF a copy, whose symbol reads back
// to the payload of the database edition built here from the stored rows.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include <nlohmann/json.hpp>

#include "cli/db_program.hpp"
#include "cli/pdf_pages.hpp"
#include "support/temp_folder.hpp"
#include "support/test_database.hpp"
#include "support/unwritable_places.hpp"

using nimbara::testing::example;
using nimbara::testing::kSampleClient;
using nimbara::testing::kBothStores;
using nimbara::testing::store_name;
namespace fs = std::filesystem;

namespace {

class DbPrintCommand : public nimbara::testing::DbProgramTest {
protected:
    void SetUp() override
    {
        DbProgramTest::SetUp();
        if (IsSkipped() || HasFailure()) return;
        std::ofstream(folder.path() / "client.json") << kSampleClient;
        ASSERT_EQ(program("client save " + (folder.path() / "client.json").string()).status, 0);
        const auto saved = program("save " + example("valid-guia.json"));
        ASSERT_EQ(saved.out, "1\t1\t1\n") << saved.err;
        const auto set = program("params set vGuiaNVias=2 VCod2DFonteSize=3 vCod2DRatio=0 vCod2DNColunas=16 "
                                 "vCod2DNLinhas=0 vCod2DErroLevel=2");
        ASSERT_EQ(set.status, 0) << set.err;
    }
    nimbara::testing::TempFolder folder{"db-print-" + std::to_string(static_cast<int>(GetParam()))};
};
INSTANTIATE_TEST_SUITE_P(Stores, DbPrintCommand, kBothStores, store_name);

// The stored example Guia as the database edition encodes it: its own head, the pre-treatment as
// the edition's character (" " for "E01", "2" for a pre-treated line), services ordered by value.
const std::string kStoredGuia =
    std::string("CR01") + "000000300042" + "000000456" + "00000000" + "6327" + "0001" + "0101" + "SNN" + "0000077" +
    "000000000000000" + "06" +
    "01C01000050" "0000300" "022001" "0300" "0" "00" +
    "01C13000050" "0000150" "032201" "0150" "0" "02" "020000000" "100000000" +
    "27E01001000" "0000020" "00 001" "0020" "0" "01" "020000000" +
    "01C07000021" "0000120" "002101" "0120" "0" "00" +
    "03C05000100" "0000500" "202001" "0500" "0" "00" +
    "01C03000100" "0000300" "002001" "0300" "0" "00";

// The sample Guia of the README, as a user copies it: its line carries no Entrega_Sampling.
std::string readme_sample()
{
    const std::string readme = nimbara::testing::read_file(fs::path(NIMBARA_SOURCE_DIR) / "README.md");
    const auto from = readme.find("```json\n") + 8;
    return readme.substr(from, readme.find("```", from) - from);
}

// Its head and its one line as the database edition encodes them: N_Req 2, an empty sampling as 0.
const std::string kStoredReadmeGuia = std::string("CR01") + "000000300042" + "000000456" + "00000000" + "6327" +
                                      "0002" + "0101" + "SNN" + "0000000" + "000000000000000" + "01" +
                                      "01C01000050" "0000300" "022000" "0000" "0" "01" "020000150";

nlohmann::json readme_guia() { return nlohmann::json::parse(readme_sample()); }

}  // namespace

TEST_P(DbPrintCommand, TheReadmeSampleSavedPrintsAndReadsBack)
{
    const auto file = folder.path() / "readme.json";
    std::ofstream(file) << readme_sample();
    const auto saved = program("save " + file.string());
    ASSERT_EQ(saved.out, "2\t2\t2\n") << saved.err;
    EXPECT_EQ(saved.err, "") << "a Guia that prints is stored without a word";
    const auto out = folder.path() / "readme";
    const auto r = program("print 2 --out-dir " + out.string() + " --print-log " + (folder.path() / "p.log").string());
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(nimbara::testing::symbol_of(out / "Guia_2026-2_via1.pdf", 1, folder.path()), kStoredReadmeGuia);
}

// A Guia the database edition cannot print whole is stored with a warning, and refused by db print
// with the column and line of each cause; nothing is printed.
TEST_P(DbPrintCommand, WhatWouldNotPrintIsNamedAtSaveAndAtPrint)
{
    struct Case {
        const char* name;
        void (*change)(nlohmann::json&);
        std::string place;
    };
    const Case cases[] = {
        {"credential of 9", [](nlohmann::json& g) { g["cabecalho"]["cb_NCredencial"] = "2006/0672"; },
         "Tbl_Cab.N_Credencial: \"2006/0672\" has 9 characters; the barcode carries 7"},
        {"sampling of two digits", [](nlohmann::json& g) { g["produtos"][0]["Entrega_Sampling"] = "12"; },
         "line 1: K_Entrega_Sampling: \"12\" is not a one-digit number"},
        {"quantity of eight digits", [](nlohmann::json& g) { g["produtos"][0]["D_Quantidade"] = "12345678"; },
         "line 1: D_Quantidade: \"12345678\" has 8 characters; the barcode carries 7"},
        {"service value of eight digits", [](nlohmann::json& g) { g["servicos"][0]["Valor"] = "12345678"; },
         "line 1, service 02: Valor: \"12345678\" has 8 characters; the barcode carries 7"},
    };
    int n_req = 1;
    for (const auto& c : cases) {
        auto guia = readme_guia();
        c.change(guia);
        const auto file = folder.path() / "bad.json";
        std::ofstream(file) << guia.dump();
        const auto saved = program("save " + file.string());
        ++n_req;
        EXPECT_EQ(saved.status, 0) << c.name << "\n" << saved.err;
        EXPECT_NE(saved.err.find("warning: Guia " + std::to_string(n_req) + " will not print by the database edition: " +
                                 c.place),
                  std::string::npos)
            << c.name << "\n" << saved.err;
        const auto out = folder.path() / ("out" + std::to_string(n_req));
        const auto r = program("print " + std::to_string(n_req) + " --out-dir " + out.string() + " --print-log " +
                               (folder.path() / "p.log").string());
        EXPECT_EQ(r.status, 2) << c.name;
        EXPECT_NE(r.err.find("Guia " + std::to_string(n_req) + " not printed:\n  " + c.place), std::string::npos)
            << c.name << "\n" << r.err;
        EXPECT_EQ(r.err.find("Erro:"), std::string::npos) << "never a bare run-time error\n" << r.err;
        EXPECT_FALSE(fs::exists(out) && !fs::is_empty(out)) << c.name;
    }
}

// Beyond N_Req 9999 the database edition's symbol has no room; the headless edition prints the same
// stored Guia, its head carrying the yearly number.
TEST_P(DbPrintCommand, AGuiaBeyondFourDigitsPrintsByTheArrayEdition)
{
    {
        const auto store = nimbara::OpenDatabase(scratch->conn());
        for (const char* table : {"Tbl_Linha_ServicoEspecial", "Tbl_Linha", "Tbl_Cab"})
            store->execute(std::string("UPDATE ") + table + " SET N_Req = 10001 WHERE N_Req = 1");
    }
    const auto log = " --print-log " + (folder.path() / "p.log").string();
    auto r = program("print 10001 --out-dir " + folder.path().string() + log);
    EXPECT_EQ(r.status, 2);
    EXPECT_NE(r.err.find("Tbl_Cab.N_Req: Guia 10001 is above 9999"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("--edition array"), std::string::npos) << r.err;

    const auto out = folder.path() / "array";
    r = program("print 10001 --edition array --out-dir " + out.string() + log);
    ASSERT_EQ(r.status, 0) << r.err;
    for (const char* name : {"Guia_2026-1_via1.pdf", "Guia_2026-1_via2.pdf"}) {
        const std::string symbol = nimbara::testing::symbol_of(out / name, 1, folder.path());
        // Access type, version 5.3.15, contract, client, third party, day code, then the yearly number.
        EXPECT_EQ(symbol.substr(0, 45), "CR050315000000300042000000456000000006327" "0001") << name;
    }
}

TEST_P(DbPrintCommand, EachCopyIsAFileWhoseSymbolReadsBack)
{
    const auto out = folder.path() / "printed";
    const auto r = program("print 1 --out-dir " + out.string() + " --print-log " + (folder.path() / "p.log").string());
    ASSERT_EQ(r.status, 0) << r.err;
    for (const char* name : {"Guia_2026-1_via1.pdf", "Guia_2026-1_via2.pdf"}) {
        const auto pdf = out / name;
        ASSERT_TRUE(fs::exists(pdf)) << name << "\n" << r.err;
        EXPECT_EQ(nimbara::testing::pages_of(pdf), 1) << name;
        EXPECT_EQ(nimbara::testing::symbol_of(pdf, 1, folder.path()), kStoredGuia) << name;
    }
    EXPECT_FALSE(fs::exists(folder.path() / "p.log")) << "nothing went wrong, nothing was logged";
}

TEST_P(DbPrintCommand, RefusedPrintsLeaveNoFile)
{
    std::ofstream(folder.path() / "a-file") << "x";
    const nimbara::testing::UnwritableFolder full(nimbara::testing::UnwritableFolder::Kind::Full);
    struct Case { std::string args; std::string message; };
    std::vector<Case> cases = {
        {"print 99 --out-dir " + folder.path().string(), "nimbara db print: no Guia with N_Req 99\n"},
        {"print 1 --out-dir " + (folder.path() / "a-file" / "sub").string(), "cannot create the output folder"},
    };
    if (full.path()) cases.push_back({"print 1 --out-dir " + full.path()->string(), "not printed"});
    for (const auto& c : cases) {
        const auto r = program(c.args + " --print-log " + (folder.path() / "p.log").string());
        EXPECT_EQ(r.status, 2) << c.args << "\n" << r.err;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << c.args << "\n" << r.err;
    }
    for (const auto& place : {folder.path(), full.path().value_or(folder.path())})
        for (const auto& entry : fs::directory_iterator(place))
            EXPECT_NE(entry.path().extension(), ".pdf") << entry.path();
}

// Settings never stored do not become zeros in a Guia file: the factory's stand in, and the file
// prints by the headless road with a symbol that reads back.
TEST_P(DbPrintCommand, ShowWritesSettingsThatPrintWhenNoneAreStored)
{
    nimbara::OpenDatabase(scratch->conn())->execute("DELETE FROM Tbl_Parametro");
    const auto shown = program("show 1");
    ASSERT_EQ(shown.status, 0) << shown.err;
    const auto file = nlohmann::json::parse(shown.out);
    EXPECT_EQ(file["parametros"]["VCod2DFonteSize"], "3");
    EXPECT_EQ(file["parametros"]["vCod2DNColunas"], "16");
    EXPECT_EQ(file["parametros"]["vCod2DErroLevel"], "2");
    const auto out = folder.path() / "shown";
    const auto printed = nimbara::testing::run("print - --report-dir " + folder.path().string() + " --out-dir " +
                                                   out.string() + " --print-log " + (folder.path() / "p.log").string(),
                                               shown.out);
    ASSERT_EQ(printed.status, 0) << printed.err;
    EXPECT_EQ(nimbara::testing::symbol_of(out / "Guia_2026-1_via1.pdf", 1, folder.path()).substr(0, 8), "CR050315");
}
