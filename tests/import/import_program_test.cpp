// nimbara db import: what it says and how it ends for good files, refused ones and failed imports,
// and a run killed mid-import that leaves the target as it was.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "cli/cli_run.hpp"
#include "import/old_sources.hpp"
#include "support/temp_folder.hpp"

using namespace nimbara;
using namespace nimbara::testing;

namespace {

class ImportProgramTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!jet_fixtures_present()) GTEST_SKIP() << kNoJetFixtures;
        const auto init = run("db init --db " + conn);
        ASSERT_EQ(init.status, 0) << init.err;
    }
    std::int64_t count(const std::string& table)
    {
        return OpenDatabase(conn)->open("SELECT COUNT(*) FROM " + table)[std::size_t{0}].integer();
    }
    std::string fixture(const std::string& name) { return (kJetFixtures / name).string(); }

    TempFolder folder;
    std::string conn = "sqlite:" + (folder.path() / "target.db").string();
};

TEST_F(ImportProgramTest, ImportsEachFixtureAndSaysWhatCameIn)
{
    struct Good {
        const char* file;
        const char* how;
        const char* counts;
    };
    // Every fixture's rows are checked by the import's own test; here the two ways of naming the
    // procedure and the counts the program reports.
    const Good cases[] = {
        {"v0512.mdb", "--version 0512", "6 clients, 8 contracts, 14 Guias, 70 lines and 32 services"},
        {"v0513-noservices.mdb", "--version 0514", "4 clients, 7 contracts, 10 Guias, 46 lines and 0 services"},
        {"v0501.mdb", "--procedure DoImportDados0501", "4 clients, 5 contracts, 11 Guias, 52 lines and 35 services"},
    };
    for (const auto& c : cases) {
        const auto r = run("db import " + fixture(c.file) + " " + c.how + " --db " + conn);
        EXPECT_EQ(r.status, 0) << c.file << r.err;
        EXPECT_NE(r.out.find(std::string("brought in ") + c.counts), std::string::npos) << r.out;
        EXPECT_NE(r.out.find("progress 40\nprogress 70\n"), std::string::npos) << "plain lines off a terminal";
    }
    EXPECT_EQ(count("Tbl_Cliente"), 4);
}

TEST_F(ImportProgramTest, RefusalsComeBeforeAnythingIsTouchedAndFailuresChangeNothing)
{
    ASSERT_EQ(run("db import " + fixture("v0514.mdb") + " --version 0514 --db " + conn).status, 0);
    std::ofstream(folder.path() / "empty.mdb").close();
    std::ofstream(folder.path() / "text.mdb") << "Cod_Cliente;Nome\n1;Livraria\n";
    auto tables = fixture_rows("v0513.mdb")["tables"];
    tables["TBL_LINHA"]["rows"][3][4] = nullptr;
    write_sqlite_source(folder.path() / "null.sqlite", tables);
    const std::string dir = folder.path().string() + "/";
    struct Bad {
        std::string args;
        int status;
        const char* says;
    };
    const Bad cases[] = {
        {dir + "absent.mdb --version 0514", 2, "does not exist"},
        {dir + "empty.mdb --version 0514", 2, "is empty"},
        {dir + "text.mdb --version 0514", 2, "is not a Jet database file"},
        {fixture("v0514.mdb") + " --version 0508", 2, "version \"0508\" is not one that can be imported"},
        {fixture("v0514.mdb") + " --procedure DoImportDados0599", 2, "no import procedure DoImportDados0599"},
        {fixture("v0514.mdb"), 2, "give --version"},
        {dir + "null.sqlite --version 0513", 1, "TBL_LINHA, row N_Req"},
    };
    for (const auto& c : cases) {
        const auto r = run("db import " + c.args + " --db " + conn);
        EXPECT_EQ(r.status, c.status) << c.args << "\n" << r.err;
        EXPECT_NE(r.err.find(c.says), std::string::npos) << r.err;
        EXPECT_EQ(count("Tbl_Cliente"), 5) << c.args;
        EXPECT_EQ(count("Tbl_Linha"), 58) << c.args;
    }
}

TEST_F(ImportProgramTest, AKilledImportLeavesTheTargetAsItWas)
{
    ASSERT_EQ(run("db import " + fixture("v0514.mdb") + " --version 0514 --db " + conn).status, 0);
    int out[2];
    ASSERT_EQ(::pipe(out), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(out[1], STDOUT_FILENO);
        ::close(out[0]);
        ::execl(NIMBARA_CLI, NIMBARA_CLI, "db", "import", fixture("big-0514.mdb").c_str(), "--version", "0514", "--db",
                conn.c_str(), static_cast<char*>(nullptr));
        ::_exit(127);
    }
    ::close(out[1]);
    // Killed once the Guias are in and the lines are being written.
    std::string said;
    char buf[256];
    ssize_t n;
    while (said.find("progress 40") == std::string::npos && (n = ::read(out[0], buf, sizeof buf)) > 0)
        said.append(buf, static_cast<std::size_t>(n));
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    ::close(out[0]);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the import ended before it could be killed: " << said;
    EXPECT_EQ(count("Tbl_Cliente"), 5);
    EXPECT_EQ(count("Tbl_Cab"), 12);
    EXPECT_EQ(count("Tbl_Linha"), 58);
}

}  // namespace
