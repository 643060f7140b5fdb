// The page driver of both editions: draws one copy's page plan through the printer's routines, as
// one print job.
#include <variant>

#include "foundation/chars.hpp"
#include "nimbara/cls_Impressao.hpp"
#include "nimbara/cls_ImpressaoA.hpp"
#include "printing/database_source.hpp"
#include "printing/guia_source.hpp"
#include "printing/page.hpp"
#include "printing/page_plan.hpp"
#include "printing/print_log.hpp"
#include "printing/printable.hpp"

namespace nimbara {
namespace {

template <class Table>
std::string text_or(const Table& t, typename Table::field_type field, int row, std::string_view if_empty)
{
    const Cell& c = t.at(field, row);
    return std::string(c ? std::string_view(*c) : if_empty);
}

// The routines whose arguments differ between the editions.
void print_line(cls_ImpressaoA& printer, PageSurface& s, const guia::Table& line, std::int32_t y)
{
    const auto f = [&](auto field) { return std::string(line.text(field, 0)); };
    printer.PrintaParteDetail(s, f(guia::A_Zona_Taxacao), f(guia::B_Produto), f(guia::Escalao),
                              f(guia::D_Quantidade), f(guia::E_Velocidade), f(guia::Formato), f(guia::PreTratamento),
                              f(guia::Desconto), f(guia::Vexora), f(guia::Entrega_Sampling), f(guia::TaxEsp_Semana),
                              f(guia::TaxEsp_Quantidade), f(guia::DivisaoRemetente), f(guia::caracte),
                              f(guia::refClie), y);
}

void print_line(cls_Impressao& printer, PageSurface& s, const guia::Table& line, std::int32_t y)
{
    const auto f = [&](auto field) { return std::string(line.text(field, 0)); };
    printer.PrintaParteDetail(s, f(guia::A_Zona_Taxacao), f(guia::B_Produto), f(guia::Escalao),
                              f(guia::D_Quantidade), f(guia::E_Velocidade), f(guia::Formato), f(guia::PreTratamento),
                              f(guia::Desconto), f(guia::Vexora), f(guia::Entrega_Sampling), f(guia::TaxEsp_Semana),
                              f(guia::TaxEsp_Quantidade), f(guia::CodAmbitoDist), y);
}

void print_page_numbers(cls_ImpressaoA& printer, PageSurface& s, const cab::Table& cab, std::int32_t pag,
                        std::int32_t TotPaginas)
{
    printer.Imprime_NumPaginas(std::string(cab.text(cab::IDReqAnual, 0)), s, pag, TotPaginas,
                               std::string(cab.text(cab::NCompromisso, 0)));
}

void print_page_numbers(cls_Impressao& printer, PageSurface& s, const cab::Table& cab, std::int32_t pag,
                        std::int32_t TotPaginas)
{
    printer.Imprime_NumPaginas(std::string(cab.text(cab::IDReqAnual, 0)), s, pag, TotPaginas);
}

void reprint_remarks(cls_ImpressaoA& printer, PageSurface& s, const std::string& text)
{
    printer.ReimprimirObservacoes(s, text);
}

// The database edition's walk has no such step.
void reprint_remarks(cls_Impressao&, PageSurface&, const std::string&) {}

// Draws the steps of a plan; whatever the surface throws ends the job like a fault of the Guia.
template <class Printer>
class PlanDrawing {
public:
    PlanDrawing(Printer& printer, const printing::GuiaSource& source, PageSurface& s,
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
        print_line(printer, s, printing::printed_line(source, l.index), l.y);
    }

    void operator()(const printing::step::PageNumbers& n) const
    {
        print_page_numbers(printer, s, source.header(), n.pag, TotPaginas);
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

    void operator()(const printing::step::Remarks& r) const { reprint_remarks(printer, s, r.text); }

    void operator()(const printing::step::Symbol& symbol) const { printer.PrintCreatedPDF(s, symbol.payload); }

private:
    Printer& printer;
    printing::Page page;
    const printing::GuiaSource& source;
    PageSurface& s;
    const FormImpressao& imagens;
    std::int32_t DuplOrig;
    const std::string& dtRequisicao;
    std::int32_t TotPaginas;
};

// A job that the standard faces could not show came out with embedded faces: the log says which
// texts asked for them. It is a note, not a fault, so it is not one of the printer's entries.
void note_embedded_faces(const ImpressaoComum& printer, const PageSurface& s)
{
    const std::vector<std::string> asked = s.EmbeddedFacesAskedBy();
    if (asked.empty()) return;
    std::string note = "Imprime_Parte_Variavel: printed with embedded faces, asked for by";
    for (std::size_t i = 0; i < asked.size(); ++i) note += (i ? ", \"" : " \"") + asked[i] + "\"";
    try {
        printing::append_log_line(printer.log_path(), note);
    } catch (const std::exception&) {
        // A log that cannot be written loses the note, as it loses any entry.
    }
}

// One copy: the plan of the edition drawn page by page as one print job. A fault ends the job
// where it stands, logged, and the pages drawn until then come out.
template <class Printer>
void print_copy(Printer& printer, const printing::GuiaSource& source, PageSurface& s, const FormImpressao& imagens,
                std::int32_t DuplOrig, const std::string& dtRequisicao)
{
    const printing::PagePlan plan = printing::plan_pages(source, printer.edition());
    const PlanDrawing<Printer> draw(printer, source, s, imagens, DuplOrig, dtRequisicao, plan.TotPaginas);
    const auto fail = [&](const std::string& what) {
        printer.WriteLog("Imprime_Parte_Variavel-Erro:" + what);
        // The job ends in any case, so that the pages already drawn come out.
        printing::Page(printer).guarded("Imprime_Parte_Variavel", [&] { s.EndDoc(); });
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
            note_embedded_faces(printer, s);
        }
    } catch (const std::exception& e) {
        fail(e.what());
    }
    // The line's symbol section is the walk's own; the properties are left cleared, as after any copy.
    printer.Total_Se_CodBarras = 0;
    printer.Str_CodBarrasServEsp.clear();
}

}  // namespace

std::int32_t cls_ImpressaoA::Calcula_TotalidadePaginas(std::int32_t /*varNReq*/)
{
    return printing::forecast_pages(printing::ArraySource(arrays));
}

void cls_ImpressaoA::Imprime_Parte_Variavel(const std::string& /*varCodCliente*/, std::int32_t /*varNReq*/,
                                            std::int16_t /*N_Via*/, PageSurface& impressora2,
                                            const FormImpressao& imagens, double TopY_, double LeftX_,
                                            std::int32_t DuplOrig, const std::string& dtRequisicao,
                                            const std::string& /*NGUIA*/)
{
    SetPageOffsets(LeftX_, TopY_);
    print_copy(*this, printing::ArraySource(arrays), impressora2, imagens, DuplOrig, dtRequisicao);
}

void cls_Impressao::Imprime_Parte_Variavel(const std::string& /*varCodCliente*/, std::int32_t varNReq,
                                           std::int16_t /*N_Via*/, PageSurface& impressora2,
                                           const FormImpressao& imagens, double TopY_, double LeftX_,
                                           std::int32_t DuplOrig, const std::string& dtRequisicao,
                                           const std::string& /*NGUIA*/)
{
    SetPageOffsets(LeftX_, TopY_);
    print_copy(*this, printing::DatabaseSource(*this, varNReq), impressora2, imagens, DuplOrig, dtRequisicao);
}

std::vector<PrintProblem> cls_Impressao::PrintProblems(std::int32_t varNReq)
{
    return printing::printing_problems(printing::DatabaseSource(*this, varNReq), Edition::Database);
}

std::int32_t cls_Impressao::Calcula_TotalidadePaginas(std::int32_t varNReq)
{
    const printing::DryRun run = printing::dry_run_pages(printing::DatabaseSource(*this, varNReq));
    if (run.failure) WriteLog("Calcula_TotalidadePaginas-Erro:" + *run.failure);
    return run.pages;
}

}  // namespace nimbara
