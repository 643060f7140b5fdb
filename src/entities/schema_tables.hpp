#pragma once
// The register of tables as statements, and the rows the new database starts with.
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
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

// The statements that give a database made before them the web server's tables of users and of the
// audit, when it has none yet; the same on both stores.
std::vector<std::string> access_table_statements();

// A result column under the name given, quoted so that PostgreSQL answers that spelling (it folds
// names it is not given in quotes to lower case) as SQLite does: `expression AS "name"`.
std::string spelled(std::string_view expression, std::string_view name);

// Columns, each under its own name as written here (the part after the last dot), joined by commas.
std::string spelled_list(std::initializer_list<std::string_view> columns);

// The columns of a table of the register, or of the view Query_ParteVariavel, each spelled as the
// register spells it: what SELECT * answers on SQLite, for a SELECT that answers it on both stores.
// `qualifier` (a table name or alias) goes before each column.
std::string spelled_columns(std::string_view table, std::string_view qualifier = {});

// The names of the tables the statements create; a database holding any of them has the schema.
const std::vector<std::string>& schema_table_names();

// What a column of the register holds: its kind and, for a text, its width in characters (0 for a
// memo, which has none).
struct ColumnType {
    enum class Kind { Long, Short, Text, YesNo, Date };
    Kind kind;
    std::size_t width = 0;
    bool in_key = false;  // part of the table's primary key
};

// The type of `column` of `table`, names compared without regard to case; nothing for a column the
// register does not have.
std::optional<ColumnType> column_type(std::string_view table, std::string_view column);

// Fills the reference lists, the rule tables, TAB_CONFIG, schema_version and the rule counter.
void seed_schema(Database& db);

}  // namespace nimbara::entities
