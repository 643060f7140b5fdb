#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>

#include "cli/db_program.hpp"
#include "support/temp_folder.hpp"
#include "support/test_database.hpp"

using nimbara::testing::example;
using nimbara::testing::kBothStores;
using nimbara::testing::run;
using nimbara::testing::store_name;
using nlohmann::json;

namespace {

const char* kClient = R"({"vCod_Cliente": "456", "vNome": "Papelaria D'Horizonte — Açores", "iTipoCliente": 1,
  "vMorada": "Rua 'A', 12", "vLocalidade": "Lisboa", "vCodPostal": "1000-100", "vDesigPostal": "LISBOA",
  "vNIF": "501234567", "vObservacoes": "", "iAcessoRede": 0,
  "contratos": [{"vCodContrato": "5", "vDesignacao": "Velho", "vJppCredenciado": true, "vCodCredencial": "0",
                 "vValidacao": "", "vDescricao": "x", "bActivo": false},
                {"vCodContrato": "300042", "vDesignacao": "Correio", "vJppCredenciado": false,
                 "vCodCredencial": "77", "vValidacao": "", "vDescricao": "", "bActivo": true}]})";

class DbGuiaCommandsTest : public nimbara::testing::DbProgramTest {
protected:
    // Each file gets a name of its own, so that a table of cases can be written before it runs.
    std::string write(const std::string& name, const std::string& content)
    {
        const auto path = (folder.path() / (std::to_string(++files) + "-" + name)).string();
        std::ofstream(path) << content;
        return path;
    }
    int files = 0;
    nimbara::testing::TempFolder folder{"db-guia-" + std::to_string(static_cast<int>(GetParam()))};
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Stores, DbGuiaCommandsTest, kBothStores, store_name);

TEST_P(DbGuiaCommandsTest, ClientAndGuiaGoInAndComeBackUnchanged)
{
    auto r = program("client save " + write("client.json", kClient));
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "1\t456\n");
    r = program("client show 456");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(json::parse(r.out), json::parse(kClient));
    EXPECT_EQ(program("client save " + write("again.json", r.out)).out, "1\t456\n") << "an update keeps the id";
    EXPECT_NE(program("client list").out.find("\n1\t456\tPapelaria D'Horizonte — Açores\t1\t"), std::string::npos);

    r = program("save " + example("valid-guia.json"));
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "1\t1\t1\n");
    const auto first = program("show 1");
    ASSERT_EQ(first.status, 0) << first.err;
    const auto shown = write("shown.json", first.out);
    EXPECT_EQ(run("check " + shown + " --report-dir " + folder.path().string()).status, 0) << "check accepts it";
    EXPECT_EQ(program("save " + shown).out, "2\t2\t2\n");
    auto second = json::parse(program("show 2").out);
    auto one = json::parse(first.out);
    for (auto* g : {&one, &second}) {
        for (const char* key : {"cb_N_Req", "cb_IDReqAnual", "cb_NDoc"}) (*g)["cabecalho"].erase(key);
        for (auto& p : (*g)["produtos"]) p.erase("N_Req");
    }
    EXPECT_EQ(one, second) << "save, show and save again store the same content";
    const auto original = json::parse(std::ifstream(example("valid-guia.json")));
    EXPECT_EQ(one["produtos"].size(), original["produtos"].size());
    EXPECT_EQ(one["servicos"], original["servicos"]);

    EXPECT_EQ(program("delete 1").status, 0);
    EXPECT_EQ(program("show 1").status, 2);
    EXPECT_EQ(program("client delete 456").status, 0);
    EXPECT_NE(program("show 2").err.find("no Guia with N_Req 2"), std::string::npos) << "the cascade took its Guias";
}

TEST_P(DbGuiaCommandsTest, DeletesSayWhatWent)
{
    ASSERT_EQ(program("client save " + write("client.json", kClient)).status, 0);
    for (const char* guia : {"valid-guia.json", "fourteen-lines.json", "valid-guia.json", "line-errors.json"})
        ASSERT_EQ(program(std::string("save ") + example(guia)).status, 0) << guia;
    const std::string client = "client 456 \"Papelaria D'Horizonte — Açores\"";
    struct Case {
        std::string args;
        int status;
        std::string out;  // text, or a JSON document when it begins with {
    };
    const Case cases[] = {
        {"delete 1", 0, "deleted Guia 1 of " + client + " with 6 lines and 3 services\n"},
        {"delete 2 --json", 0,
         R"({"command": "nimbara db delete", "status": 0, "deleted": {"n_req": 2, "cod_cliente": "456",
             "nome": "Papelaria D'Horizonte — Açores", "lines": 14, "services": 0}})"},
        {"delete 2 --json", 2,
         R"({"command": "nimbara db delete", "status": 2, "error": "no Guia with N_Req 2"})"},
        {"client delete 456 --json", 0,
         R"({"command": "nimbara db client delete", "status": 0, "deleted": {"cod_cliente": "456",
             "nome": "Papelaria D'Horizonte — Açores", "contracts": 2, "guias": 2, "n_req": [3, 4], "lines": 15,
             "services": 4}})"},
        {"client delete 456", 2, ""},
    };
    for (const auto& c : cases) {
        const auto r = program(c.args);
        EXPECT_EQ(r.status, c.status) << c.args << ": " << r.err;
        if (c.out.starts_with('{')) EXPECT_EQ(json::parse(r.out), json::parse(c.out)) << c.args;
        else EXPECT_EQ(r.out, c.out) << c.args;
    }
    EXPECT_EQ(program("client list").out.find("456"), std::string::npos) << "the client is gone";
}

TEST_P(DbGuiaCommandsTest, BadInputIsNamedAndNothingIsStored)
{
    ASSERT_EQ(program("client save " + write("client.json", kClient)).status, 0);
    json guia = json::parse(std::ifstream(example("valid-guia.json")));
    const auto with = [&](const std::function<void(json&)>& change) {
        json g = guia;
        change(g);
        return write("bad.json", g.dump());
    };
    struct Case { std::string args; std::string message; };
    const Case cases[] = {
        {"save " + with([](json& g) { g["cabecalho"]["cb_CodCliente"] = "999"; }), "/cabecalho/cb_CodCliente: no client 999"},
        {"save " + with([](json& g) { g["cabecalho"]["cb_CodContrato"] = "7"; }), "client 456 has no contract 7"},
        {"save " + with([](json& g) { g["cabecalho"]["cb_Nada"] = "1"; }), "unknown key \"cb_Nada\""},
        {"save " + with([](json& g) { g["produtos"][1]["D_Quantidade"] = "muitos"; }), "/produtos/1/D_Quantidade"},
        {"save " + with([](json& g) { g["produtos"][2]["N_Linha"] = "1"; }), "/produtos/2/N_Linha: line 1 is given twice"},
        {"save " + with([](json& g) { g["produtos"][0]["Escalao"] = json::array(); }), "expected text or a number"},
        {"save " + with([](json& g) { g["servicos"][0]["N_Linha"] = "99"; }), "/servicos/0/N_Linha: no product line 99"},
        {"save " + with([](json& g) { g["cabecalho"]["cb_DataRequisicao"] = "23/11/2026"; }), "cb_DataRequisicao"},
        {"save " + write("broken.json", "{\"cabecalho\": "), "broken.json"},
        {"client save " + write("c.json", R"({"vCod_Cliente": "9", "iTipoCliente": "um"})"), "/iTipoCliente"},
        {"client save " + write("c.json", R"({"vCod_Cliente": "9", "vNada": ""})"), "unknown key \"vNada\""},
        {"client save " + write("c.json", R"({"vCod_Cliente": "nove"})"), "/vCod_Cliente"},
        {"client save " + write("c.json", R"({"vCod_Cliente": "9", "contratos": [{"vCodContrato": "1"},
            {"vCodContrato": "1"}]})"), "contract 1 is given twice"},
        {"client show 999", "no client 999"},
        {"delete 5", "no Guia with N_Req 5"},
    };
    for (const auto& c : cases) {
        const auto r = program(c.args);
        EXPECT_EQ(r.status, 2) << c.args;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << c.args << ": " << r.err;
    }
    EXPECT_EQ(program("client list").out.find("\n9\t"), std::string::npos);
    EXPECT_EQ(program("save " + example("valid-guia.json")).out, "1\t1\t1\n") << "no refused Guia took a number";
}
