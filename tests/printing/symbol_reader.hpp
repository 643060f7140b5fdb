#pragma once
// Reading PDF417 symbols back: from grey pixels, or from the rectangles a recording surface kept.
#define ZX_USE_UTF8
#include <ZXing/ReadBarcode.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "printing/recording_surface.hpp"

namespace printing_test {

inline std::string decode_pixels(std::vector<std::uint8_t>& gray, int w, int h)
{
    const ZXing::ImageView image(gray.data(), w, h, ZXing::ImageFormat::Lum);
    const auto result = ZXing::ReadBarcode(image, ZXing::DecodeHints().setFormats(ZXing::BarcodeFormat::PDF417));
    return result.isValid() ? result.text() : std::string("<no symbol>");
}

struct Rect {
    double x1, y1, x2, y2;
};

// Rasterises boxes given in twips, `per_px` twips a pixel, with a white margin around them.
inline std::string decode_rects(const std::vector<Rect>& rects, double per_px)
{
    if (rects.empty()) return "<no symbol>";
    double x0 = 1e18, y0 = 1e18, x1 = -1e18, y1 = -1e18;
    for (const auto& r : rects) x0 = std::min(x0, r.x1), y0 = std::min(y0, r.y1), x1 = std::max(x1, r.x2), y1 = std::max(y1, r.y2);
    const int margin = 40;
    const int w = static_cast<int>((x1 - x0) / per_px) + 2 * margin, h = static_cast<int>((y1 - y0) / per_px) + 2 * margin;
    std::vector<std::uint8_t> gray(static_cast<std::size_t>(w) * h, 255);
    for (const auto& r : rects)
        for (int y = static_cast<int>(std::lround((r.y1 - y0) / per_px)); y < std::lround((r.y2 - y0) / per_px); ++y)
            for (int x = static_cast<int>(std::lround((r.x1 - x0) / per_px)); x < std::lround((r.x2 - x0) / per_px); ++x)
                gray[static_cast<std::size_t>(y + margin) * w + x + margin] = 0;
    return decode_pixels(gray, w, h);
}

// Every symbol drawn on a recording surface, in order: the boxes drawn while a symbol font is set.
inline std::vector<std::string> recorded_symbols(const nimbara::printing::RecordingSurface& s)
{
    std::vector<std::string> out;
    std::vector<Rect> rects;
    bool in_symbol = false;
    double size = 0;
    for (const auto& c : s.calls()) {
        if (c.op == "setFontSize") size = c.numbers[0];
        if (c.op == "setFontName") {
            const bool symbol_font = c.text.starts_with("PDF417");
            if (in_symbol && !symbol_font) out.push_back(decode_rects(rects, size / 40 * 56.7 / 3));
            in_symbol = symbol_font;
            rects.clear();
        }
        if (in_symbol && c.op == "Line") rects.push_back({c.numbers[1], c.numbers[2], c.numbers[3], c.numbers[4]});
    }
    return out;
}

}  // namespace printing_test
