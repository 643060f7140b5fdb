// What belongs to the Guia as a whole, printed into the cells of the fixed form: the header
// fields, the sender's address, the remarks, the payment marks, the page numbers and the total.
#include <array>
#include <stdexcept>

#include "foundation/run_time_errors.hpp"
#include "foundation/chars.hpp"
#include "foundation/required_numbers.hpp"
#include "foundation/text.hpp"
#include "nimbara/ImpressaoComum.hpp"

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

// The remarks' lines are fixed slices of the text, gaps and overlaps as the page has always had them.
constexpr std::array<ImpressaoComum::Slice, 5> kRemarksArray = {{{1, 130}, {131, 130}, {262, 130}, {393, 130}, {524, 130}}};
constexpr std::array<ImpressaoComum::Slice, 5> kRemarksDatabase = {{{1, 70}, {71, 70}, {142, 70}, {213, 50}, {222, 50}}};

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
        const bool array = edition_ == Edition::Array;
        setFont(s, "Times New Roman", 8, false);
        printAt(s, 5, 36.5, CAMPO_CodTerceiro);
        printAt(s, 34, 36.5, CAMPO_Ncliente);
        // The array edition leaves the contract cell empty for the two placeholder contract numbers.
        if (!array) {
            printAt(s, 62, 36.5, CAMPO_Ncontr);
        } else if (const double contract = text::require_number(CAMPO_Ncontr); contract != 888888888 && contract != 777777777) {
            printAt(s, 62, 36.5, CAMPO_Ncontr);
        }
        printAt(s, 92, 36.5, CAMPO_PortePago);
        printAt(s, 125, 36.5, CAMPO_ClienteExp);
        printAt(s, 230, 36.5, CAMPO_NFiscal);
        printAt(s, 7.5, 125.1, chars::left(CAMPO_Morada, 82));
        printAt(s, 7.5, 130.1, chars::mid(CAMPO_Morada, 83, 82) + " " + CAMPO_CPostal);

        if (array)
            printRemarks(s, MyReplaceSpace(CAMPO_Obs, 130), kRemarksArray);
        else
            printRemarks(s, CAMPO_Obs, kRemarksDatabase);

        s.setCurrentX(twipsX(array ? 81.1 : 42.9));
        s.setCurrentY(twipsY(26.2));
        if (as_boolean(CAMPO_Jpp)) s.Print("X");

        const double kind = text::require_number(CAMPO_PPagDif);
        const double mark_x = kind == 1 ? 3 : kind == 2 ? 23 : kind == 0 && array ? 46 : -1;
        if (mark_x >= 0) printAt(s, mark_x, 26.2, "X");
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
    if (edition_ == Edition::Array) {
        field(230, 159, NDoc);
        field(230, 167, number(TotPaginas));
        field(230, 175, number(pag));
        if (NCompromisso != nullptr) field(230, 183, *NCompromisso);
    } else {
        field(236, 160.7, NDoc);
        field(236, 170.7, number(pag));
        field(236, 180.5, number(TotPaginas));
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
