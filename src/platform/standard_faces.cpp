#include "platform/standard_faces.hpp"

#include <hpdf.h>

#include <algorithm>
#include <cctype>
#include <memory>
#include <stdexcept>

namespace nimbara {
namespace {

constexpr int kFaces = 4;
std::size_t index(Face f) { return static_cast<std::size_t>(f); }

// The widths of each face's 256 codes in thousandths of an em, read once from the metrics the PDF
// library carries for the standard faces.
using WidthTable = std::array<std::array<short, 256>, kFaces>;

WidthTable read_widths()
{
    std::unique_ptr<std::remove_pointer_t<HPDF_Doc>, decltype(&HPDF_Free)> doc(HPDF_New(nullptr, nullptr), HPDF_Free);
    if (!doc) throw std::runtime_error("cannot start the PDF library for the faces' widths");
    WidthTable t{};
    for (int f = 0; f < kFaces; ++f) {
        HPDF_Font font = HPDF_GetFont(doc.get(), pdf_face_name(static_cast<Face>(f)), "WinAnsiEncoding");
        if (!font) throw std::runtime_error(std::string("the PDF library lacks the face ") + pdf_face_name(static_cast<Face>(f)));
        for (int c = 1; c < 256; ++c) {
            const auto byte = static_cast<HPDF_BYTE>(c);
            t[f][c] = static_cast<short>(HPDF_Font_TextWidth(font, &byte, 1).width);
        }
    }
    return t;
}

// Where the codes 0x80 to 0x9F of the encoding sit in Unicode (0 for the five unused ones); the
// rest of the encoding is Latin-1.
constexpr std::array<char32_t, 32> kHighCodes = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

std::optional<char> encode(char32_t cp)
{
    if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) return static_cast<char>(cp);
    if (cp == 0) return std::nullopt;
    const auto at = std::find(kHighCodes.begin(), kHighCodes.end(), cp);
    if (at == kHighCodes.end()) return std::nullopt;
    return static_cast<char>(0x80 + (at - kHighCodes.begin()));
}

}  // namespace

Face face_of(std::string_view font_name, bool bold)
{
    std::string lower(font_name);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
    const bool serif = lower.find("times") != std::string::npos ||
                       (lower.find("serif") != std::string::npos && lower.find("sans") == std::string::npos);
    if (serif) return bold ? Face::SerifBold : Face::Serif;
    return bold ? Face::SansBold : Face::Sans;
}

const char* pdf_face_name(Face face)
{
    constexpr const char* names[kFaces] = {"Times-Roman", "Times-Bold", "Helvetica", "Helvetica-Bold"};
    return names[index(face)];
}

const char* preview_family(Face face)
{
    return face == Face::Serif || face == Face::SerifBold ? "Times New Roman" : "Arial";
}

// The vertical metrics of Times New Roman and Arial (units of 2048 to the em): the page was laid
// out with them, so each line keeps its place whichever face draws it.
double ascent_em(Face face) { return face == Face::Serif || face == Face::SerifBold ? 1825 / 2048.0 : 1854 / 2048.0; }

double descent_em(Face face) { return face == Face::Serif || face == Face::SerifBold ? 443 / 2048.0 : 434 / 2048.0; }

double line_height_em(Face) { return 2355 / 2048.0; }

std::optional<std::string> to_win_ansi(std::string_view utf8)
{
    std::string out;
    out.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        const auto lead = static_cast<unsigned char>(utf8[i]);
        const int extra = lead < 0x80 ? 0 : (lead >> 5) == 0x6 ? 1 : (lead >> 4) == 0xE ? 2 : (lead >> 3) == 0x1E ? 3 : -1;
        if (extra < 0 || utf8.size() - i <= static_cast<std::size_t>(extra)) return std::nullopt;
        char32_t cp = extra == 0 ? lead : lead & (0x3F >> extra);
        for (int k = 1; k <= extra; ++k) {
            const auto next = static_cast<unsigned char>(utf8[i + k]);
            if ((next & 0xC0) != 0x80) return std::nullopt;
            cp = (cp << 6) | (next & 0x3F);
        }
        const auto c = encode(cp);
        if (!c) return std::nullopt;
        out += *c;
        i += extra + 1;
    }
    return out;
}

double text_width_em(Face face, std::string_view win_ansi)
{
    static const WidthTable widths = read_widths();
    const auto& w = widths[index(face)];
    long sum = 0;
    for (const char c : win_ansi) sum += w[static_cast<unsigned char>(c)];
    return sum / 1000.0;
}

}  // namespace nimbara
