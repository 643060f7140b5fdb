// What the database edition prints, read from the database: the settings, the Guia's header, its
// lines and each line's special services.
#include <string>
#include <utility>
#include <vector>

#include "entities/schema_tables.hpp"
#include "nimbara/cls_Impressao.hpp"
#include "nimbara/mdl_Biz.hpp"
#include "printing/page.hpp"
#include "printing/request_day.hpp"

namespace nimbara {
namespace {

Database& connection(std::shared_ptr<Database>& conn)
{
    if (!conn) OpenConnection(conn);
    if (!conn) throw DatabaseError("no connection to the database: the ini file names none that opens");
    return *conn;
}

// The header's columns in the order the printing reads them; D_Req becomes D_Req_Jul after the query.
// Every column is named in quotes, so that both stores answer the names as they are written here.
const std::string& header_query()
{
    static const std::string sql =
        "SELECT " +
        entities::spelled_list({"Tbl_Cab.N_Req", "Tbl_Cab.CodigoTerceiro", "Tbl_Cab.Cod_Cliente", "Tbl_Cab.Cod_Contrato",
                                "Tbl_Cab.N_Credencial", "Tbl_Cliente.Nome", "Tbl_Cliente.NContribuinte",
                                "Tbl_Cliente.Morada", "Tbl_Cliente.Cod_Postal", "Tbl_Cliente.Desig_Postal",
                                "Tbl_Cab.Observacoes", "Tbl_Cab.Credenciado", "Tbl_Cab.Pagamento",
                                "Tbl_Cab.N_Credencial", "Tbl_Cab.NCompromisso", "Tbl_Cab.Id_Req_Anual",
                                "Tbl_Cab.N_Req2", "Tbl_Cab.D_Req"}) +
        " FROM Tbl_Cab INNER JOIN Tbl_Cliente ON Tbl_Cab.Id_Cliente = Tbl_Cliente.Id_Cliente "
        "INNER JOIN Tbl_Contrato ON Tbl_Contrato.Id_Cliente = Tbl_Cab.Id_Cliente "
        "AND Tbl_Contrato.Cod_Contrato = Tbl_Cab.Cod_Contrato "
        "WHERE Tbl_Cab.N_Req = ?";
    return sql;
}

// The header's rows with their last column, the request's date, turned into its day code.
Recordset with_day_code(Recordset rs)
{
    std::vector<std::string> names;
    for (std::size_t i = 0; i < rs.FieldCount(); ++i) names.push_back(rs.FieldName(i));
    names.back() = "D_Req_Jul";
    std::vector<std::vector<FieldValue>> rows;
    for (rs.MoveFirst(); !rs.IsEOF(); rs.MoveNext()) {
        auto& row = rows.emplace_back();
        for (std::size_t i = 0; i + 1 < rs.FieldCount(); ++i) row.push_back(rs[i]);
        const FieldValue& date = rs[rs.FieldCount() - 1];
        row.push_back(date.is_null() ? FieldValue() : FieldValue(printing::D_Req_Jul(date.date())));
    }
    return Recordset(std::move(names), std::move(rows));
}

}  // namespace

void cls_Impressao::Param_Parametros(Recordset& rs_Parametros)
{
    rs_param = connection(myConn).open(
        "SELECT " +
        entities::spelled_list({"Cod2DFonteSize", "Cod2DRatio", "Cod2DNColunas", "Cod2DNLinhas", "Cod2DErroLevel",
                                "Cod2DPDFMode", "Cod2DTruncated", "Cod2DApplyTilde", "GuiaNVias", "GuiaMargensTopo",
                                "GuiaMargensEsquerda", "CodTerceiro"}) +
        " FROM Tbl_Parametro");
    if (rs_param.RecordCount() > 0) rs_Parametros = rs_param;
}

void cls_Impressao::Param_Cabecalho(std::int32_t varNReq, Recordset& rs_p)
{
    printing::Page(*this).guarded("Param_Cabecalho", [&] {
        rscab_ssql = with_day_code(connection(myConn).open(header_query(), {varNReq}));
        if (rscab_ssql.RecordCount() > 0) rs_p = rscab_ssql;
    });
}

void cls_Impressao::Param_Produto(std::int32_t varNReq, Recordset& rs_p, std::int16_t resulset)
{
    printing::Page(*this).guarded("Param_Produto", [&] {
        const std::string sql =
            resulset == 1 ? "SELECT " + entities::spelled_columns("Query_ParteVariavel") +
                                " FROM Query_ParteVariavel WHERE N_Req = ? ORDER BY N_Linha"
                          : "SELECT " +
                                entities::spelled_list({"N_Req", "A_Zona_Taxacao", "B_Produto", "E_Velocidade",
                                                        "D_Quantidade", "N_Linha", "O_Divisao_Remetente", "Q_Conteudo",
                                                        "P_RefCliente", "G_PreTratamento"}) +
                                " FROM Tbl_Temp_Val_Guia WHERE N_Req = ?";
        rscab_ssql = connection(myConn).open(sql, {varNReq});
        if (rscab_ssql.RecordCount() > 0) rs_p = rscab_ssql;
    });
}

void cls_Impressao::Param_ServicosEspeciais(std::int32_t varNReq, std::int32_t Linha, std::string& str_rs,
                                            Recordset* rs_ServEsp, std::int16_t Imprime)
{
    printing::Page(*this).guarded("Param_ServicosEspeciais", [&] {
        rsSe_ssql = connection(myConn).open("SELECT " + entities::spelled_list({"CodigoServicoEspecial", "Valor", "N_Linha"}) +
                                                " FROM Tbl_Linha_ServicoEspecial WHERE N_Req = ? AND N_Linha = ? "
                                                "ORDER BY Valor, CodigoServicoEspecial",
                                            {varNReq, Linha});
        if (rsSe_ssql.RecordCount() == 0) {
            str_rs.clear();
        } else {
            for (rsSe_ssql.MoveFirst(); !rsSe_ssql.IsEOF();) {
                str_rs += rsSe_ssql["CodigoServicoEspecial"].text();
                rsSe_ssql.MoveNext();
                if (!rsSe_ssql.IsEOF()) str_rs += ",";
            }
        }
        if (Imprime > 0) {
            if (rsSe_ssql.RecordCount() > 0) rsSe_ssql.MoveFirst();
            if (rs_ServEsp != nullptr) *rs_ServEsp = rsSe_ssql;
        } else {
            rsSe_ssql.Close();
        }
    });
}

}  // namespace nimbara
