#include "nimbara/accepted_values.hpp"

#include <variant>

#include "validation/possible_values.hpp"

namespace nimbara {

std::optional<std::vector<PossibleValue>> AcceptedValues(LineField field, const LineSoFar& l)
{
    using namespace validation;
    const PossibleValues answer = [&] {
        switch (field) {
        case LineField::Zone: return GetPossibleValues_ZonaTaxacao(l.product);
        case LineField::Weight: return GetPossibleValues_Peso(l.product, l.zone);
        case LineField::Speed: return GetPossibleValues_Velocidade(l.product, l.zone, l.weight);
        case LineField::Format: return GetPossibleValues_Formato(l.product, l.zone, l.speed, l.weight);
        case LineField::PreTreatment:
            return GetPossibleValues_PreTratamento(l.product, l.zone, l.speed, l.format, l.weight);
        case LineField::Discount:
            return GetPossibleValues_Desconto(l.product, l.zone, l.speed, l.format, l.pre_treatment, l.weight);
        case LineField::Scope:
            return GetPossibleValues_AmbitoDistribuicao(l.product, l.zone, l.speed, l.format, l.pre_treatment, l.weight);
        case LineField::Sampling:
            return GetPossibleValues_AmostraDireta(l.product, l.zone, l.speed, l.format, l.pre_treatment, l.scope,
                                                   l.weight);
        case LineField::Services:
            return GetPossibleValues_ServicosEspeciais(l.product, l.zone, l.speed, l.format, l.pre_treatment,
                                                       l.discount, l.weight);
        }
        return PossibleValues{PossibleValuesFailed{}};
    }();
    const auto* rows = std::get_if<std::vector<CodeLabel>>(&answer);
    if (!rows) return std::nullopt;
    std::vector<PossibleValue> values;
    values.reserve(rows->size());
    for (const auto& r : *rows) values.push_back({r.code, r.label});
    return values;
}

}  // namespace nimbara
