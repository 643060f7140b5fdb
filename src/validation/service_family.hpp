#pragma once
// Which of the hand-written service rules a product falls under, settled once per product so that a
// line's check is one switch rather than a row of code comparisons.
#include <cstdint>
#include <string_view>

namespace nimbara::validation {

enum class ServiceFamily : std::uint8_t { None, C24, C06, C10, E02, E01, C13 };

constexpr ServiceFamily service_family_of(std::string_view product)
{
    if (product == "C24") return ServiceFamily::C24;
    if (product == "C06" || product == "C6" || product == "C20") return ServiceFamily::C06;
    if (product == "C10") return ServiceFamily::C10;
    if (product == "E2" || product == "E02") return ServiceFamily::E02;
    if (product == "E1" || product == "E01") return ServiceFamily::E01;
    if (product == "C13") return ServiceFamily::C13;
    return ServiceFamily::None;
}

}  // namespace nimbara::validation
