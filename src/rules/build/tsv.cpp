#include "rules/build/tsv.hpp"

#include <stdexcept>
#include <string>

namespace nimbara::rules {

std::vector<TsvLine> read_tsv(std::string_view text, std::string_view file_name)
{
    std::vector<TsvLine> lines;
    std::size_t columns = 0;
    std::size_t number = 0;
    std::size_t pos = 0;
    while (pos < text.size()) {
        auto end = text.find('\n', pos);
        if (end == std::string_view::npos) end = text.size();
        std::string_view line = text.substr(pos, end - pos);
        pos = end + 1;
        ++number;
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        if (line.empty() || line.front() == '#') continue;

        TsvLine parsed{number, {}};
        std::size_t start = 0;
        while (true) {
            const auto tab = line.find('\t', start);
            parsed.fields.push_back(line.substr(start, tab == std::string_view::npos ? std::string_view::npos : tab - start));
            if (tab == std::string_view::npos) break;
            start = tab + 1;
        }
        if (columns == 0) {
            columns = parsed.fields.size();  // the header
            continue;
        }
        if (parsed.fields.size() != columns)
            throw std::runtime_error(std::string(file_name) + ":" + std::to_string(number) + ": expected " +
                                     std::to_string(columns) + " fields, found " + std::to_string(parsed.fields.size()));
        lines.push_back(std::move(parsed));
    }
    return lines;
}

}  // namespace nimbara::rules
