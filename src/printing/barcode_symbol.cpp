// The page's PDF417 symbol, drawn as filled rectangles: the settings of the Guia choose the
// encoding, the size of a module and the height of a row.
#include <cmath>
#include <vector>

#include "foundation/required_numbers.hpp"
#include "nimbara/cls_ImpressaoA.hpp"
#include "nimbara/cls_ParametroA.hpp"
#include "platform/pdf417_encoder.hpp"

namespace nimbara {
namespace {

// A run of dark modules [first, last) that goes down from row `top`.
struct Bar {
    int first, last, top;
};

// Draws the matrix with its top-left at (x, y) twips. Runs of dark modules that stand in the same
// place in consecutive rows (the start and stop patterns, above all) become one rectangle.
void draw_modules(PageSurface& s, const platform::Pdf417Symbol& symbol, double x, double y, double module,
                  double row_height)
{
    const auto box = [&](const Bar& b, int bottom) {
        s.Line(20, x + b.first * module, y + b.top * row_height, x + b.last * module, y + bottom * row_height, kBlack);
    };
    std::vector<Bar> open, next;
    for (int r = 0; r < symbol.rows; ++r) {
        next.clear();
        std::size_t k = 0;
        for (int c = 0; c < symbol.width;) {
            if (!symbol.dark(r, c)) {
                ++c;
                continue;
            }
            const int first = c;
            while (c < symbol.width && symbol.dark(r, c)) ++c;
            // Both lists run left to right, so the bars of the row above are met in order.
            while (k < open.size() && open[k].first < first) box(open[k++], r);
            if (k < open.size() && open[k].first == first && open[k].last == c)
                next.push_back(open[k++]);
            else
                next.push_back({first, c, r});
        }
        while (k < open.size()) box(open[k++], r);
        open.swap(next);
    }
    for (const auto& b : open) box(b, symbol.rows);
}

}  // namespace

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
        const auto symbol = platform::encode_pdf417(DataToEncode, options);

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
        s.setFillColor(kBlack);
        s.setFillStyle(0);
        draw_modules(s, symbol, left, top, module, row_modules * module);
        s.setCurrentX(0);
        s.setCurrentY(top + symbol.rows * row_modules * module);

        s.setFontSize(8);
        s.setFontName("Arial");
    });
}

}  // namespace nimbara
