#include <cctype>
#include <charconv>

#include "entities/connection.hpp"
#include "entities/schema_tables.hpp"
#include "entities/stored_values.hpp"
#include "nimbara/cls_Guia_Cabecalho.hpp"

namespace nimbara {

using entities::require;

namespace {

// A float as its shortest text, as the old run time wrote an amount.
std::string float_text(float v)
{
    char buf[32];
    const auto [end, ec] = std::to_chars(buf, buf + sizeof buf, v);
    return std::string(buf, end);
}

constexpr const char* kLineColumns =
    "A_Zona_Taxacao, B_Produto, C_Escalao, D_Quantidade, E_Velocidade, F_Formato, G_Pre_Tratamento, H_Descontos, "
    "K_Entrega_Sampling, L_TaxEsp_Semana, M_TaxEsp_Quantidade, N_Ambito_Distrib, CodigoCampanha, "
    "O_Divisao_Remetente, Q_Conteudo, P_RefCliente";

}  // namespace

cls_Guia_Linha::cls_Guia_Linha() : cls_Guia_Linha(entities::connection_from_ini()) {}

cls_Guia_Linha::cls_Guia_Linha(std::shared_ptr<Database> db) : myConn(std::move(db)) {}

std::string cls_Guia_Linha::ContentCode() const
{
    // The leading number of the first two characters, blanks aside; none is 0.
    std::string head = vConteudo.substr(0, 2);
    while (!head.empty() && head.front() == ' ') head.erase(0, 1);
    int code = 0;
    std::from_chars(head.data(), head.data() + head.size(), code);
    return std::to_string(code);
}

void cls_Guia_Linha::save(bool fresh_number)
{
    Database& db = require(myConn);
    const std::vector<FieldValue> values = {
        vA_Zona_Taxacao,   vB_Produto,       vC_Escalao,          vD_Quantidade,        vE_Velocidade,
        vF_Formato,        vG_Pre_Tratamento, vH_Descontos,       vK_Entrega_Sampling,  vL_TaxEsp_Semana,
        vM_TaxaEsp_Quantidade, vN_Ambito_Distrib, vCodigo_Campanha, vO_Divisao_Remetente, ContentCode(),
        vRefCli};
    {
        std::vector<FieldValue> row = {vNReq, vNLinha};
        row.insert(row.end(), values.begin(), values.end());
        std::vector<std::string_view> names = {"N_Req", "N_Linha"};
        for (std::string_view columns = kLineColumns; !columns.empty();) {
            const auto comma = columns.find(", ");
            names.push_back(columns.substr(0, comma));
            columns = comma == std::string_view::npos ? std::string_view() : columns.substr(comma + 2);
        }
        entities::check_row("Tbl_Linha", "Guia " + std::to_string(vNReq) + ", line " + std::to_string(vNLinha), names,
                            row);
    }
    if (vIsNew) {
        // An insert replaces a stored row of the same number; that row's services stay.
        if (!fresh_number) db.execute_queued("DELETE FROM Tbl_Linha WHERE N_Req = ? AND N_Linha = ?", {vNReq, vNLinha});
        std::vector<FieldValue> row = {vNReq, vNLinha};
        row.insert(row.end(), values.begin(), values.end());
        db.execute_queued(std::string("INSERT INTO Tbl_Linha (N_Req, N_Linha, ") + kLineColumns +
                       ") VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
                   row);
    } else {
        std::string sql = "UPDATE Tbl_Linha SET ";
        std::string_view columns = kLineColumns;
        for (bool first = true; !columns.empty(); first = false) {
            const auto comma = columns.find(", ");
            sql += std::string(first ? "" : ", ") + std::string(columns.substr(0, comma)) + " = ?";
            columns = comma == std::string_view::npos ? std::string_view() : columns.substr(comma + 2);
        }
        std::vector<FieldValue> row = values;
        row.insert(row.end(), {vNReq, vNLinha});
        db.execute_queued(sql + " WHERE N_Req = ? AND N_Linha = ?", row);
    }
    for (std::size_t i = 1; i <= mColSEspecial.Count(); ++i) {
        cls_Guia_SEspecial& s = mColSEspecial.Item(i);
        s.vToDelete ? s.remove() : s.save();
    }
}

void cls_Guia_Linha::remove()
{
    require(myConn).execute_queued("DELETE FROM Tbl_Linha WHERE N_Req = ? AND N_Linha = ?", {vNReq, vNLinha});
}

std::int16_t cls_Guia_Linha::DoSave()
{
    entities::keep_failure(last_error_, [&] {
        Transaction t(require(myConn));
        save();
        t.commit();
    });
    return 0;
}

void cls_Guia_Linha::DoDelete()
{
    entities::keep_failure(last_error_, [&] {
        Transaction t(require(myConn));
        remove();
        t.commit();
    });
}

void cls_Guia_Linha::SelectAll(Recordset& rs, std::int32_t NReq)
{
    rs = require(myConn).open("SELECT " + entities::spelled_columns("Tbl_Linha") +
                                  " FROM Tbl_Linha WHERE N_Req = ? ORDER BY N_Linha",
                              {NReq});
}

void cls_Guia_Linha::SelectMe(Recordset& rs, std::int32_t /*NReq*/, std::int16_t /*NLinha*/)
{
    // The statement as it always stood: the service table, and no AND between the conditions.
    rs = require(myConn).open("SELECT * FROM Tbl_Linha_ServicoEspecial WHERE (N_Req = ? N_Linha = ?)", {vNReq, vNLinha});
}

void cls_Guia_Linha::CopyObject(const cls_Guia_Linha& o)
{
    vNReq = o.vNReq;
    vNLinha = o.vNLinha;
    vA_Zona_Taxacao = o.vA_Zona_Taxacao;
    vB_Produto = o.vB_Produto;
    vC_Escalao = o.vC_Escalao;
    vD_Quantidade = o.vD_Quantidade;
    vE_Velocidade = o.vE_Velocidade;
    vF_Formato = o.vF_Formato;
    vG_Pre_Tratamento = o.vG_Pre_Tratamento;
    vH_Descontos = o.vH_Descontos;
    vK_Entrega_Sampling = o.vK_Entrega_Sampling;
    vL_TaxEsp_Semana = o.vL_TaxEsp_Semana;
    vM_TaxaEsp_Quantidade = o.vM_TaxaEsp_Quantidade;
    vN_Ambito_Distrib = o.vN_Ambito_Distrib;
    vO_Divisao_Remetente = o.vO_Divisao_Remetente;
    vCodigo_Campanha = o.vCodigo_Campanha;
    vConteudo = o.vConteudo;
    vRefCli = o.vRefCli;
    vToDelete = o.vToDelete;
    vIsNew = o.vIsNew;
    mColSEspecial.Clear();
    for (std::size_t i = 1; i <= o.mColSEspecial.Count(); ++i) {
        const cls_Guia_SEspecial& s = o.mColSEspecial.Item(i);
        if (s.vToDelete && s.vIsNew) continue;  // never stored and already withdrawn
        AddSEspecial(s.vCodigoServicoEspecial, static_cast<float>(FieldValue(s.vValor).number()), s.vIsNew,
                     s.vToDelete);
    }
}

void cls_Guia_Linha::AddSEspecial(const std::string& Cod_Servico_Especial, float Valor, bool IsNew, bool ToDelete)
{
    auto s = std::make_unique<cls_Guia_SEspecial>(myConn);
    s->vNReq = vNReq;
    s->vNLinha = vNLinha;
    s->vCodigoServicoEspecial = Cod_Servico_Especial;
    s->vValor = float_text(Valor);
    s->vIsNew = IsNew;
    s->vToDelete = ToDelete;
    mColSEspecial.Add(std::move(s));
}

void cls_Guia_Linha::RemoveSEspecial(std::int16_t ColIndex)
{
    cls_Guia_SEspecial& s = mColSEspecial.Item(static_cast<std::size_t>(ColIndex));
    if (s.vIsNew)
        mColSEspecial.Remove(static_cast<std::size_t>(ColIndex));
    else
        s.vToDelete = true;
}

void cls_Guia_Linha::FillColSEspecial()
{
    cls_Guia_SEspecial reader(myConn);
    Recordset rs;
    reader.SelectAll(rs, vNReq, vNLinha);
    for (; !rs.IsEOF(); rs.MoveNext())
        AddSEspecial(rs["CodigoServicoEspecial"].text(), static_cast<float>(rs["Valor"].number()), false);
    rs.Close();
}

}  // namespace nimbara
