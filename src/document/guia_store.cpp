#include "nimbara/guia_store.hpp"

#include <charconv>
#include <cstdio>
#include <limits>
#include <map>
#include <set>
#include <utility>

#include "entities/stored_values.hpp"
#include "nimbara/cls_Cliente.hpp"
#include "nimbara/cls_Guia_Cabecalho.hpp"
#include "nimbara/cls_Parametro.hpp"

namespace nimbara {
namespace {

[[noreturn]] void refuse(const std::string& where_and_why) { throw GuiaFileError(where_and_why); }

// A whole number where the file gives one: an empty text is 0, anything else must be digits.
template <class T>
T whole(const std::string& text, const std::string& place, bool required = false)
{
    if (text.empty() && !required) return 0;
    std::int64_t v = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), v);
    if (text.empty() || ec != std::errc() || end != text.data() + text.size() || v < std::numeric_limits<T>::min() ||
        v > std::numeric_limits<T>::max())
        refuse(place + ": \"" + text + "\" is no whole number" +
                           (sizeof(T) == 2 ? " from -32768 to 32767" : ""));
    return static_cast<T>(v);
}

bool yes_no(const std::string& text, const std::string& place)
{
    if (text.empty() || text == "0") return false;
    if (text == "1") return true;
    refuse(place + ": \"" + text + "\" is neither 0 nor 1");
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

// A value as its column will take it, through the gate every writer shares.
void gate(const std::string& place, const char* table, const char* column, const FieldValue& value)
{
    if (const auto why = entities::refusal(table, column, value)) refuse(place + ": " + *why);
}

std::unique_ptr<cls_Guia_Cabecalho> guia_from_file(const GuiaFile& file, std::string_view source,
                                                   const std::shared_ptr<Database>& db)
{
    const auto at = [&](const std::string& place) { return std::string(source) + ": " + place; };
    const auto& h = file.cabecalho;
    const auto cab_place = [&](const char* name) { return at(std::string("/cabecalho/") + name); };

    // The client and contract must exist.
    const auto cod_cliente = whole<std::int32_t>(h.cb_CodCliente, cab_place("cb_CodCliente"), true);
    const auto cod_contrato = whole<std::int32_t>(h.cb_CodContrato, cab_place("cb_CodContrato"), true);
    cls_Cliente client(db);
    std::string number = std::to_string(cod_cliente);
    if (!client.Busca_Cliente(number)) refuse(cab_place("cb_CodCliente") + ": no client " + number);
    client.SelectMeByCod_Cliente(cod_cliente);
    bool has_contract = false;
    for (std::size_t i = 1; i <= client.mColContrato.Count(); ++i)
        has_contract = has_contract || FieldValue(client.mColContrato.Item(i).vCodContrato).integer() == cod_contrato;
    if (!has_contract)
        refuse(cab_place("cb_CodContrato") + ": client " + number + " has no contract " +
                           std::to_string(cod_contrato));

    auto g = std::make_unique<cls_Guia_Cabecalho>(db);
    g->iId_Cliente = client.iId_Cliente;
    g->vCodCliente = number;
    g->vCodContrato = std::to_string(cod_contrato);
    g->vCodTerceiro = h.cb_CodTerceiro;
    g->vObservacoes = h.cb_Obs;
    g->vCredenciado = yes_no(h.cb_JppCredenciado, cab_place("cb_JppCredenciado"));
    g->vPagamento = whole<std::int16_t>(h.cb_Pagamento, cab_place("cb_Pagamento"));
    g->vNCredencial = h.cb_NCredencial;
    g->vNCompromisso = h.cb_NCompromisso;
    if (!h.cb_DataRequisicao.empty()) {
        try {
            g->vDReq = Timestamp::parse(h.cb_DataRequisicao);
        } catch (const std::invalid_argument& e) {
            refuse(cab_place("cb_DataRequisicao") + ": " + e.what() + " (expected YYYY-MM-DD)");
        }
        gate(cab_place("cb_DataRequisicao"), "Tbl_Cab", "D_Req", g->vDReq);
    }
    gate(cab_place("cb_CodTerceiro"), "Tbl_Cab", "CodigoTerceiro", g->vCodTerceiro);
    gate(cab_place("cb_Obs"), "Tbl_Cab", "Observacoes", g->vObservacoes);
    gate(cab_place("cb_NCredencial"), "Tbl_Cab", "N_Credencial", g->vNCredencial);
    gate(cab_place("cb_NCompromisso"), "Tbl_Cab", "nCompromisso", g->vNCompromisso);

    std::map<std::int16_t, cls_Guia_Linha*> lines;
    for (std::size_t i = 0; i < file.produtos.size(); ++i) {
        const auto& p = file.produtos[i];
        const auto place = [&](const char* name) { return at("/produtos/" + std::to_string(i) + "/" + name); };
        const auto n = whole<std::int16_t>(p.N_Linha, place("N_Linha"), true);
        if (lines.count(n)) refuse(place("N_Linha") + ": line " + std::to_string(n) + " is given twice");
        struct Text {
            const char* key;
            const char* column;
            const std::string& value;
        };
        const Text texts[] = {{"A_Zona_Taxacao", "A_Zona_Taxacao", p.A_Zona_Taxacao},
                              {"B_Produto", "B_Produto", p.B_Produto},
                              {"E_Velocidade", "E_Velocidade", p.E_Velocidade},
                              {"Formato", "F_Formato", p.Formato},
                              {"Desconto", "H_Descontos", p.Desconto},
                              {"Entrega_Sampling", "K_Entrega_Sampling", p.Entrega_Sampling},
                              {"CodAmbitoDist", "N_Ambito_Distrib", p.CodAmbitoDist},
                              {"DivisaoRemetente", "O_Divisao_Remetente", p.DivisaoRemetente},
                              {"CodigoCampanha", "CodigoCampanha", p.CodigoCampanha},
                              {"refClie", "P_RefCliente", p.refClie}};
        for (const auto& t : texts) gate(place(t.key), "Tbl_Linha", t.column, t.value);
        std::string divisao = p.DivisaoRemetente;
        whole<std::int16_t>(p.PreTratamento, place("PreTratamento"));
        lines[n] = &g->AddLinha(
            n, p.A_Zona_Taxacao, p.B_Produto, whole<std::int32_t>(p.Escalao, place("Escalao")),
            whole<std::int32_t>(p.D_Quantidade, place("D_Quantidade")), p.E_Velocidade, p.Formato,
            p.PreTratamento.empty() ? "0" : p.PreTratamento, p.Desconto, p.Entrega_Sampling,
            whole<std::int16_t>(p.TaxEsp_Semana, place("TaxEsp_Semana")),
            whole<std::int16_t>(p.TaxEsp_Quantidade, place("TaxEsp_Quantidade")), p.CodAmbitoDist,
            divisao, p.CodigoCampanha, p.caracte, p.refClie);
    }
    std::set<std::pair<std::int16_t, std::string>> services;
    for (std::size_t i = 0; i < file.servicos.size(); ++i) {
        const auto& s = file.servicos[i];
        const std::string place = at("/servicos/" + std::to_string(i));
        const auto n = whole<std::int16_t>(s.N_Linha, place + "/N_Linha", true);
        if (!lines.count(n)) refuse(place + "/N_Linha: no product line " + std::to_string(n));
        gate(place + "/CodServEsp", "Tbl_Linha_ServicoEspecial", "CodigoServicoEspecial", s.CodServEsp);
        if (!services.emplace(n, s.CodServEsp).second)
            refuse(place + "/CodServEsp: service " + s.CodServEsp + " is given twice on line " + std::to_string(n));
        // The amount keeps its digits as written: the last two are the decimals.
        whole<std::int32_t>(s.Valor, place + "/Valor");
        gate(place + "/Valor", "Tbl_Linha_ServicoEspecial", "Valor", s.Valor.empty() ? "0" : s.Valor);
        cls_Guia_Linha& line = *lines[n];
        line.AddSEspecial(s.CodServEsp, 0);
        line.mColSEspecial.Item(line.mColSEspecial.Count()).vValor = s.Valor.empty() ? "0" : s.Valor;
    }
    return g;
}

}  // namespace

SavedGuia save_guia_file(const std::shared_ptr<Database>& db, const GuiaFile& file, std::string_view source)
{
    const auto guia = guia_from_file(file, source, db);
    if (!guia->DoSaveNumerada()) throw DatabaseError("nothing was stored: " + guia->LastError());
    return {guia->vNReq, guia->vNReq2, guia->vNIDReqAnual};
}

GuiaFile load_guia_file(const std::shared_ptr<Database>& db, std::int32_t n_req)
{
    if (db->open("SELECT N_Req FROM Tbl_Cab WHERE N_Req = ?", {n_req}).RecordCount() == 0)
        throw GuiaNotStoredError("no Guia with N_Req " + std::to_string(n_req));
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
    h.cb_N_Req = std::to_string(g.vNReq);
    h.cb_CodTerceiro = g.vCodTerceiro;
    h.cb_CodCliente = g.vCodCliente;
    h.cb_CodContrato = g.vCodContrato;
    h.cb_CodCredencial = credential;
    h.cb_Nome = client.vNome;
    h.cb_NContribuinte = client.vNIF;
    h.cb_Morada = client.vMorada;
    h.cb_CodPostal = client.vCodPostal;
    h.cb_DesigPostal = client.vDesigPostal;
    h.cb_Obs = g.vObservacoes;
    h.cb_JppCredenciado = g.vCredenciado ? "1" : "0";
    h.cb_Pagamento = std::to_string(g.vPagamento);
    h.cb_NCredencial = g.vNCredencial;
    h.cb_Drqjul = julian(g.vDReq);
    h.cb_DataRequisicao = date;
    h.cb_NDoc = date.substr(0, 4) + "/" + std::to_string(g.vNIDReqAnual);
    h.cb_IDReqAnual = std::to_string(g.vNIDReqAnual);
    h.cb_NCompromisso = g.vNCompromisso;
    h.cb_TipoAcesso = std::to_string(client.iAcessoRede);

    cls_Parametro parametros(db);
    // Settings never stored would write zeros whose symbol no counter reads: the factory's stand in.
    if (db->open("SELECT * FROM Tbl_Parametro").RecordCount() == 0) {
        const cls_ParametroA factory = factory_print_settings();
        for (const auto& [property, value] : {std::pair{&parametros.VCod2DFonteSize, &factory.VCod2DFonteSize},
                                               {&parametros.vCod2DRatio, &factory.vCod2DRatio},
                                               {&parametros.vCod2DNColunas, &factory.vCod2DNColunas},
                                               {&parametros.vCod2DNLinhas, &factory.vCod2DNLinhas},
                                               {&parametros.vCod2DErroLevel, &factory.vCod2DErroLevel},
                                               {&parametros.vCod2DPDFMode, &factory.vCod2DPDFMode},
                                               {&parametros.vCod2DTruncated, &factory.vCod2DTruncated},
                                               {&parametros.vCod2DApplyTilde, &factory.vCod2DApplyTilde},
                                               {&parametros.vGuiaNVias, &factory.vGuiaNVias},
                                               {&parametros.vGuiaMargensTopo, &factory.vGuiaMargensTopo},
                                               {&parametros.vGuiaMargensEsquerda, &factory.vGuiaMargensEsquerda},
                                               {&parametros.vCodTerceiro, &factory.vCodTerceiro}})
            *property = *value;
    }
    const auto values = parametros.Properties();
    for (std::size_t i = 0; i < values.size() && i < kParametrosFields.size(); ++i)
        file.parametros.*(kParametrosFields[i].member) = *values[i];

    for (std::size_t i = 1; i <= g.mColLinha.Count(); ++i) {
        const cls_Guia_Linha& l = g.mColLinha.Item(i);
        GuiaProduto p;
        std::string codes;
        for (std::size_t s = 1; s <= l.mColSEspecial.Count(); ++s) {
            const cls_Guia_SEspecial& sv = l.mColSEspecial.Item(s);
            codes += (codes.empty() ? "" : ",") + sv.vCodigoServicoEspecial;
            file.servicos.push_back({std::to_string(l.vNLinha), sv.vCodigoServicoEspecial, sv.vValor});
        }
        p.A_Zona_Taxacao = l.vA_Zona_Taxacao;
        p.B_Produto = l.vB_Produto;
        p.E_Velocidade = l.vE_Velocidade;
        p.D_Quantidade = std::to_string(l.vD_Quantidade);
        p.N_Linha = std::to_string(l.vNLinha);
        p.ListaServesp = codes.empty() ? "0" : codes;
        p.CodAmbitoDist = l.vN_Ambito_Distrib;
        p.Escalao = std::to_string(l.vC_Escalao);
        p.Formato = l.vF_Formato;
        p.PreTratamento = std::to_string(l.vG_Pre_Tratamento);
        p.Desconto = l.vH_Descontos;
        p.TaxEsp_Quantidade = std::to_string(l.vM_TaxaEsp_Quantidade);
        p.TaxEsp_Semana = std::to_string(l.vL_TaxEsp_Semana);
        p.Entrega_Sampling = l.vK_Entrega_Sampling;
        p.Vexora = "0";
        p.DivisaoRemetente = l.vO_Divisao_Remetente;
        p.CodigoCampanha = l.vCodigo_Campanha;
        p.N_Req = std::to_string(g.vNReq);
        p.caracte = l.vConteudo;
        p.refClie = l.vRefCli;
        file.produtos.push_back(p);
    }
    return file;
}

}  // namespace nimbara
