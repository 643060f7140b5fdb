#pragma once
// The stores every database test runs on: an SQLite file in a fresh folder, and a fresh database on
// the PostgreSQL server that scripts/with-postgres starts and names in NIMBARA_TEST_PG. Without that
// server the PostgreSQL runs skip, loudly; under CI (CI=true) they fail instead.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "nimbara/Database.hpp"

namespace nimbara::testing {

enum class Store { SQLite, PostgreSQL };

// "SQLite" or "PostgreSQL", for the names of parameterised tests.
std::string store_name(const ::testing::TestParamInfo<Store>& info);

// An empty database of its own on one store, removed with the object.
class ScratchDatabase {
public:
    // Answers nothing, with the reason in `why_not`, when the store is not there to test on.
    static std::unique_ptr<ScratchDatabase> make(Store store, std::string& why_not);
    ~ScratchDatabase();

    // A connection string that opens it, in the forms the program and the ini file take.
    const std::string& conn() const { return conn_; }

private:
    ScratchDatabase() = default;
    std::string conn_;
    std::string folder_;         // SQLite
    std::string admin_conn_;     // PostgreSQL
    std::string database_name_;  // PostgreSQL
};

// A test on both stores, with an empty database open in `db`.
class StoreTest : public ::testing::TestWithParam<Store> {
protected:
    void SetUp() override;
    void TearDown() override;

    // Makes the schema and its seed rows in `db`.
    void create_schema();
    // The rows of `from`: a table, or a table with its WHERE clause.
    std::int64_t count(const std::string& from);

    std::unique_ptr<ScratchDatabase> scratch;
    std::shared_ptr<Database> db;
};

// A test on both stores whose database already holds the schema and its seed rows. A suite that
// seeds more overrides SetUp, calls this one, and returns if it skipped or failed.
class SeededStoreTest : public StoreTest {
protected:
    void SetUp() override;
};

// The stores to instantiate a StoreTest suite with:
//   INSTANTIATE_TEST_SUITE_P(Stores, Suite, kBothStores, store_name);
inline const auto kBothStores = ::testing::Values(Store::SQLite, Store::PostgreSQL);

}  // namespace nimbara::testing
