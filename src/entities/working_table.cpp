#include "entities/working_table.hpp"

#include "entities/schema_tables.hpp"

namespace nimbara::entities {

void prepare_working_table(Database& db)
{
    static const std::string statement = working_table_statement();
    db.execute(statement);
}

}  // namespace nimbara::entities
