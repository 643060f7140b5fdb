// A Guia file printed by the program: PDF files whose pages, turned into images, carry symbols
// that read back to the payload built here from the Guia by hand.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>

#include "cli_run.hpp"
#include "pdf_pages.hpp"
#include "support/temp_folder.hpp"

using nimbara::testing::example;
using nimbara::testing::pages_of;
using nimbara::testing::read_file;
using nimbara::testing::run;
using nimbara::testing::symbol_of;
namespace fs = std::filesystem;

namespace {

// The bundled valid Guia's payload, field by field.
const std::string kValidGuia =
    std::string("CR") + "050315" + "000000300042" + "000000456" + "00000000" + "6327" + "1027" + "0101" + "SNNN" +
    "0000077" + "0000000000" + "000000000000000" + "06" +
    "01C01000050" "0000300" "021001" "0300" "0" "0000000000000" "00" "000000000" "00" +
    "01C13000050" "0000150" "031201" "0150" "0" "0000000000000" "00" "000000000" "02" "020000000" "100000000" +
    "27E01001000" "0000020" "000001" "0020" "0" "0000000000000" "00" "000000000" "01" "020000000" +
    "01C07000021" "0000120" "001101" "0120" "0" "0000000000000" "00" "000000000" "00" +
    "03C05000100" "0000500" "201001" "0500" "0" "0000000000000" "00" "000000000" "00" +
    "01C03000100" "0000300" "001001" "0300" "0" "0000000000000" "00" "000000000" "00";

}  // namespace

TEST(PrintPdf, ValidGuiaPrintsOnePageWhoseSymbolReadsBack)
{
    nimbara::testing::TempFolder folder;
    const auto out = folder.path() / "pdf";
    fs::create_directory(out);
    const auto r = run("print " + example("valid-guia.json") + " --report-dir " + folder.path().string() +
                       " --out-dir " + out.string());
    ASSERT_EQ(r.status, 0) << r.err << r.out;
    const auto pdf = out / "Guia_2026-1027_via1.pdf";
    ASSERT_TRUE(fs::exists(pdf));
    EXPECT_EQ(pages_of(pdf), 1);
    EXPECT_EQ(symbol_of(pdf, 1, folder.path()), kValidGuia);
    EXPECT_EQ(r.err, "nimbara print: printed " + pdf.string() + "\n") << "nothing went to the print log";
}

TEST(PrintPdf, EachCopyIsAFileAndNoneIsOverwritten)
{
    nimbara::testing::TempFolder folder;
    std::string guia = read_file(example("fourteen-lines.json"));
    guia = std::regex_replace(guia, std::regex(R"("vGuiaNVias": "1")"), R"("vGuiaNVias": "2")");
    const auto file = folder.path() / "two-copies.json";
    std::ofstream(file) << guia;
    std::ofstream(folder.path() / "Guia_2026-1027_via1.pdf") << "kept";

    const auto r = run("print " + file.string() + " --report-dir " + folder.path().string());
    ASSERT_EQ(r.status, 0) << r.err << r.out;
    EXPECT_EQ(read_file(folder.path() / "Guia_2026-1027_via1.pdf"), "kept");
    for (const char* name : {"Guia_2026-1027_via1-2.pdf", "Guia_2026-1027_via2.pdf"}) {
        const auto pdf = folder.path() / name;
        ASSERT_TRUE(fs::exists(pdf)) << name;
        ASSERT_EQ(pages_of(pdf), 2) << name;
        // Fourteen lines: twelve on the first page, two on the second, page numbers patched in.
        const std::string first = symbol_of(pdf, 1, folder.path()), second = symbol_of(pdf, 2, folder.path());
        EXPECT_EQ(first.substr(45, 4) + first.substr(85, 2), "010212") << name << ' ' << first;
        EXPECT_EQ(second.substr(45, 4) + second.substr(85, 2), "020202") << name << ' ' << second;
    }
}

TEST(PrintPdf, OneFileHoldsEveryPassingGuiaInTurnAndNothingWhenNonePasses)
{
    nimbara::testing::TempFolder folder;
    const auto batch = folder.path() / "batch.pdf";
    const auto r = run("print " + example("valid-guia.json") + " " + example("line-errors.json") + " " +
                       example("fourteen-lines.json") + " --one-file " + batch.string() + " --report-dir " +
                       folder.path().string());
    EXPECT_EQ(r.status, 1) << "the worst of the Guias: one failed\n" << r.err;
    ASSERT_TRUE(fs::exists(batch)) << r.err;
    // The failing Guia's explanations come first; the batch is the one file printed.
    EXPECT_TRUE(r.err.ends_with("\nnimbara print: printed " + batch.string() + "\n")) << r.err;
    EXPECT_EQ(r.err.find("printed "), r.err.rfind("printed ")) << r.err;
    ASSERT_EQ(pages_of(batch), 3) << "one page, then the failing Guia's none, then two";
    EXPECT_EQ(symbol_of(batch, 1, folder.path()), kValidGuia);
    EXPECT_EQ(symbol_of(batch, 3, folder.path()).substr(45, 4), "0202");
    for (const auto& entry : fs::directory_iterator(folder.path()))
        EXPECT_FALSE(entry.path().extension() == ".pdf" && entry.path() != batch) << entry.path();

    const auto none = folder.path() / "none.pdf";
    const auto failed = run("print " + example("line-errors.json") + " --one-file " + none.string() + " --report-dir " +
                            folder.path().string());
    EXPECT_EQ(failed.status, 1);
    EXPECT_FALSE(fs::exists(none)) << "a PDF without pages is no document";
}

// A client whose name the standard faces cannot show: the copy comes out whole with embedded faces
// and the same layout (its symbol reads back the same), and the print log says which texts asked.
TEST(PrintPdf, TextsBeyondTheStandardFacesPrintWholeWithEmbeddedFaces)
{
    nimbara::testing::TempFolder folder;
    std::string guia = read_file(example("valid-guia.json"));
    guia = std::regex_replace(guia, std::regex(R"("Papelaria Horizonte, Lda.")"), R"("Łódź Książki")");
    guia = std::regex_replace(guia, std::regex(R"("Rua das Flores, 12")"), R"("ul. Świętokrzyska 12")");
    const auto file = folder.path() / "lodz.json";
    std::ofstream(file) << guia;
    const auto log = folder.path() / "p.log";
    const auto out = folder.path() / "pdf";
    const auto r = run("print " + file.string() + " --json --report-dir " + folder.path().string() + " --out-dir " +
                       out.string() + " --print-log " + log.string());
    ASSERT_EQ(r.status, 0) << r.err << r.out;
    const auto pdf = out / "Guia_2026-1027_via1.pdf";
    ASSERT_TRUE(fs::exists(pdf));
    EXPECT_NE(read_file(pdf).find("/FontFile"), std::string::npos) << "the faces are embedded";
    EXPECT_EQ(symbol_of(pdf, 1, folder.path()), kValidGuia) << "the same page, the same symbol";
    const auto text = folder.path() / "text.txt";
    ASSERT_EQ(std::system(("pdftotext " + pdf.string() + " " + text.string()).c_str()), 0);
    for (const char* shown : {"Łódź Książki", "Świętokrzyska", "501234567"})
        EXPECT_NE(read_file(text).find(shown), std::string::npos) << shown << " is on the page";
    const std::string logged = read_file(log);
    EXPECT_NE(logged.find("printed with embedded faces, asked for by \"Łódź Książki\""), std::string::npos) << logged;
    EXPECT_EQ(logged.find("Erro"), std::string::npos) << logged;

    // In a batch, the Guia before it goes into the same document of embedded faces, whole.
    const auto batch = folder.path() / "batch.pdf";
    const auto b = run("print " + example("valid-guia.json") + " " + file.string() + " --one-file " + batch.string() +
                       " --report-dir " + folder.path().string() + " --print-log " + log.string());
    ASSERT_EQ(b.status, 0) << b.err;
    EXPECT_EQ(pages_of(batch), 2);
    EXPECT_EQ(symbol_of(batch, 1, folder.path()), kValidGuia);
    EXPECT_EQ(symbol_of(batch, 2, folder.path()), kValidGuia);
}
