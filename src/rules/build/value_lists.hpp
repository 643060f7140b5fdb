#pragma once
// The lists of values of data/value_lists.tsv: codes with their designations and stored active flags.
#include <string>
#include <string_view>
#include <vector>

#include "rules/build/designations.hpp"

namespace nimbara::rules {

struct ValueListShape {
    struct Row {
        std::string code;
        std::string label_set;  // the designation set that labels the code
        bool active = true;
    };
    std::string function;
    std::vector<Row> rows;  // after row 0, which every list has
    bool repeat_last = true;
};

// Throws std::runtime_error naming the line of a malformed list.
std::vector<ValueListShape> parse_value_lists(std::string_view text);

// The list's text: row 0 (code "0", empty designation, active), then its rows; designations and
// remarks in CDATA, codes and flags plain; mixed case kept.
std::string build_value_list(const ValueListShape& shape, const Designations& designations);

}  // namespace nimbara::rules
