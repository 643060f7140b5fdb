#pragma once
// A catalogue document read into a table: one row per ITEM of the LIST, one column per tag name met
// in any row. Cells view the document's text, which must outlive the table; the catalogue's texts
// are static, so a reader parses each once and walks it by index as often as it likes.
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace nimbara::rules {

class ListDocument {
public:
    // The rows of "<LIST><ITEM>...</ITEM>...</LIST>" as the catalogue writes them: elements without
    // attributes holding plain text or one CDATA section. Nothing for any other text, which is how
    // a document that does not load shows itself.
    static std::optional<ListDocument> parse(std::string_view text);

    std::size_t rows() const { return rows_; }

    // The column of a tag, or nothing when no row has it.
    std::optional<std::size_t> column(std::string_view tag) const;

    // The text of the row's first element of the column's tag; nothing when the row has none.
    std::optional<std::string_view> value(std::size_t row, std::size_t column) const
    {
        const std::string_view cell = cells_[row * tags_.size() + column];
        if (!cell.data()) return std::nullopt;
        return cell;
    }

private:
    std::vector<std::string_view> tags_;
    std::size_t rows_ = 0;
    std::vector<std::string_view> cells_;  // row-major; a view without data for an element the row lacks
};

}  // namespace nimbara::rules
