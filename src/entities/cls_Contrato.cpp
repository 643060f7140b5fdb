#include "entities/connection.hpp"
#include "entities/schema_tables.hpp"
#include "nimbara/cls_Cliente.hpp"

namespace nimbara {

using entities::require;

cls_Contrato::cls_Contrato() : cls_Contrato(entities::connection_from_ini()) {}

cls_Contrato::cls_Contrato(std::shared_ptr<Database> db) : dDataActividade(entities::today()), myConn(std::move(db)) {}

void cls_Contrato::Config_Defaults(std::int16_t& Config_col, std::int16_t& Config_lin, std::int16_t& Config_error,
                                   std::string& Config_PDF, std::int16_t& Config_ratio, std::int16_t& Config_font,
                                   std::string& Config_trunc, std::string& Config_tilde, std::string* Msg)
{
    const Recordset rs = require(myConn).open("SELECT * FROM TAB_CONFIG WHERE config_id = 1");
    if (rs.RecordCount() < 1) {
        if (Msg) *Msg = "Não foi possivel restabelecer os valores por default.";
        return;
    }
    const auto small = [&](std::size_t i) { return static_cast<std::int16_t>(rs[i].integer()); };
    Config_col = small(1);
    Config_lin = small(2);
    Config_error = small(3);
    Config_PDF = rs[4].text();
    Config_ratio = small(5);
    Config_font = small(6);
    Config_trunc = rs[7].text();
    Config_tilde = rs[8].text();
}

void cls_Contrato::insert()
{
    // A new contract is stored active and dated today, whatever the properties say.
    require(myConn).execute("INSERT INTO Tbl_Contrato (Id_Cliente, Cod_Contrato, Designacao, JPP_Credenciado, "
                            "Cod_Credencial, Validacao, Descricao, bActivo, dDataActividade) "
                            "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)",
                            {iId_Cliente, FieldValue(vCodContrato).integer(), vDesignacao, vJppCredenciado,
                             vCodCredencial, vValidacao, vDescricao, true, entities::today()});
}

void cls_Contrato::update()
{
    require(myConn).execute("UPDATE Tbl_Contrato SET Designacao = ?, JPP_Credenciado = ?, Cod_Credencial = ?, "
                            "Validacao = ?, Descricao = ?, bActivo = ?, dDataActividade = ? "
                            "WHERE Cod_Contrato = ? AND Id_Cliente = ?",
                            {vDesignacao, vJppCredenciado, vCodCredencial, vValidacao, vDescricao, bActivo,
                             dDataActividade, FieldValue(vCodContrato).integer(), iId_Cliente});
}

void cls_Contrato::remove()
{
    require(myConn).execute("DELETE FROM Tbl_Contrato WHERE Cod_Contrato = ? AND Id_Cliente = ?",
                            {FieldValue(vCodContrato).integer(), iId_Cliente});
}

std::int16_t cls_Contrato::DoSave()
{
    entities::keep_failure(last_error_, [&] {
        Transaction t(require(myConn));
        vIsNew ? insert() : update();
        t.commit();
    });
    return 0;
}

void cls_Contrato::DoDelete()
{
    entities::keep_failure(last_error_, [&] {
        Transaction t(require(myConn));
        remove();
        t.commit();
    });
}

void cls_Contrato::SelectAll(Recordset& rs, const std::string& CodCLiente)
{
    rs = require(myConn).open("SELECT " + entities::spelled_columns("Tbl_Contrato") +
                                  " FROM Tbl_Contrato WHERE Id_Cliente = ? ORDER BY Cod_Contrato",
                              {FieldValue(CodCLiente).integer()});
}

void cls_Contrato::SelectContratoActivo(Recordset& rs, const std::string& /*CodCLiente*/)
{
    rs = require(myConn).open("SELECT " + entities::spelled_columns("Tbl_Contrato") +
                                  " FROM Tbl_Contrato WHERE Id_Cliente = ? AND bActivo = ? ORDER BY Cod_Contrato",
                              {iId_Cliente, true});
}

}  // namespace nimbara
