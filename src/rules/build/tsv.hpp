#pragma once
// Reading the tab-separated data files: comment lines start with "#", the first other line names the columns.
#include <cstddef>
#include <string_view>
#include <vector>

namespace nimbara::rules {

struct TsvLine {
    std::size_t number = 0;  // 1-based line number in the file
    std::vector<std::string_view> fields;
};

// The data lines after the header; throws std::runtime_error naming the line whose field count differs.
std::vector<TsvLine> read_tsv(std::string_view text, std::string_view file_name);

}  // namespace nimbara::rules
