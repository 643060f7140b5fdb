// nimbara db import: what it says and how it ends for good files, refused ones and failed imports,
// and a run killed mid-import that leaves the target as it was.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "cli/cli_run.hpp"
#include "cli/db_program.hpp"
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

TEST_F(ImportProgramTest, ImportsEachFixtureAndSaysWhatItReplacedAndBroughtIn)
{
    struct Good {
        const char* file;
        const char* how;
        const char* read_as;
        const char* replaced;
        const char* counts;
    };
    // Every fixture's rows are checked by the import's own test; here the ways of naming the
    // procedure, the layout found, and the counts the program reports.
    const Good cases[] = {
        {"v0512.mdb", "", "versions 05083, 0509, 0510, 0511 and 0512 (layout 050313), read by DoImportDadosTo050313",
         "0 clients, 0 contracts, 0 Guias, 0 lines and 0 services",
         "6 clients, 8 contracts, 14 Guias, 70 lines and 32 services"},
        {"v0513-noservices.mdb", "--version 0514", "versions 0513 and 0514 (layout 050313B), read by DoImportDadosTo050314",
         "6 clients, 8 contracts, 14 Guias, 70 lines and 32 services",
         "4 clients, 7 contracts, 10 Guias, 46 lines and 0 services"},
        {"v0501.mdb", "", "version 0501 (layout 0501), read by DoImportDados0501",
         "4 clients, 7 contracts, 10 Guias, 46 lines and 0 services",
         "4 clients, 5 contracts, 11 Guias, 52 lines and 35 services"},
        {"v0502.mdb", "--procedure DoImportDados0504", "versions 0502 and 0504 (layout 0502), read by DoImportDados0504",
         "4 clients, 5 contracts, 11 Guias, 52 lines and 35 services",
         "5 clients, 7 contracts, 12 Guias, 57 lines and 27 services"},
    };
    for (const auto& c : cases) {
        const auto r = run("db import " + fixture(c.file) + " " + c.how + " --db " + conn);
        EXPECT_EQ(r.status, 0) << c.file << r.err;
        EXPECT_TRUE(r.out.starts_with(fixture(c.file) + ": " + c.read_as + "\nreplaced " + c.replaced +
                                      "\nbrought in " + c.counts + "\n"))
            << r.out;
        EXPECT_EQ(r.out.find("progress"), std::string::npos) << "no progress off a terminal";
        EXPECT_EQ(r.err.find("progress"), std::string::npos) << "no progress off a terminal";
    }
    EXPECT_EQ(count("Tbl_Cliente"), 5);
}

TEST_F(ImportProgramTest, RefusalsComeBeforeAnythingIsTouchedAndFailuresChangeNothing)
{
    ASSERT_EQ(run("db import " + fixture("v0514.mdb") + " --version 0514 --db " + conn).status, 0);
    std::ofstream(folder.path() / "empty.mdb").close();
    std::ofstream(folder.path() / "text.mdb") << "Cod_Cliente;Nome\n1;Livraria\n";
    auto tables = fixture_rows("v0513.mdb")["tables"];
    tables["TBL_LINHA"]["rows"][3][4] = nullptr;
    write_sqlite_source(folder.path() / "null.sqlite", tables);
    tables.erase("TBL_LINHA_SERVICOESPECIAL");
    write_sqlite_source(folder.path() / "odd.sqlite", tables);
    const std::string dir = folder.path().string() + "/";
    struct Bad {
        std::string args;
        int status;
        std::string says;
    };
    const std::string b = "v0514.mdb has the tables of versions 0513 and 0514 (layout 050313B)";
    const Bad cases[] = {
        {dir + "absent.mdb --version 0514", 2, "does not exist"},
        {dir + "empty.mdb --version 0514", 2, "is empty"},
        {dir + "text.mdb --version 0514", 2, "is not a Jet database file"},
        {fixture("v0514.mdb") + " --version 0599", 2,
         "version \"0599\" is not one that can be imported (0501, 0502, 0504, 0506, 0507, 0508, 05083, 0509, 0510, "
         "0511, 0512, 0513, 0514)"},
        {fixture("v0514.mdb") + " --version 0508", 2,
         b + ", not those of version 0508 (layout 0506); give --version 0513 or --version 0514"},
        {fixture("v0501.mdb") + " --version 0514", 2,
         "v0501.mdb has the tables of version 0501 (layout 0501), not those of version 0514 (layout 050313B); give "
         "--version 0501"},
        {fixture("v0514.mdb"), 2, b + ", which are imported differently; give --version 0513 or --version 0514"},
        {fixture("v0506.mdb"), 2, "give --version 0506, --version 0507 or --version 0508"},
        {fixture("v0514.mdb") + " --procedure DoImportDadosTo050313", 2,
         b + ", which DoImportDadosTo050313 does not read; give --version 0513 or --version 0514"},
        {fixture("v0514.mdb") + " --procedure DoImportDados0599", 2, "no import procedure DoImportDados0599"},
        {dir + "odd.sqlite", 2,
         "odd.sqlite fits no known layout (TBL_CLIENTE 11 columns, TBL_CONTRATO 10, TBL_CAB 16, TBL_LINHA 19, "
         "TBL_LINHA_SERVICOESPECIAL missing); give --version"},
        {dir + "null.sqlite --version 0513", 1, "TBL_LINHA, row N_Req"},
        {dir + "null.sqlite --version 0513 --dry-run", 1, "TBL_LINHA, row N_Req"},
    };
    for (const auto& c : cases) {
        const auto r = run("db import " + c.args + " --db " + conn);
        EXPECT_EQ(r.status, c.status) << c.args << "\n" << r.err;
        EXPECT_NE(r.err.find(c.says), std::string::npos) << r.err;
        EXPECT_EQ(count("Tbl_Cliente"), 5) << c.args;
        EXPECT_EQ(count("Tbl_Linha"), 58) << c.args;
    }
}

// FNV-1a over the file's bytes.
std::uint64_t checksum(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    std::uint64_t h = 14695981039346656037ull;
    for (std::istreambuf_iterator<char> it(in), end; it != end; ++it)
        h = (h ^ static_cast<unsigned char>(*it)) * 1099511628211ull;
    return h;
}

TEST_F(ImportProgramTest, ADryRunReadsAndChecksTheWholeFileAndChangesNothing)
{
    ASSERT_EQ(run("db import " + fixture("v0514.mdb") + " --version 0514 --db " + conn).status, 0);
    const auto file = folder.path() / "target.db";
    const auto before = checksum(file);
    const auto r = run("db import " + fixture("v0513.mdb") + " --version 0513 --dry-run --json --db " + conn);
    ASSERT_EQ(r.status, 0) << r.err;
    const auto answer = nlohmann::json::parse(r.out);
    EXPECT_EQ(answer["dry_run"], true);
    EXPECT_EQ(answer["layout"], "050313B");
    EXPECT_EQ(answer["replaced"],
              nlohmann::json::parse(R"({"clients": 5, "contracts": 8, "guias": 12, "lines": 58, "services": 12})"));
    EXPECT_EQ(answer["imported"],
              nlohmann::json::parse(R"({"clients": 5, "contracts": 8, "guias": 12, "lines": 62, "services": 27})"));
    // The printability check ran on the Guias the file would bring in.
    EXPECT_EQ(answer["not_printable"]["of"], 12);
    EXPECT_EQ(checksum(file), before) << "the database file is byte for byte as it was";
    EXPECT_EQ(count("Tbl_Cab"), 12);

    const auto text = run("db import " + fixture("v0512.mdb") + " --dry-run --db " + conn);
    EXPECT_EQ(text.status, 0) << text.err;
    EXPECT_NE(text.out.find("would replace 5 clients, 8 contracts, 12 Guias, 58 lines and 12 services\n"
                            "would bring in 6 clients, 8 contracts, 14 Guias, 70 lines and 32 services\n"),
              std::string::npos)
        << text.out;
    EXPECT_TRUE(text.out.ends_with("dry run: nothing was changed\n")) << text.out;
    EXPECT_EQ(checksum(file), before);
}

// On either store a dry run reads, checks and writes the whole file on a transaction it rolls back.
class ImportProgramStoresTest : public DbProgramTest {
protected:
    void SetUp() override
    {
        if (!jet_fixtures_present()) GTEST_SKIP() << kNoJetFixtures;
        DbProgramTest::SetUp();
    }
    // What the data tables hold, as the program lists it.
    std::string held() { return program("list").out + program("client list").out + program("export").out; }
};
INSTANTIATE_TEST_SUITE_P(Stores, ImportProgramStoresTest, kBothStores, store_name);

TEST_P(ImportProgramStoresTest, ADryRunChangesNothingAndFindsWhatTheImportWould)
{
    ASSERT_EQ(program("import " + (kJetFixtures / "v0514.mdb").string() + " --version 0514").status, 0);
    const std::string before = held();
    TempFolder folder;
    auto tables = fixture_rows("v0513.mdb")["tables"];
    // The last row repeats a key: on a server the store refuses it after the copy has sent it ahead.
    auto& services = tables["TBL_LINHA_SERVICOESPECIAL"]["rows"];
    services.push_back(services.back());
    write_sqlite_source(folder.path() / "twice.sqlite", tables);
    struct Case {
        std::string args;
        int status;
        const char* said;
    };
    const Case cases[] = {
        {(kJetFixtures / "v0512.mdb").string(), 0,
         "would replace 5 clients, 8 contracts, 12 Guias, 58 lines and 12 services\n"
         "would bring in 6 clients, 8 contracts, 14 Guias, 70 lines and 32 services\n"},
        {(folder.path() / "twice.sqlite").string() + " --version 0513", 1, "TBL_LINHA_SERVICOESPECIAL, row N_Req"},
    };
    for (const auto& c : cases) {
        const auto r = program("import " + c.args + " --dry-run");
        EXPECT_EQ(r.status, c.status) << c.args << ": " << r.err;
        EXPECT_NE((r.out + r.err).find(c.said), std::string::npos) << r.out << r.err;
        EXPECT_EQ(held(), before) << c.args;
    }
}

// The program started with its standard error on a terminal of the test's own and its standard output
// into `out`; the terminal's other end reads what it draws.
struct OnTerminal {
    pid_t child;
    int terminal;
};

OnTerminal start_on_terminal(const std::vector<std::string>& args, const std::filesystem::path& out)
{
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    EXPECT_GE(terminal, 0);
    EXPECT_EQ(::grantpt(terminal), 0);
    EXPECT_EQ(::unlockpt(terminal), 0);
    const std::string side = ::ptsname(terminal);
    std::vector<char*> argv{const_cast<char*>(NIMBARA_CLI)};
    for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        const int err = ::open(side.c_str(), O_RDWR | O_NOCTTY);
        const int file = ::open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        ::dup2(err, STDERR_FILENO);
        ::dup2(file, STDOUT_FILENO);
        ::execv(NIMBARA_CLI, argv.data());
        ::_exit(127);
    }
    return {child, terminal};
}

// Reads what the terminal shows until `until` appears or the program ends.
std::string read_terminal(int terminal, const std::string& until = "")
{
    std::string said;
    char buf[256];
    ssize_t n;
    while ((until.empty() || said.find(until) == std::string::npos) && (n = ::read(terminal, buf, sizeof buf)) > 0)
        said.append(buf, static_cast<std::size_t>(n));
    return said;
}

TEST_F(ImportProgramTest, TheProgressIsABarOnATerminalOnStandardError)
{
    const auto out = folder.path() / "out.txt";
    const auto started = start_on_terminal({"db", "import", fixture("v0512.mdb"), "--db", conn}, out);
    const std::string shown = read_terminal(started.terminal);
    int status = 0;
    ::waitpid(started.child, &status, 0);
    ::close(started.terminal);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << shown;
    EXPECT_NE(shown.find("\r[########################################] 100%"), std::string::npos) << shown;
    std::ifstream in(out);
    const std::string printed((std::istreambuf_iterator<char>(in)), {});
    EXPECT_NE(printed.find("brought in 6 clients"), std::string::npos) << printed;
    EXPECT_EQ(printed.find('%'), std::string::npos) << "the bar stays off standard output: " << printed;
}

TEST_F(ImportProgramTest, AKilledImportLeavesTheTargetAsItWas)
{
    ASSERT_EQ(run("db import " + fixture("v0514.mdb") + " --version 0514 --db " + conn).status, 0);
    // Killed once the Guias are in and the lines are being written.
    const auto started = start_on_terminal(
        {"db", "import", fixture("big-0514.mdb"), "--version", "0514", "--db", conn}, folder.path() / "out.txt");
    const std::string shown = read_terminal(started.terminal, "40%");
    ::kill(started.child, SIGKILL);
    int status = 0;
    ::waitpid(started.child, &status, 0);
    ::close(started.terminal);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the import ended before it could be killed: " << shown;
    EXPECT_EQ(count("Tbl_Cliente"), 5);
    EXPECT_EQ(count("Tbl_Cab"), 12);
    EXPECT_EQ(count("Tbl_Linha"), 58);
}

}  // namespace
