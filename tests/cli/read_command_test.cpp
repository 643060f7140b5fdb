// nimbara read: printed Guias read back from their pages, with each line's verdict, and the faults of
// a scan named.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "cli/cli_run.hpp"
#include "nimbara/cls_ValProdutosA.hpp"
#include "nimbara/guia_file.hpp"
#include "support/sample_guia.hpp"
#include "support/scan_corpus.hpp"
#include "support/temp_folder.hpp"

using nimbara::testing::example;
using nimbara::testing::run;
using nlohmann::json;
namespace fs = std::filesystem;

namespace {

json document_of(const nimbara::testing::Run& r)
{
    try {
        return json::parse(r.out);
    } catch (const json::exception& e) {
        ADD_FAILURE() << "not one JSON document: " << e.what() << "\n" << r.out;
        return nullptr;
    }
}

// One page of a PDF as a PNG file at 200 dpi.
fs::path png_of(const fs::path& pdf, int page, const fs::path& out)
{
    const std::string cmd = "pdftoppm -r 200 -gray -singlefile -png -f " + std::to_string(page) + " -l " +
                            std::to_string(page) + " " + pdf.string() + " " + out.string();
    EXPECT_EQ(std::system(cmd.c_str()), 0) << cmd;
    return out.string() + ".png";
}

}  // namespace

TEST(ReadCommand, APrintedGuiaReadsBackWithItsVerdicts)
{
    const nimbara::testing::TempFolder folder;
    const auto guia = nimbara::read_guia_file(example("valid-guia.json"));
    const auto printed = run("print " + example("valid-guia.json") + " -q --report-dir " + folder.path().string() +
                             " --out-dir " + folder.path().string());
    ASSERT_EQ(printed.status, 0) << printed.err;
    const auto pdf = folder.path() / "Guia_2026-1027_via1.pdf";
    ASSERT_TRUE(fs::exists(pdf));

    auto r = run("read " + pdf.string());
    EXPECT_EQ(r.status, 0) << r.err;
    auto d = document_of(r);
    ASSERT_EQ(d["guias"].size(), 1u) << d;
    const auto& g = d["guias"][0];
    EXPECT_EQ(g["edition"], "array");
    EXPECT_EQ(g["cabecalho"]["cb_CodContrato"], guia.cabecalho.cb_CodContrato);
    EXPECT_EQ(g["cabecalho"]["cb_IDReqAnual"], guia.cabecalho.cb_IDReqAnual);
    EXPECT_EQ(g["cabecalho"]["cb_NCredencial"], guia.cabecalho.cb_NCredencial);
    ASSERT_EQ(g["produtos"].size(), guia.produtos.size());
    for (std::size_t i = 0; i < guia.produtos.size(); ++i) {
        EXPECT_EQ(g["produtos"][i]["B_Produto"], guia.produtos[i].B_Produto);
        EXPECT_EQ(g["produtos"][i]["Escalao"], guia.produtos[i].Escalao);
        EXPECT_EQ(g["produtos"][i]["verdict"]["passed"], true) << g["produtos"][i];
    }
    ASSERT_EQ(g["servicos"].size(), guia.servicos.size());
    for (std::size_t i = 0; i < guia.servicos.size(); ++i) {
        EXPECT_EQ(g["servicos"][i]["N_Linha"], guia.servicos[i].N_Linha);
        EXPECT_EQ(g["servicos"][i]["CodServEsp"], guia.servicos[i].CodServEsp);
    }
    EXPECT_NE(r.err.find("every line passes"), std::string::npos) << r.err;

    // The same page from standard input, as a PNG.
    const auto png = png_of(pdf, 1, folder.path() / "page");
    r = run("read -", nimbara::testing::read_file(png));
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(document_of(r)["guias"][0]["produtos"], g["produtos"]);
}

// A line that fails gets the verdict check-lines gives it, and exit 1.
TEST(ReadCommand, AFailingLineIsJudgedAsCheckLinesJudgesIt)
{
    const nimbara::testing::TempFolder folder;
    auto guia = nimbara::testing::sample_guia();
    nimbara::testing::add_line(guia);
    nimbara::testing::add_line(guia, {.weight = "0"});  // no rule takes a C01 of 0 g
    const auto pdf = folder.path() / "g.pdf";
    std::ofstream(pdf, std::ios::binary) << nimbara::testing::printed_pdf(guia, folder.path() / "print.log");
    const auto r = run("read " + pdf.string());
    EXPECT_EQ(r.status, 1) << r.err;
    const auto d = document_of(r);
    const auto& lines = d["guias"][0]["produtos"];
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0]["verdict"]["passed"], true);
    const auto batch = run("check-lines -", "C01\t01\t0\t0\t02\t1\t0\t0\t0\t0\n");
    EXPECT_EQ(lines[1]["verdict"]["number"], std::stoi(batch.out)) << lines[1];
    EXPECT_NE(r.err.find("line 2 (C01)"), std::string::npos) << r.err;
}

TEST(ReadCommand, FaultsOfTheScanAreNamed)
{
    const nimbara::testing::TempFolder folder;
    auto guia = nimbara::testing::sample_guia();
    for (int i = 0; i < 16; ++i) nimbara::testing::add_line(guia);
    const auto pdf = folder.path() / "two.pdf";
    std::ofstream(pdf, std::ios::binary) << nimbara::testing::printed_pdf(guia, folder.path() / "print.log");
    const auto first = png_of(pdf, 1, folder.path() / "first"), second = png_of(pdf, 2, folder.path() / "second");
    const auto text = folder.path() / "notes.txt";
    std::ofstream(text) << "no scan";

    struct Case { std::string what, args; int status; std::string said; };
    const Case cases[] = {
        {"both pages, in either order", second.string() + " " + first.string(), 0, "2 pages, 16 lines"},
        {"a page twice", first.string() + " " + second.string() + " " + first.string(), 0, "found more than once"},
        {"the second page missing", first.string(), 2, "page 2 of 2 is missing"},
        {"a file that is no scan", first.string() + " " + second.string() + " " + text.string(), 2,
         text.string() + ": not a PNG, JPEG, TIFF or PDF file"},
        {"a file that is not there", (folder.path() / "none.png").string(), 2, "none.png: cannot be opened"},
    };
    for (const auto& c : cases) {
        const auto r = run("read " + c.args);
        EXPECT_EQ(r.status, c.status) << c.what << "\n" << r.err;
        EXPECT_NE(r.err.find(c.said), std::string::npos) << c.what << "\n" << r.err;
        const auto d = document_of(r);
        EXPECT_EQ(d["status"], c.status) << c.what;
    }
    const auto missing = document_of(run("read " + first.string()));
    EXPECT_EQ(missing["guias"][0]["missing_pages"], json::array({2}));
}
