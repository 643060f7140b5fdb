#include <strings.h>

#include <optional>
#include <string>

#include "nimbara/Database.hpp"
#include "platform/module_loader.hpp"
#include "platform/postgres_database.hpp"
#include "platform/sqlite_database.hpp"

namespace nimbara {
namespace {

std::string_view trim(std::string_view s)
{
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
    return s;
}

bool starts_with_nocase(std::string_view s, std::string_view prefix)
{
    return s.size() >= prefix.size() && ::strncasecmp(s.data(), prefix.data(), prefix.size()) == 0;
}

// "Data Source" of the old OLE DB form, which names the file; other keys are ignored, as the old
// provider's own options mean nothing here.
std::optional<std::string_view> data_source(std::string_view conn)
{
    while (!conn.empty()) {
        const auto end = conn.find(';');
        const auto part = conn.substr(0, end);
        const auto eq = part.find('=');
        if (eq != std::string_view::npos) {
            const auto key = trim(part.substr(0, eq));
            if (key.size() == 11 && ::strncasecmp(key.data(), "Data Source", 11) == 0) return trim(part.substr(eq + 1));
        }
        if (end == std::string_view::npos) break;
        conn.remove_prefix(end + 1);
    }
    return std::nullopt;
}

}  // namespace

namespace platform {

std::shared_ptr<Database> open_postgres(const std::string& conninfo)
{
    decltype(nimbara_postgres_open)* open = nullptr;
    try {
        open = loaded_module("postgresql").entry<decltype(nimbara_postgres_open)>("nimbara_postgres_open");
    } catch (const ModuleError& e) {
        throw DatabaseError(e.what());
    }
    return std::shared_ptr<Database>(open(conninfo));
}

}  // namespace platform

std::optional<std::string> SqliteFileOf(std::string_view conn_text)
{
    const auto conn = trim(conn_text);
    std::optional<std::string_view> path;
    if (starts_with_nocase(conn, "sqlite:"))
        path = trim(conn.substr(7));
    else if (starts_with_nocase(conn, "Provider="))
        path = data_source(conn);
    if (!path || path->empty()) return std::nullopt;
    return std::string(*path);
}

std::shared_ptr<Database> OpenDatabase(std::string_view conn_text, OpenMode mode)
{
    const auto conn = trim(conn_text);
    const auto malformed = [&](std::string_view why) {
        return DatabaseError("malformed connection string \"" + std::string(conn) + "\": " + std::string(why));
    };
    if (starts_with_nocase(conn, "postgresql://") || starts_with_nocase(conn, "postgres://"))
        return platform::open_postgres(std::string(conn));
    if (starts_with_nocase(conn, "postgresql:")) {
        const auto pairs = trim(conn.substr(11));
        if (pairs.empty()) throw malformed("no connection parameters after \"postgresql:\"");
        return platform::open_postgres(std::string(pairs));
    }
    if (const auto file = SqliteFileOf(conn)) return platform::open_sqlite(*file, mode);
    if (starts_with_nocase(conn, "sqlite:")) throw malformed("no file after \"sqlite:\"");
    if (starts_with_nocase(conn, "Provider=")) throw malformed("no \"Data Source\" names the file");
    if (conn.empty()) throw malformed("it is empty");
    throw malformed("expected sqlite:PATH, postgresql://... or Provider=...;Data Source = PATH");
}

}  // namespace nimbara
