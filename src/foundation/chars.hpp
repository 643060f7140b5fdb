#pragma once
// Slices of UTF-8 text counted in characters, with the old string functions' rules, so that a fixed
// slice of a remark never cuts an accented letter in two.
#include <cstddef>
#include <string>
#include <string_view>

namespace nimbara::chars {

// Number of characters (code points) in the text.
std::size_t length(std::string_view s);

// `count` characters from the 1-based character `start`; a start past the end gives "". A start
// below 1 is refused with std::out_of_range, as the old Mid refused it.
std::string mid(std::string_view s, std::ptrdiff_t start, std::size_t count);

// The first or last `count` characters, the whole text when it is shorter.
std::string left(std::string_view s, std::size_t count);
std::string right(std::string_view s, std::size_t count);

}  // namespace nimbara::chars
