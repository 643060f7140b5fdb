// Every row of an import passes the gate for stored values: what the program could not read back is
// refused with the source table, the row's key and the column, and the target keeps what it had.
#include <gtest/gtest.h>

#include "import/old_sources.hpp"
#include "nimbara/cls_Importacao.hpp"
#include "support/temp_folder.hpp"
#include "support/test_database.hpp"

namespace nimbara::testing {
namespace {

using nlohmann::json;

class ImportGateTest : public SeededStoreTest {
protected:
    void SetUp() override
    {
        SeededStoreTest::SetUp();
        if (IsSkipped() || HasFailure()) return;
        if (!jet_fixtures_present()) GTEST_SKIP() << kNoJetFixtures;
    }
};
INSTANTIATE_TEST_SUITE_P(Stores, ImportGateTest, kBothStores, store_name);

TEST_P(ImportGateTest, ValuesTheReadersCannotReadBackAreRefusedByRowAndColumn)
{
    const json tables = fixture_rows("v0513.mdb")["tables"];
    const auto n_req = std::to_string(tables["TBL_CAB"]["rows"][0][0].get<int>());
    const auto id_cliente = std::to_string(tables["TBL_CLIENTE"]["rows"][0][0].get<int>());
    struct Fault {
        const char* name;
        const char* table;
        int column;
        json value;
        std::vector<std::string> said;
    };
    const Fault faults[] = {
        {"31-february", "TBL_CAB", 7, "2005-02-31 00:00:00",
         {"TBL_CAB, row N_Req " + n_req, "Tbl_Cab.D_Req", "is no real date"}},
        {"hour-99", "TBL_CAB", 7, "2005-02-03 99:00:00", {"TBL_CAB, row N_Req " + n_req, "is no real date"}},
        {"year-0", "TBL_CAB", 7, "0000-02-03 00:00:00", {"Tbl_Cab.D_Req: the year 0 is outside 1900 to 9999"}},
        {"latin1-name", "TBL_CLIENTE", 2, "Farm\xE1" "cia",
         {"TBL_CLIENTE, row Id_Cliente " + id_cliente, "Tbl_Cliente.Nome: text that is not UTF-8 (byte 5"}},
        // The check of damaged rows, which runs before any row is written, names it first.
        {"nul-remark", "TBL_CLIENTE", 9, std::string("a\0b", 3),
         {"TBL_CLIENTE, row Id_Cliente " + id_cliente, "column Observacoes: its text holds NUL characters"}},
        {"amount", "TBL_LINHA_SERVICOESPECIAL", 3, "abc", {"Tbl_Linha_ServicoEspecial.Valor: \"abc\" is no amount"}},
        {"long-product", "TBL_LINHA", 3, std::string(1000, 'C'),
         {"TBL_LINHA, row N_Req", "Tbl_Linha.B_Produto: 1000 characters, where the column holds at most 10"}},
    };
    TempFolder folder("import-gate");
    for (const Fault& f : faults) {
        SCOPED_TRACE(f.name);
        json changed = tables;
        changed[f.table]["rows"][0][f.column] = f.value;
        const auto file = folder.path() / (std::string(f.name) + ".sqlite");
        write_sqlite_source(file, changed);
        cls_Importacao importacao(db);
        EXPECT_FALSE(importacao.DoImportDadosTo050313B(folder.path().string(), file.filename().string()));
        for (const auto& part : f.said)
            EXPECT_NE(importacao.LastError().find(part), std::string::npos) << importacao.LastError();
        EXPECT_EQ(count("Tbl_Cliente") + count("Tbl_Cab") + count("Tbl_Linha") + count("Tbl_Linha_ServicoEspecial"), 0);
    }
}

}  // namespace
}  // namespace nimbara::testing
