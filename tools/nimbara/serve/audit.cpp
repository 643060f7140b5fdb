#include "audit.hpp"

#include "nimbara/Schema.hpp"

namespace nimbara::serve {

void write_audit(Database& db, const std::string& user, const std::string& action, const std::string& what)
{
    EnsureAccessTables(db);
    db.execute("INSERT INTO Tbl_Auditoria (Quando, Utilizador, Accao, Objecto) VALUES (?, ?, ?, ?)",
               {Timestamp::now(), user, action, what});
}

std::vector<AuditRow> read_audit(Database& db, int limit)
{
    EnsureAccessTables(db);
    std::vector<AuditRow> rows;
    Recordset rs = db.open("SELECT Quando, Utilizador, Accao, Objecto FROM Tbl_Auditoria ORDER BY Quando DESC LIMIT ?",
                           {limit});
    for (; !rs.IsEOF(); rs.MoveNext())
        rows.push_back({rs["Quando"].date().text(), rs["Utilizador"].text(), rs["Accao"].text(), rs["Objecto"].text()});
    return rows;
}

}  // namespace nimbara::serve
