// The print drive: a passing Guia handed to a new printing object, as many copies as asked for.
#include <exception>

#include "foundation/required_numbers.hpp"
#include "nimbara/cls_ImpressaoA.hpp"
#include "nimbara/cls_ParametroA.hpp"
#include "nimbara/cls_ValProdutosA.hpp"

namespace nimbara {
namespace {

// Margins are kept in twips; the page logic works in millimetres.
double twips_to_mm(const std::string& twips) { return text::require_number(twips) * 10 / 567; }

}  // namespace

void cls_ValProdutosA::Imprime_Guias(PageSurface& impr, const FormImpressao& myPrintForm, const std::string& CodCLiente,
                                     std::int32_t NReq, std::int16_t Nvia, std::int32_t& DuplOrig,
                                     const std::string& dtRequisicao, const std::string& NGUIA_2)
{
    cls_ImpressaoA printer;
    try {
        printer.arrays = arrays_;
        if (print_log_) printer.set_log_path(*print_log_);
        printer.set_notifier(notifier_);
        cls_ParametroA parametros;
        parametros.PreencheObjecto(arrays_.arrParametros);
        impr.setTrackDefault(false);
        const std::int16_t vias = text::require_int16(parametros.vGuiaNVias);
        copies_asked_ = vias;
        for (std::int16_t via = 1; via <= vias; ++via) {
            const double left = twips_to_mm(parametros.vGuiaMargensEsquerda);
            const double top = twips_to_mm(parametros.vGuiaMargensTopo);
            impr.setOrientation(printer::kLandscape);
            impr.setPaperSize(printer::kPaperA4);
            printer.Imprime_Parte_Variavel(CodCLiente, NReq, Nvia, impr, myPrintForm, top, left, DuplOrig,
                                           dtRequisicao, NGUIA_2);
            ++DuplOrig;
        }
        impr.setTrackDefault(true);
        print_log_entries_ = printer.log_entries();
        arrays_.arrCabecalho.clear();
        arrays_.arrGuia.clear();
        arrays_.arrServEsp.clear();
        arrays_.arrParametros.clear();
    } catch (const std::exception& e) {
        print_log_entries_ = printer.log_entries();
        print_failure_ = Failure{"Imprime_Guias", e.what()};
        // The parameters survive a failed run, so that the caller may print again with them.
        arrays_.arrGuia.clear();
        arrays_.arrCabecalho.clear();
        arrays_.arrServEsp.clear();
    }
}

}  // namespace nimbara
