#pragma once
// Creating the database of the component: every table of the register, the view the printing
// reads, keys and indexes, seeded with the reference lists, the rule tables and the factory barcode
// settings from the compiled-in catalogue.
#include <memory>
#include <stdexcept>
#include <string_view>

#include "nimbara/Database.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

// The version CreateSchema writes into schema_version, for later versions to migrate from.
inline constexpr int kSchemaVersion = 1;

// The database already holds the component's tables.
class NIMBARA_API SchemaExistsError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The database holds tables of another program, and was not told to take ours beside them.
class NIMBARA_API ForeignTablesError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The database is not this program's: it has no schema_version row.
class NIMBARA_API NotGuiaDatabaseError : public DatabaseError {
public:
    using DatabaseError::DatabaseError;
};

// Where CreateSchema may build: only in an empty database, or beside another program's tables.
enum class SchemaPlace { EmptyOnly, IntoExisting };

// Creates and seeds everything in one transaction, so that a failure leaves the database as it was.
// Refuses with SchemaExistsError, changing nothing, when any of the tables is there already, and with
// ForeignTablesError when other tables are there, unless `place` is IntoExisting.
NIMBARA_API void CreateSchema(Database& db, SchemaPlace place = SchemaPlace::EmptyOnly);

// Gives a database made before them the tables of the web server's users and of its audit
// (Tbl_Utilizador, Tbl_Auditoria); does nothing when it has them.
NIMBARA_API void EnsureAccessTables(Database& db);

// Whether the database is this program's: it holds the schema_version row that CreateSchema writes.
// Only reads.
NIMBARA_API bool IsGuiaDatabase(Database& db);

// OpenDatabase for a database of this program: any other (a foreign or empty file, a server
// database without our tables) is refused with NotGuiaDatabaseError "WHERE: not a Guia database: run
// nimbara db init", before anything in it is written or its journal mode changed.
NIMBARA_API std::shared_ptr<Database> OpenGuiaDatabase(std::string_view conn);

}  // namespace nimbara
