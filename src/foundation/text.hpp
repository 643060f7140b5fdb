#pragma once
// Text and number conversions with the semantics the old component's callers rely on.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nimbara::text {

// Upper-cases ASCII and the Latin-1 letters of UTF-8 text, as the rule documents are upper-cased whole.
std::string to_upper(std::string_view s);

// Leading and trailing blanks removed.
std::string_view trim(std::string_view s);

// A number read from text the way a string converts in an arithmetic context: blanks around it,
// an optional sign, digits with an optional fraction and exponent. Anything else is no number.
std::optional<double> to_number(std::string_view s);

// A 16-bit integer converted from text: rounded half to even, refused outside -32768..32767.
std::optional<std::int16_t> to_int16(std::string_view s);

// A 32-bit integer converted from text as `to_int16` does: rounded half to even, refused outside
// the 32-bit range.
std::optional<std::int32_t> to_int32(std::string_view s);

// A 32-bit whole number written in decimal, with nothing else but an optional sign.
std::optional<std::int32_t> parse_int32(std::string_view s);

}  // namespace nimbara::text
