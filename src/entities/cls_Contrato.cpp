#include "entities/connection.hpp"
#include "entities/schema_tables.hpp"
#include "entities/stored_values.hpp"
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

namespace {

// The contract's code as the column takes it: a code that is no number is refused by the gate
// with its text, rather than by the conversion's bare "Type mismatch".
FieldValue contract_code(const std::string& code)
{
    try {
        return FieldValue(code).integer();
    } catch (const std::exception&) {
        return FieldValue(code);
    }
}

std::string contract_place(std::int32_t client, const std::string& code)
{
    return "client Id " + std::to_string(client) + ", contract \"" + code + "\"";
}

}  // namespace

void cls_Contrato::insert()
{
    // A new contract is stored active and dated today, whatever the properties say.
    const std::vector<FieldValue> values = {iId_Cliente,    contract_code(vCodContrato), vDesignacao,
                                            vJppCredenciado, vCodCredencial,             vValidacao,
                                            vDescricao,     true,                        entities::today()};
    entities::check_row("Tbl_Contrato", contract_place(iId_Cliente, vCodContrato),
                        {"Id_Cliente", "Cod_Contrato", "Designacao", "JPP_Credenciado", "Cod_Credencial", "Validacao",
                         "Descricao", "bActivo", "dDataActividade"},
                        values);
    require(myConn).execute("INSERT INTO Tbl_Contrato (Id_Cliente, Cod_Contrato, Designacao, JPP_Credenciado, "
                            "Cod_Credencial, Validacao, Descricao, bActivo, dDataActividade) "
                            "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)",
                            values);
}

void cls_Contrato::update()
{
    const std::vector<FieldValue> values = {vDesignacao,     vJppCredenciado, vCodCredencial,
                                            vValidacao,      vDescricao,      bActivo,
                                            dDataActividade, contract_code(vCodContrato), iId_Cliente};
    entities::check_row("Tbl_Contrato", contract_place(iId_Cliente, vCodContrato),
                        {"Designacao", "JPP_Credenciado", "Cod_Credencial", "Validacao", "Descricao", "bActivo",
                         "dDataActividade", "Cod_Contrato", "Id_Cliente"},
                        values);
    require(myConn).execute("UPDATE Tbl_Contrato SET Designacao = ?, JPP_Credenciado = ?, Cod_Credencial = ?, "
                            "Validacao = ?, Descricao = ?, bActivo = ?, dDataActividade = ? "
                            "WHERE Cod_Contrato = ? AND Id_Cliente = ?",
                            values);
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
