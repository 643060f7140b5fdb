#include "foundation/list_helpers.hpp"

namespace nimbara::GlobalFrameWork {
namespace {

// The join of the old helpers: an element is put behind a comma only once the text is not empty,
// so leading empty elements vanish while later ones leave a trailing comma.
template <class Range, class Get>
std::string join_skipping_leading_empties(const Range& range, Get get)
{
    std::string out;
    for (const auto& element : range) {
        const std::optional<std::string_view> value = get(element);
        if (!value) continue;
        if (out.empty()) {
            out = *value;
        } else {
            out += ',';
            out += *value;
        }
    }
    return out;
}

}  // namespace

OptionalList String2Array(std::string_view text)
{
    if (text.empty()) return std::nullopt;
    ListArray parts;
    std::size_t start = 0;
    while (true) {
        const auto comma = text.find(',', start);
        parts.emplace_back(text.substr(start, comma - start));
        if (comma == std::string_view::npos) break;
        start = comma + 1;
    }
    return parts;
}

std::string Array2String(const OptionalList& list)
{
    if (!list) return {};
    return join_skipping_leading_empties(*list, [](const std::string& s) { return std::optional<std::string_view>(s); });
}

bool inArray(const OptionalList& list, std::string_view value)
{
    if (!list) return false;
    for (const auto& element : *list)
        if (element == value) return true;
    return false;
}

OptionalList ArrayShrink(const StrikeList& list)
{
    const std::string joined = join_skipping_leading_empties(list, [](const std::optional<std::string>& s) {
        return s ? std::optional<std::string_view>(*s) : std::nullopt;
    });
    if (joined.empty()) return std::nullopt;
    return String2Array(joined);
}

}  // namespace nimbara::GlobalFrameWork
