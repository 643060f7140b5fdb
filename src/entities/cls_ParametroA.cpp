#include "nimbara/cls_ParametroA.hpp"

#include <array>

#include "foundation/required_numbers.hpp"

namespace nimbara {
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
