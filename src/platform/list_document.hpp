#pragma once
// A LIST/ITEM document read once into a table: one row per ITEM, one column per tag name met in any
// row, so that readers walk it by index as often as they like without parsing again.
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nimbara::platform {

class ListDocument {
public:
    // The rows of "LIST/ITEM"; nothing when the text is not well-formed XML.
    static std::optional<ListDocument> parse(std::string_view text);

    std::size_t rows() const { return rows_; }

    // The column of a tag, or nothing when no row has it.
    std::optional<std::size_t> column(std::string_view tag) const;

    // The text of the row's first element of that column's tag, CDATA or plain; nothing when the row
    // has no such element.
    const std::optional<std::string>& value(std::size_t row, std::size_t column) const
    {
        return cells_[row * tags_.size() + column];
    }

private:
    std::vector<std::string> tags_;
    std::size_t rows_ = 0;
    std::vector<std::optional<std::string>> cells_;  // row-major
};

}  // namespace nimbara::platform
