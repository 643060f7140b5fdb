#include "foundation/utf8.hpp"

namespace nimbara::chars {
namespace {

bool continuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

}  // namespace

std::optional<std::size_t> invalid_utf8_at(std::string_view s)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(s[i]); };
    for (std::size_t i = 0; i < s.size();) {
        const unsigned char b = byte(i);
        if (b < 0x80) {
            ++i;
            continue;
        }
        std::size_t n = 0;
        unsigned char low = 0x80, high = 0xBF;  // the range of the second byte
        if (b >= 0xC2 && b <= 0xDF) n = 1;
        else if (b >= 0xE0 && b <= 0xEF) n = 2, low = b == 0xE0 ? 0xA0 : 0x80, high = b == 0xED ? 0x9F : 0xBF;
        else if (b >= 0xF0 && b <= 0xF4) n = 3, low = b == 0xF0 ? 0x90 : 0x80, high = b == 0xF4 ? 0x8F : 0xBF;
        else return i;
        if (i + n >= s.size()) return i;  // cut short
        if (byte(i + 1) < low || byte(i + 1) > high) return i;
        for (std::size_t k = 2; k <= n; ++k)
            if (!continuation(s[i + k])) return i;
        i += n + 1;
    }
    return std::nullopt;
}

}  // namespace nimbara::chars
