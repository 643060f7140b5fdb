#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "cli_run.hpp"
#include "support/temp_folder.hpp"

using nimbara::testing::answer_log;
using nimbara::testing::example;
using nimbara::testing::run;
namespace fs = std::filesystem;

namespace {

class GuiaCommands : public ::testing::Test {
protected:
    std::size_t reports() const { return nimbara::testing::count_files(dir_, "ErrosGuia_"); }
    std::string report_dir() const { return " --report-dir " + dir_.string(); }

    nimbara::testing::TempFolder folder_;
    const fs::path& dir_ = folder_.path();
};

}  // namespace

TEST_F(GuiaCommands, AnswersAndStatusByOutcome)
{
    struct Case { const char* command; const char* file; int status; const char* erro_id; };
    const Case cases[] = {
        {"print", "valid-guia.json", 0, "0"},
        {"check", "valid-guia.json", 0, "0"},
        {"check", "fourteen-lines.json", 0, "0"},
        {"check", "line-errors.json", 1, "-1"},
        {"print", "guia-rule-error.json", 1, "-1"},
    };
    int n = 0;
    for (const auto& c : cases) {
        // A folder per run, as two runs within one hundredth of a second draw the same report name.
        const auto folder = dir_ / std::to_string(++n);
        fs::create_directory(folder);
        const auto r = run(std::string(c.command) + " " + example(c.file) + " --report-dir " + folder.string());
        EXPECT_EQ(r.status, c.status) << c.file << r.err;
        EXPECT_TRUE(r.out.starts_with(std::string("<LIST><ITEM><ERRO_ID>") + c.erro_id + "</ERRO_ID><LOG_FILE>" +
                                      folder.string() + "/ErrosGuia_"))
            << r.out;
        EXPECT_TRUE(fs::exists(answer_log(r.out))) << r.out;
    }
}

TEST_F(GuiaCommands, OnlyPrinterWritesNoReport)
{
    const auto r = run("print --only-printer " + example("line-errors.json") + report_dir());
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "<LIST><ITEM><ERRO_ID>0</ERRO_ID><LOG_FILE></LOG_FILE></ITEM></LIST>\n");
    EXPECT_EQ(reports(), 0u);
}

TEST_F(GuiaCommands, BadFilesAreRefusedNamingThePlace)
{
    struct Case { const char* what; std::string text; std::string place; };
    const Case cases[] = {
        {"malformed", "{\n  \"cabecalho\": {\n    \"cb_Nome\": \"Ana\",\n  }\n}\n", "line 4, column 3"},
        {"not an object", "[]", ": /: expected an object, found an array"},
        {"unknown section", R"({"cabecalhos": {}})", "unknown key \"cabecalhos\""},
        {"unknown header key", R"({"cabecalho": {"cb_Name": "Ana"}})", "/cabecalho: unknown key \"cb_Name\""},
        {"unknown line key", R"({"produtos": [{"PreTratamento": "0"}, {"Peso": "1"}]})",
         "/produtos/1: unknown key \"Peso\""},
        {"wrong type", R"({"produtos": [{"PreTratamento": true}]})", "/produtos/0/PreTratamento: expected text or a number, found a boolean"},
        {"null value", R"({"servicos": [{"Valor": null}]})", "/servicos/0/Valor: expected text or a number, found null"},
        {"lines not an array", R"({"produtos": {}})", "/produtos: expected an array, found an object"},
        {"pre-treatment no number", R"({"produtos": [{"PreTratamento": "1"}, {"PreTratamento": "x"}]})",
         "/produtos/1: PreencheProduto refused it"},
        {"pre-treatment missing", R"({"produtos": [{"B_Produto": "C01"}]})", "PreTratamento must be a number, found \"\""},
    };
    for (const auto& c : cases) {
        const auto file = folder_.write("bad.json", c.text);
        const auto r = run("check " + file + report_dir());
        EXPECT_EQ(r.status, 2) << c.what;
        EXPECT_EQ(r.out, "") << c.what;
        EXPECT_NE(r.err.find(file), std::string::npos) << c.what << ": " << r.err;
        EXPECT_NE(r.err.find(c.place), std::string::npos) << c.what << ": " << r.err;
    }
    EXPECT_EQ(reports(), 0u) << "a refused file leaves no report";
}

TEST_F(GuiaCommands, NumbersAreTakenAsText)
{
    const auto file = folder_.write("numbers.json", R"({"cabecalho": {"cb_NDoc": 2026, "cb_CodCliente": 4.5},
        "produtos": [{"A_Zona_Taxacao": "01", "B_Produto": "C01", "E_Velocidade": 0, "D_Quantidade": 300,
                      "N_Linha": 1, "ListaServesp": 0, "CodAmbitoDist": 0, "Escalao": 50, "Formato": "02",
                      "PreTratamento": 1, "Desconto": 0}]})");
    const auto r = run("check " + file + report_dir());
    ASSERT_EQ(r.status, 0) << r.err << r.out;
    const std::string report = nimbara::testing::read_file(answer_log(r.out));
    EXPECT_TRUE(report.starts_with("Numero Documento = 2026\r\nCodigo Cliente = 4.5\r\n")) << report;
}
