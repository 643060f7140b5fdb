#include "platform/list_document.hpp"

#include <pugixml.hpp>

#include <algorithm>

namespace nimbara::platform {

std::optional<ListDocument> ListDocument::parse(std::string_view text)
{
    pugi::xml_document dom;
    if (!dom.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8)) return std::nullopt;
    const pugi::xpath_node_set items = dom.select_nodes("LIST/ITEM");

    ListDocument doc;
    for (const auto& item : items)
        for (const auto& child : item.node().children())
            if (child.type() == pugi::node_element && std::ranges::find(doc.tags_, child.name()) == doc.tags_.end())
                doc.tags_.emplace_back(child.name());

    doc.rows_ = items.size();
    doc.cells_.resize(doc.rows_ * doc.tags_.size());
    std::size_t row = 0;
    for (const auto& item : items) {
        for (std::size_t c = 0; c < doc.tags_.size(); ++c)
            if (const auto element = item.node().child(doc.tags_[c].c_str()))
                doc.cells_[row * doc.tags_.size() + c] = std::string(element.text().get());
        ++row;
    }
    return doc;
}

std::optional<std::size_t> ListDocument::column(std::string_view tag) const
{
    const auto it = std::ranges::find(tags_, tag);
    if (it == tags_.end()) return std::nullopt;
    return static_cast<std::size_t>(it - tags_.begin());
}

}  // namespace nimbara::platform
