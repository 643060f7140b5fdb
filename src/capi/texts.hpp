#pragma once
// Texts across the boundary: (pointer, length) pairs in, texts allocated with malloc out, released by
// the host with nimbara_free.
#include <cstddef>
#include <string>
#include <string_view>

namespace nimbara::capi {

// Throws the refusal of a text that is NULL with a length.
[[noreturn]] void refuse_null_text(const char* what);

// The text a host handed in; NULL with a length is refused, NULL with 0 is the empty text. Inline, as
// a line check reads nine of them.
inline std::string_view text_in(const char* data, std::size_t size, const char* what)
{
    if (data == nullptr) {
        if (size != 0) refuse_null_text(what);
        return {};
    }
    return {data, size};
}

// Copies `text` into a new buffer with a NUL after it, for the host to release.
void text_out(std::string_view text, char** data, std::size_t* size, const char* what);

}  // namespace nimbara::capi
