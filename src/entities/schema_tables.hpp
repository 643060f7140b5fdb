#pragma once
// The register of tables as statements, and the rows the new database starts with.
#include <string>
#include <vector>

#include "nimbara/Database.hpp"

namespace nimbara::entities {

// The statements that create the tables, the view and the indexes, in order, as the store spells
// them.
std::vector<std::string> schema_statements(const Database& db);

// The statistics of the seeded reference lists, without which SQLite's planner prefers the key to
// the covering index of the designations.
std::vector<std::string> statistics_statements();

// The statement that gives a connection its own working table of the database validator
// (Tbl_Temp_Val_Guia), when it has none yet; the same on both stores.
std::string working_table_statement();

// The names of the tables the statements create; a database holding any of them has the schema.
const std::vector<std::string>& schema_table_names();

// Fills the reference lists, the rule tables, TAB_CONFIG, schema_version and the rule counter.
void seed_schema(Database& db);

}  // namespace nimbara::entities
