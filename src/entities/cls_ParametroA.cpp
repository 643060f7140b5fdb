#include "nimbara/cls_ParametroA.hpp"

#include <array>
#include <string>

#include "foundation/required_numbers.hpp"
#include "foundation/text.hpp"

namespace nimbara {
namespace {

// Digits with an optional sign and nothing else, within the bounds.
bool whole_within(std::string_view value, long long low, long long high)
{
    std::size_t i = value.starts_with('-') || value.starts_with('+') ? 1 : 0;
    if (i == value.size() || value.size() > 12) return false;
    for (std::size_t k = i; k < value.size(); ++k)
        if (value[k] < '0' || value[k] > '9') return false;
    const long long n = std::stoll(std::string(value));
    return n >= low && n <= high;
}

std::optional<std::string> whole_from(std::string_view value, long long low, long long high, const char* unit = "")
{
    if (whole_within(value, low, high)) return std::nullopt;
    return "is not a whole number" + std::string(unit) + " from " + std::to_string(low) + " to " + std::to_string(high);
}

}  // namespace

// The bounds are those of the symbol's encoder and of the page: 30 data columns, 3 to 90 rows (0
// lets the encoder choose), error levels 0 to 8, a font size whose module stays on the page.
std::optional<std::string> print_setting_problem(param::Field setting, std::string_view value)
{
    using enum param::Field;
    switch (setting) {
    case VCod2DFonteSize:
    case vCod2DRatio: {
        const auto n = text::to_number(value);
        const double high = setting == VCod2DFonteSize ? 100 : 1000;
        if (n && *n >= 0 && *n <= high) return std::nullopt;
        return "is not a number from 0 to " + std::to_string(static_cast<int>(high));
    }
    case vCod2DNColunas: return whole_from(value, 0, 30);
    case vCod2DNLinhas:
        if (whole_within(value, 0, 0)) return std::nullopt;
        if (whole_within(value, 3, 90)) return std::nullopt;
        return std::string("is neither 0 (as many rows as needed) nor a whole number from 3 to 90");
    case vCod2DErroLevel: return whole_from(value, 0, 8);
    case vCod2DPDFMode: return whole_from(value, 0, 2);
    case vGuiaNVias: return whole_from(value, 1, 32767);
    case vGuiaMargensTopo:
    case vGuiaMargensEsquerda: return whole_from(value, 0, 5670, " of twips");
    case VCod2DTruncatedRuncated:
    case vCod2DApplyTilde:
        if (value == "0" || value == "1" || value.empty()) return std::nullopt;
        return std::string("is neither 0 nor 1");
    case vCodTerceiro: return std::nullopt;
    }
    return std::nullopt;
}

cls_ParametroA factory_print_settings()
{
    cls_ParametroA p;
    p.VCod2DFonteSize = "3";
    p.vCod2DRatio = "1";
    p.vCod2DNColunas = "16";
    p.vCod2DNLinhas = "0";
    p.vCod2DErroLevel = "2";
    p.vCod2DPDFMode = "0";
    p.vCod2DTruncated = "0";
    p.vCod2DApplyTilde = "0";
    p.vGuiaNVias = "1";
    // The form's outermost mark (the logo) stands 1 mm from the page's corner: 5 mm more put it at
    // 6 mm, clear of the border.
    p.vGuiaMargensTopo = "284";
    p.vGuiaMargensEsquerda = "284";
    p.vCodTerceiro = "0";
    return p;
}

void cls_ParametroA::PreencheObjecto(const param::Table& arrParametros)
{
    const std::array<std::string*, param::kFields> properties = {
        &VCod2DFonteSize, &vCod2DRatio, &vCod2DNColunas, &vCod2DNLinhas, &vCod2DErroLevel, &vCod2DPDFMode,
        &vCod2DTruncated, &vCod2DApplyTilde, &vGuiaNVias, &vGuiaMargensTopo, &vGuiaMargensEsquerda, &vCodTerceiro};
    if (arrParametros.empty()) {
        static constexpr std::array<const char*, param::kFields> kDefaults = {"0", "0", "0", "0", "1", "0",
                                                                               "0", "0", "1", "0", "0", "0"};
        for (int field = 0; field < param::kFields; ++field) *properties[field] = kDefaults[field];
        return;
    }
    for (const auto field : param::Table::fields())
        *properties[static_cast<std::size_t>(field)] = std::string(arrParametros.text(field, 0));
}

bool cls_ParametroA::Validate() const
{
    if (text::require_int32(vGuiaNVias) < 1) throw ParametroError("O nº de Guias não pode ser inferior a 1.");
    if (text::require_int32(vCod2DNColunas) > 32) throw ParametroError("Nº de colunas não pode ser superior a 32.");
    const auto level = text::require_int32(vCod2DErroLevel);
    if (level < 1 || level > 8) throw ParametroError("Error level deve estar entre 1 e 8.");
    return true;
}

}  // namespace nimbara
