#pragma once
// data/rules.tsv and the catalogue documents read the way a person reads them, independent of the
// library's parsers: one row per rule, thirteen text fields, code lists blank-separated; each ITEM of a
// document as its tags and texts in document order.
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nimbara::testing {

struct TableRow {
    std::vector<std::string> f;  // Id Prod Act Min Max Zones Speed Format Pre Disc Scope Sampl Serv
};

std::vector<TableRow> read_rule_table_file();

// The codes of a field; "-" and the empty text give none.
std::vector<std::string> split_blanks(const std::string& s);

using Item = std::vector<std::pair<std::string, std::string>>;  // tag, text
std::vector<Item> read_items(std::string_view document);

}  // namespace nimbara::testing
