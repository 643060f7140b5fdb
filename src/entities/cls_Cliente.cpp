#include "entities/connection.hpp"
#include "entities/schema_tables.hpp"
#include "entities/stored_values.hpp"
#include "nimbara/cls_Cliente.hpp"
#include "nimbara/mdl_Biz.hpp"

namespace nimbara {

using entities::require;

namespace {

std::string trimmed(const std::string& s)
{
    const auto first = s.find_first_not_of(' ');
    if (first == std::string::npos) return {};
    return s.substr(first, s.find_last_not_of(' ') - first + 1);
}

}  // namespace

cls_Cliente::cls_Cliente() : cls_Cliente(entities::connection_from_ini()) {}

cls_Cliente::cls_Cliente(std::shared_ptr<Database> db) : myConn(std::move(db)) {}

void cls_Cliente::save()
{
    Database& db = require(myConn);
    Transaction t(db);
    const std::string place = "client " + vCod_Cliente;
    if (vIsNew) {
        const std::vector<FieldValue> values = {iId_Cliente,  FieldValue(vCod_Cliente).integer(),
                                                vNome,        iTipoCliente,
                                                vMorada,      vLocalidade,
                                                vCodPostal,   vDesigPostal,
                                                vNIF.empty() ? std::string("0") : vNIF, vObservacoes,
                                                iAcessoRede};
        entities::check_row("Tbl_Cliente", place,
                            {"Id_Cliente", "Cod_Cliente", "Nome", "iTipoCliente", "Morada", "Localidade", "Cod_Postal",
                             "Desig_Postal", "NContribuinte", "Observacoes", "IAcessoRede"},
                            values);
        db.execute("INSERT INTO Tbl_Cliente (Id_Cliente, Cod_Cliente, Nome, iTipoCliente, Morada, Localidade, "
                   "Cod_Postal, Desig_Postal, NContribuinte, Observacoes, IAcessoRede) "
                   "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
                   values);
    } else {
        // The client number is fixed at insert; an empty tax number stays empty here, unlike the insert.
        const std::vector<FieldValue> values = {vNome,      iTipoCliente, vMorada, vLocalidade,           vCodPostal,
                                                vDesigPostal, vNIF,       trimmed(vObservacoes), iAcessoRede,
                                                iId_Cliente};
        entities::check_row("Tbl_Cliente", place,
                            {"Nome", "iTipoCliente", "Morada", "Localidade", "Cod_Postal", "Desig_Postal",
                             "NContribuinte", "Observacoes", "IAcessoRede", "Id_Cliente"},
                            values);
        db.execute("UPDATE Tbl_Cliente SET Nome = ?, iTipoCliente = ?, Morada = ?, Localidade = ?, Cod_Postal = ?, "
                   "Desig_Postal = ?, NContribuinte = ?, Observacoes = ?, IAcessoRede = ? WHERE Id_Cliente = ?",
                   values);
    }
    for (std::size_t i = 1; i <= mColContrato.Count(); ++i) {
        cls_Contrato& c = mColContrato.Item(i);
        if (c.vToDelete)
            c.remove();
        else
            c.vIsNew ? c.insert() : c.update();
    }
    t.commit();
}

std::int16_t cls_Cliente::DoSave()
{
    entities::keep_failure(last_error_, [&] { save(); });
    return 0;
}

bool cls_Cliente::DoSaveNumerado()
{
    const std::int32_t before = iId_Cliente;
    const bool saved = entities::keep_failure(last_error_, [&] {
        Transaction t(require(myConn), TransactionMode::Numbering);
        if (vIsNew) {
            iId_Cliente = SelectMax() + 1;
            for (std::size_t i = 1; i <= mColContrato.Count(); ++i) mColContrato.Item(i).iId_Cliente = iId_Cliente;
        }
        save();
        t.commit();
    });
    if (!saved) iId_Cliente = before;
    return saved;
}

void cls_Cliente::DoDelete()
{
    entities::keep_failure(last_error_, [&] {
        Database& db = require(myConn);
        Transaction t(db);
        for (std::size_t i = 1; i <= mColContrato.Count(); ++i) mColContrato.Item(i).remove();
        // The old statement names a column Tbl_Cliente lacks; it fails, and the contracts stay now.
        db.execute("DELETE FROM Tbl_Cliente WHERE Codigo = ?", {iId_Cliente});
        t.commit();
    });
}

void cls_Cliente::Delete_ContratosGuias(const std::string& Cod_Contrato, const std::string& id_Cliente)
{
    entities::keep_failure(last_error_, [&] {
        require(myConn).execute("DELETE FROM Tbl_Contrato WHERE Cod_Cliente = ? AND Cod_Contrato = ?",
                                {FieldValue(id_Cliente).integer(), FieldValue(Cod_Contrato).integer()});
    });
}

void cls_Cliente::DeleteRegs(const std::string& id_Cliente)
{
    entities::keep_failure(last_error_, [&] {
        const std::int64_t id = FieldValue(id_Cliente).integer();
        Database& db = require(myConn);
        Transaction t(db);
        constexpr const char* kOfClient = " WHERE N_Req IN (SELECT N_Req FROM Tbl_Cab WHERE Id_Cliente = ?)";
        db.execute(std::string("DELETE FROM Tbl_Linha_ServicoEspecial") + kOfClient, {id});
        db.execute(std::string("DELETE FROM Tbl_Linha") + kOfClient, {id});
        db.execute("DELETE FROM Tbl_Cab WHERE Id_Cliente = ?", {id});
        db.execute("DELETE FROM Tbl_Contrato WHERE Id_Cliente = ?", {id});
        db.execute("DELETE FROM Tbl_Cliente WHERE Id_Cliente = ?", {id});
        t.commit();
    });
}

void cls_Cliente::SelectAll(Recordset& rs)
{
    if (gConnString.empty() && !myConn) return;
    rs = require(myConn).open("SELECT " + entities::spelled_columns("Tbl_Cliente") + " FROM Tbl_Cliente ORDER BY Cod_Cliente");
}

void cls_Cliente::load(const char* column, std::int32_t value)
{
    const Recordset rs =
        require(myConn).open("SELECT * FROM Tbl_Cliente WHERE " + std::string(column) + " = ?", {value});
    if (rs.RecordCount() > 0) {
        const auto text = [&](const char* name) { return rs[name].text(); };
        const FieldValue& acesso = rs["IAcessoRede"];
        if (acesso.is_null()) throw std::invalid_argument("Invalid use of Null");
        iId_Cliente = rs["Id_Cliente"].is_null() ? 0 : static_cast<std::int32_t>(rs["Id_Cliente"].integer());
        vCod_Cliente = text("Cod_Cliente");
        vNome = text("Nome");
        iTipoCliente = rs["iTipoCliente"].is_null() ? 0 : static_cast<std::int16_t>(rs["iTipoCliente"].integer());
        vMorada = text("Morada");
        vLocalidade = text("Localidade");
        vCodPostal = text("Cod_Postal");
        vDesigPostal = text("Desig_Postal");
        vNIF = text("NContribuinte");
        vObservacoes = text("Observacoes");
        iAcessoRede = static_cast<std::int16_t>(acesso.integer());
    }
    vIsNew = false;
    FillColContrato();
}

void cls_Cliente::SelectMe(std::int32_t id_Cliente) { load("Id_Cliente", id_Cliente); }

void cls_Cliente::SelectMeByCod_Cliente(std::int32_t Cod_Cliente) { load("Cod_Cliente", Cod_Cliente); }

bool cls_Cliente::Busca_Cliente(std::string& num)
{
    const std::int64_t number = FieldValue(num).integer();  // a number that is no number raises here
    rsbuscacliente = require(myConn).open("SELECT * FROM Tbl_Cliente WHERE Cod_Cliente = ?", {number});
    const bool found = rsbuscacliente.RecordCount() >= 1;
    if (!found) vIsNew = true;
    rsbuscacliente.Close();
    return found;
}

void cls_Cliente::AddContrato(std::int32_t id_Cliente, const std::string& Cod_Contrato, const std::string& Designacao,
                              bool JPP, const std::string& Cod_Credencial, const std::string& validacao,
                              const std::string& descricao, bool bActivo, Timestamp dDataActividade, bool IsNew)
{
    auto c = std::make_unique<cls_Contrato>(myConn);
    c->iId_Cliente = id_Cliente;
    c->vCodCliente = vCod_Cliente;
    c->vCodContrato = Cod_Contrato;
    c->vDesignacao = Designacao;
    c->vJppCredenciado = JPP;
    c->vCodCredencial = Cod_Credencial;
    c->vValidacao = validacao;
    c->vDescricao = descricao;
    c->bActivo = bActivo;
    c->dDataActividade = dDataActividade;
    c->vIsNew = IsNew;
    mColContrato.Add(std::move(c));
}

void cls_Cliente::UpdateListContrato(std::int32_t indx_Lst, const std::string& Cod_Contrato,
                                     const std::string& Designacao, bool JPP, const std::string& Cod_Credencial,
                                     const std::string& validacao, const std::string& descricao, bool bActivo,
                                     Timestamp dDataActividade, bool /*IsNew*/)
{
    const std::string normalised = std::to_string(FieldValue(Cod_Contrato).integer());
    mColContrato.Remove(static_cast<std::size_t>(indx_Lst));
    AddContrato(iId_Cliente, normalised, Designacao, JPP, Cod_Credencial, validacao, descricao, bActivo,
                dDataActividade, false);
}

void cls_Cliente::RemoveContrato(std::int16_t ColIndex)
{
    cls_Contrato& c = mColContrato.Item(static_cast<std::size_t>(ColIndex));
    if (c.vIsNew)
        mColContrato.Remove(static_cast<std::size_t>(ColIndex));
    else
        c.vToDelete = true;
}

void cls_Cliente::FillColContrato()
{
    cls_Contrato reader(myConn);
    Recordset rs;
    reader.SelectAll(rs, std::to_string(iId_Cliente));
    for (; !rs.IsEOF(); rs.MoveNext())
        AddContrato(iId_Cliente, rs["Cod_Contrato"].text(), rs["Designacao"].text(), rs["JPP_Credenciado"].yes_no(),
                    rs["Cod_Credencial"].text(), rs["Validacao"].text(), rs["Descricao"].text(),
                    rs["bActivo"].yes_no(), rs["dDataActividade"].date(), false);
    rs.Close();
}

std::string cls_Cliente::SelectContrato_Criteria(Recordset& rs, std::int32_t id_Cliente)
{
    rs = require(myConn).open("SELECT MIN(Cod_Contrato) AS \"Contrato\" FROM Tbl_Contrato WHERE Id_Cliente = ? AND bActivo = ?",
                              {id_Cliente, true});
    if (rs[std::size_t{0}].is_null()) throw std::invalid_argument("Invalid use of Null");
    return rs[std::size_t{0}].text();
}

std::int32_t cls_Cliente::SelectMax()
{
    const Recordset rs = require(myConn).open("SELECT MAX(Id_Cliente) AS Maior FROM Tbl_Cliente");
    return rs[std::size_t{0}].is_null() ? 0 : static_cast<std::int32_t>(rs[std::size_t{0}].integer());
}

}  // namespace nimbara
