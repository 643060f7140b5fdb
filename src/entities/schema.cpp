#include "nimbara/Schema.hpp"

#include "entities/schema_tables.hpp"

namespace nimbara {

void CreateSchema(Database& db)
{
    for (const auto& name : entities::schema_table_names())
        if (db.has_table(name))
            throw SchemaExistsError("the database already has the table " + name +
                                    "; it was created before, and nothing was changed");
    Transaction transaction(db);
    for (const auto& statement : entities::schema_statements()) db.execute(statement);
    entities::seed_schema(db);
    transaction.commit();
}

}  // namespace nimbara
