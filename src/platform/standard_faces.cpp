#include "platform/standard_faces.hpp"

#include <algorithm>
#include <cctype>

namespace nimbara {
namespace {

constexpr int kFaces = 4;
std::size_t index(Face f) { return static_cast<std::size_t>(f); }

// The advances of codes 32 to 255 in thousandths of an em, from the published metrics of the
// standard faces, in the order of Face; codes that the encoding leaves unused have the space's.
constexpr short kWidths[kFaces][224] = {
    // Times-Roman
    {250, 333, 408, 500, 500, 833, 778, 180, 333, 333, 500, 564, 250, 333, 250, 278,
     500, 500, 500, 500, 500, 500, 500, 500, 500, 500, 278, 278, 564, 564, 564, 444,
     921, 722, 667, 667, 722, 611, 556, 722, 722, 333, 389, 722, 611, 889, 722, 722,
     556, 722, 667, 556, 611, 722, 722, 944, 722, 722, 611, 333, 278, 333, 469, 500,
     333, 444, 500, 444, 500, 444, 333, 500, 500, 278, 278, 500, 278, 778, 500, 500,
     500, 500, 333, 389, 278, 500, 500, 722, 500, 500, 444, 480, 200, 480, 541, 250,
     500, 250, 333, 500, 444, 1000, 500, 500, 333, 1000, 556, 333, 889, 250, 611, 250,
     250, 333, 333, 444, 444, 350, 500, 1000, 333, 980, 389, 333, 722, 250, 444, 722,
     250, 333, 500, 500, 500, 500, 200, 500, 333, 760, 276, 500, 564, 250, 760, 333,
     400, 564, 300, 300, 333, 500, 453, 250, 333, 300, 310, 500, 750, 750, 750, 444,
     722, 722, 722, 722, 722, 722, 889, 667, 611, 611, 611, 611, 333, 333, 333, 333,
     722, 722, 722, 722, 722, 722, 722, 564, 722, 722, 722, 722, 722, 722, 556, 500,
     444, 444, 444, 444, 444, 444, 667, 444, 444, 444, 444, 444, 278, 278, 278, 278,
     500, 500, 500, 500, 500, 500, 500, 564, 500, 500, 500, 500, 500, 500, 500, 500},
    // Times-Bold
    {250, 333, 555, 500, 500, 1000, 833, 278, 333, 333, 500, 570, 250, 333, 250, 278,
     500, 500, 500, 500, 500, 500, 500, 500, 500, 500, 333, 333, 570, 570, 570, 500,
     930, 722, 667, 722, 722, 667, 611, 778, 778, 389, 500, 778, 667, 944, 722, 778,
     611, 778, 722, 556, 667, 722, 722, 1000, 722, 722, 667, 333, 278, 333, 581, 500,
     333, 500, 556, 444, 556, 444, 333, 500, 556, 278, 333, 556, 278, 833, 556, 500,
     556, 556, 444, 389, 333, 556, 500, 722, 500, 500, 444, 394, 220, 394, 520, 250,
     500, 250, 333, 500, 500, 1000, 500, 500, 333, 1000, 556, 333, 1000, 250, 667, 250,
     250, 333, 333, 500, 500, 350, 500, 1000, 333, 1000, 389, 333, 722, 250, 444, 722,
     250, 333, 500, 500, 500, 500, 220, 500, 333, 747, 300, 500, 570, 250, 747, 333,
     400, 570, 300, 300, 333, 556, 540, 250, 333, 300, 330, 500, 750, 750, 750, 500,
     722, 722, 722, 722, 722, 722, 1000, 722, 667, 667, 667, 667, 389, 389, 389, 389,
     722, 722, 778, 778, 778, 778, 778, 570, 778, 722, 722, 722, 722, 722, 611, 556,
     500, 500, 500, 500, 500, 500, 722, 444, 444, 444, 444, 444, 278, 278, 278, 278,
     500, 556, 500, 500, 500, 500, 500, 570, 500, 556, 556, 556, 556, 500, 556, 500},
    // Helvetica
    {278, 278, 355, 556, 556, 889, 667, 191, 333, 333, 389, 584, 278, 333, 278, 278,
     556, 556, 556, 556, 556, 556, 556, 556, 556, 556, 278, 278, 584, 584, 584, 556,
     1015, 667, 667, 722, 722, 667, 611, 778, 722, 278, 500, 667, 556, 833, 722, 778,
     667, 778, 722, 667, 611, 722, 667, 944, 667, 667, 611, 278, 278, 278, 469, 556,
     333, 556, 556, 500, 556, 556, 278, 556, 556, 222, 222, 500, 222, 833, 556, 556,
     556, 556, 333, 500, 278, 556, 500, 722, 500, 500, 500, 334, 260, 334, 584, 278,
     556, 278, 222, 556, 333, 1000, 556, 556, 333, 1000, 667, 333, 1000, 278, 611, 278,
     278, 222, 222, 333, 333, 350, 556, 1000, 333, 1000, 500, 333, 944, 278, 500, 667,
     278, 333, 556, 556, 556, 556, 260, 556, 333, 737, 370, 556, 584, 278, 737, 333,
     400, 584, 333, 333, 333, 556, 537, 278, 333, 333, 365, 556, 834, 834, 834, 611,
     667, 667, 667, 667, 667, 667, 1000, 722, 667, 667, 667, 667, 278, 278, 278, 278,
     722, 722, 778, 778, 778, 778, 778, 584, 778, 722, 722, 722, 722, 667, 667, 611,
     556, 556, 556, 556, 556, 556, 889, 500, 556, 556, 556, 556, 278, 278, 278, 278,
     556, 556, 556, 556, 556, 556, 556, 584, 611, 556, 556, 556, 556, 500, 556, 500},
    // Helvetica-Bold
    {278, 333, 474, 556, 556, 889, 722, 238, 333, 333, 389, 584, 278, 333, 278, 278,
     556, 556, 556, 556, 556, 556, 556, 556, 556, 556, 333, 333, 584, 584, 584, 611,
     975, 722, 722, 722, 722, 667, 611, 778, 722, 278, 556, 722, 611, 833, 722, 778,
     667, 778, 722, 667, 611, 722, 667, 944, 667, 667, 611, 333, 278, 333, 584, 556,
     333, 556, 611, 556, 611, 556, 333, 611, 611, 278, 278, 556, 278, 889, 611, 611,
     611, 611, 389, 556, 333, 611, 556, 778, 556, 556, 500, 389, 280, 389, 584, 278,
     556, 278, 278, 556, 500, 1000, 556, 556, 333, 1000, 667, 333, 1000, 278, 611, 278,
     278, 278, 278, 500, 500, 350, 556, 1000, 333, 1000, 556, 333, 944, 278, 500, 667,
     278, 333, 556, 556, 556, 556, 280, 556, 333, 737, 370, 556, 584, 278, 737, 333,
     400, 584, 333, 333, 333, 611, 556, 278, 333, 333, 365, 556, 834, 834, 834, 611,
     722, 722, 722, 722, 722, 722, 1000, 722, 667, 667, 667, 667, 278, 278, 278, 278,
     722, 722, 778, 778, 778, 778, 778, 584, 778, 722, 722, 722, 722, 667, 667, 611,
     556, 556, 556, 556, 556, 556, 889, 556, 556, 556, 556, 556, 278, 278, 278, 278,
     611, 611, 611, 611, 611, 611, 611, 584, 611, 611, 611, 611, 611, 556, 611, 556}
};

// Where the codes 0x80 to 0x9F of the encoding sit in Unicode (0 for the five unused ones); the
// rest of the encoding is Latin-1.
constexpr std::array<char32_t, 32> kHighCodes = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

std::optional<char> encode(char32_t cp)
{
    if (cp == 0) return std::nullopt;
    if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) return static_cast<char>(cp);
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
    const auto& w = kWidths[index(face)];
    long sum = 0;
    for (const char c : win_ansi) {
        const auto code = static_cast<unsigned char>(c);
        sum += code < 32 ? 0 : w[code - 32];
    }
    return sum / 1000.0;
}

}  // namespace nimbara
