// The page's PDF417 symbol, drawn through the page surface: the settings of the Guia choose the
// encoding, the size of a module and the height of a row.
#include <cmath>

#include "foundation/required_numbers.hpp"
#include "nimbara/cls_ImpressaoA.hpp"
#include "nimbara/cls_ParametroA.hpp"
#include "platform/pdf417_encoder.hpp"

namespace nimbara {

void cls_ImpressaoA::PrintCreatedPDF(PageSurface& impressora, const std::string& DataToEncode)
{
    guarded("PrintCreatedPDF", [&] {
        auto& s = impressora;
        cls_ParametroA parametros;
        parametros.PreencheObjecto(arrays.arrParametros);
        const platform::Pdf417Options options{
            text::require_int32(parametros.vCod2DErroLevel), text::require_int32(parametros.vCod2DNColunas),
            text::require_int32(parametros.vCod2DNLinhas),   parametros.vCod2DTruncated == "1",
            text::require_int32(parametros.vCod2DPDFMode),   parametros.vCod2DApplyTilde == "1"};
        auto symbol = platform::encode_pdf417(DataToEncode, options);

        const double font_size = std::floor(text::require_number(parametros.VCod2DFonteSize)) * 2 + 4;
        s.setFontSize(font_size);
        // The symbol fonts differ in the height of a row: 2, 3 or 4 module widths.
        const double ratio = text::require_number(parametros.vCod2DRatio);
        const int row_modules = ratio == 0 ? 2 : ratio == 1 ? 3 : 4;
        s.setFontName(ratio == 0 ? "PDF417c2" : ratio == 1 ? "PDF417c" : "PDF417c4");

        const double top = (TopY + 2) * kTwipsPerMm;
        s.setCurrentY(top);
        const double module = font_size / 40 * kTwipsPerMm;
        // Right-aligned to 261 mm of the sheet, whatever the left margin.
        const double left = 261 * kTwipsPerMm - symbol.width * module;
        const double bottom = top + symbol.rows * row_modules * module;
        s.setFillColor(kBlack);
        s.setFillStyle(printer::kFillSolid);
        s.PaintModules(ModuleMatrix{symbol.rows, symbol.width, std::move(symbol.modules)}, left, top, module,
                       row_modules * module);
        s.setCurrentX(0);
        s.setCurrentY(bottom);

        s.setFontSize(8);
        s.setFontName("Arial");
    });
}

}  // namespace nimbara
