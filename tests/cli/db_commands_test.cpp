#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "cli/db_program.hpp"
#include "support/temp_folder.hpp"
#include "support/test_database.hpp"

using nimbara::testing::kBothStores;
using nimbara::testing::run;
using nimbara::testing::store_name;
using nimbara::testing::StoreTest;

namespace {

class DbCommandsTest : public StoreTest {
protected:
    nimbara::testing::Run program(const std::string& args) { return nimbara::testing::run_db(scratch->conn(), args); }
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Stores, DbCommandsTest, kBothStores, store_name);

TEST_P(DbCommandsTest, InitThenListsAndSettings)
{
    db.reset();  // the program opens the database itself
    auto r = program("init");
    ASSERT_EQ(r.status, 0) << r.err;

    r = program("refs produto");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out.substr(0, r.out.find('\n')), "Codigo\tDesignacao\tActivo\tObservacoes");
    EXPECT_NE(r.out.find("\nC01\tProduto C01\tTrue\t\n"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("\nC15\t"), std::string::npos);
    EXPECT_EQ(program("refs produto --active").out.find("\nC15\t"), std::string::npos) << "C15 has no active rule";

    // The factory settings, with margins that keep the form off the sheet's unprintable border.
    r = program("params");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out,
              "VCod2DFonteSize\t3\nvCod2DRatio\t1\nvCod2DNColunas\t16\nvCod2DNLinhas\t0\nvCod2DErroLevel\t2\n"
              "vCod2DPDFMode\t0\nvCod2DTruncated\t0\nvCod2DApplyTilde\t0\nvGuiaNVias\t1\nvGuiaMargensTopo\t284\n"
              "vGuiaMargensEsquerda\t284\nvCodTerceiro\t0\n");

    // Every setting is judged when it is set by the rules printing reads it with.
    struct Case { std::string args; int status; std::string message; };
    const Case cases[] = {
        {"params set vGuiaNVias=2 vCod2DNColunas=33", 2, "Nº de colunas não pode ser superior a 32."},
        {"params set vGuiaNVias=dois", 2, "must be whole numbers"},
        {"params set vNada=1", 2, "unknown setting \"vNada\""},
        {"params set vGuiaNVias", 2, "is not NAME=VALUE"},
        {"params set vGuiaMargensTopo=abc", 2, "vGuiaMargensTopo: \"abc\" is not a whole number of twips"},
        {"params set vGuiaMargensEsquerda=1e999", 2, "vGuiaMargensEsquerda: \"1e999\" is not a whole number of twips"},
        {"params set vGuiaMargensTopo=12.5", 2, "vGuiaMargensTopo: \"12.5\" is not a whole number"},
        {"params set vGuiaMargensTopo=abcmm", 2, "vGuiaMargensTopo: \"abcmm\" is not a number of millimetres"},
        {"params set vCod2DNColunas=31", 2, "vCod2DNColunas: \"31\" is not a whole number from 0 to 30"},
        {"params set vCod2DNLinhas=-3", 2, "vCod2DNLinhas: \"-3\" is neither 0"},
        {"params set vCod2DPDFMode=x", 2, "vCod2DPDFMode: \"x\" is not a whole number"},
        {"params set VCod2DFonteSize=tres", 2, "VCod2DFonteSize: \"tres\" is not a number"},
        {"params set vGuiaNVias=3 vGuiaMargensTopo=10mm \"vCodTerceiro=Zé d'Água\"", 0, ""},
        {"init", 2, "already has the table"},
    };
    for (const auto& c : cases) {
        r = program(c.args);
        EXPECT_EQ(r.status, c.status) << c.args << ": " << r.err;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << c.args << ": " << r.err;
    }
    r = program("params");
    EXPECT_NE(r.out.find("vGuiaNVias\t3\n"), std::string::npos) << "only the accepted change is saved:\n" << r.out;
    EXPECT_NE(r.out.find("vCodTerceiro\tZé d'Água\n"), std::string::npos);
    EXPECT_NE(r.out.find("vGuiaMargensTopo\t567\n"), std::string::npos) << "10 mm are kept as twips:\n" << r.out;
    EXPECT_NE(r.out.find("vCod2DNColunas\t16\n"), std::string::npos);
}

TEST_P(DbCommandsTest, SettingsNotStoredAreMarkedAndFirstSetFromTheFactory)
{
    db.reset();
    ASSERT_EQ(program("init").status, 0);
    nimbara::OpenDatabase(scratch->conn())->execute("DELETE FROM Tbl_Parametro");
    auto r = program("params");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.out.find("VCod2DFonteSize\t0\tnot set\n"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("vGuiaNVias\t1\tnot set\n"), std::string::npos) << r.out;
    EXPECT_NE(r.err.find("Tbl_Parametro has no row"), std::string::npos) << r.err;

    ASSERT_EQ(program("params set vGuiaNVias=2").status, 0);
    r = program("params");
    EXPECT_EQ(r.out.find("not set"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("VCod2DFonteSize\t3\n"), std::string::npos) << "the rest from the factory:\n" << r.out;
    EXPECT_NE(r.out.find("vGuiaNVias\t2\n"), std::string::npos) << r.out;
}

TEST(DbCommands, RefuseWhatTheyCannotOpenAndCreateNothing)
{
    nimbara::testing::TempFolder folder("db-commands");
    const auto f = [&](const char* name) { return (folder.path() / name).string(); };
    std::ofstream(f("junk.db")) << "no database at all, but long enough to have a header of a hundred bytes or so.....";
    struct Case { std::string args; std::string message; };
    const Case cases[] = {
        {"db refs produto --db sqlite:" + f("missing.db"), "does not exist"},
        {"db delete 7 --db sqlite:" + f("missing.db"), "does not exist"},
        {"db client delete 7 --db sqlite:" + f("missing.db"), "does not exist"},
        {"db params --db sqlite:" + f("junk.db"), "not a database"},
        {"db init --db sqlite:" + f("junk.db"), "not a database"},
        {"db refs zona --db " + f("guias.db"), "guias.db does not exist"},
        {"db refs zona --db 'sqlite:'", "malformed connection string"},
        {"db init --db sqlite:" + f("no/such/folder/g.db"), "cannot open"},
        {"db params --db 'postgresql:host=" + folder.path().string() + " port=1'", "cannot reach the PostgreSQL server"},
        {"db refs nada --db sqlite:" + f("x.db"), "nada"},
    };
    for (const auto& c : cases) {
        const auto r = run(c.args);
        EXPECT_EQ(r.status, 2) << c.args;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << c.args << ": " << r.err;
    }
    std::vector<std::string> left;
    for (const auto& e : std::filesystem::directory_iterator(folder.path())) left.push_back(e.path().filename());
    EXPECT_EQ(left, std::vector<std::string>{"junk.db"}) << "nothing created";

    // Without --db the ini file of the working directory names the database.
    const auto previous = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    const auto no_ini = nimbara::testing::run_with("env -u NIMBARA_DB HOME=. XDG_CONFIG_HOME= ", "db params");
    std::ofstream("Zartel_Nimbara.Ini") << "[Nimbarauto]\nConn=Provider=Microsoft.Jet.OLEDB.4.0;Data Source = ini.db\n";
    const auto init = nimbara::testing::run_with("env -u NIMBARA_DB ", "db init");
    const auto params = nimbara::testing::run_with("env -u NIMBARA_DB ", "db params");
    std::filesystem::current_path(previous);
    EXPECT_EQ(no_ini.status, 2);
    EXPECT_TRUE(no_ini.err.starts_with("nimbara db params: no database named: give --db CONN, set NIMBARA_DB"))
        << no_ini.err;
    EXPECT_EQ(init.status, 0) << init.err;
    EXPECT_EQ(params.status, 0) << params.err;
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "ini.db"));
}
