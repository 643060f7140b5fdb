#include "foundation/chars.hpp"

#include <stdexcept>

#include "foundation/run_time_errors.hpp"

namespace nimbara::chars {
namespace {

bool continuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Byte offset of the character with 0-based index `n`, or the text's size when there is none.
std::size_t offset_of(std::string_view s, std::size_t n)
{
    std::size_t i = 0;
    for (; i < s.size(); ++i)
        if (!continuation(s[i]) && n-- == 0) return i;
    return s.size();
}

}  // namespace

std::size_t length(std::string_view s)
{
    std::size_t n = 0;
    for (char c : s) n += continuation(c) ? 0 : 1;
    return n;
}

std::string mid(std::string_view s, std::ptrdiff_t start, std::size_t count)
{
    if (start < 1) raise(RunTimeError::InvalidProcedureCall);
    const std::size_t from = offset_of(s, static_cast<std::size_t>(start - 1));
    const std::size_t to = offset_of(s.substr(from), count);
    return std::string(s.substr(from, to));
}

std::string left(std::string_view s, std::size_t count) { return mid(s, 1, count); }

std::string right(std::string_view s, std::size_t count)
{
    const std::size_t n = length(s);
    return n <= count ? std::string(s) : mid(s, static_cast<std::ptrdiff_t>(n - count + 1), count);
}

}  // namespace nimbara::chars
