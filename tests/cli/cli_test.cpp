#include <gtest/gtest.h>

#include <sstream>

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

// Each batch in tests/data/check_lines (NAME.tsv) against its expected answers (NAME.out): a refused
// row answers "!" and its reason, is named by line number on standard error, and makes the status 2.
TEST(Cli, CheckLinesBatchesAgainstTheirExpectedAnswers)
{
    const fs::path folder = fs::path(NIMBARA_SOURCE_DIR) / "tests/data/check_lines";
    int batches = 0;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().extension() != ".tsv") continue;
        ++batches;
        const auto name = entry.path().filename().string();
        const std::string expected = nimbara::testing::read_file(fs::path(entry.path()).replace_extension(".out"));
        const auto r = run("check-lines", nimbara::testing::read_file(entry.path()));
        EXPECT_EQ(r.out, expected) << name;
        std::istringstream answers(expected);
        std::string answer;
        bool refused = false;
        for (int line = 1; std::getline(answers, answer); ++line) {
            if (answer.empty() || answer[0] != '!') continue;
            refused = true;
            EXPECT_NE(r.err.find("<stdin>:" + std::to_string(line) + ": " + answer.substr(1)), std::string::npos)
                << name << " line " << line << ": " << r.err;
        }
        EXPECT_EQ(r.status, refused ? 2 : 0) << name;
    }
    EXPECT_GE(batches, 4);
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
        {"check " + std::string(NIMBARA_SOURCE_DIR) + "/tests/data/guia_files/number-overflow.json --report-dir " + dir,
         "number overflow parsing '1e400'"},
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
