// Old files that are damaged: rows that belong to nothing, texts a zeroed page left NUL characters
// in, Jet files cut short or with a bit flipped. Each is refused before anything is written, naming
// its first broken rows (or, with KeepOrphans, brought in with its orphans listed), and the reader's
// own complaints come back as part of one message of ours, never on standard error.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>

#include "cli/cli_run.hpp"
#include "import/old_sources.hpp"
#include "nimbara/Notifier.hpp"
#include "nimbara/Schema.hpp"
#include "nimbara/cls_Importacao.hpp"
#include "support/temp_folder.hpp"
#include "support/test_database.hpp"

using namespace nimbara;
using namespace nimbara::testing;
using nlohmann::json;

namespace {

class QuietNotifier final : public Notifier {
public:
    QuietNotifier() { set_notifier(this); }
    ~QuietNotifier() override { set_notifier(nullptr); }
    void message(MessageIcon, std::string_view, std::string_view) override {}
    void busy(bool) override {}
    void progress(int) override {}
};

std::string read_bytes(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// v0514.mdb with one bit of one byte flipped.
std::string flipped(std::size_t offset, int bit)
{
    std::string bytes = read_bytes(kJetFixtures / "v0514.mdb");
    bytes.at(offset) = static_cast<char>(bytes.at(offset) ^ (1 << bit));
    return bytes;
}

std::string zeroed_page(std::string bytes, std::size_t page)
{
    std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(page * 4096), 4096, '\0');
    return bytes;
}

class DamagedFilesTest : public StoreTest {
protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        if (IsSkipped() || HasFailure()) return;
        if (!jet_fixtures_present()) GTEST_SKIP() << kNoJetFixtures;
        create_schema();
        cls_Importacao first(db);
        ASSERT_TRUE(first.DoImportDadosTo050314(kJetFixtures.string(), "v0513.mdb")) << first.LastError();
        before = snapshot();
    }

    std::string snapshot()
    {
        std::string all;
        for (const char* t : {"Tbl_Cliente", "Tbl_Contrato", "Tbl_Cab", "Tbl_Linha", "Tbl_Linha_ServicoEspecial"}) {
            Recordset rs = db->open("SELECT * FROM " + std::string(t) + " ORDER BY 1, 2");
            for (; !rs.IsEOF(); rs.MoveNext())
                for (std::size_t i = 0; i < rs.FieldCount(); ++i) all += (rs[i].is_null() ? "<Null>" : rs[i].text()) + "|";
        }
        return all;
    }

    QuietNotifier quiet;
    TempFolder folder{"damaged-" + std::to_string(static_cast<int>(GetParam()))};
    std::string before;
};

INSTANTIATE_TEST_SUITE_P(Stores, DamagedFilesTest, kBothStores, store_name);

}  // namespace

TEST_P(DamagedFilesTest, RowsThatBelongToNothingAreNamedAndKeptOnlyWhenAsked)
{
    const json tables = fixture_rows("v0514.mdb")["tables"];
    const json& cab = tables["TBL_CAB"]["rows"][0];
    const json& line = tables["TBL_LINHA"]["rows"][0];
    const json& service = tables["TBL_LINHA_SERVICOESPECIAL"]["rows"][0];
    const std::string n_req = std::to_string(cab[0].get<int>());
    struct Broken {
        const char* name;
        std::function<void(json&)> change;
        std::string named;  // what the refusal says of the first broken row
        bool keepable;      // brought in under KeepOrphans
    };
    const Broken cases[] = {
        {"line of no Guia", [&](json& t) { auto r = line; r[0] = 99999; t["TBL_LINHA"]["rows"].push_back(r); },
         "TBL_LINHA, row N_Req 99999, N_Linha " + std::to_string(line[1].get<int>()) +
             ": its Guia (N_Req 99999) is not in TBL_CAB",
         true},
        {"service of no line", [&](json& t) { auto r = service; r[1] = 77; t["TBL_LINHA_SERVICOESPECIAL"]["rows"].push_back(r); },
         "TBL_LINHA_SERVICOESPECIAL, row N_Req " + std::to_string(service[0].get<int>()) + ", N_Linha 77, "
             "CodigoServicoEspecial \"" + service[2].get<std::string>() + "\": its line (N_Req " +
             std::to_string(service[0].get<int>()) + ", N_Linha 77) is not in TBL_LINHA",
         true},
        {"Guia of a missing contract", [](json& t) { t["TBL_CAB"]["rows"][0][4] = 424242; },
         "TBL_CAB, row N_Req " + n_req + ": its contract (Id_Cliente " + std::to_string(cab[1].get<int>()) +
             ", Cod_Contrato 424242) is not in TBL_CONTRATO",
         true},
        {"Guia of a missing client", [](json& t) { t["TBL_CAB"]["rows"][0][1] = 999999; },
         "TBL_CAB, row N_Req " + n_req + ": its client (Id_Cliente 999999) is not in TBL_CLIENTE", true},
        {"contract of a missing client", [](json& t) { t["TBL_CONTRATO"]["rows"].push_back(t["TBL_CONTRATO"]["rows"][0]);
                                                       t["TBL_CONTRATO"]["rows"].back()[0] = 888888; },
         "TBL_CONTRATO, row Id_Cliente 888888, Cod_Contrato", true},
        {"memo with NUL characters", [](json& t) { t["TBL_CAB"]["rows"][0][14] = std::string("abc\0\0\0def", 9); },
         "TBL_CAB, row N_Req " + n_req + ", column Observacoes: its text holds NUL characters", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        json changed = tables;
        c.change(changed);
        const auto file = folder.path() / (std::string(c.name) + ".sqlite");
        write_sqlite_source(file, changed);
        cls_Importacao importacao(db);
        EXPECT_FALSE(importacao.DoImportDadosTo050314(folder.path().string(), file.filename().string()));
        EXPECT_NE(importacao.LastError().find(file.string() + " does not hang together"), std::string::npos)
            << importacao.LastError();
        EXPECT_NE(importacao.LastError().find(c.named), std::string::npos) << importacao.LastError();
        EXPECT_EQ(snapshot(), before);

        importacao.KeepOrphans = true;
        EXPECT_EQ(importacao.DoImportDadosTo050314(folder.path().string(), file.filename().string()), c.keepable)
            << importacao.LastError();
        if (!c.keepable) {
            EXPECT_EQ(snapshot(), before);
            continue;
        }
        ASSERT_EQ(importacao.LastOrphans().size(), 1u);
        EXPECT_NE(importacao.LastOrphans()[0].find(c.named), std::string::npos) << importacao.LastOrphans()[0];
        // Put back what the next case expects to find.
        cls_Importacao again(db);
        ASSERT_TRUE(again.DoImportDadosTo050314(kJetFixtures.string(), "v0513.mdb"));
    }
}

TEST_P(DamagedFilesTest, DamagedJetFilesAreRefusedInOneMessageOfOurs)
{
    const std::string whole = read_bytes(kJetFixtures / "v0514.mdb");
    // The page that holds the middle of the long remark of N_Req 408 (stored as UTF-16), zeroed.
    const json cab = fixture_rows("v0514.mdb")["tables"]["TBL_CAB"];
    std::string remark;
    for (const auto& r : cab["rows"])
        if (r[0] == 408) remark = r[14].get<std::string>();
    std::size_t from = 10000;  // an ASCII stretch, whose UTF-16 form is each byte and a zero
    while (!std::all_of(remark.begin() + from, remark.begin() + from + 12, [](char ch) { return ch > 0; })) ++from;
    remark = remark.substr(from, 12);
    std::string utf16;
    for (char ch : remark) utf16 += std::string{ch, '\0'};
    const std::size_t at = whole.find(utf16);
    ASSERT_NE(at, std::string::npos);
    const std::string zeroed = zeroed_page(whole, at / 4096);

    struct Damage {
        const char* name;
        std::string bytes;
        std::vector<std::string> said;  // parts of the refusal, beyond the file's name
    };
    const Damage cases[] = {
        {"cut-in-half", whole.substr(0, whole.size() / 2), {"TBL_CAB", "only 0 of its 12 rows can be read"}},
        {"zeroed-page-map", zeroed_page(whole, 27), {"TBL_CLIENTE", "(libmdb: warning: page 27 from map doesn't match"}},
        {"zeroed-memo-page", zeroed, {"TBL_CAB", "column Observacoes"}},
        {"line-of-no-guia", flipped(236733, 3), {"does not hang together", "TBL_LINHA, row N_Req", "is not in TBL_CAB"}},
        {"bad-text-length", flipped(114118, 4), {"TBL_CLIENTE", "a value lies outside its page"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string file = folder.write(std::string(c.name) + ".mdb", c.bytes);
        cls_Importacao importacao(db);
        EXPECT_FALSE(importacao.DoImportDadosTo050314(folder.path().string(), std::string(c.name) + ".mdb"));
        const std::string& said = importacao.LastError();
        EXPECT_NE(said.find(file), std::string::npos) << said;
        for (const auto& part : c.said) EXPECT_NE(said.find(part), std::string::npos) << said;
        for (const char* foreign : {"basic_string", "_M_create", "vector::"})
            EXPECT_EQ(said.find(foreign), std::string::npos) << said;
        EXPECT_EQ(snapshot(), before);
    }
}

// The program's standard error holds our lines only: libmdb's own are caught, and dropped when the
// import succeeds.
TEST(DamagedJetFileProgramTest, TheJetReadersOwnLinesNeverReachStandardError)
{
    if (!jet_fixtures_present()) GTEST_SKIP() << kNoJetFixtures;
    TempFolder folder("damaged-program");
    const std::string conn = "sqlite:" + (folder.path() / "target.db").string();
    ASSERT_EQ(run("db init --db " + conn).status, 0);
    const std::string whole = read_bytes(kJetFixtures / "v0514.mdb");
    struct Case {
        const char* name;
        std::string bytes;
        int status;
    };
    const Case cases[] = {
        {"noisy-but-whole", flipped(118622, 2), 0},  // a page map that points past the end, not needed
        {"zeroed-page-map", zeroed_page(whole, 27), 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string file = folder.write(std::string(c.name) + ".mdb", c.bytes);
        const auto r = run("db import " + file + " --version 0514 --db " + conn);
        EXPECT_EQ(r.status, c.status) << r.err;
        std::istringstream lines(r.err);
        for (std::string line; std::getline(lines, line);)
            for (const char* theirs : {"offset ", "Oops", "error: reading page", "warning:", "mdb_", "Unable to"})
                EXPECT_FALSE(line.starts_with(theirs)) << r.err;
        if (c.status != 0) EXPECT_NE(r.err.find(file), std::string::npos) << r.err;
    }
}
