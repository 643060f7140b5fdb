#pragma once
// The component's version: the numbers that the printed page and the barcode carry.
#include <string>

namespace nimbara {

inline constexpr int kVersionMajor = 5;
inline constexpr int kVersionMinor = 3;
inline constexpr int kVersionRevision = 15;

// "5.3.15"
std::string version_text();

}  // namespace nimbara
