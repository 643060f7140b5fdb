#pragma once
// Whether a text is well-formed UTF-8, as the stores and every reader of the program require.
#include <cstddef>
#include <optional>
#include <string_view>

namespace nimbara::chars {

// The byte offset where the text stops being well-formed UTF-8 (an overlong form, a surrogate and a
// code point above U+10FFFF are not), or nothing when all of it is.
std::optional<std::size_t> invalid_utf8_at(std::string_view s);

}  // namespace nimbara::chars
