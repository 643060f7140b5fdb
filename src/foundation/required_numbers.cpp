#include "foundation/required_numbers.hpp"

#include <stdexcept>

#include "foundation/run_time_errors.hpp"
#include "foundation/text.hpp"

namespace nimbara::text {
namespace {

template <class Int>
Int required(std::string_view s, const std::optional<Int>& n)
{
    if (n) return *n;
    if (to_number(s)) raise(RunTimeError::Overflow);
    raise(RunTimeError::TypeMismatch);
}

}  // namespace

double require_number(std::string_view s)
{
    if (const auto n = to_number(s)) return *n;
    raise(RunTimeError::TypeMismatch);
}

std::int16_t require_int16(std::string_view s) { return required(s, to_int16(s)); }

std::int32_t require_int32(std::string_view s) { return required(s, to_int32(s)); }

double require_cell_number(const Cell& cell) { return cell ? require_number(std::string_view(*cell)) : 0.0; }

std::int32_t require_cell_int32(const Cell& cell) { return cell ? require_int32(std::string_view(*cell)) : 0; }

}  // namespace nimbara::text
