#pragma once
// The cause of the last failing call, kept per thread for nimbara_last_error().
#include <string>

namespace nimbara::capi {

void set_last_error(std::string cause);
const std::string& last_error();

}  // namespace nimbara::capi
