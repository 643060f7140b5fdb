#include "platform/pdf417_encoder.hpp"

#include <zint.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace nimbara::platform {
namespace {

struct SymbolDeleter {
    void operator()(zint_symbol* s) const { ZBarcode_Delete(s); }
};
using SymbolHandle = std::unique_ptr<zint_symbol, SymbolDeleter>;

// "~dNNN" (three decimal digits) becomes the byte NNN; every other character stands for itself.
std::string apply_tilde(std::string_view data)
{
    std::string out;
    out.reserve(data.size());
    for (std::size_t i = 0; i < data.size(); ++i) {
        if (data[i] == '~' && i + 4 < data.size() && data[i + 1] == 'd') {
            const std::string_view digits = data.substr(i + 2, 3);
            if (digits.size() == 3 && digits.find_first_not_of("0123456789") == std::string_view::npos) {
                const int value = std::stoi(std::string(digits));
                if (value <= 255) {
                    out.push_back(static_cast<char>(value));
                    i += 4;
                    continue;
                }
            }
        }
        out.push_back(data[i]);
    }
    return out;
}

}  // namespace

Pdf417Symbol encode_pdf417(std::string_view data, const Pdf417Options& options)
{
    // The encoder would quietly fall back to its own choice; a setting out of range is refused instead.
    if (options.error_level > 8) throw std::runtime_error("PDF417: error level " + std::to_string(options.error_level) + " is above 8");
    if (options.columns < 0 || options.columns > 30)
        throw std::runtime_error("PDF417: " + std::to_string(options.columns) + " columns is outside 0 to 30");
    if (options.rows != 0 && (options.rows < 3 || options.rows > 90))
        throw std::runtime_error("PDF417: " + std::to_string(options.rows) + " rows is outside 3 to 90");

    SymbolHandle symbol(ZBarcode_Create());
    if (!symbol) throw std::runtime_error("PDF417: out of memory");
    symbol->symbology = options.truncated ? BARCODE_PDF417COMP : BARCODE_PDF417;
    symbol->input_mode = DATA_MODE;
    symbol->option_1 = options.error_level;
    symbol->option_2 = options.columns;
    symbol->option_3 = options.rows;

    const std::string bytes = options.tilde ? apply_tilde(data) : std::string(data);
    const int status = ZBarcode_Encode(symbol.get(), reinterpret_cast<const unsigned char*>(bytes.data()),
                                       static_cast<int>(bytes.size()));
    if (status >= ZINT_ERROR) throw std::runtime_error(std::string("PDF417: ") + symbol->errtxt);

    Pdf417Symbol out;
    out.rows = symbol->rows;
    out.width = symbol->width;
    out.modules.resize(static_cast<std::size_t>(out.rows * out.width));
    for (int r = 0; r < out.rows; ++r)
        for (int c = 0; c < out.width; ++c)
            out.modules[static_cast<std::size_t>(r * out.width + c)] = (symbol->encoded_data[r][c >> 3] >> (c & 7)) & 1;
    return out;
}

}  // namespace nimbara::platform
