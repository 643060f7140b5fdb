#pragma once
// Reading a Guia table's cell where a number is wanted: an empty cell reads as 0, as an unfilled
// value always did in arithmetic, while the empty text is no number at all.
#include <cstdint>
#include <optional>

#include "nimbara/guia_arrays.hpp"

namespace nimbara {

// The cell's value as a number, or nothing when its text is no number.
std::optional<double> cell_number(const Cell& cell);

// The cell converted to a 32-bit integer (rounded half to even), or nothing when it does not convert.
std::optional<std::int32_t> cell_int32(const Cell& cell);

}  // namespace nimbara
