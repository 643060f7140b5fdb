#pragma once
// Helpers over comma-joined code lists. "Empty" (no list at all) is std::nullopt, distinct from a
// list holding the empty text; an element struck out of a list is an empty optional.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "nimbara/error_array.hpp"

namespace nimbara::GlobalFrameWork {

using OptionalList = std::optional<ListArray>;
using StrikeList = std::vector<std::optional<std::string>>;

// The empty text gives no list; any other text splits on "," with blanks kept and nothing trimmed.
OptionalList String2Array(std::string_view text);

// Elements joined with ","; a comma is added only once the text built so far is not empty.
std::string Array2String(const OptionalList& list);

// True when an element equals the value; no list answers false.
bool inArray(const OptionalList& list, std::string_view value);

// The elements that were not struck out, joined and split again; nothing left gives no list.
OptionalList ArrayShrink(const StrikeList& list);

// True when no element of the candidate row is left; no row at all counts as empty.
template <class T>
bool isArrayEmpty(const std::optional<std::vector<std::optional<T>>>& candidates)
{
    if (!candidates) return true;
    for (const auto& c : *candidates)
        if (c) return false;
    return true;
}

}  // namespace nimbara::GlobalFrameWork
