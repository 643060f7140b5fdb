#pragma once
// The old databases the import tests read: the Jet fixtures of ../shared/fixtures/jet with their rows
// as JSON, and SQLite files that the tests build from those rows (changed where a test needs a fault).
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include <nlohmann/json.hpp>

#include "nimbara/Database.hpp"

namespace nimbara::testing {

inline const std::filesystem::path kJetFixtures = NIMBARA_SOURCE_DIR "/../shared/fixtures/jet";
inline constexpr const char* kNoJetFixtures = "the Jet fixtures in ../shared/fixtures/jet are absent";

inline bool jet_fixtures_present() { return std::filesystem::is_directory(kJetFixtures); }

// The rows of a fixture: {"tables": {"TBL_...": {"columns": [...], "rows": [[...], ...]}}}.
inline nlohmann::json fixture_rows(const std::string& mdb)
{
    std::ifstream in(kJetFixtures / (std::filesystem::path(mdb).stem().string() + ".json"));
    return nlohmann::json::parse(in);
}

// Writes `tables` (in the fixture's JSON form) into a new SQLite file with the old tables: yes/no
// columns declared BOOLEAN and dates DATETIME, as a site's own conversion would have made them.
inline void write_sqlite_source(const std::filesystem::path& file, const nlohmann::json& tables)
{
    auto db = OpenDatabase("sqlite:" + file.string(), OpenMode::Create);
    Transaction t(*db);
    for (const auto& [name, table] : tables.items()) {
        const auto& columns = table["columns"];
        const auto& rows = table["rows"];
        std::string create = "CREATE TABLE " + name + " (", insert = "INSERT INTO " + name + " VALUES (";
        for (std::size_t c = 0; c < columns.size(); ++c) {
            std::string type = "TEXT";
            for (const auto& row : rows) {
                const auto& v = row[c];
                if (v.is_boolean()) type = "BOOLEAN";
                else if (v.is_number_integer()) type = "INTEGER";
                else if (v.is_number()) type = "REAL";
                else if (v.is_string() && v.get<std::string>().size() == 19 && v.get<std::string>()[4] == '-' &&
                         v.get<std::string>()[13] == ':')
                    type = "DATETIME";
                if (!v.is_null()) break;
            }
            create += (c ? ", " : "") + columns[c].get<std::string>() + " " + type;
            insert += c ? ", ?" : "?";
        }
        db->execute(create + ")");
        for (const auto& row : rows) {
            std::vector<FieldValue> values;
            for (const auto& v : row) {
                if (v.is_null()) values.emplace_back();
                else if (v.is_boolean()) values.emplace_back(v.get<bool>());
                else if (v.is_number_integer()) values.emplace_back(v.get<std::int64_t>());
                else if (v.is_number()) values.emplace_back(v.get<double>());
                else values.emplace_back(v.get<std::string>());
            }
            db->execute(insert + ")", values);
        }
    }
    t.commit();
}

}  // namespace nimbara::testing
