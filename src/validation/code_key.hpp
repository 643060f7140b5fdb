#pragma once
// A short code packed into one integer, so that the index compares codes without touching strings.
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>

namespace nimbara::validation {

using CodeKey = std::uint64_t;
inline constexpr std::size_t kMaxKeyedCodeLength = 7;

// Exact text equality of codes becomes equality of keys; a code longer than seven characters has no
// key, which the index treats as a value no rule accepts.
inline std::optional<CodeKey> code_key(std::string_view code)
{
    const std::size_t n = code.size();
    if (n > kMaxKeyedCodeLength) return std::nullopt;
    // Two loads that overlap in the middle, rather than a copy byte by byte into memory, which the
    // load of the whole key would then wait for.
    const char* p = code.data();
    std::uint64_t bytes = 0;
    if (n >= 4) {
        std::uint32_t head, tail;
        std::memcpy(&head, p, 4);
        std::memcpy(&tail, p + n - 4, 4);
        bytes = head | (static_cast<std::uint64_t>(tail) << (8 * (n - 4)));
    } else if (n >= 2) {
        std::uint16_t head, tail;
        std::memcpy(&head, p, 2);
        std::memcpy(&tail, p + n - 2, 2);
        bytes = head | (static_cast<std::uint64_t>(tail) << (8 * (n - 2)));
    } else if (n == 1) {
        bytes = static_cast<unsigned char>(p[0]);
    }
    return (static_cast<CodeKey>(n) << 56) | bytes;
}

// Stands in for the key of a code too long to have one; no code that has a key is given it, so
// equal keys mean equal codes unless both are this one.
inline constexpr CodeKey kLongCode = ~CodeKey{0};

inline CodeKey key_or_long(std::string_view code) { return code_key(code).value_or(kLongCode); }

// Keys of different kinds (a zone, a speed, a product ...) share one table when each kind sets the top
// four bits, which no key uses: its length takes bits 56 to 58.
inline constexpr CodeKey tagged(CodeKey key, unsigned kind) { return key | (static_cast<CodeKey>(kind & 0xF) << 60); }

}  // namespace nimbara::validation
