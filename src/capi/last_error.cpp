#include "capi/last_error.hpp"

namespace nimbara::capi {
namespace {

thread_local std::string cause;

}  // namespace

void set_last_error(std::string text) { cause = std::move(text); }

const std::string& last_error() { return cause; }

}  // namespace nimbara::capi
