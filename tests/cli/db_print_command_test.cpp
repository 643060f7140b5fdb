// nimbara db print: a Guia stored with db save comes out as one PDF a copy, whose symbol reads back
// to the payload of the database edition built here from the stored rows.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "cli/db_program.hpp"
#include "cli/pdf_pages.hpp"
#include "support/temp_folder.hpp"
#include "support/test_database.hpp"
#include "support/unwritable_places.hpp"

using nimbara::testing::example;
using nimbara::testing::kBothStores;
using nimbara::testing::store_name;
namespace fs = std::filesystem;

namespace {

const char* kClient = R"({"vCod_Cliente": "456", "vNome": "Papelaria Horizonte, Lda.", "iTipoCliente": 1,
  "vMorada": "Rua das Flores, 12", "vLocalidade": "Lisboa", "vCodPostal": "1000-100", "vDesigPostal": "LISBOA",
  "vNIF": "501234567", "vObservacoes": "", "iAcessoRede": 0,
  "contratos": [{"vCodContrato": "300042", "vDesignacao": "Correio", "vJppCredenciado": false,
                 "vCodCredencial": "77", "vValidacao": "", "vDescricao": "", "bActivo": true}]})";

class DbPrintCommand : public nimbara::testing::DbProgramTest {
protected:
    void SetUp() override
    {
        DbProgramTest::SetUp();
        if (IsSkipped() || HasFailure()) return;
        std::ofstream(folder.path() / "client.json") << kClient;
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

}  // namespace

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
