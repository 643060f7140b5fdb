#include "line_services.hpp"

#include <set>

namespace nimbara::cli {

LineServices read_line_services(Database& db)
{
    LineServices services;
    std::set<std::string> codes;
    for (Recordset rs = db.open("SELECT Codigo AS \"Codigo\" FROM Tbl_I_ServicosEspeciais"); !rs.IsEOF(); rs.MoveNext())
        codes.insert(rs["Codigo"].text());
    // A left join: a line's service whose code left the list is exported all the same.
    Recordset rs = db.open(
        "SELECT Tbl_Linha_ServicoEspecial.N_Req AS \"N_Req\", Tbl_Linha_ServicoEspecial.N_Linha AS \"N_Linha\", "
        "Tbl_Linha_ServicoEspecial.CodigoServicoEspecial AS \"Codigo\", Tbl_I_ServicosEspeciais.Designacao AS "
        "\"Designacao\", Tbl_Linha_ServicoEspecial.Valor AS \"Valor\" FROM Tbl_Linha_ServicoEspecial LEFT JOIN "
        "Tbl_I_ServicosEspeciais ON Tbl_I_ServicosEspeciais.Codigo = Tbl_Linha_ServicoEspecial.CodigoServicoEspecial "
        "ORDER BY Tbl_Linha_ServicoEspecial.N_Req, Tbl_Linha_ServicoEspecial.N_Linha, "
        "Tbl_Linha_ServicoEspecial.CodigoServicoEspecial");
    for (; !rs.IsEOF(); rs.MoveNext()) {
        LineService s{rs["Codigo"].text(), rs["Designacao"].is_null() ? "" : rs["Designacao"].text(), rs["Valor"].text()};
        codes.insert(s.code);
        services.of_line[{rs["N_Req"].integer(), rs["N_Linha"].integer()}].push_back(std::move(s));
    }
    codes.erase("0");
    services.codes.assign(codes.begin(), codes.end());
    return services;
}

}  // namespace nimbara::cli
