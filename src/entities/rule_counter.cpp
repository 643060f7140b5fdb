#include "entities/rule_counter.hpp"

namespace nimbara::entities {

std::vector<std::string> rule_counter_statements(StoreKind kind)
{
    std::vector<std::string> statements;
    if (kind == StoreKind::PostgreSQL) {
        // Statement-level triggers move the counter once per statement, TRUNCATE included.
        statements.emplace_back(
            "CREATE FUNCTION tbl_val_versao_move() RETURNS trigger LANGUAGE plpgsql AS "
            "$body$ BEGIN UPDATE tbl_Val_Versao SET Contador = Contador + 1; RETURN NULL; END $body$");
        for (const char* table : kRuleTables)
            statements.push_back("CREATE TRIGGER " + std::string(table) + "_versao AFTER INSERT OR UPDATE OR DELETE OR "
                                 "TRUNCATE ON " + table + " FOR EACH STATEMENT EXECUTE FUNCTION tbl_val_versao_move()");
        return statements;
    }
    // SQLite has row-level triggers only, one event each; a statement then moves the counter once per row.
    for (const char* table : kRuleTables)
        for (const char* event : {"INSERT", "UPDATE", "DELETE"})
            statements.push_back("CREATE TRIGGER " + std::string(table) + "_versao_" + event + " AFTER " + event +
                                 " ON " + table + " BEGIN UPDATE tbl_Val_Versao SET Contador = Contador + 1; END");
    return statements;
}

bool has_rule_counter(Database& db) { return db.has_table("tbl_Val_Versao"); }

std::optional<std::int64_t> read_rule_counter(Database& db)
{
    const Recordset rs = db.open("SELECT Contador FROM tbl_Val_Versao");
    if (rs.IsEOF() || rs[std::size_t{0}].is_null()) return std::nullopt;
    return rs[std::size_t{0}].integer();
}

}  // namespace nimbara::entities
