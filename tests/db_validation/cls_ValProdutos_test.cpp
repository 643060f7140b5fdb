#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <set>
#include <utility>

#include "nimbara/Notifier.hpp"
#include "nimbara/Schema.hpp"
#include "nimbara/cls_Guia_Cabecalho.hpp"
#include "nimbara/cls_ValProdutos.hpp"
#include "nimbara/cls_ValProdutosA.hpp"
#include "entities/working_table.hpp"
#include "foundation/list_helpers.hpp"
#include "nimbara/mdl_Biz.hpp"
#include "support/per_check_twin.hpp"
#include "support/temp_folder.hpp"
#include "support/test_database.hpp"
#include "support/validation_text.hpp"
#include "validation/guia_rules.hpp"

using namespace nimbara;
using nimbara::testing::kBothStores;
using nimbara::testing::per_check_validate_line;
using nimbara::testing::store_name;
using nimbara::testing::SeededStoreTest;
using nimbara::testing::show;
using nimbara::testing::TwinLine;

namespace {

class TwinTest : public SeededStoreTest {
protected:
    ValidationResult twin(cls_ValProdutos& v, const TwinLine& l)
    {
        return v.DoValidaProduto(l.product, l.zone, l.weight, l.speed, l.format, l.pre_treatment, l.discount, l.scope,
                                 l.services);
    }
};
INSTANTIATE_TEST_SUITE_P(Stores, TwinTest, kBothStores, store_name);

}  // namespace

TEST_P(TwinTest, DiffersFromTheCompiledValidatorWhereItsRulesDiffer)
{
    // Rule 33 (C20) gets a pre-treatment row, so that the service rules are reached on it.
    db->execute("INSERT INTO tbl_Val_PreTratamento (CodValidacao, Pre_Tratamento) VALUES (33, 0)");
    struct Case {
        const char* what;
        const char* product; const char* zone; int weight; const char* speed; const char* format;
        const char* pre; const char* discount; const char* sampling; const char* services;
        std::string compiled, table;
    };
    const Case cases[] = {
        {"a weight on the bound of two steps", "C01", "01", 50, "0", "02", "1", "0", "0", "0",
         "passes", "-9 Existem diversas regras de validação de serviços"},
        {"weight 0 under a minimum of 0", "C01", "01", 0, "0", "01", "1", "0", "0", "0",
         "-3 Erro na Validação do Peso", "passes"},
        {"an unknown product", "X99", "01", 10, "0", "01", "1", "0", "0", "0",
         "-100 Ocorreu um erro na leitura do XML", "-1 Não Existem Regras de Validação"},
        {"no pre-treatment asked of a rule without it", "C27", "01", 10, "02", "0", "0", "0", "0", "0",
         "passes", "-6 Erro no Pre-tratamento"},
        {"05 alone does not call for 06", "C20", "01", 10, "0", "0", "0", "0", "0", "05",
         "-11 [06]", "passes"},
        {"04 with 05", "C13", "01", 10, "0", "03", "1", "02", "0", "04,05",
         "-24 [04][05]", "passes"},
        {"10 without 02 on C13", "C13", "01", 10, "0", "03", "1", "02", "0", "10,07",
         "-22 [02]", "passes"},
        {"a sampling code no rule has", "C01", "01", 20, "0", "01", "1", "0", "9", "0",
         "-21 Erro na Entrega Sampling", "passes"},
    };
    const cls_ValProdutosA compiled;
    cls_ValProdutos table(db);
    for (const auto& c : cases) {
        EXPECT_EQ(show(compiled.DoValidaProduto(c.product, c.zone, c.weight, c.speed, c.format, c.pre, c.discount, "0",
                                                c.sampling, c.services)),
                  c.compiled)
            << c.what;
        EXPECT_EQ(show(table.DoValidaProduto(c.product, c.zone, c.weight, c.speed, c.format, std::string(c.pre) != "0",
                                             c.discount, "0", GlobalFrameWork::String2Array(c.services).value_or(ListArray{}))),
                  c.table)
            << c.what;
    }
}

TEST_P(TwinTest, GuiaRulesDifferFromTheCompiledOnes)
{
    struct Row { int n_req; const char* product; const char* zone; int quantity; };
    struct Case {
        const char* what;
        std::vector<Row> rows;  // the working table; the Guia judged is number 1
        std::string compiled, table;  // no compiled answer where the compiled validator sees one Guia only
    };
    const Case cases[] = {
        {"C03 of 300 in zone 01", {{1, "C03", "01", 300}}, "passes",
         "-1 Erro Minimo de 500 Objectos"},
        {"C03 sums over every Guia of the table", {{1, "C03", "01", 300}, {2, "C03", "05", 200}}, "",
         "passes"},
        {"C07 of 60 in zones 01 and 02", {{1, "C07", "01", 60}, {1, "C07", "02", 60}},
         "-2 Erro Minimo de 100 Objectos, para correio nacional", "passes"},
        {"C42 below its minimum", {{1, "C42", "01", 10}}, "-10 Erro Minimo de 100 Objectos", "passes"},
        {"C21 and C23 short: the first in order", {{1, "C23", "01", 10}, {1, "C21", "01", 10}},
         "-3 Erro Minimo de 100 Objectos", "-3 Erro Minimo de 100 Objectos"},
        {"C21 short only in the other Guia", {{1, "C01", "01", 10}, {2, "C21", "01", 10}}, "",
         "-3 Erro Minimo de 100 Objectos"},
        {"an insert after its carrier", {{1, "C05", "01", 10}, {1, "C25", "01", 10}}, "passes", "passes"},
        {"an insert of another quantity", {{1, "C05", "01", 10}, {1, "C25", "01", 11}}, "-6 Erro Validação",
         "-6 Erro Validação"},
        {"an insert first", {{1, "C25", "01", 10}}, "-8 Erro Não Existem Produtos Associados ao C25",
         "-8 Erro Não Existem Produtos Associados ao C25"},
        {"an empty working table", {}, "passes", "passes"},
    };
    cls_ValProdutos table(db);
    entities::prepare_working_table(*db);  // the connection's own table, which the rows below fill
    for (const auto& c : cases) {
        db->execute("DELETE FROM Tbl_Temp_Val_Guia");
        guia::Table lines;
        int line = 0;
        for (const auto& r : c.rows) {
            db->execute("INSERT INTO Tbl_Temp_Val_Guia (N_Req, A_Zona_Taxacao, B_Produto, E_Velocidade, D_Quantidade, "
                        "N_Linha) VALUES (?, ?, ?, '0', ?, ?)",
                        {r.n_req, r.zone, r.product, r.quantity, ++line});
            if (r.n_req != 1) continue;
            const int row = lines.add_row();
            lines.set(guia::A_Zona_Taxacao, row, r.zone);
            lines.set(guia::B_Produto, row, r.product);
            lines.set(guia::E_Velocidade, row, "0");
            lines.set(guia::D_Quantidade, row, std::to_string(r.quantity));
        }
        if (!c.compiled.empty()) {
            cab::Table header;
            header.set(cab::TipoAcesso, 0, "0");
            EXPECT_EQ(show(validation::DoValidaGuia(lines, header)), c.compiled) << c.what;
        }
        EXPECT_EQ(show(table.DoValidaGuia(1)), c.table) << c.what;
    }
}

// Created as the old hosts create it, the validator opens the shared connection from the ini file
// in the working directory; -100 is left for a real failure.
TEST_P(TwinTest, CreatedWithoutADatabaseItOpensTheOneTheIniFileNames)
{
    struct Quiet : Notifier {
        int messages = 0;
        void message(MessageIcon, std::string_view, std::string_view) override { ++messages; }
        void busy(bool) override {}
        void progress(int) override {}
    } notes;
    set_notifier(&notes);
    nimbara::testing::TempFolder folder;
    const auto previous = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    const auto kept = std::exchange(gConn, nullptr);

    struct Case {
        const char* what;
        std::optional<std::string> conn;  // Conn of the ini file; no file when absent
        std::string line, guia;           // the answers, or "raises" when creation raises
        int messages;
    };
    const Case cases[] = {
        {"the ini file names this database", scratch->conn(), "passes", "passes", 0},
        {"no ini file", std::nullopt, "-100 Erro Genérico", "-100 Erro Genérico", 1},
        {"the ini file names a store that cannot be opened", "sqlite:" + (folder.path() / "none.db").string(),
         "raises", "raises", 0},
    };
    for (const auto& c : cases) {
        std::filesystem::remove("Zartel_Nimbara.Ini");
        if (c.conn) std::ofstream("Zartel_Nimbara.Ini") << "[Nimbarauto]\nConn=" << *c.conn << "\n";
        gConn.reset();
        notes.messages = 0;
        try {
            cls_ValProdutos created;
            EXPECT_EQ(show(created.DoValidaProduto("C01", "01", 20, "0", "01", true, "0", "0", {})), c.line) << c.what;
            EXPECT_EQ(show(created.DoValidaGuia(1)), c.guia) << c.what;
        } catch (const ConnectionError& e) {
            EXPECT_EQ(c.line, "raises") << c.what << ": " << e.what();
            EXPECT_NE(std::string(e.what()).find("none.db"), std::string::npos) << e.what();
        }
        EXPECT_EQ(notes.messages, c.messages) << c.what;
    }
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "none.db")) << "opening never creates a store";

    std::filesystem::remove("Zartel_Nimbara.Ini");
    gConn = db;  // a host may still hand the shared connection over itself
    cls_ValProdutos none;
    EXPECT_EQ(show(none.DoValidaProduto("C01", "01", 20, "0", "01", true, "0", "0", {})), "passes");
    gConn = kept;
    std::filesystem::current_path(previous);
    set_notifier(nullptr);
}

// Stations share the database, not the working table: each connection's sum covers the Guias it
// copied in (several of them, as one old host's did), never another connection's.
TEST_P(TwinTest, EachConnectionJudgesTheGuiasItCopiedIn)
{
    // A Guia of 300 objects of C03 in zone 01: short of 500 alone.
    const auto guia = [](const std::shared_ptr<Database>& on, std::int32_t n_req) {
        auto g = std::make_unique<cls_Guia_Cabecalho>(on);
        g->vNReq = n_req;
        std::string divisao = "0";
        g->AddLinha(1, "01", "C03", 100, 300, "0", "0", "1", "0", "0", 0, 0, "0", divisao, "", "", "");
        return g;
    };
    const std::string short_of_500 = "-1 Erro Minimo de 500 Objectos";
    const auto other = OpenDatabase(scratch->conn());
    auto mine = guia(db, 1), theirs = guia(other, 2);
    mine->DoRemoveValTemp();
    theirs->DoRemoveValTemp();
    mine->DoInsertValTemp();
    theirs->DoInsertValTemp();
    ASSERT_EQ(mine->LastError() + theirs->LastError(), "");
    cls_ValProdutos here(db), there(other);
    EXPECT_EQ(show(here.DoValidaGuia(1)), short_of_500);
    EXPECT_EQ(show(there.DoValidaGuia(2)), short_of_500);

    theirs->DoRemoveValTemp();  // empties the other station's table only
    EXPECT_EQ(db->open("SELECT N_Req FROM Tbl_Temp_Val_Guia").RecordCount(), 1);
    guia(db, 2)->DoInsertValTemp();
    EXPECT_EQ(show(here.DoValidaGuia(1)), "passes") << "the sum runs over every Guia this connection copied in";

    // A connection that copied nothing reads an empty table, whatever the others hold.
    const auto third = OpenDatabase(scratch->conn());
    EXPECT_EQ(show(cls_ValProdutos(third).DoValidaGuia(1)), "passes");
    theirs->DoInsertValTemp();
    EXPECT_EQ(third->open("SELECT N_Req FROM Tbl_Temp_Val_Guia").RecordCount(), 0);
}

// Random lines, most of them drawn from the codes of one rule so that they get far, judged by the
// validator and by the per-check queries, while the tables change under the same validator.
TEST_P(TwinTest, AnswersAsThePerCheckQueriesDoWhileTheTablesChange)
{
    std::mt19937 random(20261124);
    const auto pick = [&](const std::vector<std::string>& from) {
        return from[std::uniform_int_distribution<std::size_t>(0, from.size() - 1)(random)];
    };
    const auto codes = [&](const std::string& table, const std::string& column, const std::string& where = "") {
        std::vector<std::string> out;
        for (Recordset rs = db->open("SELECT DISTINCT " + column + " AS c FROM " + table + where); !rs.IsEOF(); rs.MoveNext())
            out.push_back(rs["c"].text());
        out.push_back("X");  // a code no rule has
        return out;
    };
    const auto of_rule = [&](const std::string& table, const std::string& column, const std::string& id) {
        return codes(table, column, " WHERE CodValidacao = " + id);
    };

    const auto sample = [&](const std::string& product_filter) {
        std::vector<TwinLine> lines;
        const auto ids = codes("tbl_Validacao", "CodValidacao", product_filter);
        const auto zones = codes("tbl_Val_ZTaxacao", "CodZtaxacao"), speeds = codes("tbl_Val_Velocidade", "CodVelocidade");
        const auto formats = codes("tbl_Val_Formato", "CodFormato"), discounts = codes("tbl_Val_Desconto", "CodDesconto");
        const auto scopes = codes("tbl_Val_AmbitoDist", "CodAmbitoDist");
        const std::vector<std::string> services = {"0", "01", "02", "03", "04", "05", "06", "07", "10", "11", "13", ""};
        for (int i = 0; i < 60; ++i) {
            std::string id = pick(ids);
            if (id == "X") id = ids.front();
            const Recordset rule = db->open("SELECT * FROM tbl_Validacao WHERE CodValidacao = " + id);
            const bool near = std::uniform_int_distribution<int>(0, 9)(random) < 8;
            const auto choose = [&](const std::string& table, const std::string& column, const auto& any) {
                return near ? pick(of_rule(table, column, id)) : pick(any);
            };
            TwinLine l;
            l.product = std::uniform_int_distribution<int>(0, 19)(random) ? rule["Cod_Produto"].text() : "X99";
            l.zone = choose("tbl_Val_ZTaxacao", "CodZtaxacao", zones);
            const int bounds[] = {static_cast<int>(rule["C_Escalao_Min"].integer()),
                                  static_cast<int>(rule["C_Escalao_Max"].integer())};
            l.weight = bounds[i % 2] + std::uniform_int_distribution<int>(-1, 1)(random);
            l.speed = choose("tbl_Val_Velocidade", "CodVelocidade", speeds);
            l.format = choose("tbl_Val_Formato", "CodFormato", formats);
            l.pre_treatment = i % 3 == 0;
            l.discount = choose("tbl_Val_Desconto", "CodDesconto", discounts);
            l.scope = choose("tbl_Val_AmbitoDist", "CodAmbitoDist", scopes);
            for (int n = std::uniform_int_distribution<int>(0, 3)(random); n > 0; --n) l.services.push_back(pick(services));
            lines.push_back(l);
        }
        return lines;
    };

    struct Step {
        const char* what;
        std::vector<std::string> statements;
        const char* focus;  // the rules half of the lines are drawn from
    };
    const std::string yes(db->boolean_literal(true)), no(db->boolean_literal(false));
    const Step steps[] = {
        {"the seeded tables", {}, ""},
        {"a rule deactivated", {"UPDATE tbl_Validacao SET Activo = " + no + " WHERE CodValidacao = 1"},
         " WHERE Cod_Produto = 'C01'"},
        {"an overlapping rule added",
         {"INSERT INTO tbl_Validacao VALUES (900, 'C01', " + yes + ", 40, 60)",
          "INSERT INTO tbl_Val_ZTaxacao VALUES (900, '01')", "INSERT INTO tbl_Val_Velocidade VALUES (900, '0')",
          "INSERT INTO tbl_Val_Formato VALUES (900, '02')", "INSERT INTO tbl_Val_PreTratamento VALUES (900, 1)",
          "INSERT INTO tbl_Val_Desconto VALUES (900, '0')", "INSERT INTO tbl_Val_AmbitoDist VALUES (900, '0')",
          "INSERT INTO tbl_Val_ServicoE VALUES (900, '02')"},
         " WHERE Cod_Produto = 'C01'"},
        {"rows removed", {"DELETE FROM tbl_Val_Formato WHERE CodValidacao = 2", "DELETE FROM tbl_Val_ServicoE WHERE CodValidacao = 14"},
         " WHERE Cod_Produto IN ('C01', 'C06')"},
        {"a rule reactivated", {"UPDATE tbl_Validacao SET Activo = " + yes + " WHERE CodValidacao = 1"},
         " WHERE Cod_Produto = 'C01'"},
        {"the counter moved alone", {"UPDATE tbl_Val_Versao SET Contador = Contador + 5"}, ""},
    };
    cls_ValProdutos validator(db);
    for (const auto& step : steps) {
        for (const auto& sql : step.statements) db->execute(sql);
        auto lines = sample("");
        if (*step.focus) {
            auto focused = sample(step.focus);
            lines.insert(lines.end(), focused.begin(), focused.end());
        }
        std::set<int> outcomes;
        for (const auto& l : lines) {
            const auto expected = per_check_validate_line(*db, l);
            ASSERT_EQ(show(twin(validator, l)), show(expected))
                << step.what << ": " << l.product << " " << l.zone << " " << l.weight << " " << l.speed << " "
                << l.format << " " << l.pre_treatment << " " << l.discount << " " << l.scope;
            outcomes.insert(expected ? expected->number : 0);
        }
        EXPECT_GE(outcomes.size(), 5u) << step.what << ": the lines should reach several checks";
    }

    // A database made before the counter existed: the tables are read at every call.
    db->execute("DROP TABLE tbl_Val_Versao");
    cls_ValProdutos without_counter(db);
    for (const auto& l : sample(""))
        ASSERT_EQ(show(twin(without_counter, l)), show(per_check_validate_line(*db, l))) << "without the counter";
}
