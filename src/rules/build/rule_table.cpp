#include "rules/build/rule_table.hpp"

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include "foundation/text.hpp"
#include "rules/build/tsv.hpp"
#include "rules/build/xml_text.hpp"

namespace nimbara::rules {
namespace {

constexpr std::array<std::string_view, kDimensionCount> kDimensionColumns = {
    "Zones", "Speed", "Format", "Pre", "Disc", "Scope", "Sampl", "Serv"};

[[noreturn]] void fail(std::string_view file, std::size_t line, const std::string& what)
{
    throw std::runtime_error(std::string(file) + ":" + std::to_string(line) + ": " + what);
}

int to_int(std::string_view field, std::string_view file, std::size_t line, std::string_view column)
{
    if (field == "-") return 0;
    int value = 0;
    const auto [end, ec] = std::from_chars(field.data(), field.data() + field.size(), value);
    if (ec != std::errc{} || end != field.data() + field.size())
        fail(file, line, std::string(column) + " is not a whole number: \"" + std::string(field) + "\"");
    return value;
}

std::string item(const std::vector<std::string>& tags, const std::vector<std::string_view>& values)
{
    std::vector<TaggedValue> tagged;
    for (std::size_t i = 0; i < tags.size(); ++i) tagged.push_back({tags[i], values[i]});
    return item_text(tagged);
}

}  // namespace

std::optional<Dimension> dimension_of_column(std::string_view column)
{
    const auto it = std::find(kDimensionColumns.begin(), kDimensionColumns.end(), column);
    if (it == kDimensionColumns.end()) return std::nullopt;
    return static_cast<Dimension>(it - kDimensionColumns.begin());
}

std::string_view column_of(Dimension d) { return kDimensionColumns[static_cast<std::size_t>(d)]; }

std::vector<RuleRow> parse_rule_table(std::string_view text)
{
    constexpr std::string_view file = "rules.tsv";
    std::vector<RuleRow> rows;
    for (const TsvLine& line : read_tsv(text, file)) {
        const auto& f = line.fields;
        if (f.size() != 5 + kDimensionCount) fail(file, line.number, "expected 13 columns");
        RuleRow row;
        row.id = to_int(f[0], file, line.number, "Id");
        row.product = f[1] == "-" ? std::string_view{} : f[1];
        if (f[2] != "Y" && f[2] != "N" && f[2] != "-") fail(file, line.number, "Act must be Y, N or -");
        row.listing = static_cast<Listing>(f[2].front());
        row.min = to_int(f[3], file, line.number, "Min");
        row.max = to_int(f[4], file, line.number, "Max");
        for (std::size_t d = 0; d < kDimensionCount; ++d) row.codes[d] = f[5 + d] == "-" ? std::string_view{} : f[5 + d];
        rows.push_back(row);
    }
    return rows;
}

std::vector<DocumentShape> parse_document_specs(std::string_view text)
{
    constexpr std::string_view file = "documents.tsv";
    std::vector<DocumentShape> shapes;
    for (const TsvLine& line : read_tsv(text, file)) {
        const auto& f = line.fields;
        if (f.size() != 4) fail(file, line.number, "expected 4 columns");
        DocumentShape shape;
        shape.function = std::string(f[0]);
        if (f[1] == "Act") {
            shape.kind = DocumentShape::Kind::RuleList;
        } else if (f[1] == "Min") {
            shape.kind = DocumentShape::Kind::Weight;
        } else {
            const auto dimension = dimension_of_column(f[1]);
            if (!dimension) fail(file, line.number, "unknown column \"" + std::string(f[1]) + "\"");
            shape.dimension = *dimension;
        }
        for_each_code(f[2], [&](std::string_view tag) { shape.tags.emplace_back(tag); });
        if (f[3] == "none") {
            shape.repeat = DocumentShape::Repeat::None;
        } else if (f[3] == "last") {
            shape.repeat = DocumentShape::Repeat::Last;
        } else {
            const auto blank = f[3].find(' ');
            if (blank == std::string_view::npos) fail(file, line.number, "Repeat must be none, last or \"ID CODE\"");
            shape.repeat = DocumentShape::Repeat::Row;
            shape.repeat_id = to_int(f[3].substr(0, blank), file, line.number, "Repeat");
            shape.repeat_code = std::string(f[3].substr(blank + 1));
        }
        const std::size_t expected = shape.kind == DocumentShape::Kind::Weight ? 4 : shape.kind == DocumentShape::Kind::RuleList ? 3 : 2;
        if (shape.tags.size() != expected) fail(file, line.number, "wrong number of tags");
        shapes.push_back(std::move(shape));
    }
    return shapes;
}

std::optional<RepeatedRow> repeated_row(const DocumentShape& shape, const std::vector<RuleRow>& table)
{
    if (shape.kind != DocumentShape::Kind::Dimension || shape.repeat == DocumentShape::Repeat::None) return std::nullopt;
    if (shape.repeat == DocumentShape::Repeat::Row) return RepeatedRow{shape.dimension, shape.repeat_id, shape.repeat_code};
    std::optional<RepeatedRow> last;
    for (const RuleRow& row : table)
        for_each_code(row.codes_of(shape.dimension), [&](std::string_view code) { last = RepeatedRow{shape.dimension, row.id, code}; });
    return last;
}

std::string build_rule_document(const DocumentShape& shape, const std::vector<RuleRow>& table)
{
    std::vector<std::string> items;
    std::optional<std::size_t> repeated;
    for (const RuleRow& row : table) {
        const std::string id = std::to_string(row.id);
        switch (shape.kind) {
        case DocumentShape::Kind::RuleList:
            if (row.in_rule_list())
                items.push_back(item(shape.tags, {id, row.product, row.listing == Listing::Active ? "True" : "False"}));
            break;
        case DocumentShape::Kind::Weight:
            if (row.in_rule_list())
                items.push_back(item(shape.tags, {id, std::to_string(row.min), std::to_string(row.max), row.product}));
            break;
        case DocumentShape::Kind::Dimension:
            for_each_code(row.codes_of(shape.dimension), [&](std::string_view code) {
                if (shape.repeat == DocumentShape::Repeat::Row && row.id == shape.repeat_id && code == shape.repeat_code)
                    repeated = items.size();
                items.push_back(item(shape.tags, {code, id}));
            });
            break;
        }
    }
    if (shape.repeat == DocumentShape::Repeat::Row) {
        if (!repeated)
            throw std::runtime_error(shape.function + ": the row to repeat, " + std::to_string(shape.repeat_id) + " " +
                                     shape.repeat_code + ", is not in the table");
        std::string moved = std::move(items[*repeated]);
        items.erase(items.begin() + static_cast<std::ptrdiff_t>(*repeated));
        items.push_back(moved);
    }
    return text::to_upper(list_text(items, shape.repeat != DocumentShape::Repeat::None));
}

}  // namespace nimbara::rules
