#include <gtest/gtest.h>

#include "cli_run.hpp"
#include "nimbara/GlobalXML.hpp"
#include "support/temp_folder.hpp"

using nimbara::testing::example;
using nimbara::testing::run;
namespace fs = std::filesystem;

TEST(Cli, VersionAndEveryCatalogueDocumentExactly)
{
    const auto version = run("--version");
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out, "nimbara 5.3.15\n");

    const auto names = nimbara::GlobalXML::document_names();
    EXPECT_EQ(names.size(), 27u) << "ten rule documents, eight lists of values, nine possible-value documents";
    for (const auto name : names) {
        const auto r = run("document " + std::string(name));
        EXPECT_EQ(r.status, 0) << name;
        EXPECT_EQ(r.out, *nimbara::GlobalXML::document(name)) << name;
    }
}

TEST(Cli, CheckLinesJudgesEveryRowAndRefusesBadOnes)
{
    const std::string batch =
        "C01\t01\t50\t0\t02\t1\t0\t0\t0\t0\n"
        "C01\t01\t50\t0\t02\n"                       // too few fields
        "C01\t01\t5x\t0\t02\t1\t0\t0\t0\t0\n"        // weight is no number
        "C01\t01\t3000000000\t0\t02\t1\t0\t0\t0\t0\n"  // weight beyond 32 bits
        "C24\t01\t10\t01\t01\t1\t0\t0\t0\t02\r\n"    // CR LF line end
        "C01\t01\t20\t0\t01\t1\t0\t0\t0\t0,02,07\n";
    const auto r = run("check-lines", batch);
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.out,
              "0\n"
              "!expected 10 tab-separated fields, found 5\n"
              "!weight \"5x\" is not a 32-bit whole number\n"
              "!weight \"3000000000\" is not a 32-bit whole number\n"
              "-16\t06\n"
              "-10\t02,07\n");
    for (const char* place : {"<stdin>:2:", "<stdin>:3:", "<stdin>:4:"}) EXPECT_NE(r.err.find(place), std::string::npos) << r.err;

    const auto clean = run("check-lines", "C01\t01\t0\t0\t02\t1\t0\t0\t0\t0\n");
    EXPECT_EQ(clean.status, 0);
    EXPECT_EQ(clean.out, "-3\tErro na Validação do Peso\n");
}

TEST(Cli, FormWritesAPdfAndAPreview)
{
    nimbara::testing::TempFolder folder;
    const auto pdf = folder.path() / "form.pdf", png = folder.path() / "form.png";
    const auto r = run("form --edition database --copy 2 --date 2024-03-15 --left 2.5 --top 1 --out " + pdf.string() +
                       " --png " + png.string());
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, pdf.string() + "\n" + png.string() + "\n");
    EXPECT_GT(fs::file_size(pdf), 1000u);
    EXPECT_GT(fs::file_size(png), 1000u);
}

// Bad input to the program: status 2, nothing on standard output or on disk, a message naming what.
TEST(Cli, RefusalsNameWhatIsWrong)
{
    nimbara::testing::TempFolder folder;
    const std::string dir = folder.path().string(), valid = example("valid-guia.json");
    struct Case { std::string args, named; };
    const Case cases[] = {
        {"document getXML_Nada", "getXML_Nada"},
        {"document getXML_Nada", "getXML_DoValServEsp"},  // the known names are listed
        {"check-lines /nonexistent/batch.tsv", "/nonexistent/batch.tsv"},
        {"form --out /nonexistent-folder/form.pdf", "/nonexistent-folder/form.pdf"},
        {"form --out X.pdf --edition paper", "--edition"},
        {"form --out X.pdf --left north", "--left"},
        {"check " + valid + " --report-dir /dev/null/reports", "cannot create the report folder \"/dev/null/reports\""},
        {"print " + valid + " --report-dir " + dir + " --out-dir /dev/null/pdf", "cannot create the output folder"},
        {"check " + dir + "/none.json", "none.json: cannot open the file: No such file or directory"},
        {"check " + dir, "is a folder, not a file"},
        {"chek " + valid, "unknown command \"chek\"; did you mean \"check\"?"},
        {"print " + valid + " --repot-dir " + dir, "unknown option \"--repot-dir\"; did you mean \"--report-dir\"?"},
        {"help nada", "unknown command \"nada\""},
        {"", "a command is required"},
        {"form --out X.pdf --copy -1", "0 to 32767"},
        {"form --out " + dir + "/f.pdf --png /dev/null/x.png", "x.png"},
    };
    for (const auto& c : cases) {
        const auto r = run(c.args);
        EXPECT_EQ(r.status, 2) << c.args;
        EXPECT_EQ(r.out, "") << c.args;
        EXPECT_NE(r.err.find(c.named), std::string::npos) << c.args << ": " << r.err;
    }
    EXPECT_FALSE(fs::exists("X.pdf"));
    EXPECT_TRUE(fs::is_empty(folder.path()));
}
