#pragma once
// The library is built with hidden visibility; what carries NIMBARA_API is its public API, and the
// only symbols a host's linker sees.
#define NIMBARA_API __attribute__((visibility("default")))
// A member of a public class that only the library itself may call, because its types are internal.
#define NIMBARA_LOCAL __attribute__((visibility("hidden")))
