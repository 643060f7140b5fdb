// Where the library and the program write when nobody names a place: never where they are installed.
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

#include "nimbara/GlobalFrameWork.hpp"

namespace nimbara::GlobalFrameWork {
namespace {

std::filesystem::path home_folder()
{
    if (const char* home = std::getenv("HOME"); home && *home) return home;
    // A service without HOME still has a home in the password database.
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found && found->pw_dir &&
        *found->pw_dir)
        return found->pw_dir;
    return {};
}

}  // namespace

std::filesystem::path DefaultPrintLog()
{
    // A relative XDG_STATE_HOME is to be ignored, as the base directory rules say.
    const char* state = std::getenv("XDG_STATE_HOME");
    std::filesystem::path base;
    if (state && *state && std::filesystem::path(state).is_absolute())
        base = state;
    else if (const auto home = home_folder(); !home.empty())
        base = home / ".local" / "state";
    else {
        std::error_code ec;  // a working folder that is gone leaves the bare name
        return std::filesystem::current_path(ec) / "nimbara.log";
    }
    return base / "nimbara" / "nimbara.log";
}

std::filesystem::path DefaultOutputFolder() { return std::filesystem::current_path(); }

}  // namespace nimbara::GlobalFrameWork
