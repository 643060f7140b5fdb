// Check and print beside the system's texts: a plain explanation where they mislead, the report as
// it always was, reports only when asked for, and a Guia without lines refused.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli_run.hpp"
#include "nimbara/cls_ValProdutosA.hpp"
#include "nimbara/guia_file.hpp"
#include "support/temp_folder.hpp"

using nimbara::testing::answer_log;
using nimbara::testing::example;
using nimbara::testing::run;
namespace fs = std::filesystem;

namespace {

struct Line {
    std::string n, product, zone, speed, weight, quantity, format, discount, services;
};

std::string guia(const std::vector<Line>& lines, const std::string& access = "0")
{
    nlohmann::json g = {{"cabecalho", {{"cb_N_Req", "1"}, {"cb_CodCliente", "456"}, {"cb_TipoAcesso", access}}},
                        {"produtos", nlohmann::json::array()}};
    for (const auto& l : lines)
        g["produtos"].push_back({{"N_Linha", l.n}, {"B_Produto", l.product}, {"A_Zona_Taxacao", l.zone},
                                 {"E_Velocidade", l.speed}, {"Escalao", l.weight}, {"D_Quantidade", l.quantity},
                                 {"Formato", l.format}, {"PreTratamento", "0"}, {"Desconto", l.discount},
                                 {"CodAmbitoDist", "0"}, {"ListaServesp", l.services}, {"TaxEsp_Quantidade", "0"}});
    return g.dump();
}

const Line kGood{"1", "C01", "01", "0", "40", "10", "02", "0", "0"};

}  // namespace

TEST(GuiaExplanations, BesideTheSystemsTextWhereItMisleads)
{
    nimbara::testing::TempFolder folder;
    struct Case { std::string name, input; int number; std::string explanation; };
    const Case cases[] = {
        {"unknown product", guia({{"1", "X99", "01", "0", "40", "10", "02", "0", "0"}}), -100,
         "product \"X99\" is not in the catalogue"},
        {"missing service", guia({{"1", "C06", "03", "02", "50", "10", "0", "0", "02"}}), -11,
         "service 06 (Serviço Especial de Registo) is missing: product C06 needs it beside service 02, 04 or 05"},
        {"minimum summed over zones",
         guia({{"1", "C03", "01", "0", "100", "100", "0", "0", "0"}, {"2", "C03", "05", "02", "100", "20", "0", "0", "0"}}),
         -1, "product C03 (every zone, as a line of it is in zone 01): the D_Quantidade of lines 1 and 2 sum to 120 "
             "objects, below the minimum of 250"},
        {"national minimum", guia({{"7", "C07", "01", "0", "100", "60", "0", "01", "0"}}), -2,
         "product C07 (national mail): the D_Quantidade of line 7 is 60 objects, below the minimum of 100"},
        {"network access", guia({kGood}, "2"), -15, 
         "cb_TipoAcesso 2 (network access) allows only products beginning with P, not only P01; line 1 has C01"},
        {"wrong service", guia({{"1", "C01", "01", "0", "40", "10", "02", "0", "07"}}), -10, ""},  // says enough
    };
    for (const auto& c : cases) {
        const auto json = run("check - --json --report-dir " + folder.path().string(), c.input);
        EXPECT_EQ(json.status, 1) << c.name << ": " << json.err;
        const auto answer = nlohmann::json::parse(json.out);
        ASSERT_EQ(answer["errors"].size(), 1u) << c.name << ": " << json.out;
        const auto& error = answer["errors"][0];
        EXPECT_EQ(error["number"], c.number) << c.name;
        if (c.explanation.empty()) {
            EXPECT_FALSE(error.contains("explanation")) << c.name << ": " << error;
            continue;
        }
        EXPECT_NE(error.value("explanation", "").find(c.explanation), std::string::npos) << c.name << ": " << error;
        // The terminal gets it too, on standard error beside the answer.
        const auto text = run("check - --report never", c.input);
        EXPECT_NE(text.err.find(": " + std::to_string(c.number) + ": " + c.explanation), std::string::npos)
            << c.name << ": " << text.err;
        EXPECT_EQ(run("check - --report never --quiet", c.input).err, "") << c.name;
    }
}

// The report is the library's own, byte for byte: the explanations never reach it.
TEST(GuiaExplanations, ReportStaysTheSystems)
{
    nimbara::testing::TempFolder folder;
    const std::string input = guia({{"1", "X99", "01", "0", "40", "10", "02", "0", "0"},
                                    {"2", "C06", "03", "02", "50", "10", "0", "0", "02"}});
    const auto r = run("check - --report-dir " + folder.path().string(), input);
    ASSERT_EQ(r.status, 1) << r.err;

    nimbara::cls_ValProdutosA library;
    ASSERT_FALSE(nimbara::fill_guia(library, nimbara::parse_guia_file(input, "<test>")));
    library.setReportFolder(folder.path() / "library");
    fs::create_directory(folder.path() / "library");
    library.setPrintingEnabled(false);
    const auto outcome = library.ImprimeGuiaOutcome(false);
    ASSERT_TRUE(outcome.report);
    EXPECT_EQ(nimbara::testing::read_file(answer_log(r.out)), nimbara::testing::read_file(*outcome.report));
    EXPECT_NE(nimbara::testing::read_file(*outcome.report).find("Ocorreu um erro na leitura do XML"), std::string::npos);
}

TEST(QuietRuns, ReportOnlyWhenAsked)
{
    struct Case { std::string command, file, report; bool left; const char* log_file; };
    const Case cases[] = {
        {"check", "valid-guia.json", "always", true, nullptr},
        {"check", "valid-guia.json", "errors", false, "<LOG_FILE></LOG_FILE>"},
        {"check", "line-errors.json", "errors", true, nullptr},
        {"check", "line-errors.json", "never", false, "<LOG_FILE></LOG_FILE>"},
        {"print", "valid-guia.json", "errors", false, "<LOG_FILE></LOG_FILE>"},
        {"print", "guia-rule-error.json", "errors", true, nullptr},
    };
    int n = 0;
    for (const auto& c : cases) {
        nimbara::testing::TempFolder folder("report-" + std::to_string(++n));
        const std::string dir = folder.path().string();
        const auto r = run(c.command + " " + example(c.file) + " --report " + c.report + " --report-dir " + dir);
        EXPECT_LE(r.status, 1) << c.file << ": " << r.err;
        EXPECT_EQ(nimbara::testing::count_files(folder.path(), "ErrosGuia_"), c.left ? 1u : 0u) << c.file << " " << c.report;
        if (c.log_file) {
            EXPECT_NE(r.out.find(c.log_file), std::string::npos) << r.out;
        }
        const auto json = nlohmann::json::parse(
            run(c.command + " " + example(c.file) + " --json --report " + c.report + " --report-dir " + dir).out);
        EXPECT_EQ(json["report"].is_null(), !c.left) << c.file << " " << c.report;
    }
}

// The library passes a Guia without lines, as it always did; the program refuses one.
TEST(QuietRuns, AGuiaWithoutLinesIsRefused)
{
    nimbara::testing::TempFolder folder;
    for (const std::string input : {"{}", R"({"cabecalho": {"cb_N_Req": "1"}, "produtos": []})"}) {
        for (const std::string command : {"check", "print"}) {
            const auto r = run(command + " - --report-dir " + folder.path().string(), input);
            EXPECT_EQ(r.status, 2) << input;
            EXPECT_EQ(r.out, "");
            EXPECT_NE(r.err.find("<stdin>: /produtos: the Guia has no product lines"), std::string::npos) << r.err;
        }
    }
    EXPECT_TRUE(fs::is_empty(folder.path()));
}
