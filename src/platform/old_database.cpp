#include "platform/old_database.hpp"

#include <cstdio>

#include "platform/jet_source.hpp"
#include "platform/module_loader.hpp"
#include "platform/sqlite_source.hpp"

namespace nimbara::platform {

std::string to_string(const OldDateTime& value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", value.year, value.month, value.day, value.hour,
                  value.minute, value.second);
    return text;
}

std::unique_ptr<OldDatabase> open_jet_database(const std::filesystem::path& file)
{
    decltype(nimbara_jet_open)* open = nullptr;
    try {
        open = loaded_module("jet").entry<decltype(nimbara_jet_open)>("nimbara_jet_open");
    } catch (const ModuleError& e) {
        throw OldDatabaseError("cannot read Jet file \"" + file.string() + "\": " + e.what());
    }
    return std::unique_ptr<OldDatabase>(open(file));
}

std::unique_ptr<OldDatabase> open_old_database(const std::filesystem::path& file)
{
    return is_sqlite_file(file) ? open_sqlite_source(file) : open_jet_database(file);
}

}  // namespace nimbara::platform
