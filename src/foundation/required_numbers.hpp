#pragma once
// Numbers read from text where the old run time would have stopped on a bad one: text that is no
// number throws std::invalid_argument("Type mismatch"), a number out of range
// std::overflow_error("Overflow"). The printing routines log those texts as they were.
#include <cstdint>
#include <string_view>

#include "nimbara/guia_arrays.hpp"

namespace nimbara::text {

double require_number(std::string_view s);
std::int16_t require_int16(std::string_view s);
std::int32_t require_int32(std::string_view s);

// A table's cell where a number is wanted: an empty cell is 0, as an unfilled value always was.
double require_cell_number(const Cell& cell);
std::int32_t require_cell_int32(const Cell& cell);

}  // namespace nimbara::text
