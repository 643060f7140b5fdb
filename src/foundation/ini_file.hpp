#pragma once
// Reading ini files with the rules of the Windows profile reader, and the per-user settings file.
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace nimbara::ini {

// The value of `key` in `section` (both compared without regard to case; the first of each wins),
// blanks around it removed and one pair of enclosing quotes taken off; nothing when the file,
// section or key is missing.
std::optional<std::string> read_value(std::string_view section, std::string_view key, const std::filesystem::path& file);

// read_value, or `default_value` without its trailing blanks when there is none. Like the Windows reader writing into a
// buffer of `buffer_size` characters, the answer keeps at most buffer_size - 1 of them.
std::string GetPrivateProfileString(std::string_view section, std::string_view key, std::string_view default_value,
                                    std::size_t buffer_size, const std::filesystem::path& file);

// The per-user settings file of an application: $XDG_CONFIG_HOME/<application>/settings.ini, with
// ~/.config standing in for an unset or relative XDG_CONFIG_HOME.
std::filesystem::path user_settings_file(std::string_view application);

}  // namespace nimbara::ini
