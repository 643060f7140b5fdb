#include <gtest/gtest.h>

#include "cli_run.hpp"
#include "nimbara/GlobalXML.hpp"

using nimbara::testing::run;

TEST(Cli, Version)
{
    const auto r = run("--version");
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, "nimbara 5.3.15\n");
}

TEST(Cli, DocumentIsWrittenExactly)
{
    const auto r = run("document getXML_DoValAmbitoDist");
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(r.out.starts_with("<LIST><ITEM><CODDAMBITODIST>"));
    EXPECT_TRUE(r.out.ends_with("</ITEM></LIST>"));

    const auto unknown = run("document getXML_Nada");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.out, "");
    EXPECT_NE(unknown.err.find("getXML_Nada"), std::string::npos);
    EXPECT_NE(unknown.err.find("getXML_DoValServEsp"), std::string::npos) << "the known names are listed";
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
    EXPECT_NE(r.err.find("<stdin>:2:"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("<stdin>:3:"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("<stdin>:4:"), std::string::npos) << r.err;

    const auto clean = run("check-lines", "C01\t01\t0\t0\t02\t1\t0\t0\t0\t0\n");
    EXPECT_EQ(clean.status, 0);
    EXPECT_EQ(clean.out, "-3\tErro na Validação do Peso\n");
}

TEST(Cli, CheckLinesMissingFile)
{
    const auto r = run("check-lines /nonexistent/batch.tsv");
    EXPECT_EQ(r.status, 2);
    EXPECT_NE(r.err.find("/nonexistent/batch.tsv"), std::string::npos);
}

TEST(Cli, ServesEveryCatalogueDocument)
{
    const auto names = nimbara::GlobalXML::document_names();
    EXPECT_EQ(names.size(), 27u) << "ten rule documents, eight lists of values, nine possible-value documents";
    for (const auto name : names) {
        const auto r = run("document " + std::string(name));
        EXPECT_EQ(r.status, 0) << name;
        EXPECT_EQ(r.out, *nimbara::GlobalXML::document(name)) << name;
    }
}

TEST(Cli, FormWritesAPdfAndAPreview)
{
    const auto dir = std::filesystem::temp_directory_path() / ("nimbara-cli-form-" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir);
    const auto pdf = dir / "form.pdf", png = dir / "form.png";
    const auto r = run("form --edition database --copy 2 --date 2024-03-15 --left 2.5 --top 1 --out " + pdf.string() +
                       " --png " + png.string());
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, pdf.string() + "\n" + png.string() + "\n");
    EXPECT_GT(std::filesystem::file_size(pdf), 1000u);
    EXPECT_GT(std::filesystem::file_size(png), 1000u);

    const struct {
        const char* args;
        const char* named;
    } refused[] = {
        {"form --out /nonexistent-folder/form.pdf", "/nonexistent-folder/form.pdf"},
        {"form --out X.pdf --edition paper", "--edition"},
        {"form --out X.pdf --left north", "--left"},
    };
    for (const auto& c : refused) {
        const auto bad = run(c.args);
        EXPECT_EQ(bad.status, 2) << c.args;
        EXPECT_NE(bad.err.find(c.named), std::string::npos) << bad.err;
    }
    EXPECT_FALSE(std::filesystem::exists("X.pdf"));
    std::filesystem::remove_all(dir);
}
