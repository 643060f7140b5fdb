#pragma once
// Reading a recorded page back: every printed text with the font in force and its place in
// millimetres, and the boxes as whole-twip corners.
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "printing/recording_surface.hpp"

namespace printing_test {

struct PrintedText {
    std::string text;
    double x_mm, y_mm;
    std::string font;
    double size;
    bool bold;
};

inline double mm(double twips) { return std::round(twips / 56.7 * 100) / 100; }

inline std::vector<PrintedText> printed_texts(const nimbara::printing::RecordingSurface& s)
{
    std::vector<PrintedText> out;
    std::string font;
    double size = 0;
    bool bold = false;
    for (const auto& c : s.calls()) {
        if (c.op == "setFontName") font = c.text;
        if (c.op == "setFontSize") size = c.numbers[0];
        if (c.op == "setFontBold") bold = c.numbers[0] != 0;
        if (c.op == "Print") out.push_back({c.text, mm(c.numbers[0]), mm(c.numbers[1]), font, size, bold});
    }
    return out;
}

inline std::optional<PrintedText> find_text(const nimbara::printing::RecordingSurface& s, const std::string& text)
{
    for (auto& p : printed_texts(s))
        if (p.text == text) return p;
    return std::nullopt;
}

inline int index_of(const nimbara::printing::RecordingSurface& s, const std::string& text)
{
    const auto all = printed_texts(s);
    for (std::size_t i = 0; i < all.size(); ++i)
        if (all[i].text == text) return static_cast<int>(i);
    return -1;
}

// The corners of every box, in whole twips: x1, y1, x2, y2.
inline std::vector<std::vector<long>> boxes(const nimbara::printing::RecordingSurface& s)
{
    std::vector<std::vector<long>> out;
    for (const auto& c : s.calls_of("Line")) {
        const auto w = c.whole();
        out.push_back({w[1], w[2], w[3], w[4]});
    }
    return out;
}

}  // namespace printing_test
