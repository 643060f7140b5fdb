#include "platform/table_names.hpp"

namespace nimbara::platform {

std::vector<std::string> table_names(Database& db)
{
    const char* sql = db.kind() == StoreKind::SQLite
                          ? "SELECT name FROM sqlite_master WHERE type IN ('table', 'view') "
                            "AND name NOT LIKE 'sqlite!_%' ESCAPE '!' ORDER BY name"
                          : "SELECT table_name FROM information_schema.tables WHERE table_schema = current_schema() "
                            "ORDER BY table_name";
    std::vector<std::string> names;
    for (Recordset rs = db.open(sql); !rs.IsEOF(); rs.MoveNext()) names.push_back(rs[std::size_t{0}].text());
    return names;
}

}  // namespace nimbara::platform
