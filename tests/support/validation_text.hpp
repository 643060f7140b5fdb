#pragma once
// A validator's answer as one comparable text: "passes", or the error number and its description,
// a list of codes written "[02][07]", so that a failing comparison shows both answers whole.
#include <string>
#include <variant>

#include "nimbara/error_array.hpp"

namespace nimbara::testing {

inline std::string show(const ValidationResult& r)
{
    if (!r) return "passes";
    std::string s = std::to_string(r->number) + " ";
    if (const auto* list = std::get_if<ListArray>(&r->description))
        for (const auto& code : *list) s += "[" + code + "]";
    else
        s += std::get<std::string>(r->description);
    return s;
}

}  // namespace nimbara::testing
