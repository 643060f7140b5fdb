// "-" wherever a file is named: standard input read, standard output written, and nothing called
// "-" ever made, as a folder or a file.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>

#include "cli/cli_run.hpp"
#include "cli/db_program.hpp"
#include "support/temp_folder.hpp"

using nimbara::testing::example;
using nimbara::testing::run;
namespace fs = std::filesystem;

namespace {

std::string text_of(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace

TEST(StandardStreams, DocumentsGoToStandardOutputAndNothingIsCalledDash)
{
    const nimbara::testing::TempFolder folder;
    const std::string dir = " --report-dir " + folder.path().string();
    const std::string valid = example("valid-guia.json");
    struct Case {
        std::string args;
        std::string input;
        int status;
        std::string out_starts;  // what standard output begins with
        std::string err_has;     // what standard error holds
    };
    const Case cases[] = {
        {"print " + valid + " --one-file -" + dir, "", 0, "%PDF-", "<LIST><ITEM><ERRO_ID>0</ERRO_ID>"},
        {"print - --one-file -" + dir, text_of(valid), 0, "%PDF-", "printed to standard output"},
        {"print " + valid + " --one-file - --json" + dir, "", 2, "{", "--one-file - and --json both want standard output"},
        {"form --out -", "", 0, "%PDF-", ""},
        {"form --out " + (folder.path() / "form.pdf").string() + " --png -", "", 0, "\x89PNG", "form.pdf"},
        {"form --out - --png -", "", 2, "", "both want standard output"},
        {"check " + valid + " --report-dir -", "", 2, "", "--report-dir -: the report folder cannot be a standard stream"},
        {"print " + valid + dir + " --out-dir -", "", 2, "", "--out-dir -: the output folder cannot be"},
        {"print " + valid + dir + " --print-log -", "", 2, "", "--print-log -: the print log cannot be"},
    };
    for (const auto& c : cases) {
        const auto r = run(c.args, c.input);
        EXPECT_EQ(r.status, c.status) << c.args << ": " << r.err;
        EXPECT_TRUE(r.out.starts_with(c.out_starts)) << c.args << ": " << r.out.substr(0, 80);
        EXPECT_NE(r.err.find(c.err_has), std::string::npos) << c.args << ": " << r.err;
        EXPECT_FALSE(fs::exists("-")) << c.args << ": made a file called \"-\"";
        EXPECT_FALSE(fs::exists(folder.path() / "-")) << c.args;
        if (c.out_starts == "%PDF-") {
            EXPECT_NE(r.out.rfind("%%EOF"), std::string::npos) << c.args << ": the whole document";
            EXPECT_EQ(r.out.find("<LIST>"), std::string::npos) << c.args << ": the answer stays off the document";
        }
    }
}

class StandardStreamsDb : public nimbara::testing::DbProgramTest {};
INSTANTIATE_TEST_SUITE_P(Stores, StandardStreamsDb, nimbara::testing::kBothStores, nimbara::testing::store_name);

TEST_P(StandardStreamsDb, ClientAndGuiaAreSavedFromStandardInput)
{
    auto r = program("client save -", text_of(example("client.json")));
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "1\t456\n");
    r = program("save -", text_of(example("valid-guia.json")));
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "1\t1\t1\n");
    r = program("save - --json", text_of(example("valid-guia.json")));
    ASSERT_EQ(r.status, 0) << r.err;
    const auto saved = nlohmann::json::parse(r.out);
    EXPECT_EQ(saved["input"], "-");
    EXPECT_EQ(saved["N_Req"], 2);
    EXPECT_EQ(saved["status"], 0);

    struct Case {
        std::string args;
        std::string input;
        std::string message;
    };
    const Case refused[] = {
        {"save -", "{\"cabecalho\": [", "<stdin>: "},
        {"client save -", "{\"vCod_Cliente\": \"x\"}", "<stdin>: /vCod_Cliente: \"x\" is no whole number"},
    };
    for (const auto& c : refused) {
        r = program(c.args, c.input);
        EXPECT_EQ(r.status, 2) << c.args;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << c.args << ": " << r.err;
    }
    EXPECT_FALSE(fs::exists("-"));
}
