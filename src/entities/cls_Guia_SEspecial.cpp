#include "entities/connection.hpp"
#include "entities/schema_tables.hpp"
#include "entities/stored_values.hpp"
#include "nimbara/cls_Guia_Cabecalho.hpp"

namespace nimbara {

using entities::require;

cls_Guia_SEspecial::cls_Guia_SEspecial() : cls_Guia_SEspecial(entities::connection_from_ini()) {}

cls_Guia_SEspecial::cls_Guia_SEspecial(std::shared_ptr<Database> db) : myConn(std::move(db)) {}

void cls_Guia_SEspecial::save()
{
    const FieldValue row[] = {vNReq, vNLinha, vCodigoServicoEspecial, vValor};
    entities::check_row("Tbl_Linha_ServicoEspecial",
                        "Guia " + std::to_string(vNReq) + ", line " + std::to_string(vNLinha) + ", service " +
                            vCodigoServicoEspecial,
                        {"N_Req", "N_Linha", "CodigoServicoEspecial", "Valor"}, row);
    if (vIsNew)
        require(myConn).execute_queued(
            "INSERT INTO Tbl_Linha_ServicoEspecial (N_Req, N_Linha, CodigoServicoEspecial, Valor) VALUES (?, ?, ?, ?)",
            {vNReq, vNLinha, vCodigoServicoEspecial, vValor});
    else
        // A stored service whose row is gone changes nothing and raises nothing.
        require(myConn).execute_queued("UPDATE Tbl_Linha_ServicoEspecial SET Valor = ? "
                                       "WHERE N_Req = ? AND N_Linha = ? AND CodigoServicoEspecial = ?",
                                       {vValor, vNReq, vNLinha, vCodigoServicoEspecial});
}

void cls_Guia_SEspecial::remove()
{
    require(myConn).execute_queued(
        "DELETE FROM Tbl_Linha_ServicoEspecial WHERE N_Req = ? AND N_Linha = ? AND CodigoServicoEspecial = ?",
        {vNReq, vNLinha, vCodigoServicoEspecial});
}

std::int16_t cls_Guia_SEspecial::DoSave()
{
    entities::keep_failure(last_error_, [&] {
        Transaction t(require(myConn));
        save();
        t.commit();
    });
    return 0;
}

void cls_Guia_SEspecial::DoDelete()
{
    entities::keep_failure(last_error_, [&] {
        Transaction t(require(myConn));
        remove();
        t.commit();
    });
}

void cls_Guia_SEspecial::SelectAll(Recordset& rs, std::int32_t NReq, std::int16_t NLinha)
{
    rs = require(myConn).open("SELECT " + entities::spelled_columns("Tbl_Linha_ServicoEspecial") +
                                  " FROM Tbl_Linha_ServicoEspecial WHERE N_Req = ? AND N_Linha = ? "
                              "ORDER BY CodigoServicoEspecial",
                              {NReq, NLinha});
}

}  // namespace nimbara
