#pragma once
// The values a product line's field accepts given the fields filled before it, from the compiled-in
// possible-value documents: what a form offers while a line is being filled, field by field.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "nimbara/export.hpp"
#include "nimbara/possible_value.hpp"

namespace nimbara {

// The fields of a line filled so far; a field not filled yet is the empty text (weight 0).
struct LineSoFar {
    std::string product, zone, speed, format, pre_treatment, discount, scope;
    std::int32_t weight = 0;
};

enum class LineField { Zone, Weight, Speed, Format, PreTreatment, Discount, Scope, Sampling, Services };

// The accepted values in the documents' order; for Weight the steps, each a smallest weight (code)
// and a largest (designation). Nothing when the procedure fails, as a report then lists no values.
NIMBARA_API std::optional<std::vector<PossibleValue>> AcceptedValues(LineField field, const LineSoFar& line);

}  // namespace nimbara
