#include "rules/build/xml_text.hpp"

#include <stdexcept>

namespace nimbara::rules {

std::string item_text(std::span<const TaggedValue> values)
{
    std::string out = "<ITEM>";
    for (const auto& v : values) {
        const bool cdata = v.form == ValueForm::CData;
        if (cdata ? v.value.find("]]>") != std::string_view::npos : v.value.find_first_of("<&") != std::string_view::npos)
            throw std::runtime_error("the value \"" + std::string(v.value) + "\" of " + std::string(v.tag) +
                                     " cannot be written as it stands");
        out += '<';
        out += v.tag;
        out += '>';
        if (cdata) out += "<![CDATA[";
        out += v.value;
        if (cdata) out += "]]>";
        out += "</";
        out += v.tag;
        out += '>';
    }
    out += "</ITEM>";
    return out;
}

std::string list_text(const std::vector<std::string>& items, bool repeat_last)
{
    std::string out = "<LIST>";
    for (const auto& i : items) out += i;
    if (repeat_last && !items.empty()) out += items.back();
    out += "</LIST>";
    return out;
}

}  // namespace nimbara::rules
