#include <cstdlib>

#include "capi/last_error.hpp"
#include "nimbara/nimbara.h"
#include "nimbara/version.hpp"

extern "C" {

const char* nimbara_version(void) { return nimbara::kVersionText.data(); }  // a literal: NUL-terminated

int nimbara_abi_version(void) { return NIMBARA_ABI_VERSION; }

const char* nimbara_last_error(void) { return nimbara::capi::last_error().c_str(); }

void nimbara_free(void* pointer) { std::free(pointer); }

}
