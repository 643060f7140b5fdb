#include "platform/old_database.hpp"

#include <cstdio>

namespace nimbara::platform {

std::string to_string(const OldDateTime& value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", value.year, value.month, value.day, value.hour,
                  value.minute, value.second);
    return text;
}

}  // namespace nimbara::platform
