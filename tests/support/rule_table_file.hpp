#pragma once
// data/rules.tsv read the way a person reads it, independent of the library's parser: one row per
// rule, thirteen text fields, code lists blank-separated.
#include <string>
#include <vector>

namespace nimbara::testing {

struct TableRow {
    std::vector<std::string> f;  // Id Prod Act Min Max Zones Speed Format Pre Disc Scope Sampl Serv
};

std::vector<TableRow> read_rule_table_file();

// The codes of a field; "-" and the empty text give none.
std::vector<std::string> split_blanks(const std::string& s);

}  // namespace nimbara::testing
