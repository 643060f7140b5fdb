#include "db_location.hpp"

#include <strings.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>

#include "db_command.hpp"
#include "nimbara/Notifier.hpp"
#include "nimbara/mdl_Biz.hpp"

namespace nimbara::cli {
namespace {

constexpr const char* kIniFile = "Zartel_Nimbara.Ini";

std::string trimmed(std::string_view s)
{
    const auto first = s.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) return {};
    const auto last = s.find_last_not_of(" \t\r");
    return std::string(s.substr(first, last - first + 1));
}

bool starts_with_nocase(std::string_view s, std::string_view prefix)
{
    return s.size() >= prefix.size() && ::strncasecmp(s.data(), prefix.data(), prefix.size()) == 0;
}

// The library's ini reader tells a missing file to the notifier in the old message box's words;
// here a missing Conn only means the next place is asked.
class Silent final : public Notifier {
public:
    Silent() { set_notifier(this); }
    ~Silent() override { set_notifier(nullptr); }
    Silent(const Silent&) = delete;
    Silent& operator=(const Silent&) = delete;
    void message(MessageIcon, std::string_view, std::string_view) override {}
    void busy(bool) override {}
    void progress(int) override {}
};

DbPlace ini_place()
{
    std::error_code ec;
    DbPlace place{(std::filesystem::current_path(ec) / kIniFile).string(), "[Nimbarauto] Conn", std::nullopt, {}};
    const Silent silent;
    if (Le_Ini()) place.value = gConnString;
    return place;
}

// `db = CONN` lines; blank lines and lines beginning with # are skipped.
DbPlace config_place()
{
    DbPlace place{config_file_path(), "db", std::nullopt, {}};
    std::error_code ec;
    if (!std::filesystem::exists(place.name, ec)) return place;
    if (std::filesystem::is_directory(place.name, ec)) {
        place.problem = place.name + ": is a folder, not a file";
        return place;
    }
    std::ifstream in(place.name);
    if (!in) {
        place.problem = place.name + ": cannot be read: " + std::strerror(errno);
        return place;
    }
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        const std::string text = trimmed(line);
        if (text.empty() || text.front() == '#') continue;
        const auto where = place.name + ":" + std::to_string(number) + ": ";
        const auto eq = text.find('=');
        if (eq == std::string::npos) {
            place.problem = where + "expected KEY = VALUE, found \"" + text + "\"";
            place.value.reset();
            return place;
        }
        const std::string key = trimmed(text.substr(0, eq));
        std::string value = trimmed(text.substr(eq + 1));
        if (key != "db") {
            place.problem = where + "unknown key \"" + key + "\" (the file knows db)";
            place.value.reset();
            return place;
        }
        if (value.size() >= 2 && value.front() == '"' && value.back() == '"') value = value.substr(1, value.size() - 2);
        if (!value.empty()) place.value = value;
    }
    return place;
}

}  // namespace

std::string config_file_path()
{
    const char* xdg = std::getenv("XDG_CONFIG_HOME");
    std::filesystem::path base;
    if (xdg && *xdg && std::filesystem::path(xdg).is_absolute()) base = xdg;
    else base = std::filesystem::path(std::getenv("HOME") ? std::getenv("HOME") : "") / ".config";
    return (base / "nimbara" / "config").string();
}

DbLocation locate_database(const std::string& option)
{
    DbLocation found;
    found.places.push_back({"--db", "", option.empty() ? std::nullopt : std::optional(option), {}});
    const char* env = std::getenv("NIMBARA_DB");
    found.places.push_back({"NIMBARA_DB", "", env && *env ? std::optional<std::string>(env) : std::nullopt, {}});
    found.places.push_back(ini_place());
    found.places.push_back(config_place());
    for (std::size_t i = 0; i < found.places.size() && !found.in_force; ++i)
        if (found.places[i].value) found.in_force = i;
    return found;
}

std::string connection_of(const std::string& text)
{
    const std::string conn = trimmed(text);
    for (std::string_view known : {"sqlite:", "postgresql:", "postgres://", "Provider="})
        if (starts_with_nocase(conn, known)) return conn;
    if (const auto scheme = conn.find("://"); scheme != std::string::npos && scheme > 0 &&
                                              conn.find('/') == scheme + 1)
        throw CommandError("\"" + conn.substr(0, scheme) + "://\" names no kind of database this program opens "
                           "(sqlite:FILE, a plain FILE, postgresql://...)");
    return "sqlite:" + conn;
}

std::string connection_in_force(const std::string& option)
{
    if (!option.empty()) return connection_of(option);
    const DbLocation found = locate_database(option);
    for (const auto& place : found.places) {
        if (!place.problem.empty()) throw CommandError(place.problem);
        if (place.value) return connection_of(*place.value);
    }
    throw CommandError("no database named: give --db CONN, set NIMBARA_DB, put Conn in section [Nimbarauto] of "
                       "Zartel_Nimbara.Ini in the working folder, or write db = CONN in " + config_file_path());
}

std::string shown_connection(const std::string& conn)
{
    static const std::regex uri_password(R"(^(postgres(?:ql)?://[^:@/]*:)[^@/]*@)", std::regex::icase);
    static const std::regex pair_password(R"((^|[\s:])(password\s*=\s*)('[^']*'|\S+))", std::regex::icase);
    std::string shown = std::regex_replace(conn, uri_password, "$1****@");
    return std::regex_replace(shown, pair_password, "$1$2****");
}

}  // namespace nimbara::cli
