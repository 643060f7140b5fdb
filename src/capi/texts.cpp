#include "capi/texts.hpp"

#include <cstdlib>
#include <cstring>
#include <new>

#include "capi/guarded.hpp"

namespace nimbara::capi {

void refuse_null_text(const char* what)
{
    throw Refusal(NIMBARA_BAD_ARGUMENT, std::string(what) + " is NULL with a length");
}

void text_out(std::string_view text, char** data, std::size_t* size, const char* what)
{
    required(data, what);
    auto* copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy == nullptr) throw std::bad_alloc();
    if (!text.empty()) std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    *data = copy;
    if (size != nullptr) *size = text.size();
}

}  // namespace nimbara::capi
