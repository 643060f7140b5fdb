// The drawing primitives both editions share: frames, filled boxes, the circle and the comb helper.
#include <cmath>
#include <stdexcept>

#include "foundation/run_time_errors.hpp"
#include "foundation/chars.hpp"
#include "nimbara/ImpressaoComum.hpp"
#include "printing/page.hpp"
#include "printing/print_log.hpp"

namespace nimbara {
namespace {

// A box argument in whole twips: truncated towards minus infinity, each argument by itself.
double whole_twips(double mm) { return std::floor(kTwipsPerMm * mm); }

}  // namespace

ImpressaoComum::ImpressaoComum(Edition edition) : edition_(edition), log_path_(printing::default_log_path()) {}

void ImpressaoComum::SetPageOffsets(double left_mm, double top_mm)
{
    LeftX = left_mm;
    TopY = top_mm;
}

void ImpressaoComum::printaCaixa(double w, double h, double e, double X, double y, PageSurface& impressora)
{
    printing::Page(*this).guarded("printaCaixa", [&] {
        const double W = whole_twips(w), H = whole_twips(h), E = whole_twips(e), X1 = whole_twips(X), Y1 = whole_twips(y);
        impressora.setFillColor(kBlack);
        impressora.setFillStyle(printer::kFillSolid);
        impressora.Line(printer::kLineBox, X1, Y1, X1 + W, Y1 + E, kBlack);          // top
        impressora.Line(printer::kLineBox, X1 + W - E, Y1, X1 + W, Y1 + H, kBlack);  // right
        impressora.Line(printer::kLineBox, X1, Y1 + H - E, X1 + W, Y1 + H, kBlack);  // bottom
        impressora.Line(printer::kLineBox, X1, Y1, X1 + E, Y1 + H, kBlack);          // left
    });
}

void ImpressaoComum::printaCaixaFilled(double w, double h, double X, double y, PageSurface& impressora)
{
    printing::Page(*this).guarded("printaCaixaFilled", [&] {
        const double X1 = whole_twips(X), Y1 = whole_twips(y);
        impressora.Line(printer::kLineBox, X1, Y1, X1 + whole_twips(w), Y1 + whole_twips(h), kBlack);
    });
}

void ImpressaoComum::printacirculo(double X, double y, double R, PageSurface& impressora)
{
    printing::Page(*this).guarded("printacirculo", [&] { impressora.Circle(0, whole_twips(X), whole_twips(y), whole_twips(R), 0, 0, 0, 0); });
}

std::string ImpressaoComum::ValorAlinhado(const std::string& valor, std::int32_t largura, std::int32_t posicao)
{
    if (posicao == 1) return chars::right(valor, 1);
    if (largura < 0) raise(RunTimeError::InvalidProcedureCall);
    return chars::mid(valor, static_cast<std::ptrdiff_t>(chars::length(valor)) + largura - posicao,
                      static_cast<std::size_t>(largura));
}

// The same function under the name its erasing callers use.
std::string ImpressaoComum::ApagaValorAlinhado(const std::string& valor, std::int32_t largura, std::int32_t posicao)
{
    return ValorAlinhado(valor, largura, posicao);
}

void ImpressaoComum::PrintTestPage(PageSurface& impressora, const FormImpressao& imagens, std::int32_t DplOriginal,
                                   const std::string& dtRequisicao)
{
    PrintaParteFixaGuiaExp(impressora, imagens, DplOriginal, dtRequisicao);
    const printing::Page page(*this);
    page.guarded("PrintTestPage", [&] { page.paintLogo(impressora, imagens); });
}

}  // namespace nimbara
