#include "guia_record.hpp"

#include <charconv>
#include <cstdio>
#include <limits>
#include <map>
#include <set>

#include "db_command.hpp"
#include "nimbara/cls_Cliente.hpp"
#include "nimbara/cls_Parametro.hpp"

namespace nimbara::cli {
namespace {

// Places of the fill operations' arguments in the file's arrays.
namespace cab {
enum { NReq, CodTerceiro, CodCliente, CodContrato, CodCredencial, Nome, NContribuinte, Morada, CodPostal, DesigPostal,
       Obs, JppCredenciado, Pagamento, NCredencial, Drqjul, DataRequisicao, NDoc, IDReqAnual, NCompromisso,
       TipoAcesso };
constexpr const char* kNames[] = {"cb_N_Req", "cb_CodTerceiro", "cb_CodCliente", "cb_CodContrato", "cb_CodCredencial",
                                  "cb_Nome", "cb_NContribuinte", "cb_Morada", "cb_CodPostal", "cb_DesigPostal",
                                  "cb_Obs", "cb_JppCredenciado", "cb_Pagamento", "cb_NCredencial", "cb_Drqjul",
                                  "cb_DataRequisicao", "cb_NDoc", "cb_IDReqAnual", "cb_NCompromisso", "cb_TipoAcesso"};
}  // namespace cab
namespace prod {
enum { Zona, Produto, Velocidade, Quantidade, NLinha, ListaServesp, AmbitoDist, Escalao, Formato, PreTratamento,
       Desconto, TaxEspQuantidade, TaxEspSemana, EntregaSampling, Vexora, DivisaoRemetente, CodigoCampanha, NReq,
       Caracte, RefClie };
constexpr const char* kNames[] = {"A_Zona_Taxacao", "B_Produto", "E_Velocidade", "D_Quantidade", "N_Linha",
                                  "ListaServesp", "CodAmbitoDist", "Escalao", "Formato", "PreTratamento", "Desconto",
                                  "TaxEsp_Quantidade", "TaxEsp_Semana", "Entrega_Sampling", "Vexora",
                                  "DivisaoRemetente", "CodigoCampanha", "N_Req", "caracte", "refClie"};
}  // namespace prod
namespace serv {
enum { NLinha, Codigo, Valor };
}

// A whole number where the file gives one: an empty text is 0, anything else must be digits.
template <class T>
T whole(const std::string& text, const std::string& place, bool required = false)
{
    if (text.empty() && !required) return 0;
    std::int64_t v = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), v);
    if (text.empty() || ec != std::errc() || end != text.data() + text.size() || v < std::numeric_limits<T>::min() ||
        v > std::numeric_limits<T>::max())
        throw CommandError(place + ": \"" + text + "\" is no whole number" +
                           (sizeof(T) == 2 ? " from -32768 to 32767" : ""));
    return static_cast<T>(v);
}

bool yes_no(const std::string& text, const std::string& place)
{
    if (text.empty() || text == "0") return false;
    if (text == "1") return true;
    throw CommandError(place + ": \"" + text + "\" is neither 0 nor 1");
}

// The Julian form printed on the form: the last digit of the year and the day of the year.
std::string julian(const Timestamp& t)
{
    static constexpr int kBefore[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
    const bool leap = (t.year % 4 == 0 && t.year % 100 != 0) || t.year % 400 == 0;
    const int day = kBefore[t.month - 1] + t.day + (leap && t.month > 2 ? 1 : 0);
    char buf[8];
    std::snprintf(buf, sizeof buf, "%d%03d", t.year % 10, day);
    return buf;
}

}  // namespace

std::unique_ptr<cls_Guia_Cabecalho> guia_from_file(const GuiaFile& file, const std::string& file_name,
                                                   const std::shared_ptr<Database>& db)
{
    const auto at = [&](const std::string& place) { return file_name + ": " + place; };
    const auto& h = file.cabecalho;
    const auto cab_place = [&](int field) { return at(std::string("/cabecalho/") + cab::kNames[field]); };

    // The client and contract must exist.
    const auto cod_cliente = whole<std::int32_t>(h[cab::CodCliente], cab_place(cab::CodCliente), true);
    const auto cod_contrato = whole<std::int32_t>(h[cab::CodContrato], cab_place(cab::CodContrato), true);
    cls_Cliente client(db);
    std::string number = std::to_string(cod_cliente);
    if (!client.Busca_Cliente(number)) throw CommandError(cab_place(cab::CodCliente) + ": no client " + number);
    client.SelectMeByCod_Cliente(cod_cliente);
    bool has_contract = false;
    for (std::size_t i = 1; i <= client.mColContrato.Count(); ++i)
        has_contract = has_contract || FieldValue(client.mColContrato.Item(i).vCodContrato).integer() == cod_contrato;
    if (!has_contract)
        throw CommandError(cab_place(cab::CodContrato) + ": client " + number + " has no contract " +
                           std::to_string(cod_contrato));

    auto g = std::make_unique<cls_Guia_Cabecalho>(db);
    g->iId_Cliente = client.iId_Cliente;
    g->vCodCliente = number;
    g->vCodContrato = std::to_string(cod_contrato);
    g->vCodTerceiro = h[cab::CodTerceiro];
    g->vObservacoes = h[cab::Obs];
    g->vCredenciado = yes_no(h[cab::JppCredenciado], cab_place(cab::JppCredenciado));
    g->vPagamento = whole<std::int16_t>(h[cab::Pagamento], cab_place(cab::Pagamento));
    g->vNCredencial = h[cab::NCredencial];
    g->vNCompromisso = h[cab::NCompromisso];
    if (!h[cab::DataRequisicao].empty()) {
        try {
            g->vDReq = Timestamp::parse(h[cab::DataRequisicao]);
        } catch (const std::invalid_argument& e) {
            throw CommandError(cab_place(cab::DataRequisicao) + ": " + e.what() + " (expected YYYY-MM-DD)");
        }
    }

    std::map<std::int16_t, cls_Guia_Linha*> lines;
    for (std::size_t i = 0; i < file.produtos.size(); ++i) {
        const auto& p = file.produtos[i];
        const auto place = [&](int field) { return at("/produtos/" + std::to_string(i) + "/" + prod::kNames[field]); };
        const auto n = whole<std::int16_t>(p[prod::NLinha], place(prod::NLinha), true);
        if (lines.count(n)) throw CommandError(place(prod::NLinha) + ": line " + std::to_string(n) + " is given twice");
        std::string divisao = p[prod::DivisaoRemetente];
        whole<std::int16_t>(p[prod::PreTratamento], place(prod::PreTratamento));
        lines[n] = &g->AddLinha(
            n, p[prod::Zona], p[prod::Produto], whole<std::int32_t>(p[prod::Escalao], place(prod::Escalao)),
            whole<std::int32_t>(p[prod::Quantidade], place(prod::Quantidade)), p[prod::Velocidade], p[prod::Formato],
            p[prod::PreTratamento].empty() ? "0" : p[prod::PreTratamento], p[prod::Desconto], p[prod::EntregaSampling],
            whole<std::int16_t>(p[prod::TaxEspSemana], place(prod::TaxEspSemana)),
            whole<std::int16_t>(p[prod::TaxEspQuantidade], place(prod::TaxEspQuantidade)), p[prod::AmbitoDist],
            divisao, p[prod::CodigoCampanha], p[prod::Caracte], p[prod::RefClie]);
    }
    std::set<std::pair<std::int16_t, std::string>> services;
    for (std::size_t i = 0; i < file.servicos.size(); ++i) {
        const auto& s = file.servicos[i];
        const std::string place = at("/servicos/" + std::to_string(i));
        const auto n = whole<std::int16_t>(s[serv::NLinha], place + "/N_Linha", true);
        if (!lines.count(n)) throw CommandError(place + "/N_Linha: no product line " + std::to_string(n));
        if (!services.emplace(n, s[serv::Codigo]).second)
            throw CommandError(place + "/CodServEsp: service " + s[serv::Codigo] + " is given twice on line " +
                               std::to_string(n));
        // The amount keeps its digits as written: the last two are the decimals.
        whole<std::int32_t>(s[serv::Valor], place + "/Valor");
        cls_Guia_Linha& line = *lines[n];
        line.AddSEspecial(s[serv::Codigo], 0);
        line.mColSEspecial.Item(line.mColSEspecial.Count()).vValor = s[serv::Valor].empty() ? "0" : s[serv::Valor];
    }
    return g;
}

GuiaFile file_from_guia(std::int32_t n_req, const std::shared_ptr<Database>& db)
{
    if (db->open("SELECT N_Req FROM Tbl_Cab WHERE N_Req = ?", {n_req}).RecordCount() == 0)
        throw CommandError("no Guia with N_Req " + std::to_string(n_req));
    cls_Guia_Cabecalho g(db);
    g.SelectMe(n_req);
    cls_Cliente client(db);
    client.SelectMe(g.iId_Cliente);
    std::string credential;
    for (std::size_t i = 1; i <= client.mColContrato.Count(); ++i)
        if (FieldValue(client.mColContrato.Item(i).vCodContrato).integer() == FieldValue(g.vCodContrato).integer())
            credential = client.mColContrato.Item(i).vCodCredencial;

    GuiaFile file;
    auto& h = file.cabecalho;
    const std::string date = g.vDReq.text().substr(0, 10);
    h[cab::NReq] = std::to_string(g.vNReq);
    h[cab::CodTerceiro] = g.vCodTerceiro;
    h[cab::CodCliente] = g.vCodCliente;
    h[cab::CodContrato] = g.vCodContrato;
    h[cab::CodCredencial] = credential;
    h[cab::Nome] = client.vNome;
    h[cab::NContribuinte] = client.vNIF;
    h[cab::Morada] = client.vMorada;
    h[cab::CodPostal] = client.vCodPostal;
    h[cab::DesigPostal] = client.vDesigPostal;
    h[cab::Obs] = g.vObservacoes;
    h[cab::JppCredenciado] = g.vCredenciado ? "1" : "0";
    h[cab::Pagamento] = std::to_string(g.vPagamento);
    h[cab::NCredencial] = g.vNCredencial;
    h[cab::Drqjul] = julian(g.vDReq);
    h[cab::DataRequisicao] = date;
    h[cab::NDoc] = date.substr(0, 4) + "/" + std::to_string(g.vNIDReqAnual);
    h[cab::IDReqAnual] = std::to_string(g.vNIDReqAnual);
    h[cab::NCompromisso] = g.vNCompromisso;
    h[cab::TipoAcesso] = std::to_string(client.iAcessoRede);

    cls_Parametro parametros(db);
    const auto values = parametros.Properties();
    for (std::size_t i = 0; i < values.size(); ++i) file.parametros[i] = *values[i];

    for (std::size_t i = 1; i <= g.mColLinha.Count(); ++i) {
        const cls_Guia_Linha& l = g.mColLinha.Item(i);
        std::array<std::string, 20> p;
        std::string codes;
        for (std::size_t s = 1; s <= l.mColSEspecial.Count(); ++s) {
            const cls_Guia_SEspecial& sv = l.mColSEspecial.Item(s);
            codes += (codes.empty() ? "" : ",") + sv.vCodigoServicoEspecial;
            file.servicos.push_back({std::to_string(l.vNLinha), sv.vCodigoServicoEspecial, sv.vValor});
        }
        p[prod::Zona] = l.vA_Zona_Taxacao;
        p[prod::Produto] = l.vB_Produto;
        p[prod::Velocidade] = l.vE_Velocidade;
        p[prod::Quantidade] = std::to_string(l.vD_Quantidade);
        p[prod::NLinha] = std::to_string(l.vNLinha);
        p[prod::ListaServesp] = codes.empty() ? "0" : codes;
        p[prod::AmbitoDist] = l.vN_Ambito_Distrib;
        p[prod::Escalao] = std::to_string(l.vC_Escalao);
        p[prod::Formato] = l.vF_Formato;
        p[prod::PreTratamento] = std::to_string(l.vG_Pre_Tratamento);
        p[prod::Desconto] = l.vH_Descontos;
        p[prod::TaxEspQuantidade] = std::to_string(l.vM_TaxaEsp_Quantidade);
        p[prod::TaxEspSemana] = std::to_string(l.vL_TaxEsp_Semana);
        p[prod::EntregaSampling] = l.vK_Entrega_Sampling;
        p[prod::Vexora] = "0";
        p[prod::DivisaoRemetente] = l.vO_Divisao_Remetente;
        p[prod::CodigoCampanha] = l.vCodigo_Campanha;
        p[prod::NReq] = std::to_string(g.vNReq);
        p[prod::Caracte] = l.vConteudo;
        p[prod::RefClie] = l.vRefCli;
        file.produtos.push_back(p);
    }
    return file;
}

}  // namespace nimbara::cli
