#include "foundation/ini_file.hpp"

#include <cstdlib>
#include <fstream>

#include "foundation/chars.hpp"
#include "foundation/text.hpp"

namespace nimbara::ini {
namespace {

bool same_ignoring_case(std::string_view a, std::string_view b)
{
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
        if (lower(a[i]) != lower(b[i])) return false;
    }
    return true;
}

std::string cut(std::string_view value, std::size_t buffer_size)
{
    return buffer_size == 0 ? std::string() : chars::left(value, buffer_size - 1);
}

std::string_view unquote(std::string_view v)
{
    if (v.size() >= 2 && (v.front() == '"' || v.front() == '\'') && v.back() == v.front()) return v.substr(1, v.size() - 2);
    return v;
}

}  // namespace

std::optional<std::string> read_value(std::string_view section, std::string_view key, const std::filesystem::path& file)
{
    std::ifstream in(file);
    std::string line;
    bool in_section = false;
    while (in && std::getline(in, line)) {
        const std::string_view l = text::trim(line);
        if (l.empty() || l.front() == ';') continue;
        if (l.front() == '[') {
            if (in_section) break;  // only the first section of that name is read
            const auto close = l.find(']');
            in_section = close != std::string_view::npos && same_ignoring_case(text::trim(l.substr(1, close - 1)), section);
            continue;
        }
        const auto eq = l.find('=');
        if (in_section && eq != std::string_view::npos && same_ignoring_case(text::trim(l.substr(0, eq)), key))
            return std::string(unquote(text::trim(l.substr(eq + 1))));
    }
    return std::nullopt;
}

std::string GetPrivateProfileString(std::string_view section, std::string_view key, std::string_view default_value,
                                    std::size_t buffer_size, const std::filesystem::path& file)
{
    if (auto value = read_value(section, key, file)) return cut(*value, buffer_size);
    auto d = default_value;
    while (!d.empty() && d.back() == ' ') d.remove_suffix(1);
    return cut(d, buffer_size);
}

std::filesystem::path user_settings_file(std::string_view application)
{
    std::filesystem::path base;
    if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg != nullptr && std::filesystem::path(xdg).is_absolute())
        base = xdg;
    else if (const char* home = std::getenv("HOME"); home != nullptr)
        base = std::filesystem::path(home) / ".config";
    return base / std::string(application) / "settings.ini";
}

}  // namespace nimbara::ini
