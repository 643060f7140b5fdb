#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>

#include "nimbara/guia_file.hpp"
#include "import/old_sources.hpp"
#include "import_jobs.hpp"
#include "nimbara/Database.hpp"
#include "serve/api_request.hpp"
#include "support/test_database.hpp"

namespace nimbara {
namespace {

using namespace nimbara::testing;
using nlohmann::json;

std::string example(const char* name)
{
    std::ifstream in(std::string(NIMBARA_SOURCE_DIR) + "/examples/" + name);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// Values that must be stored and shown back as the text they are.
const char* const kHostileTexts[] = {"'; DROP TABLE Tbl_Cliente; --", "<script>alert(1)</script>",
                                     "Robert\"); DELETE FROM Tbl_Cab; --", "ç ã \\u0000 % _"};

class HandlersTest : public SeededStoreTest {
protected:
    serve::ApiResponse call(const char* method, const char* pattern, std::map<std::string, std::string> params = {},
                            std::multimap<std::string, std::string> query = {}, std::string body = {})
    {
        return call_route(db, method, pattern, std::move(params), std::move(query), std::move(body));
    }
    json body_of(const serve::ApiResponse& r) { return json::parse(r.body); }
    // The example client 456 with its contract 300042, which the example Guia names.
    void add_example_client() { ASSERT_EQ(call("POST", "/clients", {}, {}, example("client.json")).status, 201); }
    std::int64_t save_example_guia()
    {
        const auto saved = call("POST", "/guias", {}, {}, example("valid-guia.json"));
        EXPECT_EQ(saved.status, 201) << saved.body;
        return body_of(saved)["N_Req"].get<std::int64_t>();
    }
};
INSTANTIATE_TEST_SUITE_P(Stores, HandlersTest, kBothStores, store_name);

TEST_P(HandlersTest, BadInputIsRefusedWithItsFieldAndChangesNothing)
{
    add_example_client();
    const auto clients = count("Tbl_Cliente");
    struct Case {
        const char* method;
        const char* pattern;
        std::map<std::string, std::string> params;
        std::multimap<std::string, std::string> query;
        std::string body;
        int status;
        const char* field;
    };
    const Case cases[] = {
        {"GET", "/clients/{code}", {{"code", "-1"}}, {}, "", 400, "code"},
        {"GET", "/clients/{code}", {{"code", "12abc"}}, {}, "", 400, "code"},
        {"GET", "/clients/{code}", {{"code", "99999"}}, {}, "", 404, "code"},
        {"GET", "/clients", {}, {{"name", "x"}}, "", 400, "name"},
        {"POST", "/clients", {}, {}, "not json", 400, "/"},
        {"POST", "/clients", {}, {}, "[1]", 400, "/"},
        {"POST", "/clients", {}, {}, R"({"vCod_Cliente": "457", "vNada": 1})", 422, "/vNada"},
        {"POST", "/clients", {}, {}, R"({"vCod_Cliente": "457", "iTipoCliente": "um"})", 422, "/iTipoCliente"},
        {"POST", "/clients", {}, {}, R"({"vCod_Cliente": "457", "iAcessoRede": 70000})", 422, "/iAcessoRede"},
        {"POST", "/clients", {}, {}, R"({"vCod_Cliente": "-457"})", 422, "/vCod_Cliente"},
        {"POST", "/clients", {}, {}, R"({"vCod_Cliente": "457", "contratos": [{"vDesignacao": "x"}]})", 422,
         "/contratos/0/vCodContrato"},
        {"POST", "/clients", {}, {}, example("client.json"), 409, "/vCod_Cliente"},
        {"PUT", "/clients/{code}", {{"code", "456"}}, {}, R"({"vCod_Cliente": "457"})", 422, "/vCod_Cliente"},
        {"POST", "/clients/{code}/contracts", {{"code", "456"}}, {}, R"({"vCodContrato": "300042"})", 409,
         "/vCodContrato"},
        {"PUT", "/contracts/{id}", {{"id", "300042"}}, {}, R"({"bActivo": "sim"})", 422, "/bActivo"},
        {"DELETE", "/contracts/{id}", {{"id", "1"}}, {}, "", 404, "id"},
        {"DELETE", "/clients/{code}", {{"code", "456"}}, {{"dry_run", "talvez"}}, "", 400, "dry_run"},
        {"GET", "/guias", {}, {{"month", "13"}}, "", 400, "month"},
        {"GET", "/guias", {}, {{"year", "dois mil"}}, "", 400, "year"},
        {"GET", "/guias", {}, {{"client", "-4"}}, "", 400, "client"},
        {"GET", "/guias", {}, {{"order", "data; DROP TABLE Tbl_Cab"}}, "", 400, "order"},
        {"GET", "/guias/{id}", {{"id", "0"}}, {}, "", 400, "id"},
        {"DELETE", "/guias/{id}", {{"id", "7"}}, {}, "", 404, ""},
        {"POST", "/guias", {}, {}, R"({"cabecalho": {"cb_Nada": "1"}})", 422, "/cabecalho"},
        {"POST", "/guias", {}, {}, R"({"cabecalho": {"cb_CodCliente": "999"}, "produtos": []})", 422, ""},
        {"POST", "/lines/check", {}, {}, R"({"B_Produto": "C01", "Peso": "50"})", 422, "/"},
        {"POST", "/lines/check", {}, {}, R"({"B_Produto": "C01", "Escalao": "cinquenta"})", 422, "/Escalao"},
        {"POST", "/lines/check", {}, {}, R"({"B_Produto": "C01", "A_Zona_Taxacao": "0\t1"})", 422, "/A_Zona_Taxacao"},
        {"GET", "/codes", {}, {{"kind", "zone,colour"}}, "", 400, "kind"},
        {"GET", "/codes", {}, {{"product", "ZZZ"}}, "", 422, "product"},
    };
    for (const auto& c : cases) {
        const auto r = call(c.method, c.pattern, c.params, c.query, c.body);
        const std::string what = std::string(c.method) + " " + c.pattern + " " + c.body;
        ASSERT_EQ(r.status, c.status) << what << " -> " << r.body;
        const json b = body_of(r);
        EXPECT_EQ(b["status"], c.status) << what;
        EXPECT_FALSE(b["error"].get<std::string>().empty()) << what;
        if (*c.field) EXPECT_EQ(b.value("field", ""), c.field) << what << " -> " << r.body;
        EXPECT_FALSE(r.audit) << what;
    }
    EXPECT_EQ(count("Tbl_Cliente"), clients);
    EXPECT_EQ(count("Tbl_Cab"), 0);
}

TEST_P(HandlersTest, ClientsAndContractsKeepTheirTextsAndNameTheirCascade)
{
    add_example_client();
    for (const char* text : kHostileTexts) {
        const auto put = call("PUT", "/clients/{code}", {{"code", "456"}}, {}, json{{"vNome", text}}.dump());
        ASSERT_EQ(put.status, 200) << put.body;
        EXPECT_EQ(body_of(call("GET", "/clients/{code}", {{"code", "456"}}))["vNome"], text);
        const auto found = body_of(call("GET", "/clients", {}, {{"search", text}}))["clients"];
        ASSERT_EQ(found.size(), 1u) << text;
        EXPECT_EQ(found[0]["Nome"], text);
    }
    // The body leaves the rest as stored.
    EXPECT_EQ(body_of(call("GET", "/clients/{code}", {{"code", "456"}}))["vNIF"], "501234567");
    EXPECT_TRUE(body_of(call("GET", "/clients", {}, {{"search", "nobody like this"}}))["clients"].empty());

    ASSERT_EQ(call("POST", "/clients/{code}/contracts", {{"code", "456"}}, {}, R"({"vCodContrato": "300043"})").status, 201);
    ASSERT_EQ(call("PUT", "/contracts/{id}", {{"id", "300043"}}, {}, R"({"vDesignacao": "<b>Revistas</b>"})").status, 200);
    const auto contracts = body_of(call("GET", "/clients/{code}/contracts", {{"code", "456"}}));
    ASSERT_EQ(contracts.size(), 2u);
    EXPECT_EQ(contracts[1]["vDesignacao"], "<b>Revistas</b>");

    save_example_guia();
    // A dry run names what would go and leaves it; the delete then takes the same and is audited.
    const auto would = call("DELETE", "/contracts/{id}", {{"id", "300042"}}, {{"dry_run", "1"}});
    ASSERT_EQ(would.status, 200) << would.body;
    EXPECT_FALSE(would.audit);
    EXPECT_EQ(body_of(would)["deleted"]["guias"], 1);
    EXPECT_EQ(body_of(would)["deleted"]["lines"], 6);
    EXPECT_EQ(count("Tbl_Cab"), 1);
    const auto gone = call("DELETE", "/contracts/{id}", {{"id", "300042"}});
    EXPECT_EQ(body_of(gone)["deleted"], body_of(would)["deleted"]);
    ASSERT_TRUE(gone.audit);
    EXPECT_EQ(gone.audit->action, "delete contract");
    EXPECT_EQ(count("Tbl_Cab"), 0);
    EXPECT_EQ(count("Tbl_Linha"), 0);
    EXPECT_EQ(count("Tbl_Contrato"), 1);

    const auto client_gone = call("DELETE", "/clients/{code}", {{"code", "456"}});
    ASSERT_EQ(client_gone.status, 200) << client_gone.body;
    EXPECT_EQ(body_of(client_gone)["deleted"]["contracts"], 1);
    EXPECT_TRUE(client_gone.audit);
    EXPECT_EQ(call("GET", "/clients/{code}", {{"code", "456"}}).status, 404);
}

TEST_P(HandlersTest, AGuiaSavedIsListedShownAndDeleted)
{
    add_example_client();
    const auto n_req = std::to_string(save_example_guia());
    // Shown as a Guia file that reads back as the one saved, but for what the database numbers itself.
    const auto shown = call("GET", "/guias/{id}", {{"id", n_req}});
    ASSERT_EQ(shown.status, 200) << shown.body;
    const GuiaFile back = parse_guia_file(shown.body, "shown");
    const GuiaFile sent = parse_guia_file(example("valid-guia.json"), "sent");
    EXPECT_EQ(back.produtos.size(), sent.produtos.size());
    EXPECT_EQ(back.servicos, sent.servicos);
    EXPECT_EQ(back.cabecalho.cb_Obs, sent.cabecalho.cb_Obs);

    struct Listing {
        std::multimap<std::string, std::string> query;
        std::size_t rows;
    };
    const Listing listings[] = {
        {{}, 6},
        {{{"year", "2026"}, {"month", "11"}}, 6},
        {{{"year", "2026"}, {"month", "10"}}, 0},
        {{{"client", "456"}, {"order", "produto desc"}}, 6},
        {{{"client", "457"}}, 0},
    };
    for (const auto& l : listings) {
        const auto r = call("GET", "/guias", {}, l.query);
        ASSERT_EQ(r.status, 200) << r.body;
        EXPECT_EQ(body_of(r).size(), l.rows) << r.body;
    }
    // The listing shows a product as its code and designation.
    EXPECT_TRUE(body_of(call("GET", "/guias", {}, {{"order", "produto desc"}}))[0]["Produto"].get<std::string>().starts_with("E01 "));

    const auto printable = call("GET", "/guias/{id}/printable", {{"id", n_req}});
    ASSERT_EQ(printable.status, 200) << printable.body;
    EXPECT_EQ(body_of(printable)["printable"], body_of(printable)["problems"].empty());

    const auto would = call("DELETE", "/guias/{id}", {{"id", n_req}}, {{"dry_run", "1"}});
    EXPECT_EQ(body_of(would)["deleted"]["lines"], 6);
    EXPECT_EQ(body_of(would)["deleted"]["services"], 3);
    EXPECT_EQ(count("Tbl_Linha"), 6);
    const auto gone = call("DELETE", "/guias/{id}", {{"id", n_req}});
    ASSERT_TRUE(gone.audit);
    EXPECT_EQ(count("Tbl_Linha"), 0);
    EXPECT_EQ(call("GET", "/guias/{id}", {{"id", n_req}}).status, 404);
    EXPECT_EQ(call("GET", "/guias/{id}/printable", {{"id", n_req}}).status, 404);
}

TEST_P(HandlersTest, AGuiaIsCheckedWithoutBeingStored)
{
    add_example_client();
    // The database's rule tables judge, not the compiled-in rules: the example passes the latter only.
    const auto checked = call("POST", "/guias/check", {}, {}, example("valid-guia.json"));
    ASSERT_EQ(checked.status, 200) << checked.body;
    EXPECT_EQ(body_of(checked)["lines"].size(), 6u);
    EXPECT_EQ(body_of(checked)["lines"][1]["passed"], true) << checked.body;

    auto wrong = json::parse(example("valid-guia.json"));
    wrong["produtos"][1]["A_Zona_Taxacao"] = "99";
    const auto failed = body_of(call("POST", "/guias/check", {}, {}, wrong.dump()));
    EXPECT_EQ(failed["status"], 1);
    EXPECT_EQ(failed["lines"][1]["passed"], false);
    EXPECT_EQ(failed["lines"][1]["place"], "/produtos/1");
    EXPECT_EQ(count("Tbl_Cab"), 0);
    EXPECT_EQ(count("Tbl_Linha"), 0);
}

TEST_P(HandlersTest, ALineIsJudgedWithTheValuesItCouldHave)
{
    struct Case {
        json line;
        bool passed;
        bool offers_values;
    };
    const Case cases[] = {
        {{{"B_Produto", "C01"}, {"A_Zona_Taxacao", "01"}, {"Escalao", "50"}, {"E_Velocidade", "0"}, {"Formato", "02"},
          {"PreTratamento", "1"}, {"Desconto", "0"}, {"CodAmbitoDist", "0"}, {"Entrega_Sampling", "0"},
          {"ListaServesp", "0"}},
         true, false},
        {{{"B_Produto", "C01"}, {"A_Zona_Taxacao", "99"}, {"Escalao", "50"}, {"E_Velocidade", "0"}, {"Formato", "02"},
          {"PreTratamento", "1"}, {"Desconto", "0"}, {"CodAmbitoDist", "0"}, {"Entrega_Sampling", "0"},
          {"ListaServesp", "0"}},
         false, true},
        {{{"B_Produto", "C01"}, {"A_Zona_Taxacao", "01"}, {"Escalao", "999999"}, {"E_Velocidade", "0"},
          {"Formato", "02"}, {"PreTratamento", "1"}, {"Desconto", "0"}, {"CodAmbitoDist", "0"},
          {"Entrega_Sampling", "0"}, {"ListaServesp", "0"}, {"header", {{"cb_Pagamento", "1"}}}},
         false, true},
    };
    for (const auto& c : cases) {
        const auto r = call("POST", "/lines/check", {}, {}, c.line.dump());
        ASSERT_EQ(r.status, 200) << c.line << " -> " << r.body;
        const json b = body_of(r);
        EXPECT_EQ(b["passed"], c.passed) << r.body;
        if (!c.passed) EXPECT_TRUE(b.contains("number") && b.contains("possible_values")) << r.body;
        if (c.offers_values) EXPECT_FALSE(b["possible_values"].empty()) << r.body;
    }
    const json zones = body_of(call("GET", "/codes", {}, {{"kind", "zone"}, {"product", "C01"}}));
    ASSERT_EQ(zones["kinds"].size(), 1u);
    EXPECT_EQ(zones["kinds"][0]["field"], "A_Zona_Taxacao");
    EXPECT_FALSE(zones["kinds"][0]["codes"].empty());
}

TEST_P(HandlersTest, AStoredGuiaPrintsEveryCopyAndExportsItsLines)
{
    add_example_client();
    ASSERT_EQ(call("PUT", "/settings", {}, {}, R"({"settings": {"vGuiaNVias": "2", "vGuiaMargensTopo": {"value": "5mm"}}})")
                  .status,
              200);
    const auto n_req = std::to_string(save_example_guia());
    const auto pdf = call("GET", "/guias/{id}/pdf", {{"id", n_req}});
    ASSERT_EQ(pdf.status, 200) << pdf.body;
    EXPECT_EQ(pdf.content_type, "application/pdf");
    EXPECT_TRUE(pdf.body.starts_with("%PDF-"));
    ASSERT_EQ(pdf.headers.size(), 1u);
    EXPECT_EQ(pdf.headers[0].second, "attachment; filename=\"Guia_2026-1.pdf\"");
    EXPECT_EQ(call("GET", "/guias/{id}/pdf", {{"id", "99"}}).status, 404);

    const auto csv = call("GET", "/guias/export", {}, {{"year", "2026"}});
    ASSERT_EQ(csv.status, 200) << csv.body;
    EXPECT_TRUE(csv.content_type.starts_with("text/csv"));
    EXPECT_EQ(std::count(csv.body.begin(), csv.body.end(), '\n'), 7) << csv.body;  // the header and six lines
    EXPECT_EQ(call("GET", "/guias/export", {}, {{"format", "xml"}}).status, 400);

    const json summary = body_of(call("GET", "/summary", {}, {{"year", "2026"}, {"month", "11"}}));
    EXPECT_EQ(summary["guias"], 1);
    EXPECT_EQ(summary["lines"], 6);
    std::int64_t quantity = 0;
    for (const auto& p : summary["products"]) quantity += p["quantity"].get<std::int64_t>();
    EXPECT_EQ(quantity, 300 + 150 + 20 + 120 + 500 + 300);
    EXPECT_EQ(body_of(call("GET", "/summary", {}, {{"year", "2025"}}))["guias"], 0);
    EXPECT_EQ(call("GET", "/summary", {}, {{"month", "11"}}).status, 400);
}

TEST_P(HandlersTest, SettingsAreCheckedSavedAuditedAndPreviewedUnsaved)
{
    const auto before = body_of(call("GET", "/settings"))["settings"];
    struct Case {
        const char* body;
        int status;
        const char* field;
    };
    const Case refused[] = {
        {R"({"settings": {"vNada": "1"}})", 422, "/settings/vNada"},
        {R"({"settings": {"vGuiaNVias": "muitas"}})", 422, "/settings/vGuiaNVias"},
        {R"({"settings": {"vGuiaMargensTopo": "900mm"}})", 422, "/settings/vGuiaMargensTopo"},
        {R"({"settings": {"vGuiaNVias": true}})", 422, "/settings/vGuiaNVias"},
        {R"({"setings": {}})", 422, "/setings"},
    };
    for (const auto& c : refused) {
        for (const char* pattern : {"/settings", "/settings/preview"}) {
            const auto r = call(pattern[9] ? "POST" : "PUT", pattern, {}, {}, c.body);
            EXPECT_EQ(r.status, c.status) << c.body << " -> " << r.body;
            EXPECT_EQ(body_of(r).value("field", ""), c.field) << c.body;
        }
    }
    EXPECT_EQ(body_of(call("GET", "/settings"))["settings"], before);

    const auto preview = call("POST", "/settings/preview", {}, {}, R"({"settings": {"vGuiaMargensEsquerda": "10mm"}})");
    ASSERT_EQ(preview.status, 200) << preview.body;
    EXPECT_TRUE(preview.body.starts_with("%PDF-"));
    EXPECT_FALSE(preview.audit);
    EXPECT_EQ(body_of(call("GET", "/settings"))["settings"], before);

    const auto saved = call("PUT", "/settings", {}, {}, R"({"settings": {"vGuiaMargensEsquerda": "10mm"}})");
    ASSERT_EQ(saved.status, 200) << saved.body;
    EXPECT_EQ(body_of(saved)["settings"]["vGuiaMargensEsquerda"]["value"], "567");
    ASSERT_TRUE(saved.audit);
    EXPECT_EQ(saved.audit->action, "settings");
}

TEST_P(HandlersTest, AcceptedValuesFollowWhatTheLineHolds)
{
    const auto zones = body_of(call("GET", "/possible-values", {}, {{"field", "A_Zona_Taxacao"}, {"B_Produto", "C01"}}));
    ASSERT_FALSE(zones["possible_values"].empty()) << zones;
    EXPECT_TRUE(zones["possible_values"][0].contains("code"));
    const auto steps =
        body_of(call("GET", "/possible-values", {}, {{"field", "Escalao"}, {"B_Produto", "C01"}, {"A_Zona_Taxacao", "01"}}));
    ASSERT_FALSE(steps["possible_values"].empty()) << steps;
    EXPECT_TRUE(steps["possible_values"][0].contains("minimum"));
    // A zone no rule of the product has leaves nothing to offer for the fields after it.
    const auto none =
        body_of(call("GET", "/possible-values", {}, {{"field", "Escalao"}, {"B_Produto", "C01"}, {"A_Zona_Taxacao", "99"}}));
    EXPECT_TRUE(none["possible_values"].empty()) << none;
    EXPECT_FALSE(body_of(call("GET", "/possible-values", {}, {{"field", "B_Produto"}}))["possible_values"].empty());
    EXPECT_EQ(call("GET", "/possible-values", {}, {{"field", "Cor"}, {"B_Produto", "C01"}}).status, 400);
    EXPECT_EQ(call("GET", "/possible-values", {}, {{"field", "Escalao"}}).status, 400);
    EXPECT_EQ(call("GET", "/possible-values", {}, {{"field", "E_Velocidade"}, {"B_Produto", "C01"}, {"Escalao", "x"}}).status,
              400);
}

std::string jet_file(const char* name)
{
    std::ifstream in(kJetFixtures / name, std::ios::binary);
    std::stringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

TEST_P(HandlersTest, AnOldFileIsImportedInTheBackgroundAfterItsDryRun)
{
    if (!jet_fixtures_present()) GTEST_SKIP() << kNoJetFixtures;
    const std::string file = jet_file("v0501.mdb");
    ASSERT_FALSE(file.empty());
    const auto report = call("POST", "/imports", {}, {{"dry_run", "1"}}, file);
    ASSERT_EQ(report.status, 200) << report.body;
    EXPECT_FALSE(report.audit);
    EXPECT_EQ(count("Tbl_Cab"), 0);
    const auto brought = body_of(report)["imported"];
    EXPECT_GT(brought["guias"].get<std::int64_t>(), 0) << report.body;
    EXPECT_EQ(call("POST", "/imports", {}, {{"dry_run", "1"}}, "not a database").status, 422);

    const std::string conn = scratch->conn();
    serve::import_jobs().set_opener([conn] { return OpenDatabase(conn); });
    const auto started = call("POST", "/imports", {}, {}, file);
    ASSERT_EQ(started.status, 202) << started.body;
    ASSERT_TRUE(started.audit);
    serve::import_jobs().wait();
    const auto id = std::to_string(body_of(started)["id"].get<std::int64_t>());
    const auto progress = body_of(call("GET", "/imports/{id}", {{"id", id}}));
    EXPECT_EQ(progress["state"], "done") << progress;
    EXPECT_EQ(progress["done"], progress["total"]);
    EXPECT_EQ(progress["summary"]["imported"], brought);
    EXPECT_EQ(count("Tbl_Cab"), brought["guias"].get<std::int64_t>());
    EXPECT_EQ(call("GET", "/imports/{id}", {{"id", "999"}}).status, 404);
    serve::import_jobs().set_opener(nullptr);
}

}  // namespace
}  // namespace nimbara
