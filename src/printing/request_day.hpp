#pragma once
// The request's date as the symbol's head carries it: the last digit of the year and the day of the
// year from 1, three digits ("5034" for the third of February of 2025).
#include <optional>
#include <string>
#include <string_view>

#include "nimbara/Recordset.hpp"

namespace nimbara::printing {

std::string D_Req_Jul(const Timestamp& D_Req);

// The day code of a request's date written as text (YYYY-MM-DD, a time after it allowed); nothing
// when the text is no such date.
std::optional<std::string> day_code_of(std::string_view date);

}  // namespace nimbara::printing
