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
    if (code.size() > kMaxKeyedCodeLength) return std::nullopt;
    CodeKey key = static_cast<CodeKey>(code.size()) << 56;
    std::uint64_t bytes = 0;
    // An empty view may carry no storage at all, and memcpy from null is undefined even for 0 bytes.
    if (!code.empty()) std::memcpy(&bytes, code.data(), code.size());
    return key | bytes;
}

// Keys of different kinds (a zone, a speed, a product ...) share one table when each kind sets the top
// four bits, which no key uses: its length takes bits 56 to 58.
inline constexpr CodeKey tagged(CodeKey key, unsigned kind) { return key | (static_cast<CodeKey>(kind & 0xF) << 60); }

}  // namespace nimbara::validation
