#include "foundation/text.hpp"

#include <charconv>
#include <cmath>
#include <limits>

namespace nimbara::text {

std::string to_upper(std::string_view s)
{
    std::string out(s);
    for (std::size_t i = 0; i < out.size(); ++i) {
        auto c = static_cast<unsigned char>(out[i]);
        if (c >= 'a' && c <= 'z') {
            out[i] = static_cast<char>(c - 'a' + 'A');
        } else if (c == 0xC3 && i + 1 < out.size()) {
            // U+00E0..U+00FE (except the division sign) map to U+00C0..U+00DE.
            auto d = static_cast<unsigned char>(out[i + 1]);
            if (d >= 0xA0 && d <= 0xBE && d != 0xB7) out[i + 1] = static_cast<char>(d - 0x20);
            ++i;
        }
    }
    return out;
}

std::string_view trim(std::string_view s)
{
    constexpr std::string_view blanks = " \t\r\n";
    const auto first = s.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    const auto last = s.find_last_not_of(blanks);
    return s.substr(first, last - first + 1);
}

std::optional<double> to_number(std::string_view s)
{
    s = trim(s);
    if (s.empty()) return std::nullopt;
    if (s.front() == '+') s.remove_prefix(1);
    if (s.empty() || s.front() == '+') return std::nullopt;
    double value = 0;
    const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), value, std::chars_format::general);
    if (ec != std::errc{} || end != s.data() + s.size() || !std::isfinite(value)) return std::nullopt;
    return value;
}

namespace {

template <class Int>
std::optional<Int> to_integer(std::string_view s)
{
    const auto value = to_number(s);
    if (!value) return std::nullopt;
    const double rounded = std::nearbyint(*value);  // the default rounding mode rounds half to even
    if (rounded < std::numeric_limits<Int>::min() || rounded > std::numeric_limits<Int>::max()) return std::nullopt;
    return static_cast<Int>(rounded);
}

}  // namespace

std::optional<std::int16_t> to_int16(std::string_view s) { return to_integer<std::int16_t>(s); }

std::optional<std::int32_t> to_int32(std::string_view s) { return to_integer<std::int32_t>(s); }

std::optional<std::int32_t> parse_int32(std::string_view s)
{
    if (!s.empty() && s.front() == '+') s.remove_prefix(1);
    if (s.empty()) return std::nullopt;
    // Up to nine plain digits cannot overflow: read on the spot, as nearly every weight is.
    if (s.size() <= 9 && s.front() != '-') {
        std::int32_t value = 0;
        for (const char c : s) {
            if (c < '0' || c > '9') return std::nullopt;
            value = value * 10 + (c - '0');
        }
        return value;
    }
    std::int32_t value = 0;
    const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), value);
    if (ec != std::errc{} || end != s.data() + s.size()) return std::nullopt;
    return value;
}

}  // namespace nimbara::text
