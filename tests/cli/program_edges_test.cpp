// The program at the edges a demanding user reaches: values that cannot be printed whole, bad
// numbers, huge or duplicate input, and many runs at once into shared folders.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <thread>
#include <vector>

#include "cli_run.hpp"
#include "nimbara/guia_file.hpp"
#include "pdf_pages.hpp"
#include "support/temp_folder.hpp"

using nimbara::testing::answer_log;
using nimbara::testing::count_files;
using nimbara::testing::example;
using nimbara::testing::run;
namespace fs = std::filesystem;

namespace {

nimbara::GuiaFile valid() { return nimbara::read_guia_file(example("valid-guia.json")); }


}  // namespace

// Each case changes the valid Guia in one way; status 3 says it was validated (and reported) but not
// printed, and names the place.
TEST(ProgramEdges, WhatCannotPrintWholeIsNamed)
{
    using Change = std::function<void(nimbara::GuiaFile&)>;
    struct Case { const char* what; Change change; int status; std::string named; };
    const Case cases[] = {
        {"no margins", [](auto& g) { g.parametros.vGuiaMargensTopo.clear(); }, 3, "/parametros/vGuiaMargensTopo"},
        {"no copies given", [](auto& g) { g.parametros.vGuiaNVias.clear(); }, 3, "/parametros/vGuiaNVias"},
        {"copies no number", [](auto& g) { g.parametros.vGuiaNVias = "abc"; }, 3, "/parametros/vGuiaNVias"},
        {"zero copies", [](auto& g) { g.parametros.vGuiaNVias = "0"; }, 3, "/parametros/vGuiaNVias"},
        {"too many copies", [](auto& g) { g.parametros.vGuiaNVias = "99999"; }, 3, "/parametros/vGuiaNVias"},
        {"yearly number of five", [](auto& g) { g.cabecalho.cb_IDReqAnual = "12345"; }, 3, "/cabecalho/cb_IDReqAnual"},
        {"client of ten", [](auto& g) { g.cabecalho.cb_CodCliente = "1234567890"; }, 3, "/cabecalho/cb_CodCliente"},
        {"service of eight digits", [](auto& g) { g.servicos.at(0).Valor = "12345678"; }, 3, "/servicos/0/Valor"},
        {"request number too large", [](auto& g) { g.cabecalho.cb_N_Req = "2147483648"; }, 3, "/cabecalho/cb_N_Req"},
        {"request number of 1e400", [](auto& g) { g.cabecalho.cb_N_Req = "1e400"; }, 3, "/cabecalho/cb_N_Req"},
        {"long document number", [](auto& g) { g.cabecalho.cb_NDoc = std::string(300, '7'); }, 0, "printed"},
        {"weight with a fraction", [](auto& g) { g.produtos.at(0).Escalao = "50.5"; }, 2, "/produtos/0/Escalao"},
        {"weight no number", [](auto& g) { g.produtos.at(0).Escalao = "abc"; }, 2, "/produtos/0/Escalao"},
        {"weight with blanks", [](auto& g) { g.produtos.at(0).Escalao = " 50 "; }, 0, "printed"},
    };
    for (const auto& c : cases) {
        nimbara::testing::TempFolder folder;
        auto guia = valid();
        c.change(guia);
        const auto file = folder.write("guia.json", nimbara::write_guia_file(guia));
        const auto r = run("print " + file + " --report-dir " + folder.path().string() + " --out-dir " +
                           (folder.path() / "pdf").string() + " --print-log " + (folder.path() / "p.log").string());
        EXPECT_EQ(r.status, c.status) << c.what << ": " << r.err;
        EXPECT_NE(r.err.find(c.named), std::string::npos) << c.what << ": " << r.err;
        const auto reports = count_files(folder.path(), "ErrosGuia_");
        EXPECT_EQ(reports, c.status == 2 ? 0u : 1u) << c.what;
        if (c.status == 3) EXPECT_FALSE(fs::exists(folder.path() / "pdf") && !fs::is_empty(folder.path() / "pdf")) << c.what;
    }
}

TEST(ProgramEdges, InputIsReadStrictlyAndWhole)
{
    nimbara::testing::TempFolder folder;
    const auto dir = " --report-dir " + folder.path().string();
    struct Case { const char* what; std::string args; std::string input; int status; std::string named; };
    const Case cases[] = {
        {"endless input", "check /dev/zero" + dir, "", 2, "larger than 16777216 bytes"},
        {"duplicate key", "check -" + dir, R"({"cabecalho": {"cb_NDoc": "1", "cb_NDoc": "2"}})", 2,
         "/cabecalho: the key \"cb_NDoc\" is given twice"},
        {"number past double", "check -" + dir, R"({"cabecalho": {"cb_N_Req": 1e400}})", 2,
         "line 1, column 32: number overflow parsing '1e400'"},
        {"standard input", "check - --json" + dir, nimbara::write_guia_file(valid()), 0, "\"erro_id\": 0"},
        {"check-lines from standard input", "check-lines -", "C01\t01\t 50\t0\t02\t1\t0\t0\t\t\n", 0, "0\n"},
        {"check-lines weight with a fraction", "check-lines -", "C01\t01\t50.0\t0\t02\t1\t0\t0\t\t\n", 2, "50.0"},
    };
    for (const auto& c : cases) {
        const auto r = run(c.args, c.input);
        EXPECT_EQ(r.status, c.status) << c.what << ": " << r.err;
        EXPECT_NE((r.out + r.err).find(c.named), std::string::npos) << c.what << ": " << r.out << r.err;
    }

    // A number too long for any machine type is kept as it was written, in the report as in the barcode.
    auto guia = valid();
    guia.cabecalho.cb_NDoc = "NDOC";
    std::string text = nimbara::write_guia_file(guia);
    text.replace(text.find("\"NDOC\""), 6, "123456789012345678901234567890");
    const auto file = folder.write("big.json", text);
    const auto r = run("check " + file + dir);
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(nimbara::testing::read_file(answer_log(r.out))
                    .starts_with("Numero Documento = 123456789012345678901234567890\r\n"));
}

// Twenty runs at once into shared folders, of Guias that share a document number: every PDF and every
// report is there, and each answer names its own report.
TEST(ProgramEdges, ParallelRunsNeitherLoseNorMixWork)
{
    nimbara::testing::TempFolder folder;
    const auto reports = folder.path() / "reports", pdfs = folder.path() / "pdf";
    constexpr int kRuns = 20;
    std::vector<nimbara::testing::Run> results(kRuns);
    std::vector<std::thread> runs;
    for (int i = 0; i < kRuns; ++i) {
        auto guia = valid();
        guia.cabecalho.cb_CodCliente = std::to_string(900 + i);
        const auto file = folder.write("g" + std::to_string(i) + ".json", nimbara::write_guia_file(guia));
        const std::string command = i % 2 ? "check " : "print ";
        runs.emplace_back([&, i, file, command] {
            const std::string printing = " --out-dir " + pdfs.string() + " --print-log " + (folder.path() / "p.log").string();
            results[i] = run(command + file + " --report-dir " + reports.string() + (i % 2 ? "" : printing));
        });
    }
    for (auto& t : runs) t.join();
    std::set<std::string> named;
    for (int i = 0; i < kRuns; ++i) {
        ASSERT_EQ(results[i].status, 0) << results[i].err;
        const auto report = answer_log(results[i].out);
        named.insert(report);
        EXPECT_NE(nimbara::testing::read_file(report).find("Codigo Cliente = " + std::to_string(900 + i) + "\r\n"),
                  std::string::npos)
            << "run " << i << " names another Guia's report";
    }
    EXPECT_EQ(named.size(), std::size_t{kRuns});
    EXPECT_EQ(count_files(reports, "ErrosGuia_"), std::size_t{kRuns});
    EXPECT_EQ(count_files(pdfs, "Guia_"), std::size_t{kRuns / 2});
    EXPECT_EQ(count_files(reports, ".nimbara-") + count_files(pdfs, ".nimbara-"), 0u) << "no temporary is left";
}

// A print stopped by SIGTERM or SIGINT leaves no half-written file behind.
TEST(ProgramEdges, StoppedPrintLeavesNoPartialFile)
{
    for (const int signal : {SIGTERM, SIGINT}) {
        nimbara::testing::TempFolder folder;
        auto guia = nimbara::read_guia_file(example("fourteen-lines.json"));
        guia.parametros.vGuiaNVias = "3000";
        const auto file = folder.write("guia.json", nimbara::write_guia_file(guia));
        const auto pdfs = folder.path() / "pdf";
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            ::execl(NIMBARA_CLI, "nimbara", "print", file.c_str(), "--quiet", "--report-dir", folder.path().c_str(),
                    "--out-dir", pdfs.c_str(), "--print-log", (folder.path() / "p.log").c_str(), nullptr);
            ::_exit(127);
        }
        // Stop it in the middle of its copies.
        for (int wait = 0; wait < 500 && (!fs::exists(pdfs) || count_files(pdfs, "Guia_") < 2); ++wait) ::usleep(10000);
        ::kill(child, signal);
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the print ended before it was stopped";
        EXPECT_GE(count_files(pdfs, "Guia_"), 2u);
        EXPECT_EQ(count_files(pdfs, ".nimbara-"), 0u) << "signal " << signal;
    }
}

// The README's own sample Guia prints whole.
TEST(ProgramEdges, ReadmeSamplePrints)
{
    const std::string readme = nimbara::testing::read_file(fs::path(NIMBARA_SOURCE_DIR) / "README.md");
    const auto from = readme.find("```json\n") + 8;
    const std::string sample = readme.substr(from, readme.find("```", from) - from);
    nimbara::testing::TempFolder folder;
    const auto r = run("print - --report-dir " + folder.path().string() + " --print-log " +
                           (folder.path() / "p.log").string(),
                       sample);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(count_files(folder.path(), "Guia_2026-1_via1.pdf"), 1u);
}

// The symbol's day code follows the Guia's date: computed when not given; given beside a date it
// does not match, `check` warns and `print` refuses, naming both.
TEST(ProgramEdges, TheDayCodeFollowsTheDate)
{
    struct Case { const char* what; const char* code; const char* command; int status; std::string said; };
    const Case cases[] = {
        {"not given", "", "print", 0, "printed"},
        {"the date's own", "6328", "print", 0, "printed"},
        {"another day", "6001", "print", 2,
         "/cabecalho: cb_Drqjul \"6001\" is not the day code of cb_DataRequisicao \"2026-11-24\", which is \"6328\"; "
         "nothing printed"},
        {"no digits", "abcd", "print", 2, "cb_Drqjul \"abcd\" is not the day code of cb_DataRequisicao \"2026-11-24\""},
        {"another day, checked", "6001", "check", 0,
         "guia.json: /cabecalho: cb_Drqjul \"6001\" is not the day code"},
    };
    for (const auto& c : cases) {
        nimbara::testing::TempFolder folder;
        auto guia = valid();
        guia.cabecalho.cb_DataRequisicao = "2026-11-24";
        guia.cabecalho.cb_Drqjul = c.code;
        const auto file = folder.write("guia.json", nimbara::write_guia_file(guia));
        const auto pdfs = folder.path() / "pdf";
        const std::string out = std::string(c.command) == "print"
                                    ? " --out-dir " + pdfs.string() + " --print-log " + (folder.path() / "p.log").string()
                                    : "";
        const auto r = run(std::string(c.command) + " " + file + " --report-dir " + folder.path().string() + out);
        EXPECT_EQ(r.status, c.status) << c.what << ": " << r.err;
        EXPECT_NE(r.err.find(c.said), std::string::npos) << c.what << ": " << r.err;
        if (c.status == 0 && std::string(c.command) == "print")
            EXPECT_EQ(nimbara::testing::symbol_of(pdfs / "Guia_2026-1027_via1.pdf", 1, folder.path()).substr(37, 4), "6328")
                << c.what;
        if (c.status == 2) {
            EXPECT_FALSE(fs::exists(pdfs)) << c.what;
            EXPECT_EQ(count_files(folder.path(), "ErrosGuia_"), 0u) << "refused before anything is written";
        }
    }
}
