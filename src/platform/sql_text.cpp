#include "platform/sql_text.hpp"

#include <strings.h>

namespace nimbara::platform {

bool changes_schema(std::string_view sql)
{
    constexpr std::string_view blanks = " \t\r\n";
    const auto from = sql.find_first_not_of(blanks);
    if (from == std::string_view::npos) return false;
    const auto word = sql.substr(from, sql.find_first_of(blanks, from) - from);
    const auto is = [&](std::string_view w) {
        return word.size() == w.size() && strncasecmp(word.data(), w.data(), w.size()) == 0;
    };
    return is("CREATE") || is("DROP") || is("ALTER");
}

}  // namespace nimbara::platform
