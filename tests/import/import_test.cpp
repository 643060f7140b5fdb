// The import on both stores: every fixture through the procedures that read its layout, from the Jet
// file and from a SQLite file built from the same rows, each target row checked against the source
// row of the same key by column name (the procedures read by position); the failures that must
// leave the target as it was; the messages and progress values in their order.
#include <gtest/gtest.h>
#include <strings.h>

#include <algorithm>
#include <map>

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

// Everything the import tells the host, in order: "progress 20", "busy 1", "message 4|title|text".
class RecordingNotifier final : public Notifier {
public:
    RecordingNotifier() { set_notifier(this); }
    ~RecordingNotifier() override { set_notifier(nullptr); }
    void message(MessageIcon icon, std::string_view title, std::string_view text) override
    {
        said.push_back("message " + std::to_string(static_cast<int>(icon)) + "|" + std::string(title) + "|" +
                       std::string(text));
    }
    void busy(bool on) override { said.push_back(on ? "busy 1" : "busy 0"); }
    void progress(int value) override { said.push_back("progress " + std::to_string(value)); }
    std::vector<std::string> said;
};

constexpr const char* kTables[][2] = {{"TBL_CLIENTE", "Tbl_Cliente"},
                                      {"TBL_CONTRATO", "Tbl_Contrato"},
                                      {"TBL_CAB", "Tbl_Cab"},
                                      {"TBL_LINHA", "Tbl_Linha"},
                                      {"TBL_LINHA_SERVICOESPECIAL", "Tbl_Linha_ServicoEspecial"}};
constexpr int kKeyFields[] = {1, 2, 1, 2, 3};

bool same_name(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

// A JSON value as the column should hold it, told in the text FieldValue::text gives.
std::string expected_text(const json& v)
{
    if (v.is_null()) return "<Null>";
    if (v.is_boolean()) return v.get<bool>() ? "True" : "False";
    if (v.is_number()) return FieldValue(v.get<double>()).text();
    return v.get<std::string>();
}

std::string stored_text(const FieldValue& v) { return v.is_null() ? "<Null>" : v.text(); }

enum class Extra { Null, Zero, Copied };

struct Case {
    const char* file;
    const char* procedure;
    Extra acesso, division;  // iAcessoRede and O_Divisao_Remetente where the source has them
    bool content;            // Q_Conteudo and P_RefCliente written empty
    bool no_apostrophe;      // apostrophes in client names made blanks
    bool numbered;           // Id_Req_Anual numbered by the year of D_Req
    bool withdraws;          // E03 made inactive
};

const Case kCases[] = {
    {"v0512.mdb", "DoImportDadosTo050313", Extra::Zero, Extra::Zero, false, false, false, false},
    {"v0512-plain.mdb", "DoImportDadosTo050313", Extra::Zero, Extra::Zero, false, false, false, false},
    {"v0513.mdb", "DoImportDadosTo050313B", Extra::Copied, Extra::Copied, false, false, false, false},
    {"v0513.mdb", "DoImportDadosTo050313C", Extra::Copied, Extra::Copied, true, false, false, false},
    {"v0513-noservices.mdb", "DoImportDadosTo050314", Extra::Copied, Extra::Copied, true, true, false, false},
    {"v0514.mdb", "DoImportDadosTo050314", Extra::Copied, Extra::Copied, true, true, false, false},
    {"v0514.mdb", "DoImportDadosTo050313B", Extra::Copied, Extra::Copied, false, false, false, false},
    {"v0506.mdb", "DoImportDados0506", Extra::Null, Extra::Null, false, false, false, false},
    {"v0506.mdb", "DoImportDados0507", Extra::Null, Extra::Null, false, false, false, false},
    {"v0506.mdb", "DoImportDados0508", Extra::Null, Extra::Null, false, false, false, true},
    {"v0506.mdb", "DoImportDados0510", Extra::Null, Extra::Null, false, false, false, true},
    {"v0502.mdb", "DoImportDados0502", Extra::Null, Extra::Null, false, false, false, false},
    {"v0502.mdb", "DoImportDados0504", Extra::Null, Extra::Null, false, false, true, false},
};

class ImportTest : public StoreTest {
protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        if (IsSkipped() || HasFailure()) return;
        if (!jet_fixtures_present()) GTEST_SKIP() << kNoJetFixtures;
        create_schema();
    }

    // Every row of the five data tables and the E03 marks, as text, to tell that nothing changed.
    std::string snapshot()
    {
        std::string all;
        for (const auto& t : kTables) {
            Recordset rs = db->open("SELECT * FROM " + std::string(t[1]) + " ORDER BY 1, 2");
            for (; !rs.IsEOF(); rs.MoveNext())
                for (std::size_t i = 0; i < rs.FieldCount(); ++i) all += stored_text(rs[i]) + "|";
        }
        all += db->open("SELECT Activo FROM Tbl_B_Produto WHERE Codigo = 'E03'")[std::size_t{0}].text();
        return all;
    }

    void expect_rows_as_source(const Case& c, const json& source);
};

void ImportTest::expect_rows_as_source(const Case& c, const json& source)
{
    for (std::size_t t = 0; t < std::size(kTables); ++t) {
        const auto& table = source["tables"][kTables[t][0]];
        const auto& names = table["columns"];
        ASSERT_EQ(count(kTables[t][1]), static_cast<std::int64_t>(table["rows"].size())) << kTables[t][1];
        std::map<std::int64_t, std::int64_t> year_numbers;  // N_Req to the expected Id_Req_Anual
        if (c.numbered && t == 2) {
            auto rows = table["rows"];
            std::sort(rows.begin(), rows.end(), [](const json& a, const json& b) { return a[0] < b[0]; });
            int year = 0, n = 0;
            for (const auto& r : rows) {
                const int y = std::stoi(r[6].get<std::string>().substr(0, 4));
                n = y == year ? n + 1 : 1;
                year = y;
                year_numbers[r[0].get<std::int64_t>()] = n;
            }
        }
        for (const auto& row : table["rows"]) {
            std::string where;
            std::vector<FieldValue> key;
            for (int k = 0; k < kKeyFields[t]; ++k) {
                where += std::string(k ? " AND " : " WHERE ") + names[k].get<std::string>() + " = ?";
                key.emplace_back(expected_text(row[k]));
            }
            const Recordset rs = db->open("SELECT * FROM " + std::string(kTables[t][1]) + where, key);
            ASSERT_EQ(rs.RecordCount(), 1) << kTables[t][1] << where << " " << row[0];
            for (std::size_t f = 0; f < rs.FieldCount(); ++f) {
                const std::string& column = rs.FieldName(f);
                const std::string got = stored_text(rs[f]);
                const auto at = std::find_if(names.begin(), names.end(),
                                             [&](const json& n) { return same_name(n.get<std::string>(), column); });
                std::string want;
                if (t == 1 && same_name(column, "Cod_Cliente"))
                    want = "<Null>";  // the contracts' statement never named it
                else if (same_name(column, "G_Pre_Tratamento") || same_name(column, "LinhaContinuacao"))
                    want = row[at - names.begin()].get<bool>() ? "1" : "0";
                else if (at != names.end() && row[at - names.begin()].is_null() &&
                         !same_name(column, "I_Servicos_Especiais") && !same_name(column, "KM_Vexora"))
                    want = "";  // the old statement put a text between quotes: Null became the empty text
                else if (at != names.end())
                    want = expected_text(row[at - names.begin()]);
                else if (same_name(column, "iAcessoRede"))
                    want = c.acesso == Extra::Zero ? "0" : "<Null>";
                else if (same_name(column, "O_Divisao_Remetente"))
                    want = c.division == Extra::Zero ? "0" : "<Null>";
                else if (same_name(column, "Q_Conteudo") || same_name(column, "P_RefCliente"))
                    want = c.content ? "" : "<Null>";
                else if (same_name(column, "Id_Req_Anual"))
                    want = c.numbered ? std::to_string(year_numbers.at(row[0].get<std::int64_t>())) : "<Null>";
                else
                    want = "<Null>";  // nCompromisso, which no procedure writes
                if (c.no_apostrophe && same_name(column, "Nome")) std::replace(want.begin(), want.end(), '\'', ' ');
                EXPECT_EQ(got, want) << c.procedure << ": " << kTables[t][1] << where << " " << row[0] << ", " << column;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Stores, ImportTest, kBothStores, store_name);

TEST_P(ImportTest, EveryFixtureComesInAsItsRowsFromJetAndFromSqlite)
{
    TempFolder folder("import-sources");
    for (const Case& c : kCases) {
        const json source = fixture_rows(c.file);
        const auto sqlite_copy = folder.path() / (std::string(c.file) + ".sqlite");
        if (!std::filesystem::exists(sqlite_copy)) write_sqlite_source(sqlite_copy, source["tables"]);
        for (const auto& file : {kJetFixtures / c.file, sqlite_copy}) {
            SCOPED_TRACE(file.string() + " by " + c.procedure);
            db->execute("UPDATE Tbl_B_Produto SET Activo = ? WHERE Codigo = ?", {true, "E03"});
            db->execute("UPDATE tbl_Validacao SET Activo = ? WHERE Cod_Produto = ?", {true, "E03"});
            cls_Importacao importacao(db);
            ASSERT_TRUE(importacao.DoImportDadosBy(c.procedure, file.parent_path().string(), file.filename().string()))
                << importacao.LastError();
            expect_rows_as_source(c, source);
            EXPECT_EQ(importacao.LastCounts().Linhas, static_cast<std::int64_t>(source["tables"]["TBL_LINHA"]["rows"].size()));
            const auto e03_active = [&](const char* sql) { return db->open(sql)[std::size_t{0}].integer(); };
            EXPECT_EQ(e03_active("SELECT COUNT(*) FROM Tbl_B_Produto WHERE Codigo = 'E03' AND Activo = TRUE"),
                      c.withdraws ? 0 : 1);
            EXPECT_EQ(e03_active("SELECT COUNT(*) FROM tbl_Validacao WHERE Cod_Produto = 'E03' AND Activo = TRUE") == 0,
                      c.withdraws);
        }
    }
}

TEST_P(ImportTest, TheOldestLayoutIsNumberedAndLookedUp)
{
    cls_Importacao importacao(db);
    ASSERT_TRUE(importacao.DoImportDados0501(kJetFixtures.string(), "v0501.mdb")) << importacao.LastError();
    const json source = fixture_rows("v0501.mdb");
    // Clients numbered by two in client-number order; a missing tax number becomes "0".
    std::vector<std::int64_t> codes;
    for (const auto& r : source["tables"]["TBL_CLIENTE"]["rows"]) codes.push_back(r[0].get<std::int64_t>());
    std::sort(codes.begin(), codes.end());
    for (std::size_t i = 0; i < codes.size(); ++i) {
        const Recordset rs = db->open("SELECT Id_Cliente, NContribuinte FROM Tbl_Cliente WHERE Cod_Cliente = ?",
                                      {codes[i]});
        EXPECT_EQ(rs[std::size_t{0}].integer(), static_cast<std::int64_t>(2 * (i + 1))) << codes[i];
        if (codes[i] == 69971 || codes[i] == 71862) EXPECT_EQ(rs[std::size_t{1}].text(), "0") << codes[i];
    }
    // Contracts and Guias carry the new id of their client; N_Req2 counts a client's Guias per contract.
    EXPECT_EQ(count("Tbl_Contrato C JOIN Tbl_Cliente L ON L.Id_Cliente = C.Id_Cliente"), 5);
    EXPECT_EQ(count("Tbl_Cab C JOIN Tbl_Cliente L ON L.Id_Cliente = C.Id_Cliente AND L.Cod_Cliente = C.Cod_Cliente"), 11);
    Recordset rs = db->open("SELECT Cod_Cliente, Cod_Contrato, N_Req2 FROM Tbl_Cab ORDER BY N_Req");
    std::map<std::pair<std::int64_t, std::int64_t>, std::int64_t> seen;
    for (; !rs.IsEOF(); rs.MoveNext())
    {
        const std::pair key{rs[std::size_t{0}].integer(), rs[1].integer()};
        EXPECT_EQ(rs[2].integer(), ++seen[key]);
    }
    EXPECT_EQ(count("Tbl_Linha"), 52);
    EXPECT_EQ(count("Tbl_Linha_ServicoEspecial"), 35);
}

TEST_P(ImportTest, FailuresLeaveTheTargetAsItWasAndSayWhere)
{
    cls_Importacao importacao(db);
    ASSERT_TRUE(importacao.DoImportDadosTo050314(kJetFixtures.string(), "v0514.mdb")) << importacao.LastError();
    const std::string before = snapshot();

    TempFolder folder("import-faults");
    json tables = fixture_rows("v0513.mdb")["tables"];
    auto null_page = tables;
    null_page["TBL_CAB"]["rows"][2][6] = nullptr;
    auto short_lines = tables;
    short_lines["TBL_LINHA"]["columns"].erase(18);
    for (auto& r : short_lines["TBL_LINHA"]["rows"]) r.erase(18);
    auto bad_date = tables;
    bad_date["TBL_CONTRATO"]["rows"][1][8] = "31-12-2004";
    auto duplicate = tables;
    duplicate["TBL_LINHA_SERVICOESPECIAL"]["rows"].push_back(duplicate["TBL_LINHA_SERVICOESPECIAL"]["rows"][0]);
    auto no_services = tables;
    no_services.erase("TBL_LINHA_SERVICOESPECIAL");
    const auto n_req = std::to_string(tables["TBL_CAB"]["rows"][2][0].get<int>());

    struct Fault {
        const char* name;
        json tables;
        std::vector<std::string> said;  // parts of what LastError must say
    };
    const Fault faults[] = {
        {"null-number", null_page, {"TBL_CAB, row N_Req " + n_req, "column N_Pag", "Null where a number must stand"}},
        {"short-line", short_lines, {"TBL_LINHA has 18 columns", "O_Divisao_Remetente", "position 19"}},
        {"text-date", bad_date, {"TBL_CONTRATO", "column dDataActividade", "is not a date"}},
        {"duplicate-key", duplicate, {"TBL_LINHA_SERVICOESPECIAL, row N_Req"}},
        {"missing-table", no_services, {"TBL_LINHA_SERVICOESPECIAL"}},
    };
    for (const Fault& f : faults) {
        SCOPED_TRACE(f.name);
        const auto file = folder.path() / (std::string(f.name) + ".sqlite");
        write_sqlite_source(file, f.tables);
        RecordingNotifier heard;
        EXPECT_FALSE(importacao.DoImportDadosTo050313B(folder.path().string(), file.filename().string()));
        EXPECT_FALSE(importacao.Succeeded());
        for (const auto& part : f.said) EXPECT_NE(importacao.LastError().find(part), std::string::npos) << importacao.LastError();
        ASSERT_GE(heard.said.size(), 4u);
        EXPECT_EQ(std::vector<std::string>(heard.said.end() - 4, heard.said.end() - 1),
                  (std::vector<std::string>{"progress 20", "progress 10", "progress 0"}));
        EXPECT_EQ(heard.said.back().rfind("message 4||Erro na Importação da informação. Não é possivel efectuar a "
                                          "importação desta base de dados.\n", 0), 0u) << heard.said.back();
        EXPECT_EQ(snapshot(), before);
    }
}

TEST_P(ImportTest, AProcedureRefusesAFileOfALayoutItDoesNotRead)
{
    cls_Importacao importacao(db);
    ASSERT_TRUE(importacao.DoImportDadosTo050314(kJetFixtures.string(), "v0514.mdb"));
    const std::string before = snapshot();
    struct Case {
        const char* file;
        const char* procedure;
        const char* said;
    };
    const Case cases[] = {
        {"v0501.mdb", "DoImportDadosTo050314",
         "v0501.mdb has the tables of version 0501 (layout 0501); DoImportDadosTo050314 reads those of versions "
         "0513 and 0514 (layout 050313B)"},
        {"v0513.mdb", "DoImportDadosTo050313",
         "v0513.mdb has the tables of versions 0513 and 0514 (layout 050313B); DoImportDadosTo050313 reads those of "
         "versions 05083, 0509, 0510, 0511 and 0512 (layout 050313)"},
        {"v0512.mdb", "DoImportDados0502",
         "DoImportDados0502 reads those of versions 0502 and 0504 (layout 0502)"},
        {"v0502.mdb", "DoImportDados0509",
         "DoImportDados0509 reads those of versions 0506, 0507 and 0508 (layout 0506) or versions 05083, 0509, 0510, "
         "0511 and 0512 (layout 050313)"},
    };
    for (const auto& c : cases) {
        EXPECT_FALSE(importacao.DoImportDadosBy(c.procedure, kJetFixtures.string(), c.file)) << c.file;
        EXPECT_NE(importacao.LastError().find(c.said), std::string::npos) << importacao.LastError();
        EXPECT_EQ(snapshot(), before) << c.file;
    }
}

TEST_P(ImportTest, TheDispatchReachesThreeProceduresAndSaysTheOutcome)
{
    const std::string ok = "message 4|Importação de Base de Dados|Base de Dados importada com sucesso.";
    const std::string failed = "message 1|Importação de Base de Dados|A importação da Base de Dados falhou.";
    const std::string missing = "message 3|Importação de Informação|A base de dados escolhida não existe !";
    TempFolder folder("import-dispatch");
    std::ofstream(folder.path() / "empty.mdb").close();
    struct Dispatch {
        std::string versao, folder, file;
        std::vector<std::string> said;
        std::int64_t clients;  // in the target afterwards; the seed import left 5
    };
    const std::string jet = kJetFixtures.string();
    const std::vector<std::string> steps = {"busy 1",     "progress 20", "progress 30", "progress 40",
                                            "progress 70", "progress 100", "busy 0",     "progress 0"};
    const auto with = [&](std::vector<std::string> head, const std::string& last) {
        head.push_back(last);
        return head;
    };
    const Dispatch cases[] = {
        {"0511", jet, "v0512.mdb", with(steps, ok), 6},
        {"05083", jet, "v0512.mdb", with(steps, ok), 6},
        {"0513", jet, "v0513.mdb", with(steps, ok), 5},
        {"0514", jet, "v0513-noservices.mdb", with(steps, ok), 4},
        {"0508", jet, "v0506.mdb", {"busy 1", "busy 0", "progress 0", failed}, 5},
        {"", jet, "v0512.mdb", {"busy 1", "busy 0", "progress 0", failed}, 5},
        {"0514", folder.path().string(), "empty.mdb", {"busy 1", missing, "busy 0", "progress 0", ok}, 5},
        {"0514", folder.path().string(), "absent.mdb", {"busy 1", missing, "busy 0", "progress 0", ok}, 5},
    };
    for (const auto& d : cases) {
        SCOPED_TRACE(d.versao + " " + d.file);
        cls_Importacao importacao(db);
        ASSERT_TRUE(importacao.DoImportDadosTo050314(jet, "v0514.mdb"));
        RecordingNotifier heard;
        std::string versao = d.versao;
        importacao.ImportaDados(d.folder, d.file, versao);
        EXPECT_EQ(heard.said, d.said);
        EXPECT_EQ(count("Tbl_Cliente"), d.clients);
    }
}

TEST_P(ImportTest, DeleteDadosEmptiesTheDataTablesOnly)
{
    cls_Importacao importacao(db);
    ASSERT_TRUE(importacao.DoImportDadosTo050314(kJetFixtures.string(), "v0514.mdb"));
    const std::int64_t products = count("Tbl_B_Produto");
    importacao.DeleteDados();
    for (const auto& t : kTables) EXPECT_EQ(count(t[1]), 0) << t[1];
    EXPECT_EQ(count("Tbl_B_Produto"), products);
}

TEST_P(ImportTest, EscreveStringXmlWritesTheRuleMasterTenItemsToAStatement)
{
    TempFolder folder("import-domfile");
    cls_Importacao importacao(db);
    importacao.DomFile = folder.path() / "DomFile.txt";
    importacao.EscreveStringXml();
    const std::string text = read_file(importacao.DomFile);
    const std::int64_t rules = count("tbl_Validacao");
    const Recordset first = db->open("SELECT CodValidacao, Cod_Produto, Activo FROM tbl_Validacao");
    const std::string head = "\nstrXML = strXML & _ \n\"<LIST><ITEM><CODVALIDACAO>" + first[std::size_t{0}].text() +
                             "</CODVALIDACAO><CODPRODUTO>" + first[1].text() + "</CODPRODUTO><ACTIVO>" +
                             first[2].text() + "</ACTIVO></ITEM>\" & _\n";
    EXPECT_EQ(text.substr(0, head.size()), head);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), rules + 2 * ((rules + 9) / 10) + 1);
    // Every item continues the statement but the tenth of each block.
    std::int64_t continued = 0;
    for (std::size_t at = 0; (at = text.find("\" & _\n", at)) != std::string::npos; ++at) ++continued;
    EXPECT_EQ(continued, rules - rules / 10);
    EXPECT_TRUE(text.ends_with("\"</LIST>\"\n"));
}

}  // namespace
