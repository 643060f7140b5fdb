#pragma once
// Fields by their argument names into the structs of the fill operations.
#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

#include "capi/guarded.hpp"
#include "capi/texts.hpp"
#include "nimbara/guia_fields.hpp"
#include "nimbara/guia_file.hpp"
#include "nimbara/nimbara.h"

namespace nimbara::capi {

// Sets each named field of `args`; an unknown name is refused before anything is set.
template <class Args, std::size_t N>
void set_fields(Args& args, const std::array<FieldName<Args>, N>& names, const nimbara_field* fields,
                std::size_t count, const char* section)
{
    if (fields == nullptr && count != 0) throw Refusal(NIMBARA_BAD_ARGUMENT, "fields is NULL with a count");
    Args changed = args;
    for (std::size_t i = 0; i < count; ++i) {
        const auto name = text_in(fields[i].name, fields[i].name_size, "a field's name");
        const auto value = text_in(fields[i].value, fields[i].value_size, "a field's value");
        const auto* found = std::find_if(names.begin(), names.end(), [&](const auto& f) { return f.name == name; });
        if (found == names.end())
            throw Refusal(NIMBARA_BAD_ARGUMENT, "field " + std::to_string(i) + ": \"" + std::string(name) +
                                                    "\" is not a field of " + section);
        changed.*(found->member) = std::string(value);
    }
    args = std::move(changed);
}

// The section's fields added to a Guia file.
void fill_section(GuiaFile& file, nimbara_section section, const nimbara_field* fields, std::size_t count);

}  // namespace nimbara::capi
