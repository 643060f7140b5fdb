#pragma once
// What would have been accepted: the values that the possible-value documents list for a line's
// leading fields, in document order, duplicates and all.
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "validation/rule_catalogue.hpp"

namespace nimbara::validation {

struct CodeLabel {
    std::string code;
    std::string label;
    friend bool operator==(const CodeLabel&, const CodeLabel&) = default;
};

// The procedure failed and answers -1; callers then print no values.
struct PossibleValuesFailed {
    friend bool operator==(PossibleValuesFailed, PossibleValuesFailed) = default;
};

// An empty vector is the empty answer: no row matched.
using PossibleValues = std::variant<std::vector<CodeLabel>, PossibleValuesFailed>;

// Each walks the possible-value table of its name in the catalogue given, the compiled-in one by default.
PossibleValues GetPossibleValues_ZonaTaxacao(std::string_view product,
                                             const RuleCatalogue& catalogue = RuleCatalogue::compiled());
PossibleValues GetPossibleValues_Peso(std::string_view product, std::string_view zone,
                                      const RuleCatalogue& catalogue = RuleCatalogue::compiled());
PossibleValues GetPossibleValues_Velocidade(std::string_view product, std::string_view zone, std::int32_t weight,
                                            const RuleCatalogue& catalogue = RuleCatalogue::compiled());
PossibleValues GetPossibleValues_Formato(std::string_view product, std::string_view zone, std::string_view speed,
                                         std::int32_t weight,
                                         const RuleCatalogue& catalogue = RuleCatalogue::compiled());
PossibleValues GetPossibleValues_PreTratamento(std::string_view product, std::string_view zone, std::string_view speed,
                                               std::string_view format, std::int32_t weight,
                                               const RuleCatalogue& catalogue = RuleCatalogue::compiled());
PossibleValues GetPossibleValues_Desconto(std::string_view product, std::string_view zone, std::string_view speed,
                                          std::string_view format, std::string_view pre_treatment, std::int32_t weight,
                                          const RuleCatalogue& catalogue = RuleCatalogue::compiled());
PossibleValues GetPossibleValues_AmbitoDistribuicao(std::string_view product, std::string_view zone,
                                                    std::string_view speed, std::string_view format,
                                                    std::string_view pre_treatment, std::int32_t weight,
                                                    const RuleCatalogue& catalogue = RuleCatalogue::compiled());
PossibleValues GetPossibleValues_AmostraDireta(std::string_view product, std::string_view zone, std::string_view speed,
                                               std::string_view format, std::string_view pre_treatment,
                                               std::string_view scope, std::int32_t weight,
                                               const RuleCatalogue& catalogue = RuleCatalogue::compiled());
PossibleValues GetPossibleValues_ServicosEspeciais(std::string_view product, std::string_view zone,
                                                   std::string_view speed, std::string_view format,
                                                   std::string_view pre_treatment, std::string_view discount,
                                                   std::int32_t weight,
                                                   const RuleCatalogue& catalogue = RuleCatalogue::compiled());

}  // namespace nimbara::validation
