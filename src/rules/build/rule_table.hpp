#pragma once
// The rule table: one row per rule with its product, active flag, weight range and the codes it
// accepts in each dimension. Both the compiled-in documents and the validation index come from it.
#include <array>
#include <optional>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace nimbara::rules {

enum class Dimension : std::size_t {
    Zone, Speed, Format, PreTreatment, Discount, Scope, Sampling, Service
};
inline constexpr std::size_t kDimensionCount = 8;

enum class Listing : char {
    Active = 'Y',
    Inactive = 'N',
    Orphan = '-',  // rows in dimension documents for a rule that is not in the rule list
};

struct RuleRow {
    int id = 0;
    std::string_view product;
    Listing listing = Listing::Active;
    int min = 0;
    int max = 0;
    // Blank-separated codes per dimension; the empty text when the rule has no row there.
    std::array<std::string_view, kDimensionCount> codes{};

    bool in_rule_list() const { return listing != Listing::Orphan; }
    std::string_view codes_of(Dimension d) const { return codes[static_cast<std::size_t>(d)]; }
};

// The dimension of a column of the rule table ("Zones", "Speed" ... "Serv"), if it names one.
std::optional<Dimension> dimension_of_column(std::string_view column);
std::string_view column_of(Dimension d);

// Calls f for each blank-separated code of a dimension's list.
template <class F>
void for_each_code(std::string_view codes, F&& f)
{
    std::size_t pos = 0;
    while (pos < codes.size()) {
        const auto end = codes.find(' ', pos);
        const auto code = codes.substr(pos, end == std::string_view::npos ? std::string_view::npos : end - pos);
        if (!code.empty()) f(code);
        if (end == std::string_view::npos) break;
        pos = end + 1;
    }
}

// Parses the tab-separated rule table; the rows' texts point into `text`, which must outlive them.
// Throws std::runtime_error naming the line of a malformed row.
std::vector<RuleRow> parse_rule_table(std::string_view text);

// One rule document: its function name, the dimension it lists (none for the rule list and the
// weight document), its tags, and which row it writes twice before the closing tag.
struct DocumentShape {
    enum class Kind { RuleList, Weight, Dimension };
    enum class Repeat { None, Last, Row };

    std::string function;
    Kind kind = Kind::Dimension;
    Dimension dimension = Dimension::Zone;
    std::vector<std::string> tags;
    Repeat repeat = Repeat::Last;
    int repeat_id = 0;            // for Repeat::Row
    std::string repeat_code;      // for Repeat::Row
};

std::vector<DocumentShape> parse_document_specs(std::string_view text);

// A dimension row that a document writes twice before its closing tag.
struct RepeatedRow {
    Dimension dimension = Dimension::Zone;
    int id = 0;
    std::string_view code;
};

// The row a dimension document repeats, if it repeats one; its code points into the table or the shape.
std::optional<RepeatedRow> repeated_row(const DocumentShape& shape, const std::vector<RuleRow>& table);

// The document's text exactly as published: no declaration, no blanks between tags, in capitals.
std::string build_rule_document(const DocumentShape& shape, const std::vector<RuleRow>& table);

}  // namespace nimbara::rules
