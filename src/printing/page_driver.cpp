// The page driver of the array edition: draws one copy's page plan through the printer's routines,
// as one print job.
#include <variant>

#include "foundation/chars.hpp"
#include "nimbara/cls_ImpressaoA.hpp"
#include "printing/guia_source.hpp"
#include "printing/page.hpp"
#include "printing/page_plan.hpp"

namespace nimbara {
namespace {

template <class Table>
std::string text_or(const Table& t, typename Table::field_type field, int row, std::string_view if_empty)
{
    const Cell& c = t.at(field, row);
    return std::string(c ? std::string_view(*c) : if_empty);
}

// Draws the steps of a plan; whatever the surface throws ends the job like a fault of the Guia.
class PlanDrawing {
public:
    PlanDrawing(cls_ImpressaoA& printer, const printing::GuiaSource& source, PageSurface& s,
                const FormImpressao& imagens, std::int32_t DuplOrig, const std::string& dtRequisicao,
                std::int32_t TotPaginas)
        : printer(printer), page(printer), source(source), s(s), imagens(imagens), DuplOrig(DuplOrig),
          dtRequisicao(dtRequisicao), TotPaginas(TotPaginas)
    {
    }

    void operator()(const printing::step::PageTop&) const
    {
        printer.PrintaParteFixaGuiaExp(s, imagens, DuplOrig, dtRequisicao);
        const cab::Table& cab = source.header();
        if (!cab.empty()) {
            const auto f = [&](auto field) { return std::string(cab.text(field, 0)); };
            const std::string postal = chars::left(f(cab::CodPostal), 4) + " - " +
                                       chars::right(f(cab::CodPostal), 3) + " " + f(cab::DesigPostal);
            printer.ImprimeHeaderFooter(s, text_or(cab, cab::CodTerceiro, 0, "0"), f(cab::CodCliente),
                                        f(cab::CodContrato), f(cab::CodCredencial), f(cab::Nome),
                                        text_or(cab, cab::NContribuinte, 0, "0"), f(cab::Morada), postal, f(cab::Obs),
                                        f(cab::JppCredenciado), f(cab::Pagamento));
        }
        page.paintLogo(s, imagens);
    }

    void operator()(const printing::step::Line& l) const
    {
        const guia::Table line = printing::printed_line(source, l.index);
        const auto f = [&](auto field) { return std::string(line.text(field, 0)); };
        printer.PrintaParteDetail(s, f(guia::A_Zona_Taxacao), f(guia::B_Produto), f(guia::Escalao),
                                  f(guia::D_Quantidade), f(guia::E_Velocidade), f(guia::Formato),
                                  f(guia::PreTratamento), f(guia::Desconto), f(guia::Vexora),
                                  f(guia::Entrega_Sampling), f(guia::TaxEsp_Semana), f(guia::TaxEsp_Quantidade),
                                  f(guia::DivisaoRemetente), f(guia::caracte), f(guia::refClie), l.y);
    }

    void operator()(const printing::step::PageNumbers& n) const
    {
        const cab::Table& cab = source.header();
        printer.Imprime_NumPaginas(std::string(cab.text(cab::IDReqAnual, 0)), s, n.pag, TotPaginas,
                                   std::string(cab.text(cab::NCompromisso, 0)));
    }

    void operator()(const printing::step::ServiceRow& r) const
    {
        if (r.slots)
            printer.PrintaSEParteDetail(s, r.code, r.value, r.y, &r.slots->val, r.slots->nVal, r.slots->nCod,
                                        &r.slots->cod);
        else
            printer.PrintaSEParteDetail(s, r.code, r.value, r.y);
    }

    void operator()(const printing::step::EraseLastRow&) const { printer.Apaga_RegsUltima_linha(s); }

    void operator()(const printing::step::Total& t) const
    {
        const std::string total = std::to_string(t.quantity);
        double x = 99.5;
        for (std::int32_t p = 1; p <= static_cast<std::int32_t>(total.size()); ++p, x -= 4.0) {
            s.setCurrentX(page.twipsX(x));
            s.setCurrentY(page.twipsY(115));
            s.Print(printer.ValorAlinhado(total, 1, p));
        }
    }

    void operator()(const printing::step::Remarks& r) const { printer.ReimprimirObservacoes(s, r.text); }

    void operator()(const printing::step::Symbol& symbol) const { printer.PrintCreatedPDF(s, symbol.payload); }

private:
    cls_ImpressaoA& printer;
    printing::Page page;
    const printing::GuiaSource& source;
    PageSurface& s;
    const FormImpressao& imagens;
    std::int32_t DuplOrig;
    const std::string& dtRequisicao;
    std::int32_t TotPaginas;
};

}  // namespace

std::int32_t cls_ImpressaoA::Calcula_TotalidadePaginas(std::int32_t /*varNReq*/)
{
    return printing::forecast_pages(printing::ArraySource(arrays));
}

std::string cls_ImpressaoA::Apaga_RegsUltima_linha(PageSurface& impressora)
{
    auto& s = impressora;
    const printing::Page page(*this);
    s.setFillColor(kBlack);
    s.setFontName("Times New Roman");
    s.setFontSize(8);
    s.setFontBold(true);
    s.setFillColor(kBlack);
    // The columns of an earlier layout of the row; the blanks erase where the printer paints the
    // text's background, and the last characters of an empty text draw nothing.
    constexpr double y = 108 + 0.5;
    for (const double x : {10.6, 41.8, 47.8, 60.0, 201.5, 102.0}) page.printAt(s, x, y, "  ");
    for (const double x : {77.5, 90.0, 114.0, 176.5, 188.5, 224.0, 236.6, 248.2}) page.printAt(s, x, y, "");
    return {};
}

void cls_ImpressaoA::Imprime_Parte_Variavel(const std::string& /*varCodCliente*/, std::int32_t /*varNReq*/,
                                            std::int16_t /*N_Via*/, PageSurface& impressora2,
                                            const FormImpressao& imagens, double TopY_, double LeftX_,
                                            std::int32_t DuplOrig, const std::string& dtRequisicao,
                                            const std::string& /*NGUIA*/)
{
    SetPageOffsets(LeftX_, TopY_);
    auto& s = impressora2;
    const printing::ArraySource source(arrays);
    const printing::PagePlan plan = printing::plan_pages(source);
    const PlanDrawing draw(*this, source, s, imagens, DuplOrig, dtRequisicao, plan.TotPaginas);
    const auto fail = [&](const std::string& what) {
        WriteLog("Imprime_Parte_Variavel-Erro:" + what);
        // The job ends in any case, so that the pages already drawn come out.
        printing::Page(*this).guarded("Imprime_Parte_Variavel", [&] { s.EndDoc(); });
    };
    try {
        for (std::size_t i = 0; i < plan.pages.size(); ++i) {
            if (i > 0) s.NewPage();
            for (const auto& step : plan.pages[i].steps) std::visit(draw, step);
        }
        if (plan.failure) {
            fail(*plan.failure);
        } else {
            s.EndDoc();
        }
    } catch (const std::exception& e) {
        fail(e.what());
    }
    // The line's symbol section is the walk's own; the properties are left cleared, as after any copy.
    Total_Se_CodBarras = 0;
    Str_CodBarrasServEsp.clear();
}

}  // namespace nimbara
