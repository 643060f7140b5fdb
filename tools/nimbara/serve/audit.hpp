#pragma once
// The audit table (Tbl_Auditoria): who did what and when, for deletes, imports, settings and users.
#include <string>
#include <vector>

#include "nimbara/Database.hpp"

namespace nimbara::serve {

struct AuditRow {
    std::string at;  // "YYYY-MM-DD HH:MM:SS", the server's local time
    std::string user;
    std::string action;
    std::string what;
};

// Each first gives an older database its audit table.
void write_audit(Database& db, const std::string& user, const std::string& action, const std::string& what);
// The latest `limit` rows, newest first.
std::vector<AuditRow> read_audit(Database& db, int limit);

}  // namespace nimbara::serve
