#include "rules/list_document.hpp"

#include <algorithm>

namespace nimbara::rules {
namespace {

// Reads the catalogue's markup left to right; every step answers false on anything unexpected.
class Reader {
public:
    explicit Reader(std::string_view text) : text_(text) {}

    bool at_end() const { return pos_ == text_.size(); }
    std::size_t position() const { return pos_; }
    bool skip(std::string_view literal)
    {
        if (!text_.substr(pos_).starts_with(literal)) return false;
        pos_ += literal.size();
        return true;
    }

    // "<NAME>": the name, or nothing. Names and values are short, so they are scanned a character
    // at a time rather than searched for.
    std::optional<std::string_view> open_tag()
    {
        if (!skip("<")) return std::nullopt;
        const auto start = pos_;
        while (pos_ < text_.size() && name_char(text_[pos_])) ++pos_;
        if (pos_ == start || !skip(">")) return std::nullopt;
        return text_.substr(start, pos_ - 1 - start);
    }

    // An element's content up to its close tag, which is consumed.
    std::optional<std::string_view> content(std::string_view name)
    {
        std::string_view value;
        if (skip("<![CDATA[")) {
            const auto start = pos_;
            while (pos_ < text_.size() && !(text_[pos_] == ']' && text_.substr(pos_).starts_with("]]>"))) ++pos_;
            if (pos_ == text_.size()) return std::nullopt;
            value = text_.substr(start, pos_ - start);
            pos_ += 3;
        } else {
            const auto start = pos_;
            while (pos_ < text_.size() && text_[pos_] != '<' && text_[pos_] != '&') ++pos_;
            if (pos_ == text_.size() || text_[pos_] == '&') return std::nullopt;
            value = text_.substr(start, pos_ - start);
        }
        if (!skip("</") || !skip(name) || !skip(">")) return std::nullopt;
        return value;
    }

private:
    static bool name_char(char c)
    {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
    }

    std::string_view text_;
    std::size_t pos_ = 0;
};

}  // namespace

std::optional<ListDocument> ListDocument::parse(std::string_view text)
{
    ListDocument doc;

    std::vector<std::string_view> row;  // the current row, one cell per tag; a view without data is an absent element
    Reader in(text);
    if (!in.skip("<LIST>")) return std::nullopt;
    while (in.skip("<ITEM>")) {
        const std::size_t width = doc.tags_.size();
        row.assign(width, {});
        while (!in.skip("</ITEM>")) {
            const auto name = in.open_tag();
            if (!name) return std::nullopt;
            const auto value = in.content(*name);
            if (!value) return std::nullopt;
            const auto it = std::ranges::find(doc.tags_, *name);
            const auto column = static_cast<std::size_t>(it - doc.tags_.begin());
            if (it == doc.tags_.end()) {
                doc.tags_.push_back(*name);
                row.emplace_back();
            }
            if (!row[column].data()) row[column] = *value;  // the first element of a tag counts, as a single-node select finds it
        }
        if (doc.tags_.size() != width) {  // a tag no earlier row had: widen the rows read so far
            std::vector<std::string_view> wider(doc.rows_ * doc.tags_.size());
            for (std::size_t r = 0; r < doc.rows_; ++r)
                std::copy_n(doc.cells_.begin() + static_cast<std::ptrdiff_t>(r * width), width,
                            wider.begin() + static_cast<std::ptrdiff_t>(r * doc.tags_.size()));
            doc.cells_ = std::move(wider);
        }
        if (doc.cells_.empty()) doc.cells_.reserve(text.size() / in.position() * doc.tags_.size());  // rows like the first
        doc.cells_.insert(doc.cells_.end(), row.begin(), row.end());
        ++doc.rows_;
    }
    if (!in.skip("</LIST>") || !in.at_end()) return std::nullopt;
    return doc;
}

std::optional<std::size_t> ListDocument::column(std::string_view tag) const
{
    const auto it = std::ranges::find(tags_, tag);
    if (it == tags_.end()) return std::nullopt;
    return static_cast<std::size_t>(it - tags_.begin());
}

}  // namespace nimbara::rules
