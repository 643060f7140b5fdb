// --json on the commands that answer data or a verdict: one document on standard output per run,
// whatever happens, with the input named, the exit status inside, and a failed line's possible values.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>

#include "cli/cli_run.hpp"
#include "cli/db_program.hpp"
#include "support/temp_folder.hpp"

using nimbara::testing::example;
using nimbara::testing::run;
using nlohmann::json;

namespace {

// The one document of a run; a second document or stray text makes the parse fail.
json document(const nimbara::testing::Run& r)
{
    try {
        return json::parse(r.out);
    } catch (const json::exception& e) {
        ADD_FAILURE() << "not one JSON document: " << e.what() << "\n" << r.out;
        return nullptr;
    }
}

}  // namespace

TEST(JsonEverywhere, GuiaCommandsNameTheirInputAndListPossibleValues)
{
    const nimbara::testing::TempFolder folder;
    const std::string dir = " --report-dir " + folder.path().string();
    const std::string errors = example("line-errors.json"), valid = example("valid-guia.json");

    auto r = run("check " + errors + " --json" + dir);
    EXPECT_EQ(r.status, 1);
    auto d = document(r);
    EXPECT_EQ(d["input"], errors);
    EXPECT_EQ(d["status"], 1);
    std::size_t listed = 0;
    for (const auto& e : d["errors"]) {
        ASSERT_TRUE(e.contains("possible_values")) << e;
        listed += !e["possible_values"].empty();
        for (const auto& v : e["possible_values"])
            EXPECT_TRUE((v.contains("code") && v.contains("designation")) || (v.contains("minimum") && v.contains("maximum")))
                << v;
    }
    EXPECT_GT(listed, 0u) << "the values the report lists are in the JSON too: " << d.dump(1);

    r = run("print " + valid + " " + errors + " " + folder.path().string() + "/none.json --json" + dir +
            " --out-dir " + folder.path().string());
    EXPECT_EQ(r.status, 2) << "the worst of the three";
    d = document(r);
    ASSERT_TRUE(d.is_array()) << d;
    ASSERT_EQ(d.size(), 3u);
    EXPECT_EQ(d[0]["input"], valid);
    EXPECT_EQ(d[0]["status"], 0);
    EXPECT_EQ(d[1]["status"], 1);
    EXPECT_EQ(d[2]["input"], folder.path().string() + "/none.json");
    EXPECT_EQ(d[2]["status"], 2);
    EXPECT_EQ(d[2]["command"], "nimbara print");
    EXPECT_NE(d[2]["error"].get<std::string>().find("none.json: cannot open the file"), std::string::npos) << d[2];
    EXPECT_NE(r.err.find("none.json: cannot open the file"), std::string::npos) << "the message stays on standard error";

    r = run("check - --json" + dir, "{\"cabecalho\": 5}");
    EXPECT_EQ(r.status, 2);
    d = document(r);
    EXPECT_EQ(d["input"], "-");
    EXPECT_EQ(d["status"], 2);
    EXPECT_NE(d["error"].get<std::string>().find("<stdin>: /cabecalho: expected an object"), std::string::npos) << d;
}

TEST(JsonEverywhere, CheckLinesAnswersEveryRow)
{
    const auto r = run("check-lines --json", "C01\t01\t50\t0\t02\t1\t0\t0\t0\t0\nC01\t01\t0\t0\t02\t1\t0\t0\t0\t0\n"
                                             "C01\t01\tmuito\t0\t02\t1\t0\t0\t0\t0\n");
    EXPECT_EQ(r.status, 2) << "a row could not be judged";
    const auto d = document(r);
    EXPECT_EQ(d["input"], "-");
    EXPECT_EQ(d["status"], 2);
    ASSERT_EQ(d["results"].size(), 3u) << d;
    EXPECT_EQ(d["results"][0], json({{"line", 1}, {"passed", true}}));
    EXPECT_EQ(d["results"][1]["passed"], false);
    EXPECT_LT(d["results"][1]["number"], 0);
    ASSERT_FALSE(d["results"][1]["possible_values"].empty()) << "the weight steps of C01 in zone 01: " << d;
    EXPECT_TRUE(d["results"][1]["possible_values"][0].contains("minimum")) << d;
    EXPECT_EQ(d["results"][2]["line"], 3);
    EXPECT_NE(d["results"][2]["refused"].get<std::string>().find("weight \"muito\""), std::string::npos) << d;

    const auto missing = run("check-lines /nonexistent/lines.tsv --json");
    EXPECT_EQ(missing.status, 2);
    EXPECT_EQ(document(missing)["status"], 2);
}

class JsonEverywhereDb : public nimbara::testing::DbProgramTest {};
INSTANTIATE_TEST_SUITE_P(Stores, JsonEverywhereDb, nimbara::testing::kBothStores, nimbara::testing::store_name);

TEST_P(JsonEverywhereDb, DbCommandsAnswerOneDocument)
{
    ASSERT_EQ(program("client save " + example("client.json")).status, 0);
    ASSERT_EQ(program("save " + example("line-errors.json")).status, 0);

    struct Case {
        std::string args;
        int status;
        std::string check;  // a JSON pointer that must be there
    };
    const Case cases[] = {
        {"check 1 --json", 1, "/lines/0/passed"},
        {"check 1 --json", 1, "/guia/passed"},
        {"check 99 --json", 2, "/error"},
        {"check-lines --json", 0, "/results/0/passed"},
        {"refs zona --json", 0, "/rows/0/Codigo"},
        {"refs servico --active --json", 0, "/rows/0/Designacao"},
        {"params --json", 0, "/settings/vGuiaNVias/value"},
        {"client list --json", 0, "/clients/0/Cod_Cliente"},
        {"client show 456 --json", 0, "/contratos/0/vCodContrato"},
        {"client show 999 --json", 2, "/error"},
        {"client save /nonexistent.json --json", 2, "/error"},
        {"save " + example("valid-guia.json") + " --json", 0, "/Id_Req_Anual"},
        {"list --json", 0, "/0/Nome"},
    };
    for (const auto& c : cases) {
        const auto r = program(c.args, c.args.starts_with("check-lines") ? "C01\t01\t50\t0\t02\t1\t0\t0\t0\t0\n" : "");
        EXPECT_EQ(r.status, c.status) << c.args << ": " << r.err;
        const auto d = document(r);
        EXPECT_TRUE(d.contains(json::json_pointer(c.check))) << c.args << ": " << d.dump(1);
        if (d.is_object()) EXPECT_EQ(d.value("status", c.status), c.status) << c.args;
    }
}
