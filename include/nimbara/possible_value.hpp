#pragma once
// A value the report offers as possible for a failed line.
#include <string>

namespace nimbara {

// A code and its designation, or, for a weight step, the step's smallest and largest weight.
struct PossibleValue {
    std::string code;
    std::string designation;
    friend bool operator==(const PossibleValue&, const PossibleValue&) = default;
};

}  // namespace nimbara
