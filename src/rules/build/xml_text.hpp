#pragma once
// Writing the catalogue's XML text: ITEM rows of tagged values and the LIST around them, with no
// declaration and no blanks between tags.
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nimbara::rules {

enum class ValueForm { Plain, CData };

struct TaggedValue {
    std::string_view tag;
    std::string_view value;
    ValueForm form = ValueForm::Plain;
};

// One "<ITEM>...</ITEM>", each value between its open and close tag; an empty value leaves the two
// tags side by side (or an empty CDATA section). Throws when a value would break the markup.
std::string item_text(std::span<const TaggedValue> values);

// "<LIST>", the items in order, the last item once more when asked, and "</LIST>".
std::string list_text(const std::vector<std::string>& items, bool repeat_last);

}  // namespace nimbara::rules
