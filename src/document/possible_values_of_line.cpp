#include "document/possible_values_of_line.hpp"

#include <variant>

namespace nimbara::document {

bool is_weight_error(std::int32_t number) { return number == -3 || (number >= -20 && number <= -17); }

std::optional<validation::PossibleValues> possible_values_of_line(std::int32_t number, const FailedLine& l,
                                                                  const validation::RuleCatalogue& catalogue)
{
    using namespace validation;
    if (is_weight_error(number)) return GetPossibleValues_Peso(l.product, l.zone, catalogue);
    switch (number) {
    case -2: return GetPossibleValues_ZonaTaxacao(l.product, catalogue);
    case -4: return GetPossibleValues_Velocidade(l.product, l.zone, l.weight, catalogue);
    case -5: return GetPossibleValues_Formato(l.product, l.zone, l.speed, l.weight, catalogue);
    case -6: return GetPossibleValues_PreTratamento(l.product, l.zone, l.speed, l.format, l.weight, catalogue);
    case -7:
        return GetPossibleValues_Desconto(l.product, l.zone, l.speed, l.format, l.pre_treatment, l.weight, catalogue);
    case -8:
        return GetPossibleValues_AmbitoDistribuicao(l.product, l.zone, l.speed, l.format, l.pre_treatment, l.weight,
                                                    catalogue);
    case -21:
        // The weight step stands where the scope belongs and the scope, as a number, where the
        // weight belongs: the call has always been made so.
        return GetPossibleValues_AmostraDireta(l.product, l.zone, l.speed, l.format, l.pre_treatment, l.weight_text,
                                               l.scope_number(), catalogue);
    case -10:
        return GetPossibleValues_ServicosEspeciais(l.product, l.zone, l.speed, l.format, l.pre_treatment, l.discount,
                                                   l.weight, catalogue);
    default: return std::nullopt;
    }
}

std::vector<PossibleValue> possible_value_rows(const std::optional<validation::PossibleValues>& answer)
{
    std::vector<PossibleValue> rows;
    if (!answer) return rows;
    if (const auto* found = std::get_if<std::vector<validation::CodeLabel>>(&*answer))
        for (const auto& v : *found) rows.push_back({v.code, v.label});
    return rows;
}

}  // namespace nimbara::document
