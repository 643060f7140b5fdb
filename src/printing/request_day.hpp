#pragma once
// The request's date as the symbol's head carries it: the last digit of the year and the day of the
// year from 1, three digits ("5034" for the third of February of 2025).
#include <string>

#include "nimbara/Recordset.hpp"

namespace nimbara::printing {

std::string D_Req_Jul(const Timestamp& D_Req);

}  // namespace nimbara::printing
