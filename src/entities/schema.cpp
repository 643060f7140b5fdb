#include "nimbara/Schema.hpp"

#include "entities/rule_counter.hpp"
#include "entities/schema_tables.hpp"

namespace nimbara {

void CreateSchema(Database& db)
{
    for (const auto& name : entities::schema_table_names())
        if (db.has_table(name))
            throw SchemaExistsError("the database already has the table " + name +
                                    "; it was created before, and nothing was changed");
    Transaction transaction(db);
    for (const auto& statement : entities::schema_statements(db)) db.execute(statement);
    entities::seed_schema(db);
    for (const auto& statement : entities::statistics_statements()) db.execute(statement);
    // After the seed, so that the counter starts at 1 rather than at the number of seeded rows.
    for (const auto& statement : entities::rule_counter_statements(db.kind())) db.execute(statement);
    transaction.commit();
}

}  // namespace nimbara
