// The page's PDF417 symbol, drawn through the page surface: the settings of the Guia choose the
// encoding, the size of a module and the height of a row.
#include <cmath>

#include "nimbara/cls_Impressao.hpp"
#include "nimbara/cls_ImpressaoA.hpp"
#include "platform/pdf417_encoder.hpp"
#include "printing/database_source.hpp"
#include "printing/guia_source.hpp"
#include "printing/page.hpp"

namespace nimbara {
namespace {

// The symbol of the data, encoded with the settings. Each edition reads its settings where it
// keeps them, and a failure to read them is logged like a failure to draw.
template <class ReadSettings>
void print_symbol(ImpressaoComum& printer, PageSurface& impressora, const std::string& DataToEncode,
                  ReadSettings read_settings)
{
    const printing::Page page(printer);
    page.guarded("PrintCreatedPDF", [&] {
        auto& s = impressora;
        const printing::SymbolSettings settings = read_settings();
        auto symbol = platform::encode_pdf417(DataToEncode, settings.encoding);

        const double font_size = std::floor(settings.font_size) * 2 + 4;
        s.setFontSize(font_size);
        // The symbol fonts differ in the height of a row: 2, 3 or 4 module widths.
        const double ratio = settings.ratio;
        const int row_modules = ratio == 0 ? 2 : ratio == 1 ? 3 : 4;
        s.setFontName(ratio == 0 ? "PDF417c2" : ratio == 1 ? "PDF417c" : "PDF417c4");

        const double top = (page.TopY() + 2) * kTwipsPerMm;
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

}  // namespace

void cls_ImpressaoA::PrintCreatedPDF(PageSurface& impressora, const std::string& DataToEncode)
{
    print_symbol(*this, impressora, DataToEncode, [&] { return printing::ArraySource(arrays).symbol_settings(); });
}

void cls_Impressao::PrintCreatedPDF(PageSurface& impressora, const std::string& DataToEncode)
{
    print_symbol(*this, impressora, DataToEncode, [&] {
        Recordset parametros;
        Param_Parametros(parametros);
        return printing::symbol_settings_of(parametros);
    });
}

}  // namespace nimbara
