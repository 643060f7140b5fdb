#pragma once
// The `nimbara db` commands run on a scratch store of each kind.
#include <string>

#include "cli/cli_run.hpp"
#include "support/test_database.hpp"

namespace nimbara::testing {

// `nimbara db ARGS --db CONN`, the connection quoted for the shell.
inline Run run_db(const std::string& conn, const std::string& args, const std::string& input = "")
{
    return run("db " + args + " --db '" + conn + "'", input);
}

// A scratch store the program created itself with `db init`; the test's own connection is closed,
// as the program opens the database on its own.
class DbProgramTest : public StoreTest {
protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        if (IsSkipped() || HasFailure()) return;
        db.reset();
        ASSERT_EQ(program("init").status, 0);
    }
    nimbara::testing::Run program(const std::string& args, const std::string& input = "")
    {
        return run_db(scratch->conn(), args, input);
    }
};

}  // namespace nimbara::testing
