// nimbara db import speaks one language: the library's message boxes, written in Portuguese for a
// desktop host, never reach the program's output; the program says the outcome itself.
#include <gtest/gtest.h>

#include "cli/cli_run.hpp"
#include "import/old_sources.hpp"
#include "support/temp_folder.hpp"

using namespace nimbara::testing;

TEST(ImportLanguage, OutcomesAreTheProgramsOwnWords)
{
    if (!jet_fixtures_present()) GTEST_SKIP() << kNoJetFixtures;
    TempFolder folder;
    const std::string conn = "sqlite:" + (folder.path() / "target.db").string();
    ASSERT_EQ(run("db init --db " + conn).status, 0);
    auto tables = fixture_rows("v0513.mdb")["tables"];
    tables["TBL_LINHA"]["rows"][3][4] = nullptr;
    write_sqlite_source(folder.path() / "null.sqlite", tables);

    struct Case { std::string args; int status; const char* says; };
    const Case cases[] = {
        {(kJetFixtures / "v0514.mdb").string() + " --version 0514", 0, "brought in "},
        {(folder.path() / "null.sqlite").string() + " --version 0513", 1,
         "nimbara db import: not imported, the database is as it was: "},
    };
    for (const auto& c : cases) {
        const auto r = run("db import " + c.args + " --db " + conn);
        EXPECT_EQ(r.status, c.status) << c.args << ": " << r.err;
        EXPECT_NE((r.out + r.err).find(c.says), std::string::npos) << r.out << r.err;
        for (const char* portuguese : {"Base de Dados", "Importação", "importação", "Erro na"})
            EXPECT_EQ((r.out + r.err).find(portuguese), std::string::npos) << c.args << ": " << r.out << r.err;
    }
}
