#pragma once
// The library is built with hidden visibility; what carries NIMBARA_API is its public API, and the
// only symbols a host's linker sees.
#define NIMBARA_API __attribute__((visibility("default")))
