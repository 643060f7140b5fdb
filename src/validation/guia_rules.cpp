#include "validation/guia_rules.hpp"

#include <array>
#include <cmath>
#include <exception>
#include <limits>
#include <optional>

#include "foundation/cell_values.hpp"

namespace nimbara::validation {
namespace {

constexpr std::array<std::string_view, 3> kNationalZones = {"01", "33", "34"};
constexpr std::array<std::string_view, 5> kInternationalZones = {"02", "05", "44", "42", "45"};
constexpr std::array<std::string_view, 3> kCarriers = {"C05", "C03", "C50"};
constexpr std::string_view kInsert = "C25";

template <std::size_t N>
bool one_of(std::string_view value, const std::array<std::string_view, N>& set)
{
    for (const auto s : set)
        if (s == value) return true;
    return false;
}

std::string_view product_of(const guia::Table& lines, int row) { return lines.text(guia::B_Produto, row); }
std::string_view zone_of(const guia::Table& lines, int row) { return lines.text(guia::A_Zona_Taxacao, row); }

bool in_p_family(const guia::Table& lines, int row) { return product_of(lines, row).starts_with('P'); }

// The shared sum test: quantities of the matching lines are added as numbers into a 32-bit sum, so
// a quantity that is no number, or a sum beyond 32 bits, fails the check.
template <class Matches>
bool minimum_reached(const guia::Table& lines, std::int32_t minimum, Matches matches)
{
    std::int32_t sum = 0;
    bool matched = false;
    for (int row = 0; row < lines.row_count(); ++row) {
        if (!matches(row)) continue;
        const auto quantity = cell_number(lines.at(guia::D_Quantidade, row));
        if (!quantity) return false;
        const double total = std::nearbyint(sum + *quantity);
        if (total < std::numeric_limits<std::int32_t>::min() || total > std::numeric_limits<std::int32_t>::max())
            return false;
        sum = static_cast<std::int32_t>(total);
        matched = true;
    }
    return !(matched && sum >= 0 && sum < minimum);
}

// The header's access type as a number; nothing when there is no header or the value is no number,
// which fails the check that asked.
std::optional<double> access_type(const cab::Table& header)
{
    if (header.empty()) return std::nullopt;
    return cell_number(header.at(cab::TipoAcesso, 0));
}

// The access checks: a Guia without lines passes; otherwise the access type must be readable, and
// when `applies` holds for it no line may meet the condition.
template <class Applies, class Condition>
bool access_allows(const guia::Table& lines, const cab::Table& header, Applies applies, Condition condition)
{
    if (lines.row_count() == 0) return true;
    const auto type = access_type(header);
    if (!type) return false;
    if (!applies(*type)) return true;
    for (int row = 0; row < lines.row_count(); ++row)
        if (condition(row)) return false;
    return true;
}

struct GuiaCheck {
    std::int32_t number;
    std::string_view text;
};

}  // namespace

bool DoValDM(const guia::Table& lines, std::string_view product, std::int32_t minimum)
{
    return minimum_reached(lines, minimum, [&](int row) { return product_of(lines, row) == product; });
}

bool DoValDMNacional(const guia::Table& lines, std::string_view product, std::int32_t minimum)
{
    return minimum_reached(lines, minimum, [&](int row) {
        return product_of(lines, row) == product && one_of(zone_of(lines, row), kNationalZones);
    });
}

bool DoValDMInternacional(const guia::Table& lines, std::string_view product, std::int32_t minimum)
{
    return minimum_reached(lines, minimum, [&](int row) {
        return product_of(lines, row) == product && one_of(zone_of(lines, row), kInternationalZones);
    });
}

bool DoValDMComAmbitoDistribuicao(const guia::Table& lines, std::string_view product, std::int32_t minimum,
                                  std::string_view scope)
{
    return minimum_reached(lines, minimum, [&](int row) {
        return product_of(lines, row) == product && lines.text(guia::CodAmbitoDist, row) == scope;
    });
}

bool isGuiaMista(const guia::Table& lines, std::string_view product)
{
    bool found = false;
    for (int row = 0; row < lines.row_count(); ++row)
        if (product_of(lines, row) == product && zone_of(lines, row) == "01") found = true;
    return found;
}

bool DoValEdicaoPostal(const guia::Table& lines, std::string_view product, std::int32_t minimum)
{
    return !isGuiaMista(lines, product) || DoValDM(lines, product, minimum);
}

std::int32_t DoValEncartes(const guia::Table& lines)
{
    if (lines.row_count() == 0) return 0;
    if (product_of(lines, 0) == kInsert) return -3;

    std::string_view previous_product, previous_zone, previous_speed;
    std::int32_t previous_quantity = 0;
    for (int row = 0; row < lines.row_count(); ++row) {
        const auto product = product_of(lines, row);
        const auto zone = zone_of(lines, row);
        const auto speed = lines.text(guia::E_Velocidade, row);
        if (product == kInsert && !one_of(previous_product, kCarriers)) return -3;
        // The quantity is read only once the carrier is judged, and with the zone and speed as one
        // condition; one that is no number ends the check, which then lets the Guia pass.
        const auto quantity = cell_int32(lines.at(guia::D_Quantidade, row));
        if (!quantity) return 0;
        if (product == kInsert && (zone != previous_zone || speed != previous_speed || *quantity != previous_quantity))
            return -2;
        previous_product = product;
        previous_zone = zone;
        previous_speed = speed;
        previous_quantity = *quantity;
    }
    return 0;
}

bool DoValAcessoRede(const guia::Table& lines, const cab::Table& header)
{
    return access_allows(
        lines, header, [](double type) { return type == 2; }, [&](int row) { return !in_p_family(lines, row); });
}

bool DoValProdutoAcessoRede(const guia::Table& lines, const cab::Table& header)
{
    return access_allows(
        lines, header, [](double type) { return type == 0 || type == 1; },
        [&](int row) { return in_p_family(lines, row); });
}

bool DoValDivisaoRemetente(const guia::Table& lines, const cab::Table& header)
{
    return access_allows(
        lines, header, [](double type) { return type == 0; },
        [&](int row) { return lines.text(guia::DivisaoRemetente, row) == "1"; });
}

ValidationResult DoValidaGuia(const guia::Table& lines, const cab::Table& header)
{
    const auto fail = [](GuiaCheck c) { return ErrorArray{c.number, std::string(c.text)}; };
    try {
        if (!DoValEdicaoPostal(lines, "C03", 250)) return fail({-1, "Erro Minimo de 250 Objectos"});
        if (!DoValDMNacional(lines, "C07", 100)) return fail({-2, "Erro Minimo de 100 Objectos, para correio nacional"});
        if (!DoValDMInternacional(lines, "C07", 100))
            return fail({-13, "Erro Minimo de 100 Objectos, para correio internacional"});
        if (!DoValDM(lines, "C21", 100)) return fail({-3, "Erro Minimo de 100 Objectos"});
        if (!DoValDM(lines, "C22", 250)) return fail({-4, "Erro Minimo de 250 Objectos"});
        if (!DoValDM(lines, "C23", 100)) return fail({-7, "Erro Minimo de 100 Objectos"});
        switch (DoValEncartes(lines)) {
        case 0: break;
        case -3: return fail({-8, "Erro Não Existem Produtos Associados ao C25"});
        case -2: return fail({-6, "Erro Validação"});
        default: return fail({-5, "Erro Duplicação de Encartes"});
        }
        if (!DoValDM(lines, "C42", 100)) return fail({-10, "Erro Minimo de 100 Objectos"});
        if (!DoValDM(lines, "C43", 100)) return fail({-11, "Erro Minimo de 100 Objectos"});
        if (!DoValDM(lines, "C44", 100)) return fail({-12, "Erro Minimo de 100 Objectos"});
        if (!DoValDM(lines, "C47", 100)) return fail({-14, "Erro Minimo de 100 Objectos"});
        if (!DoValAcessoRede(lines, header))
            return fail({-15, "Os clientes de Acesso à Rede apenas poderão utilizar o produto P01 - Acesso Base. "
                              "Queira corrigir a Guia."});
        if (!DoValProdutoAcessoRede(lines, header))
            return fail({-16, "O produto escolhido é de um Operador - Acesso Base é de utilização restrita. "
                              "Queira corrigir a Guia."});
    } catch (const std::exception&) {
        return fail({-100, "Erro Genérico"});
    }
    return std::nullopt;
}

}  // namespace nimbara::validation
