#include "support/test_database.hpp"

#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>

#include "nimbara/Schema.hpp"

namespace nimbara::testing {

std::string store_name(const ::testing::TestParamInfo<Store>& info)
{
    return info.param == Store::SQLite ? "SQLite" : "PostgreSQL";
}

std::unique_ptr<ScratchDatabase> ScratchDatabase::make(Store store, std::string& why_not)
{
    static std::atomic<int> counter = 0;
    const std::string unique = std::to_string(::getpid()) + "_" + std::to_string(++counter);
    std::unique_ptr<ScratchDatabase> s(new ScratchDatabase);
    if (store == Store::SQLite) {
        s->folder_ = (std::filesystem::temp_directory_path() / ("nimbara-db-" + unique)).string();
        // A process killed before its clean-up leaves its folder, which a later one of the same pid finds.
        std::filesystem::remove_all(s->folder_);
        std::filesystem::create_directories(s->folder_);
        s->conn_ = "sqlite:" + s->folder_ + "/guias.db";
        return s;
    }
    const char* server = std::getenv("NIMBARA_TEST_PG");
    if (!server || !*server) {
        why_not = "NO POSTGRESQL SERVER: NIMBARA_TEST_PG is not set (run the tests through scripts/with-postgres, "
                  "as `make test` does); the PostgreSQL half of this test did not run";
        return nullptr;
    }
    s->admin_conn_ = std::string("postgresql:") + server;
    s->database_name_ = "nimbara_test_" + unique;
    OpenDatabase(s->admin_conn_)->execute("CREATE DATABASE " + s->database_name_);
    s->conn_ = s->admin_conn_ + " dbname=" + s->database_name_;
    return s;
}

ScratchDatabase::~ScratchDatabase()
{
    try {
        if (!folder_.empty()) std::filesystem::remove_all(folder_);
        if (!database_name_.empty())
            OpenDatabase(admin_conn_)->execute("DROP DATABASE IF EXISTS " + database_name_ + " WITH (FORCE)");
    } catch (const std::exception&) {
        // A database left behind goes with the throwaway server.
    }
}

void StoreTest::SetUp()
{
    std::string why_not;
    scratch = ScratchDatabase::make(GetParam(), why_not);
    if (!scratch) {
        const char* ci = std::getenv("CI");
        if (ci && std::string(ci) == "true") FAIL() << why_not;
        GTEST_SKIP() << why_not;
    }
    db = OpenDatabase(scratch->conn(), OpenMode::Create);
}

void StoreTest::TearDown()
{
    db.reset();
    scratch.reset();
}

void StoreTest::create_schema() { CreateSchema(*db); }

std::int64_t StoreTest::count(const std::string& from)
{
    return db->open("SELECT COUNT(*) AS N FROM " + from)["N"].integer();
}

void SeededStoreTest::SetUp()
{
    StoreTest::SetUp();
    if (!IsSkipped() && !HasFailure()) create_schema();
}

}  // namespace nimbara::testing
