#pragma once
// The arguments of the façade's fill operations as named fields, one struct per call, so that a host
// writes `guia.PreencheProduto({.A_Zona_Taxacao = "01", .B_Produto = "C01", ...})` instead of twenty
// positional texts. Unnamed fields are the empty text, as a missing argument always was.
#include <array>
#include <string>
#include <string_view>

namespace nimbara {

struct GuiaCabecalho {
    std::string cb_N_Req, cb_CodTerceiro, cb_CodCliente, cb_CodContrato, cb_CodCredencial, cb_Nome,
        cb_NContribuinte, cb_Morada, cb_CodPostal, cb_DesigPostal, cb_Obs, cb_JppCredenciado, cb_Pagamento,
        cb_NCredencial, cb_Drqjul, cb_DataRequisicao, cb_NDoc, cb_IDReqAnual, cb_NCompromisso, cb_TipoAcesso;
    friend bool operator==(const GuiaCabecalho&, const GuiaCabecalho&) = default;
};

struct GuiaParametros {
    std::string VCod2DFonteSize, vCod2DRatio, vCod2DNColunas, vCod2DNLinhas, vCod2DErroLevel, vCod2DPDFMode,
        VCod2DTruncatedRuncated, vCod2DApplyTilde, vGuiaNVias, vGuiaMargensTopo, vGuiaMargensEsquerda, vCodTerceiro;
    friend bool operator==(const GuiaParametros&, const GuiaParametros&) = default;
};

struct GuiaProduto {
    std::string A_Zona_Taxacao, B_Produto, E_Velocidade, D_Quantidade, N_Linha, ListaServesp, CodAmbitoDist, Escalao,
        Formato, PreTratamento, Desconto, TaxEsp_Quantidade, TaxEsp_Semana, Entrega_Sampling, Vexora,
        DivisaoRemetente, CodigoCampanha, N_Req, caracte, refClie;
    friend bool operator==(const GuiaProduto&, const GuiaProduto&) = default;
};

struct GuiaServico {
    std::string N_Linha, CodServEsp, Valor;
    friend bool operator==(const GuiaServico&, const GuiaServico&) = default;
};

// Each struct's fields by their argument names, in the fill operation's argument order: the one
// list that readers and writers of Guias walk.
template <class Args>
struct FieldName {
    std::string_view name;
    std::string Args::*member;
};

inline constexpr std::array<FieldName<GuiaCabecalho>, 20> kCabecalhoFields = {{
    {"cb_N_Req", &GuiaCabecalho::cb_N_Req}, {"cb_CodTerceiro", &GuiaCabecalho::cb_CodTerceiro},
    {"cb_CodCliente", &GuiaCabecalho::cb_CodCliente}, {"cb_CodContrato", &GuiaCabecalho::cb_CodContrato},
    {"cb_CodCredencial", &GuiaCabecalho::cb_CodCredencial}, {"cb_Nome", &GuiaCabecalho::cb_Nome},
    {"cb_NContribuinte", &GuiaCabecalho::cb_NContribuinte}, {"cb_Morada", &GuiaCabecalho::cb_Morada},
    {"cb_CodPostal", &GuiaCabecalho::cb_CodPostal}, {"cb_DesigPostal", &GuiaCabecalho::cb_DesigPostal},
    {"cb_Obs", &GuiaCabecalho::cb_Obs}, {"cb_JppCredenciado", &GuiaCabecalho::cb_JppCredenciado},
    {"cb_Pagamento", &GuiaCabecalho::cb_Pagamento}, {"cb_NCredencial", &GuiaCabecalho::cb_NCredencial},
    {"cb_Drqjul", &GuiaCabecalho::cb_Drqjul}, {"cb_DataRequisicao", &GuiaCabecalho::cb_DataRequisicao},
    {"cb_NDoc", &GuiaCabecalho::cb_NDoc}, {"cb_IDReqAnual", &GuiaCabecalho::cb_IDReqAnual},
    {"cb_NCompromisso", &GuiaCabecalho::cb_NCompromisso}, {"cb_TipoAcesso", &GuiaCabecalho::cb_TipoAcesso},
}};

inline constexpr std::array<FieldName<GuiaParametros>, 12> kParametrosFields = {{
    {"VCod2DFonteSize", &GuiaParametros::VCod2DFonteSize}, {"vCod2DRatio", &GuiaParametros::vCod2DRatio},
    {"vCod2DNColunas", &GuiaParametros::vCod2DNColunas}, {"vCod2DNLinhas", &GuiaParametros::vCod2DNLinhas},
    {"vCod2DErroLevel", &GuiaParametros::vCod2DErroLevel}, {"vCod2DPDFMode", &GuiaParametros::vCod2DPDFMode},
    {"VCod2DTruncatedRuncated", &GuiaParametros::VCod2DTruncatedRuncated},
    {"vCod2DApplyTilde", &GuiaParametros::vCod2DApplyTilde}, {"vGuiaNVias", &GuiaParametros::vGuiaNVias},
    {"vGuiaMargensTopo", &GuiaParametros::vGuiaMargensTopo},
    {"vGuiaMargensEsquerda", &GuiaParametros::vGuiaMargensEsquerda}, {"vCodTerceiro", &GuiaParametros::vCodTerceiro},
}};

inline constexpr std::array<FieldName<GuiaProduto>, 20> kProdutoFields = {{
    {"A_Zona_Taxacao", &GuiaProduto::A_Zona_Taxacao}, {"B_Produto", &GuiaProduto::B_Produto},
    {"E_Velocidade", &GuiaProduto::E_Velocidade}, {"D_Quantidade", &GuiaProduto::D_Quantidade},
    {"N_Linha", &GuiaProduto::N_Linha}, {"ListaServesp", &GuiaProduto::ListaServesp},
    {"CodAmbitoDist", &GuiaProduto::CodAmbitoDist}, {"Escalao", &GuiaProduto::Escalao},
    {"Formato", &GuiaProduto::Formato}, {"PreTratamento", &GuiaProduto::PreTratamento},
    {"Desconto", &GuiaProduto::Desconto}, {"TaxEsp_Quantidade", &GuiaProduto::TaxEsp_Quantidade},
    {"TaxEsp_Semana", &GuiaProduto::TaxEsp_Semana}, {"Entrega_Sampling", &GuiaProduto::Entrega_Sampling},
    {"Vexora", &GuiaProduto::Vexora}, {"DivisaoRemetente", &GuiaProduto::DivisaoRemetente},
    {"CodigoCampanha", &GuiaProduto::CodigoCampanha}, {"N_Req", &GuiaProduto::N_Req},
    {"caracte", &GuiaProduto::caracte}, {"refClie", &GuiaProduto::refClie},
}};

inline constexpr std::array<FieldName<GuiaServico>, 3> kServicoFields = {{
    {"N_Linha", &GuiaServico::N_Linha}, {"CodServEsp", &GuiaServico::CodServEsp}, {"Valor", &GuiaServico::Valor},
}};

}  // namespace nimbara
