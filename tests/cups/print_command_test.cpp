// `nimbara print --printer`, `nimbara db print --printer` and `nimbara printers` against a real
// scheduler: the copies come out of the queue as the PDFs the program writes to files, one job per
// copy, and a queue that cannot take them is refused before anything is sent.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "cli/cli_run.hpp"
#include "cli/db_program.hpp"
#include "cli/pdf_pages.hpp"
#include "cups/test_queues.hpp"
#include "support/temp_folder.hpp"

using nimbara::testing::example;
using nimbara::testing::kSampleClient;
using nimbara::testing::read_file;
using nimbara::testing::run;
using nimbara::testing::run_with;
using nimbara::testing::spooled;
using nimbara::testing::symbol_of;
using nimbara::testing::TempFolder;
namespace fs = std::filesystem;

namespace {

class PrintToQueue : public nimbara::testing::QueueTest {
protected:
    TempFolder folder;
    // The fourteen-line example in two copies: two pages each.
    std::string two_copies()
    {
        std::string guia = read_file(example("fourteen-lines.json"));
        guia = std::regex_replace(guia, std::regex(R"("vGuiaNVias": "1")"), R"("vGuiaNVias": "2")");
        return folder.write("two-copies.json", guia);
    }
};

}  // namespace

TEST_F(PrintToQueue, EachCopyIsOneJobWhoseDocumentIsThePrintedPdf)
{
    const std::string guia = two_copies();
    const auto files = folder.path() / "files";
    const auto r_files = run("print " + guia + " -q --report never --out-dir " + files.string() + " --report-dir " +
                               folder.path().string());
    ASSERT_EQ(r_files.status, 0) << r_files.err;

    const auto r = run("print " + guia + " --report never --json --printer nimbara-test --report-dir " +
                       folder.path().string());
    ASSERT_EQ(r.status, 0) << r.err << r.out;
    const auto answer = nlohmann::json::parse(r.out);
    EXPECT_EQ(answer["printer"], "nimbara-test");
    EXPECT_TRUE(answer["pdfs"].empty()) << "the copies went to the queue instead of files";
    const auto& jobs = answer["jobs"];
    ASSERT_EQ(jobs.size(), 2u) << r.out;
    for (int copy = 1; copy <= 2; ++copy) {
        const auto& job = jobs[copy - 1];
        EXPECT_EQ(job["copy"], copy);
        EXPECT_EQ(job["name"], "Guia 2026/1027 via " + std::to_string(copy));
        const int id = job["job_id"];
        const auto pdf = files / ("Guia_2026-1027_via" + std::to_string(copy) + ".pdf");
        const std::string document = spooled(id);
        ASSERT_EQ(document, read_file(pdf)) << "job " << id;
        // As a printer would get it: the symbol of each page reads back.
        const auto received = folder.write("job" + std::to_string(id) + ".pdf", document);
        for (int page = 1; page <= 2; ++page)
            EXPECT_EQ(symbol_of(received, page, folder.path()), symbol_of(pdf, page, folder.path())) << page;
        EXPECT_NE(r.err.find("sent copy " + std::to_string(copy) + " to the queue \"nimbara-test\" as job " +
                             std::to_string(id) + " ("),
                  std::string::npos)
            << r.err;
    }
    EXPECT_FALSE(fs::exists(folder.path() / "Guia_2026-1027_via1.pdf"));
}

// Each refusal comes before the Guia is read: no report, no job, exit 2, the cause named.
TEST_F(PrintToQueue, AQueueThatCannotTakeTheJobsIsRefusedBeforeAnythingIsDone)
{
    struct Case {
        std::string env;
        std::string queue;
        std::vector<std::string> said;
    };
    const std::vector<Case> cases = {
        {"", "nimbara-tset",
         {"nimbara print: the CUPS server has no queue \"nimbara-tset\"; its queues: nimbara-refusing, "
          "nimbara-stopped, nimbara-test; did you mean \"nimbara-test\"?\n"}},
        {"", "nimbara-refusing",
         {"nimbara print: the queue \"nimbara-refusing\" is not accepting jobs: closed for the test; nothing was "
          "sent\n"}},
        {"CUPS_SERVER=" + (folder.path() / "none.sock").string() + " ", "nimbara-test",
         {"nimbara print: no CUPS server answers at \"" + (folder.path() / "none.sock").string() + "\": "}},
    };
    for (const auto& c : cases) {
        const auto r = run_with("env " + c.env, "print " + example("valid-guia.json") + " --json --printer " +
                                                    c.queue + " --report-dir " + folder.path().string());
        EXPECT_EQ(r.status, 2) << c.queue << r.err;
        for (const auto& s : c.said) EXPECT_EQ(r.err.substr(0, s.size()), s) << r.err;
        EXPECT_EQ(nlohmann::json::parse(r.out)["status"], 2) << r.out;
        EXPECT_TRUE(fs::is_empty(folder.path())) << "no report nor PDF for " << c.queue;
    }
}

TEST_F(PrintToQueue, PrintersListsTheQueuesAndTheDefault)
{
    const auto r = run("printers --json");
    ASSERT_EQ(r.status, 0) << r.err;
    const auto listed = nlohmann::json::parse(r.out);
    EXPECT_EQ(listed["default"], "nimbara-test");
    std::vector<std::string> names;
    for (const auto& q : listed["printers"]) names.push_back(q["name"]);
    EXPECT_EQ(names, (std::vector<std::string>{"nimbara-refusing", "nimbara-stopped", "nimbara-test"}));
    EXPECT_EQ(listed["printers"][0]["accepting_jobs"], false);

    const auto human = run("printers");
    EXPECT_EQ(human.out, "  nimbara-refusing  idle, rejecting jobs (closed for the test)\n"
                         "  nimbara-stopped  stopped (stopped for the test)\n"
                         "* nimbara-test  idle\n");

    const auto none = run_with("CUPS_SERVER=" + (folder.path() / "none.sock").string() + " ", "printers --json");
    EXPECT_EQ(none.status, 2);
    EXPECT_NE(none.err.find("no CUPS server answers"), std::string::npos) << none.err;
    EXPECT_EQ(nlohmann::json::parse(none.out)["status"], 2);
}

namespace {

class DbPrintToQueue : public nimbara::testing::DbProgramTest {
protected:
    void SetUp() override
    {
        if (!nimbara::testing::use_test_cups()) GTEST_SKIP() << "NO CUPS SCHEDULER FOR THE TESTS (scripts/with-cups starts one)";
        DbProgramTest::SetUp();
        if (IsSkipped() || HasFailure()) return;
        ASSERT_EQ(program("client save " + folder.write("client.json", kSampleClient)).status, 0);
        ASSERT_EQ(program("save " + example("valid-guia.json")).status, 0);
        ASSERT_EQ(program("params set vGuiaNVias=2").status, 0);
    }
    TempFolder folder{"db-print-queue-" + std::to_string(static_cast<int>(GetParam()))};
};
INSTANTIATE_TEST_SUITE_P(Stores, DbPrintToQueue, ::testing::Values(nimbara::testing::Store::SQLite),
                         nimbara::testing::store_name);

}  // namespace

TEST_P(DbPrintToQueue, EachCopyOfTheStoredGuiaIsOneJob)
{
    const auto files = program("print 1 --out-dir " + folder.path().string());
    ASSERT_EQ(files.status, 0) << files.err;
    const auto r = program("print 1 --printer nimbara-test");
    ASSERT_EQ(r.status, 0) << r.err;
    const std::regex sent(R"(nimbara db print: sent copy (\d) to the queue "nimbara-test" as job (\d+) \()");
    std::vector<int> copies;
    for (auto it = std::sregex_iterator(r.err.begin(), r.err.end(), sent); it != std::sregex_iterator(); ++it) {
        const int copy = std::stoi((*it)[1]);
        copies.push_back(copy);
        EXPECT_EQ(spooled(std::stoi((*it)[2])),
                  read_file(folder.path() / ("Guia_2026-1_via" + std::to_string(copy) + ".pdf")));
    }
    EXPECT_EQ(copies, (std::vector<int>{1, 2})) << r.err;

    const auto refused = program("print 1 --printer nimbara-tset");
    EXPECT_EQ(refused.status, 2);
    EXPECT_NE(refused.err.find("did you mean \"nimbara-test\"?"), std::string::npos) << refused.err;
}

// libcups is opened only when a queue is printed to: a print to files stays as light as before.
TEST_F(PrintToQueue, OnlyPrintingToAQueueLoadsTheCupsClient)
{
    const std::string guia = example("valid-guia.json") + " -q --report never --report-dir " + folder.path().string();
    const auto to_files = run_with("env LD_DEBUG=files ", "print " + guia + " --out-dir " + folder.path().string());
    ASSERT_EQ(to_files.status, 0);
    EXPECT_EQ(to_files.err.find("libcups"), std::string::npos);
    const auto to_queue = run_with("env LD_DEBUG=files ", "print " + guia + " --printer nimbara-test");
    ASSERT_EQ(to_queue.status, 0);
    EXPECT_NE(to_queue.err.find("libcups.so"), std::string::npos);
}
