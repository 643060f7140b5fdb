// The rows of the database edition's table: each field goes into the form's character cells, one
// character a cell, filled from the rightmost cell of its column.
#include <algorithm>
#include <array>

#include "foundation/chars.hpp"
#include "foundation/required_numbers.hpp"
#include "foundation/run_time_errors.hpp"
#include "nimbara/cls_Impressao.hpp"
#include "printing/detail_row.hpp"
#include "printing/page.hpp"

namespace nimbara {
namespace {

// The characters of the value from the right, the last at x and each further one `pitch` to the
// left; with blank_zeros a "0" leaves its cell empty.
void cells(const printing::Page& page, PageSurface& s, double x, double y, const std::string& value, double pitch,
           bool blank_zeros = false)
{
    const auto n = static_cast<std::int32_t>(chars::length(value));
    for (std::int32_t p = 1; p <= n; ++p, x -= pitch) {
        const std::string c = ImpressaoComum::ValorAlinhado(value, 1, p);
        page.printAt(s, x, y, blank_zeros && c == "0" ? " " : c);
    }
}

// The products that take no pre-treatment, and the zones where two of the others take none either.
bool pre_treatment_mark(std::string_view product, std::string_view zone)
{
    static constexpr std::array<std::string_view, 10> kWithout = {"C10", "C11", "C20", "C30", "C36",
                                                                   "E01", "E04", "E05", "E06", "E07"};
    if (std::find(kWithout.begin(), kWithout.end(), product) != kWithout.end()) return false;
    if (product == "C01" && (zone == "05" || zone == "04")) return false;
    if (product == "C02" && zone != "01") return false;
    return true;
}

}  // namespace

std::string cls_Impressao::PrintaParteDetail(
    PageSurface& impressora, const std::string& CampoA, const std::string& CampoB, const std::string& CampoC,
    const std::string& CampoD, const std::string& CampoE, const std::string& CampoF, const std::string& CampoG,
    const std::string& CampoH, const std::string& /*CampoKMVexora: not printed*/, const std::string& CampoK,
    const std::string& CampoL, const std::string& CampoM, const std::string& CampoN, std::int32_t var_cont)
{
    const printing::Page page(*this);
    page.guarded("PrintaParteDetail", [&] {
        auto& s = impressora;
        const double y = var_cont + 0.5;
        printing::detail_font(s);
        cells(page, s, 17, y, CampoA, 4.0);
        cells(page, s, 35, y, CampoB, 4.0);
        cells(page, s, 65.5, y, CampoC, 4.0);
        cells(page, s, 100, y, CampoD, 4.0);
        cells(page, s, 245.5, y, CampoM, 4.0, true);
        page.printAt(s, 109.5, y, chars::right(CampoE, 1));
        page.printAt(s, 119.5, y, chars::right(CampoF, 1));
        if (pre_treatment_mark(CampoB, CampoA)) page.printAt(s, 130, y, printing::as_boolean(CampoG) ? "1" : "2");
        page.printAt(s, 140, y, chars::right(CampoH, 1));
        const auto unless_zero = [&](double x, const std::string& field) {
            if (field != "0") page.printAt(s, x, y, chars::right(field, 1));
        };
        unless_zero(215, CampoK);
        unless_zero(224.4, CampoL);
        unless_zero(256, CampoN);
    });
    return {};
}

std::string cls_Impressao::PrintaSEParteDetail(PageSurface& impressora, std::string ServEsp, std::string Valor,
                                               std::int32_t var_cont, const ServiceSlots* Array_valor,
                                               std::int32_t tamanho, std::int32_t tamanho2,
                                               const ServiceSlots* Array_valorEsp)
{
    const printing::Page page(*this);
    page.guarded("PrintaSEParteDetail", [&] {
        auto& s = impressora;
        const double y = var_cont + 0.5;
        printing::detail_font(s);
        ServEsp = printing::two_digits(std::move(ServEsp));
        Valor = printing::two_digits(std::move(Valor));
        const auto element = [](const ServiceSlots* slots, std::int32_t i) -> const std::string& {
            if (!slots) raise(RunTimeError::TypeMismatch);
            if (i >= static_cast<std::int32_t>(slots->size())) raise(RunTimeError::SubscriptOutOfRange);
            return (*slots)[static_cast<std::size_t>(i)];
        };

        // The codes of a row share one run of cells, each code's digits from the right.
        if (tamanho2 > 0) {
            double x = 172;
            for (std::int32_t i = 1; i <= tamanho2; ++i) {
                const std::string code = printing::two_digits(element(Array_valorEsp, i));
                cells(page, s, x, y, code, 4.3);
                x -= 4.3 * static_cast<double>(chars::length(code));
            }
        } else {
            cells(page, s, 172, y, ServEsp, 4.0);
        }

        if (tamanho > 0) {
            for (std::int32_t i = 1; i <= tamanho; ++i) cells(page, s, 205, y, element(Array_valor, i), 3.7);
        } else {
            cells(page, s, 205, y, Valor, 3.7);
        }
    });
    return {};
}

std::string cls_Impressao::Apaga_RegsUltima_linha(PageSurface& impressora)
{
    auto& s = impressora;
    const printing::Page page(*this);
    printing::detail_font(s);
    // Blanks over the cells of the row's fields; the last characters of an empty text draw nothing,
    // as in the other edition.
    constexpr double y = 108 + 0.5;
    for (const double x : {17.0, 35.0, 65.5, 100.0, 245.5, 130.0}) page.printAt(s, x, y, "  ");
    for (const double x : {109.5, 119.5, 140.0, 215.0, 224.4, 256.0}) page.printAt(s, x, y, "");
    return {};
}

}  // namespace nimbara
