#include <map>
#include <vector>

#include "entities/connection.hpp"
#include "entities/schema_tables.hpp"
#include "entities/stored_values.hpp"
#include "entities/working_table.hpp"
#include "nimbara/cls_Guia_Cabecalho.hpp"

namespace nimbara {

using entities::require;

namespace {

// A number held as text, whole: the gate judges its width before it is stored.
std::int64_t whole(const std::string& text) { return FieldValue(text).integer(); }

std::string guia_place(std::int32_t n_req) { return "Guia " + std::to_string(n_req); }

}  // namespace

cls_Guia_Cabecalho::cls_Guia_Cabecalho() : cls_Guia_Cabecalho(entities::connection_from_ini()) {}

cls_Guia_Cabecalho::cls_Guia_Cabecalho(std::shared_ptr<Database> db) : vDReq(Timestamp::now()), myConn(std::move(db))
{
}

void cls_Guia_Cabecalho::insert(bool with_third_party)
{
    // The old insert leaves CodigoTerceiro null on a new row, for the first update to set.
    const std::string third = with_third_party ? ", CodigoTerceiro" : "";
    std::vector<FieldValue> values = {vNReq, iId_Cliente, whole(vCodCliente), whole(vCodContrato), vDReq,
                                      vPagamento, vCredenciado, vNCredencial, vRecolhido, vSituacao, vFicheiro,
                                      vObservacoes, vNReq2, vNIDReqAnual, vNCompromisso};
    if (with_third_party) values.emplace_back(vCodTerceiro);
    entities::check_row("Tbl_Cab", guia_place(vNReq),
                        {"N_Req", "Id_Cliente", "Cod_Cliente", "Cod_Contrato", "D_Req", "Pagamento", "Credenciado",
                         "N_Credencial", "Recolhido", "Situacao", "Ficheiro", "Observacoes", "N_Req2", "Id_Req_Anual",
                         "nCompromisso", "CodigoTerceiro"},
                        values);
    require(myConn).execute_queued(
        "INSERT INTO Tbl_Cab (N_Req, Id_Cliente, Cod_Cliente, Cod_Contrato, D_Req, Pagamento, Credenciado, "
        "N_Credencial, Recolhido, Situacao, Ficheiro, Observacoes, N_Req2, Id_Req_Anual, nCompromisso" + third +
            ") VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?" + (with_third_party ? ", ?" : "") + ")",
        values);
}

void cls_Guia_Cabecalho::update()
{
    // The running numbers are fixed at insert, and the state is never changed here.
    const std::vector<FieldValue> values = {iId_Cliente, whole(vCodCliente), whole(vCodContrato), vCodTerceiro,
                                            vDReq,       vPagamento,         vCredenciado,        vNCredencial,
                                            vRecolhido,  vFicheiro,          vObservacoes,        vNCompromisso,
                                            vNReq};
    entities::check_row("Tbl_Cab", guia_place(vNReq),
                        {"Id_Cliente", "Cod_Cliente", "Cod_Contrato", "CodigoTerceiro", "D_Req", "Pagamento",
                         "Credenciado", "N_Credencial", "Recolhido", "Ficheiro", "Observacoes", "nCompromisso", "N_Req"},
                        values);
    require(myConn).execute_queued(
        "UPDATE Tbl_Cab SET Id_Cliente = ?, Cod_Cliente = ?, Cod_Contrato = ?, CodigoTerceiro = ?, D_Req = ?, "
        "Pagamento = ?, Credenciado = ?, N_Credencial = ?, Recolhido = ?, Ficheiro = ?, Observacoes = ?, "
        "nCompromisso = ? WHERE N_Req = ?",
        values);
}

void cls_Guia_Cabecalho::save_lines(bool fresh_number)
{
    for (std::size_t i = 1; i <= mColLinha.Count(); ++i) {
        cls_Guia_Linha& line = mColLinha.Item(i);
        if (!line.vToDelete) {
            line.save(fresh_number);
            continue;
        }
        for (std::size_t s = 1; s <= line.mColSEspecial.Count(); ++s) line.mColSEspecial.Item(s).remove();
        line.remove();
    }
}

std::int16_t cls_Guia_Cabecalho::DoSave()
{
    entities::keep_failure(last_error_, [&] {
        Transaction t(require(myConn));
        vIsNew ? insert() : update();
        save_lines();
        t.commit();
    });
    return 0;
}

bool cls_Guia_Cabecalho::DoSaveNumerada()
{
    const std::int32_t before[] = {vNReq, vNReq2, vNIDReqAnual};
    const bool saved = entities::keep_failure(last_error_, [&] {
        Database& db = require(myConn);
        Transaction t(db, TransactionMode::Numbering);
        // Each maximum is one seek in an index (the year's through ix_Cab_Cliente_Ano's expression).
        const Recordset highest = db.open(
            "SELECT (SELECT MAX(N_Req) FROM Tbl_Cab) AS N_Req, "
            "(SELECT MAX(N_Req2) FROM Tbl_Cab WHERE Id_Cliente = ?) AS N_Req2, "
            "(SELECT MAX(Id_Req_Anual) FROM Tbl_Cab WHERE Id_Cliente = ? AND " +
                db.year_of("D_Req") + " = ?) AS Anual",
            {iId_Cliente, iId_Cliente, vDReq.year});
        const auto next = [&](const char* name) {
            return highest[name].is_null() ? 1 : static_cast<std::int32_t>(highest[name].integer()) + 1;
        };
        vNReq = next("N_Req");
        vNReq2 = next("N_Req2");
        vNIDReqAnual = next("Anual");
        for (std::size_t i = 1; i <= mColLinha.Count(); ++i) {
            cls_Guia_Linha& line = mColLinha.Item(i);
            line.vNReq = vNReq;
            for (std::size_t s = 1; s <= line.mColSEspecial.Count(); ++s) line.mColSEspecial.Item(s).vNReq = vNReq;
        }
        insert(true);
        save_lines(true);
        t.commit();
    });
    if (!saved) {
        vNReq = before[0], vNReq2 = before[1], vNIDReqAnual = before[2];
        return false;
    }
    // Stored now: a later DoSave updates what this one inserted.
    vIsNew = false;
    for (std::size_t i = 1; i <= mColLinha.Count(); ++i) {
        cls_Guia_Linha& line = mColLinha.Item(i);
        line.vIsNew = false;
        for (std::size_t s = 1; s <= line.mColSEspecial.Count(); ++s) line.mColSEspecial.Item(s).vIsNew = false;
    }
    return true;
}

void cls_Guia_Cabecalho::DoDelete()
{
    entities::keep_failure(last_error_, [&] {
        Database& db = require(myConn);
        Transaction t(db);
        db.execute_queued("DELETE FROM Tbl_Linha_ServicoEspecial WHERE N_Req = ?", {vNReq});
        db.execute_queued("DELETE FROM Tbl_Linha WHERE N_Req = ?", {vNReq});
        db.execute_queued("DELETE FROM Tbl_Cab WHERE N_Req = ?", {vNReq});
        t.commit();
    });
}

std::int32_t cls_Guia_Cabecalho::max_of(const std::string& sql, std::initializer_list<FieldValue> values)
{
    const Recordset rs = require(myConn).open(sql, values);
    const FieldValue& v = rs[std::size_t{0}];
    return v.is_null() ? 0 : static_cast<std::int32_t>(v.integer());
}

std::int32_t cls_Guia_Cabecalho::SelectMax() { return max_of("SELECT MAX(N_Req) FROM Tbl_Cab", {}); }

std::int32_t cls_Guia_Cabecalho::SelectMax_PorCliente(const std::string& clienteNr)
{
    return max_of("SELECT MAX(Tbl_Cab.N_Req2) FROM Tbl_Cab INNER JOIN Tbl_Cliente "
                  "ON Tbl_Cab.Id_Cliente = Tbl_Cliente.Id_Cliente WHERE Tbl_Cliente.Cod_Cliente = ?",
                  {FieldValue(clienteNr).integer()});
}

std::int32_t cls_Guia_Cabecalho::SelectMax_NReqAnual_PorCliente(const std::string& clienteNr)
{
    const Database& db = require(myConn);
    return max_of("SELECT MAX(Tbl_Cab.Id_Req_Anual) FROM Tbl_Cab INNER JOIN Tbl_Cliente "
                  "ON Tbl_Cab.Id_Cliente = Tbl_Cliente.Id_Cliente WHERE " + db.year_of("Tbl_Cab.D_Req") +
                      " = ? AND Tbl_Cliente.Cod_Cliente = ?",
                  {Timestamp::now().year, FieldValue(clienteNr).integer()});
}

void cls_Guia_Cabecalho::SelectAll(Recordset& rs)
{
    rs = require(myConn).open("SELECT " + entities::spelled_columns("Tbl_Cab") + " FROM Tbl_Cab");
}

void cls_Guia_Cabecalho::SelectLista(Recordset& rs)
{
    Database& db = require(myConn);
    using entities::spelled;
    rs = db.open(
        "SELECT " + spelled("Tbl_Cliente.Cod_Cliente", "Cod_Cliente") + ", " + spelled("Tbl_Cab.Cod_Contrato", "Cod_Contrato") +
        ", " + spelled("Tbl_Cliente.Nome", "Nome") + ", " + spelled("Tbl_Cab.Id_Req_Anual", "Guia") + ", " +
        spelled(db.date_text("Tbl_Cab.D_Req", DateText::DayDashed), "Data_Req") + ", " +
        spelled("Tbl_Cab.Observacoes", "Observacoes") + ", " + spelled("Tbl_Cab.N_Req", "N_Req") + ", " +
        spelled("Tbl_Cab.nCompromisso", "nCompromisso") +
        " FROM Tbl_Cab INNER JOIN Tbl_Contrato ON Tbl_Cab.Cod_Contrato = Tbl_Contrato.Cod_Contrato "
        "INNER JOIN Tbl_Cliente ON Tbl_Cab.Id_Cliente = Tbl_Cliente.Id_Cliente "
        "WHERE Tbl_Cliente.Id_Cliente = Tbl_Contrato.Id_Cliente "
        "ORDER BY Tbl_Cliente.Cod_Cliente, Tbl_Cab.N_Req2");
}

void cls_Guia_Cabecalho::SelectMe(std::int32_t NReq)
{
    // The header, its lines and their services as one state: never half of another station's save.
    Transaction reading(require(myConn), TransactionMode::Reading);
    const Recordset rs = require(myConn).open("SELECT * FROM Tbl_Cab WHERE N_Req = ?", {NReq});
    const auto number = [&](const char* name) {
        const FieldValue& v = rs[name];
        return v.is_null() || v.text().empty() ? 0 : static_cast<std::int32_t>(v.integer());
    };
    // Everything is read before anything is set, so an unknown number changes nothing.
    cls_Guia_Cabecalho read(nullptr);
    read.vNReq = number("N_Req");
    read.vNReq2 = number("N_Req2");
    read.vNIDReqAnual = number("Id_Req_Anual");
    read.iId_Cliente = number("ID_Cliente");
    read.vCodCliente = rs["Cod_Cliente"].text();
    read.vCodContrato = rs["Cod_Contrato"].text();
    read.vCodTerceiro = rs["CodigoTerceiro"].text();
    read.vDReq = rs["D_Req"].date();
    read.vPagamento = static_cast<std::int16_t>(number("Pagamento"));
    read.vCredenciado = rs["Credenciado"].yes_no();
    read.vNCredencial = rs["N_Credencial"].text();
    read.vRecolhido = rs["Recolhido"].yes_no();
    read.vSituacao = rs["Situacao"].text();
    read.vFicheiro = rs["Ficheiro"].text();
    read.vObservacoes = rs["Observacoes"].text();
    read.vNCompromisso = rs["nCompromisso"].text();

    vNReq = read.vNReq, vNReq2 = read.vNReq2, vNIDReqAnual = read.vNIDReqAnual, iId_Cliente = read.iId_Cliente;
    vCodCliente = read.vCodCliente, vCodContrato = read.vCodContrato, vCodTerceiro = read.vCodTerceiro;
    vDReq = read.vDReq, vPagamento = read.vPagamento, vCredenciado = read.vCredenciado;
    vNCredencial = read.vNCredencial, vRecolhido = read.vRecolhido, vSituacao = read.vSituacao;
    vFicheiro = read.vFicheiro, vObservacoes = read.vObservacoes, vNCompromisso = read.vNCompromisso;
    vIsNew = false;
    FillColLinha();
    reading.commit();
}

cls_Guia_Linha& cls_Guia_Cabecalho::AddLinha(std::int16_t N_Linha, const std::string& A_Zona_Taxacao,
                                             const std::string& B_Produto, std::int32_t C_Escalao,
                                             std::int32_t D_Quantidade, const std::string& E_Velocidade,
                                             const std::string& F_Formato, const std::string& G_Pre_Tratamento,
                                             const std::string& H_Descontos, const std::string& K_Entrega_Sampling,
                                             std::int16_t L_TaxEsp_Semana, std::int16_t M_TaxEsp_Quantidade,
                                             const std::string& N_Ambito_Distrib, std::string& O_Divisao_Remetente,
                                             const std::string& Codigo_Campanha, const std::string& conteudo,
                                             const std::string& reclie, bool IsNew)
{
    auto line = std::make_unique<cls_Guia_Linha>(myConn);
    line->vNReq = vNReq;
    line->vNLinha = N_Linha;
    line->vA_Zona_Taxacao = A_Zona_Taxacao;
    line->vB_Produto = B_Produto;
    line->vC_Escalao = C_Escalao;
    line->vD_Quantidade = D_Quantidade;
    line->vE_Velocidade = E_Velocidade;
    line->vF_Formato = F_Formato;
    line->vG_Pre_Tratamento = static_cast<std::int16_t>(FieldValue(G_Pre_Tratamento).integer());
    line->vH_Descontos = H_Descontos;
    line->vK_Entrega_Sampling = K_Entrega_Sampling;
    line->vL_TaxEsp_Semana = L_TaxEsp_Semana;
    line->vM_TaxaEsp_Quantidade = M_TaxEsp_Quantidade;
    line->vN_Ambito_Distrib = N_Ambito_Distrib;
    line->vO_Divisao_Remetente = O_Divisao_Remetente;
    line->vCodigo_Campanha = Codigo_Campanha;
    line->vConteudo = conteudo;
    line->vRefCli = reclie;
    line->vIsNew = IsNew;
    if (!IsNew) line->FillColSEspecial();
    return mColLinha.Add(std::move(line));
}

void cls_Guia_Cabecalho::RemoveLinha(std::int16_t ColIndex)
{
    cls_Guia_Linha& line = mColLinha.Item(static_cast<std::size_t>(ColIndex));
    if (line.vIsNew)
        mColLinha.Remove(static_cast<std::size_t>(ColIndex));
    else
        line.vToDelete = true;
}

void cls_Guia_Cabecalho::FillColLinha()
{
    cls_Guia_Linha reader(myConn);
    Recordset rs;
    reader.SelectAll(rs, vNReq);
    // The services of every line in one query, rather than one query a line; each line gets what
    // its own FillColSEspecial would have read.
    std::map<std::int64_t, std::vector<std::pair<std::string, float>>> services;
    Recordset all = require(myConn).open(
        "SELECT N_Linha, CodigoServicoEspecial, Valor FROM Tbl_Linha_ServicoEspecial WHERE N_Req = ? "
        "ORDER BY N_Linha, CodigoServicoEspecial",
        {vNReq});
    for (; !all.IsEOF(); all.MoveNext())
        services[all["N_Linha"].integer()].emplace_back(all["CodigoServicoEspecial"].text(),
                                                        static_cast<float>(all["Valor"].number()));
    for (; !rs.IsEOF(); rs.MoveNext()) {
        const auto small = [&](const char* name) { return static_cast<std::int16_t>(rs[name].integer()); };
        std::string divisao = rs["O_Divisao_Remetente"].text();
        cls_Guia_Linha& line = AddLinha(
            small("N_Linha"), rs["A_Zona_Taxacao"].text(), rs["B_Produto"].text(),
            static_cast<std::int32_t>(rs["C_Escalao"].integer()), static_cast<std::int32_t>(rs["D_Quantidade"].integer()),
            rs["E_Velocidade"].text(), rs["F_Formato"].text(), rs["G_Pre_Tratamento"].text(), rs["H_Descontos"].text(),
            rs["K_Entrega_Sampling"].text(), small("L_TaxEsp_Semana"), small("M_TaxEsp_Quantidade"),
            rs["N_Ambito_Distrib"].text(), divisao, rs["CodigoCampanha"].text(), rs["Q_Conteudo"].text(),
            rs["P_RefCliente"].text(), true);
        line.vIsNew = false;
        for (const auto& [code, valor] : services[line.vNLinha]) line.AddSEspecial(code, valor, false);
    }
    rs.Close();
}

void cls_Guia_Cabecalho::DoSaveCol()
{
    entities::keep_failure(last_error_, [&] {
        Transaction t(require(myConn));
        save_lines();
        t.commit();
    });
}

void cls_Guia_Cabecalho::DoInsertValTemp()
{
    entities::keep_failure(last_error_, [&] {
        Database& db = require(myConn);
        Transaction t(db);
        entities::prepare_working_table(db);
        for (std::size_t i = 1; i <= mColLinha.Count(); ++i) {
            const cls_Guia_Linha& l = mColLinha.Item(i);
            if (l.vB_Produto == "0" || l.vToDelete) continue;  // untouched or withdrawn
            const std::vector<FieldValue> row = {vNReq, l.vA_Zona_Taxacao, l.vB_Produto, l.vE_Velocidade,
                                                 l.vD_Quantidade, l.vNLinha, l.vO_Divisao_Remetente,
                                                 l.ContentCode(), l.vRefCli, l.vG_Pre_Tratamento};
            // The validator reads these rows back, so they pass the same gate as the stored lines.
            entities::check_row("Tbl_Temp_Val_Guia",
                                "Guia " + std::to_string(vNReq) + ", line " + std::to_string(l.vNLinha),
                                {"N_Req", "A_Zona_Taxacao", "B_Produto", "E_Velocidade", "D_Quantidade", "N_Linha",
                                 "O_Divisao_Remetente", "Q_Conteudo", "P_RefCliente", "G_PreTratamento"},
                                row);
            db.execute("INSERT INTO Tbl_Temp_Val_Guia (N_Req, A_Zona_Taxacao, B_Produto, E_Velocidade, D_Quantidade, "
                       "N_Linha, O_Divisao_Remetente, Q_Conteudo, P_RefCliente, G_PreTratamento) "
                       "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
                       row);
        }
        t.commit();
    });
}

void cls_Guia_Cabecalho::DoRemoveValTemp()
{
    entities::keep_failure(last_error_, [&] {
        Database& db = require(myConn);
        Transaction t(db);
        // This connection's own table: every Guia in it, and no other station's.
        entities::prepare_working_table(db);
        db.execute("DELETE FROM Tbl_Temp_Val_Guia");
        t.commit();
    });
}

}  // namespace nimbara
