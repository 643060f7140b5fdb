#include "nimbara/Schema.hpp"

#include "entities/rule_counter.hpp"
#include "entities/schema_tables.hpp"
#include "platform/table_names.hpp"

namespace nimbara {

void CreateSchema(Database& db, SchemaPlace place)
{
    for (const auto& name : entities::schema_table_names())
        if (db.has_table(name))
            throw SchemaExistsError("the database already has the table " + name +
                                    "; it was created before, and nothing was changed");
    if (const auto others = platform::table_names(db); !others.empty() && place == SchemaPlace::EmptyOnly) {
        std::string listed;
        for (std::size_t i = 0; i < others.size() && i < 5; ++i) listed += (i ? ", " : "") + others[i];
        if (others.size() > 5) listed += " and " + std::to_string(others.size() - 5) + " more";
        throw ForeignTablesError("the database holds tables of its own (" + listed +
                                 "); nothing was changed");
    }
    Transaction transaction(db);
    for (const auto& statement : entities::schema_statements(db)) db.execute(statement);
    entities::seed_schema(db);
    for (const auto& statement : entities::statistics_statements()) db.execute(statement);
    // After the seed, so that the counter starts at 1 rather than at the number of seeded rows.
    for (const auto& statement : entities::rule_counter_statements(db.kind())) db.execute(statement);
    for (const auto& statement : entities::access_table_statements()) db.execute(statement);
    transaction.commit();
}

void EnsureAccessTables(Database& db)
{
    if (db.has_table("Tbl_Utilizador") && db.has_table("Tbl_Auditoria")) return;
    Transaction transaction(db);
    for (const auto& statement : entities::access_table_statements()) db.execute(statement);
    transaction.commit();
}

bool IsGuiaDatabase(Database& db)
{
    if (!db.has_table("schema_version")) return false;
    return db.open("SELECT COUNT(*) AS N FROM schema_version")["N"].integer() > 0;
}

std::shared_ptr<Database> OpenGuiaDatabase(std::string_view conn)
{
    auto db = OpenDatabase(conn);
    if (IsGuiaDatabase(*db)) return db;
    const auto file = SqliteFileOf(conn);
    throw NotGuiaDatabaseError((file ? *file : std::string("the database on the PostgreSQL server")) +
                               ": not a Guia database: run nimbara db init");
}

}  // namespace nimbara
