#include "printing/page.hpp"

#include "foundation/chars.hpp"
#include "foundation/required_numbers.hpp"
#include "foundation/run_time_errors.hpp"
#include "foundation/text.hpp"
#include "printing/edition_layout.hpp"

namespace nimbara::printing {

bool as_boolean(std::string_view field)
{
    const auto t = text::to_upper(text::trim(field));
    if (t == "TRUE") return true;
    if (t == "FALSE") return false;
    return text::require_number(field) != 0;
}

void Page::printAt(PageSurface& s, double x, double y, std::string_view text) const
{
    s.setCurrentX(twipsX(x));
    s.setCurrentY(twipsY(y));
    s.Print(text);
}

void Page::setFont(PageSurface& s, std::string_view name, double size, std::optional<bool> bold)
{
    s.setFontName(name);
    s.setFontSize(size);
    if (bold) s.setFontBold(*bold);
}

void Page::frame(PageSurface& s, double x, double y, double w, double h, double e) const
{
    printer_.printaCaixa(w, h, e, x + printer_.LeftX, y + printer_.TopY, s);
}

void Page::paintLogo(PageSurface& s, const FormImpressao& imagens) const
{
    s.PaintPicture(imagens.PictlogoZartel, twipsX(1), twipsY(1));
}

void Page::printRemarks(PageSurface& s, std::string_view remarks, std::span<const Slice, 5> slices) const
{
    printAt(s, 6.5, 157.5, chars::mid(remarks, slices[0].start, slices[0].count));
    for (std::size_t i = 1; i < slices.size(); ++i) {
        s.setCurrentX(twipsX(6.5));
        s.Print(chars::mid(remarks, slices[i].start, slices[i].count));
    }
}

void Page::printPageNumbers(PageSurface& s, const std::string& NDoc, std::int32_t pag, std::int32_t TotPaginas,
                            const std::string* NCompromisso) const
{
    // Numbers print with a blank where a sign would stand.
    const auto number = [](std::int32_t n) { return (n < 0 ? std::string() : std::string(" ")).append(std::to_string(n)); };
    const auto field = [&](double x, double y, const std::string& t) {
        setFont(s, "Times New Roman", 9, true);
        printAt(s, x, y, t);
    };
    for (const auto& [what, at] : edition_layout(edition()).page_fields) {
        switch (what) {
        case PageField::DocumentNumber: field(at.x, at.y, NDoc); break;
        case PageField::PageCount: field(at.x, at.y, number(TotPaginas)); break;
        case PageField::PageNumber: field(at.x, at.y, number(pag)); break;
        case PageField::Commitment:
            if (NCompromisso != nullptr) field(at.x, at.y, *NCompromisso);
            break;
        }
    }
    if (pag != TotPaginas) return;

    // The last page: the total's caption and its comb, one row below the table.
    setFont(s, "Arial", 10);
    printAt(s, 61.4, 115, "Total : ");
    constexpr struct {
        double x, y, h;
    } ticks[] = {{74.4, 115, 4},   {78.4, 115.9, 3}, {82.4, 115.9, 3}, {86.4, 115.9, 3},
                 {90.4, 115.2, 4}, {94.4, 115.9, 3}, {98.4, 115.9, 3}, {102.4, 115, 4}};
    for (const auto& t : ticks) frame(s, t.x, t.y, 0, t.h, 0.1);
    frame(s, 74.4, 119.2, 28.1, 0, 0.1);
}

std::string replace_breaks(std::string_view sString, std::int16_t iChars)
{
    std::string out;
    out.reserve(sString.size());
    std::int32_t count = 0;
    for (std::size_t i = 0; i < sString.size(); ++i) {
        const char c = sString[i];
        if (c == '\r') {
            if (iChars - count < 0) raise(RunTimeError::InvalidProcedureCall);
            out.append(static_cast<std::size_t>(iChars - count), ' ');
            count = 0;
        } else if (c == '\n') {
            continue;
        } else {
            out += c;
            // A character is counted once, at its first byte.
            if ((static_cast<unsigned char>(c) & 0xC0) != 0x80 && ++count > 32767) raise(RunTimeError::Overflow);
        }
        if (count == iChars) count = 0;
    }
    return out;
}

}  // namespace nimbara::printing
