// What belongs to the Guia as a whole, printed into the cells of the fixed form: the header
// fields, the sender's address, the remarks, the payment marks, the page numbers and the total.
#include <algorithm>
#include <stdexcept>

#include "foundation/run_time_errors.hpp"
#include "foundation/chars.hpp"
#include "foundation/required_numbers.hpp"
#include "foundation/text.hpp"
#include "nimbara/ImpressaoComum.hpp"
#include "printing/edition_layout.hpp"

namespace nimbara {
namespace {

// A text read as a boolean: the words True and False in any case, or a number, true unless 0.
bool as_boolean(const std::string& field)
{
    const auto t = text::to_upper(text::trim(field));
    if (t == "TRUE") return true;
    if (t == "FALSE") return false;
    return text::require_number(field) != 0;
}

}  // namespace

void ImpressaoComum::printRemarks(PageSurface& s, std::string_view remarks, std::span<const Slice, 5> slices) const
{
    printAt(s, 6.5, 157.5, chars::mid(remarks, slices[0].start, slices[0].count));
    for (std::size_t i = 1; i < slices.size(); ++i) {
        s.setCurrentX(twipsX(6.5));
        s.Print(chars::mid(remarks, slices[i].start, slices[i].count));
    }
}

std::int32_t ImpressaoComum::ImprimeHeaderFooter(
    PageSurface& impressora2, const std::string& CAMPO_CodTerceiro, const std::string& CAMPO_Ncliente,
    const std::string& CAMPO_Ncontr, const std::string& CAMPO_PortePago, const std::string& CAMPO_ClienteExp,
    const std::string& CAMPO_NFiscal, const std::string& CAMPO_Morada, const std::string& CAMPO_CPostal,
    const std::string& CAMPO_Obs, const std::string& CAMPO_Jpp, const std::string& CAMPO_PPagDif)
{
    guarded("ImprimeHeaderFooter", [&] {
        auto& s = impressora2;
        const printing::EditionLayout& layout = printing::edition_layout(edition_);
        setFont(s, "Times New Roman", 8, false);
        printAt(s, 5, 36.5, CAMPO_CodTerceiro);
        printAt(s, 34, 36.5, CAMPO_Ncliente);
        // Placeholder contract numbers leave the cell empty; only an edition that has them reads the number.
        const auto hidden = [&] {
            if (layout.hidden_contracts.empty()) return false;
            const double contract = text::require_number(CAMPO_Ncontr);
            return std::find(layout.hidden_contracts.begin(), layout.hidden_contracts.end(), contract) !=
                   layout.hidden_contracts.end();
        };
        if (!hidden()) printAt(s, 62, 36.5, CAMPO_Ncontr);
        printAt(s, 92, 36.5, CAMPO_PortePago);
        printAt(s, 125, 36.5, CAMPO_ClienteExp);
        printAt(s, 230, 36.5, CAMPO_NFiscal);
        printAt(s, 7.5, 125.1, chars::left(CAMPO_Morada, 82));
        printAt(s, 7.5, 130.1, chars::mid(CAMPO_Morada, 83, 82) + " " + CAMPO_CPostal);

        printRemarks(s, layout.remarks_line ? MyReplaceSpace(CAMPO_Obs, *layout.remarks_line) : CAMPO_Obs,
                     layout.remarks);

        s.setCurrentX(twipsX(layout.jpp_mark_x));
        s.setCurrentY(twipsY(26.2));
        if (as_boolean(CAMPO_Jpp)) s.Print("X");

        const double kind = text::require_number(CAMPO_PPagDif);
        if (kind == 0 || kind == 1 || kind == 2)
            if (const auto x = layout.payment_mark_x[static_cast<std::size_t>(kind)]) printAt(s, *x, 26.2, "X");
    });
    return 0;
}

std::string ImpressaoComum::MyReplaceSpace(std::string_view sString, std::int16_t iChars)
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

void ImpressaoComum::printPageNumbers(PageSurface& s, const std::string& NDoc, std::int32_t pag, std::int32_t TotPaginas,
                                      const std::string* NCompromisso)
{
    // Numbers print with a blank where a sign would stand.
    const auto number = [](std::int32_t n) { return (n < 0 ? std::string() : std::string(" ")).append(std::to_string(n)); };
    const auto field = [&](double x, double y, const std::string& t) {
        setFont(s, "Times New Roman", 9, true);
        printAt(s, x, y, t);
    };
    for (const auto& [what, at] : printing::edition_layout(edition_).page_fields) {
        switch (what) {
        case printing::PageField::DocumentNumber: field(at.x, at.y, NDoc); break;
        case printing::PageField::PageCount: field(at.x, at.y, number(TotPaginas)); break;
        case printing::PageField::PageNumber: field(at.x, at.y, number(pag)); break;
        case printing::PageField::Commitment:
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

}  // namespace nimbara
