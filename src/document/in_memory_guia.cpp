// The fill operations of the headless façade: the caller pours a Guia in call by call, as text.
#include <exception>
#include <initializer_list>

#include "foundation/text.hpp"
#include "nimbara/cls_ValProdutosA.hpp"
#include "printing/request_day.hpp"

namespace nimbara {
namespace {

template <class Field>
struct FieldValue {
    Field field;
    std::string_view value;
};

// Only spaces count as blanks, as in the old callers' texts; a tab is kept.
std::string_view trim_blanks(std::string_view s)
{
    const auto first = s.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return s.substr(first, s.find_last_not_of(' ') - first + 1);
}

// Stores each value in the given order; the empty text leaves its cell as it is.
template <class Table>
void store(Table& table, int row, std::initializer_list<FieldValue<typename Table::field_type>> values)
{
    for (const auto& v : values)
        if (!v.value.empty()) table.set(v.field, row, std::string(trim_blanks(v.value)));
}

constexpr int kFailed = -1;

}  // namespace

std::int32_t cls_ValProdutosA::PreencheCabecalho(
    std::string_view cb_N_Req, std::string_view cb_CodTerceiro, std::string_view cb_CodCliente,
    std::string_view cb_CodContrato, std::string_view cb_CodCredencial, std::string_view cb_Nome,
    std::string_view cb_NContribuinte, std::string_view cb_Morada, std::string_view cb_CodPostal,
    std::string_view cb_DesigPostal, std::string_view cb_Obs, std::string_view cb_JppCredenciado,
    std::string_view cb_Pagamento, std::string_view cb_NCredencial, std::string_view cb_Drqjul,
    std::string_view cb_DataRequisicao, std::string_view cb_NDoc, std::string_view cb_IDReqAnual,
    std::string_view cb_NCompromisso, std::string_view cb_TipoAcesso)
{
    try {
        auto& t = arrays_.arrCabecalho;
        t.ensure_rows(2);  // the header always has its two rows, of which only the first is used
        store(t, 0,
              {{cab::N_Req, cb_N_Req},
               {cab::CodTerceiro, cb_CodTerceiro},
               {cab::CodCliente, cb_CodCliente},
               {cab::CodContrato, cb_CodContrato},
               {cab::CodCredencial, cb_CodCredencial},
               {cab::Nome, cb_Nome},
               {cab::NContribuinte, cb_NContribuinte},
               {cab::Morada, cb_Morada},
               {cab::CodPostal, cb_CodPostal},
               {cab::DesigPostal, cb_DesigPostal},
               {cab::Obs, cb_Obs},
               {cab::JppCredenciado, cb_JppCredenciado},
               {cab::Pagamento, cb_Pagamento},
               {cab::NCredencial, cb_NCredencial},
               {cab::Drqjul, cb_Drqjul},
               {cab::DataRequisicao, cb_DataRequisicao},
               {cab::NDoc, cb_NDoc},
               {cab::IDReqAnual, cb_IDReqAnual},
               {cab::NCompromisso, cb_NCompromisso},
               {cab::TipoAcesso, cb_TipoAcesso}});
        // The symbol's day code follows from the date when the caller gives none, as the database
        // road computes it.
        if (!t.at(cab::Drqjul, 0))
            if (const auto code = printing::day_code_of(t.text(cab::DataRequisicao, 0))) t.set(cab::Drqjul, 0, *code);
        last_error_.reset();
        return 0;
    } catch (const std::exception& e) {
        last_error_ = Failure{"PreencheCabecalho", e.what()};
        return kFailed;
    }
}

cls_ValProdutosA::FillAnswer cls_ValProdutosA::PreencheProduto(
    std::string_view A_Zona_Taxacao, std::string_view B_Produto, std::string_view E_Velocidade,
    std::string_view D_Quantidade, std::string_view N_Linha, std::string_view ListaServesp,
    std::string_view CodAmbitoDist, std::string_view Escalao, std::string_view Formato,
    std::string_view PreTratamento, std::string_view Desconto, std::string_view TaxEsp_Quantidade,
    std::string_view TaxEsp_Semana, std::string_view Entrega_Sampling, std::string_view Vexora,
    std::string_view DivisaoRemetente, std::string_view CodigoCampanha, std::string_view N_Req,
    std::string_view caracte, std::string_view refClie)
{
    try {
        // The pre-treatment is settled before the table is touched, so a value that is no number
        // drops the whole line.
        const auto pre_treatment = text::to_number(PreTratamento);
        if (!pre_treatment) {
            last_error_ = Failure{"PreencheProduto", "PreTratamento must be a number, found \"" +
                                                         std::string(PreTratamento) + '"'};
            return kFailed;
        }
        if (*pre_treatment == 0) PreTratamento = {};
        // Network access lines in zone "01" always carry "0", whatever was given.
        if (B_Produto.starts_with('P') && A_Zona_Taxacao == "01") PreTratamento = "0";

        auto& t = arrays_.arrGuia;
        const int row = t.add_row();
        // The speed is written twice, as it always was; field 5 is never written.
        store(t, row,
              {{guia::A_Zona_Taxacao, A_Zona_Taxacao},
               {guia::B_Produto, B_Produto},
               {guia::E_Velocidade, E_Velocidade},
               {guia::D_Quantidade, D_Quantidade},
               {guia::N_Linha, N_Linha},
               {guia::ListaServesp, ListaServesp},
               {guia::CodAmbitoDist, CodAmbitoDist},
               {guia::Escalao, Escalao},
               {guia::E_Velocidade, E_Velocidade},
               {guia::Formato, Formato},
               {guia::PreTratamento, PreTratamento},
               {guia::Desconto, Desconto},
               {guia::TaxEsp_Quantidade, TaxEsp_Quantidade},
               {guia::TaxEsp_Semana, TaxEsp_Semana},
               {guia::Entrega_Sampling, Entrega_Sampling},
               {guia::Vexora, Vexora},
               {guia::N_Req, N_Req},
               {guia::CodigoCampanha, CodigoCampanha},
               {guia::DivisaoRemetente, DivisaoRemetente},
               {guia::caracte, caracte},
               {guia::refClie, refClie}});
        last_error_.reset();
        return std::nullopt;
    } catch (const std::exception& e) {
        last_error_ = Failure{"PreencheProduto", e.what()};
        return kFailed;
    }
}

cls_ValProdutosA::FillAnswer cls_ValProdutosA::PreencheServico(std::string_view N_Linha, std::string_view CodServEsp,
                                                               std::string_view Valor)
{
    try {
        auto& t = arrays_.arrServEsp;
        store(t, t.add_row(), {{serv::N_Linha, N_Linha}, {serv::CodServEsp, CodServEsp}, {serv::Valor, Valor}});
        last_error_.reset();
        return std::nullopt;
    } catch (const std::exception& e) {
        last_error_ = Failure{"PreencheServico", e.what()};
        return kFailed;
    }
}

cls_ValProdutosA::FillAnswer cls_ValProdutosA::PreencheParametros(
    std::string_view VCod2DFonteSize, std::string_view vCod2DRatio, std::string_view vCod2DNColunas,
    std::string_view vCod2DNLinhas, std::string_view vCod2DErroLevel, std::string_view vCod2DPDFMode,
    std::string_view VCod2DTruncatedRuncated, std::string_view vCod2DApplyTilde, std::string_view vGuiaNVias,
    std::string_view vGuiaMargensTopo, std::string_view vGuiaMargensEsquerda, std::string_view vCodTerceiro)
{
    try {
        auto& t = arrays_.arrParametros;
        store(t, t.add_row(),
              {{param::VCod2DFonteSize, VCod2DFonteSize},
               {param::vCod2DRatio, vCod2DRatio},
               {param::vCod2DNColunas, vCod2DNColunas},
               {param::vCod2DNLinhas, vCod2DNLinhas},
               {param::vCod2DErroLevel, vCod2DErroLevel},
               {param::vCod2DPDFMode, vCod2DPDFMode},
               {param::VCod2DTruncatedRuncated, VCod2DTruncatedRuncated},
               {param::vCod2DApplyTilde, vCod2DApplyTilde},
               {param::vGuiaNVias, vGuiaNVias},
               {param::vGuiaMargensTopo, vGuiaMargensTopo},
               {param::vGuiaMargensEsquerda, vGuiaMargensEsquerda},
               {param::vCodTerceiro, vCodTerceiro}});
        last_error_.reset();
        return std::nullopt;
    } catch (const std::exception& e) {
        last_error_ = Failure{"PreencheParametros", e.what()};
        return kFailed;
    }
}

// The named forms pass their fields on in argument order.
std::int32_t cls_ValProdutosA::PreencheCabecalho(const GuiaCabecalho& f)
{
    return PreencheCabecalho(f.cb_N_Req, f.cb_CodTerceiro, f.cb_CodCliente, f.cb_CodContrato, f.cb_CodCredencial,
                             f.cb_Nome, f.cb_NContribuinte, f.cb_Morada, f.cb_CodPostal, f.cb_DesigPostal, f.cb_Obs,
                             f.cb_JppCredenciado, f.cb_Pagamento, f.cb_NCredencial, f.cb_Drqjul, f.cb_DataRequisicao,
                             f.cb_NDoc, f.cb_IDReqAnual, f.cb_NCompromisso, f.cb_TipoAcesso);
}

cls_ValProdutosA::FillAnswer cls_ValProdutosA::PreencheProduto(const GuiaProduto& f)
{
    return PreencheProduto(f.A_Zona_Taxacao, f.B_Produto, f.E_Velocidade, f.D_Quantidade, f.N_Linha, f.ListaServesp,
                           f.CodAmbitoDist, f.Escalao, f.Formato, f.PreTratamento, f.Desconto, f.TaxEsp_Quantidade,
                           f.TaxEsp_Semana, f.Entrega_Sampling, f.Vexora, f.DivisaoRemetente, f.CodigoCampanha,
                           f.N_Req, f.caracte, f.refClie);
}

cls_ValProdutosA::FillAnswer cls_ValProdutosA::PreencheServico(const GuiaServico& f)
{
    return PreencheServico(f.N_Linha, f.CodServEsp, f.Valor);
}

cls_ValProdutosA::FillAnswer cls_ValProdutosA::PreencheParametros(const GuiaParametros& f)
{
    return PreencheParametros(f.VCod2DFonteSize, f.vCod2DRatio, f.vCod2DNColunas, f.vCod2DNLinhas, f.vCod2DErroLevel,
                              f.vCod2DPDFMode, f.VCod2DTruncatedRuncated, f.vCod2DApplyTilde, f.vGuiaNVias,
                              f.vGuiaMargensTopo, f.vGuiaMargensEsquerda, f.vCodTerceiro);
}

std::optional<std::string> cls_ValProdutosA::DayCodeConflict() const
{
    const auto& t = arrays_.arrCabecalho;
    const Cell& given = t.at(cab::Drqjul, 0);
    const std::string date(t.text(cab::DataRequisicao, 0));
    if (!given || date.empty()) return std::nullopt;
    const auto code = printing::day_code_of(date);
    if (!code || *code == *given) return std::nullopt;
    return "cb_Drqjul \"" + *given + "\" is not the day code of cb_DataRequisicao \"" + date + "\", which is \"" + *code +
           "\"";
}

}  // namespace nimbara
