#include "guia_json.hpp"

#include "db_command.hpp"
#include "guia_command.hpp"
#include "nimbara/cls_Guia_Cabecalho.hpp"
#include "verdict_json.hpp"

namespace nimbara::cli {
namespace {

std::int64_t count_of(Database& db, const char* sql, std::int32_t n_req)
{
    return db.open(sql, {n_req})[std::size_t{0}].integer();
}

nlohmann::ordered_json verdict_of(const ValidationResult& result)
{
    nlohmann::ordered_json j = {{"passed", !result}};
    if (result) j.update(nlohmann::ordered_json(error_json(*result)));
    return j;
}

}  // namespace

std::vector<PrintProblem> stored_print_problems(const std::shared_ptr<Database>& db, std::int32_t n_req)
{
    cls_Impressao printer(db);
    printer.set_log_path(default_print_log());
    return printer.PrintProblems(n_req);
}

nlohmann::ordered_json print_problems_json(const std::vector<PrintProblem>& problems)
{
    auto rows = nlohmann::ordered_json::array();
    for (const auto& p : problems) rows.push_back({{"place", p.place}, {"what", p.what}});
    return rows;
}

nlohmann::ordered_json saved_guia_json(const std::string& input, const SavedGuia& saved,
                                       const std::vector<PrintProblem>& problems)
{
    return {{"input", input},
            {"status", 0},
            {"N_Req", saved.N_Req},
            {"N_Req2", saved.N_Req2},
            {"Id_Req_Anual", saved.Id_Req_Anual},
            {"not_printable", print_problems_json(problems)}};
}

// The counts are read in the delete's own transaction, so they are what it removed.
nlohmann::ordered_json delete_guia(const std::shared_ptr<Database>& db, std::int32_t n_req, bool commit)
{
    Transaction t(*db);
    const Recordset head = db->open("SELECT Tbl_Cab.Cod_Cliente, Tbl_Cliente.Nome FROM Tbl_Cab LEFT JOIN Tbl_Cliente "
                                    "ON Tbl_Cliente.Id_Cliente = Tbl_Cab.Id_Cliente WHERE Tbl_Cab.N_Req = ?",
                                    {n_req});
    if (head.RecordCount() == 0) throw NotFoundError("no Guia with N_Req " + std::to_string(n_req));
    const std::string client = head[std::size_t{0}].text(), name = head[std::size_t{1}].text();
    const std::int64_t lines = count_of(*db, "SELECT COUNT(*) FROM Tbl_Linha WHERE N_Req = ?", n_req);
    const std::int64_t services = count_of(*db, "SELECT COUNT(*) FROM Tbl_Linha_ServicoEspecial WHERE N_Req = ?", n_req);
    if (commit) {
        cls_Guia_Cabecalho g(db);
        g.vNReq = n_req;
        g.DoDelete();
        if (!g.LastError().empty()) throw CommandError("nothing was deleted: " + g.LastError());
        t.commit();
    }
    return {{"n_req", n_req}, {"cod_cliente", client}, {"nome", name}, {"lines", lines}, {"services", services}};
}

nlohmann::ordered_json stored_verdict_json(std::int32_t n_req, const StoredGuiaVerdict& verdict)
{
    auto lines = nlohmann::ordered_json::array();
    for (const auto& l : verdict.lines) {
        nlohmann::ordered_json line = {{"N_Linha", l.N_Linha}};
        line.update(verdict_of(l.result));
        lines.push_back(std::move(line));
    }
    return {{"N_Req", n_req}, {"status", verdict.passed() ? 0 : 1}, {"lines", lines}, {"guia", verdict_of(verdict.guia)}};
}

}  // namespace nimbara::cli
