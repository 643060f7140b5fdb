// The rows of the table: a product line with its fields at their columns, and the rows of its
// special services with codes and amounts.
#include <stdexcept>

#include "foundation/run_time_errors.hpp"
#include "foundation/chars.hpp"
#include "foundation/required_numbers.hpp"
#include "nimbara/cls_ImpressaoA.hpp"
#include "printing/detail_row.hpp"
#include "printing/page.hpp"

namespace nimbara {
namespace {

// Cents as the page shows them: "1,50€"; a single digit counts as cents of its own ("5" is ",05€").
std::string amount(std::string value)
{
    if (chars::length(value) < 2) value.insert(value.begin(), '0');
    const auto n = chars::length(value);
    return chars::left(value, n - 2) + "," + chars::right(value, 2) + "€";
}

}  // namespace

std::string cls_ImpressaoA::PrintaParteDetail(
    PageSurface& impressora, const std::string& CampoA, const std::string& CampoB, const std::string& CampoC,
    const std::string& CampoD, const std::string& CampoE, const std::string& CampoF, const std::string& CampoG,
    const std::string& CampoH, const std::string& /*CampoKMVexora: not printed*/, const std::string& CampoK,
    const std::string& CampoL, const std::string& CampoM, const std::string& CampoN, const std::string& CampoO,
    const std::string& CampoP, std::int32_t var_cont)
{
    const printing::Page page(*this);
    page.guarded("PrintaParteDetail", [&] {
        auto& s = impressora;
        const double y = var_cont + 0.5;
        printing::detail_font(s);
        page.printAt(s, 12, y, CampoA);
        page.printAt(s, 21, y, CampoB);
        page.printAt(s, 31.5, y, CampoC);
        page.printAt(s, 55, y, CampoD);
        // The quantity must be a number ("0" when there is none): the rest of the row depends on it.
        if (text::require_int16(CampoM) != 0) page.printAt(s, 201.5, y, CampoM);
        page.printAt(s, 77.5, y, chars::right(CampoE, 1));
        page.printAt(s, 90, y, chars::right(CampoF, 1));
        page.printAt(s, 102, y, CampoG);
        page.printAt(s, 114, y, chars::right(CampoH, 1));
        const auto unless_zero = [&](double x, const std::string& field, std::size_t last) {
            if (field != "0") page.printAt(s, x, y, chars::right(field, last));
        };
        unless_zero(176.5, CampoK, 1);
        unless_zero(188.5, CampoL, 1);
        unless_zero(224, CampoN, 1);
        unless_zero(236.6, CampoO, 1);
        unless_zero(248.2, CampoP, 9);
    });
    return {};
}

std::string cls_ImpressaoA::PrintaSEParteDetail(PageSurface& impressora, std::string ServEsp, std::string Valor,
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

        if (tamanho2 > 0) {
            if (!Array_valorEsp) raise(RunTimeError::TypeMismatch);
            double x = 134;
            for (const auto& element : *Array_valorEsp) {
                const std::string code = printing::two_digits(element);
                if (code.empty()) continue;
                page.printAt(s, x, y, code);
                x -= 4.0;
            }
        } else {
            page.printAt(s, 126, y, ServEsp);
        }

        if (tamanho > 0) {
            if (!Array_valor) raise(RunTimeError::TypeMismatch);
            for (std::int32_t i = 1; i <= tamanho; ++i) {
                if (i >= static_cast<std::int32_t>(Array_valor->size())) raise(RunTimeError::SubscriptOutOfRange);
                const std::string& value = (*Array_valor)[static_cast<std::size_t>(i)];
                if (text::require_int32(value) != 0) page.printAt(s, 154, y, amount(value));
            }
        } else if (text::require_int32(Valor) != 0) {
            page.printAt(s, 154, y, amount(Valor));
        }
    });
    return {};
}

std::int16_t cls_ImpressaoA::CountSEspeciaisComValor(const serv::Table& myArray)
{
    std::int16_t count = 0;
    for (int row = 0; row < myArray.row_count(); ++row) {
        if (text::require_cell_number(myArray.at(serv::Valor, row)) > 0) ++count;
    }
    return count;
}

std::string cls_ImpressaoA::Apaga_RegsUltima_linha(PageSurface& impressora)
{
    auto& s = impressora;
    const printing::Page page(*this);
    printing::detail_font(s);
    // The columns of an earlier layout of the row; the blanks erase where the printer paints the
    // text's background, and the last characters of an empty text draw nothing.
    constexpr double y = 108 + 0.5;
    for (const double x : {10.6, 41.8, 47.8, 60.0, 201.5, 102.0}) page.printAt(s, x, y, "  ");
    for (const double x : {77.5, 90.0, 114.0, 176.5, 188.5, 224.0, 236.6, 248.2}) page.printAt(s, x, y, "");
    return {};
}

}  // namespace nimbara
