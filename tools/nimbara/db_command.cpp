#include "db_command.hpp"

#include <iostream>
#include <ostream>

#include "db_location.hpp"
#include "json_output.hpp"
#include "nimbara/Schema.hpp"

namespace nimbara::cli {

void add_db_option(CLI::App& cmd, std::string& conn)
{
    cmd.add_option("--db", conn,
                   "The database: FILE or sqlite:FILE (SQLite), postgresql://... or Provider=...;Data Source = FILE "
                   "(default: NIMBARA_DB, then Conn of Zartel_Nimbara.Ini in the working folder, then db of "
                   "~/.config/nimbara/config; nimbara db where shows which)");
}

std::string command_connection(const std::string& conn)
{
    return connection_in_force(conn);
}

void warn_if_shared_over_network(const std::string& conn)
{
    const auto file = SqliteFileOf(conn);
    if (!file) return;
    if (const auto fs = NetworkFileSystemOf(*file))
        std::cerr << "nimbara: warning: " << *file << " is on a network file system (" << *fs
                  << "): SQLite's WAL journal needs memory shared on one machine, so stations on other machines "
                     "may corrupt it; give each station its own file, or share a PostgreSQL server\n";
}

std::shared_ptr<Database> open_command_database(const std::string& conn)
{
    const std::string in_force = command_connection(conn);
    warn_if_shared_over_network(in_force);
    return OpenGuiaDatabase(in_force);
}

int run_db_command(const std::string& name, bool json, std::ostream& out, std::ostream& err,
                   const std::function<int()>& body)
{
    try {
        return body();
    } catch (const std::exception& e) {
        const std::string command = "nimbara db " + name;
        err << command << ": " << e.what() << '\n';
        if (json) write_json(out, refusal_json(command, e.what()));
        return 2;
    }
}

int run_db_command(const std::string& name, std::ostream& err, const std::function<int()>& body)
{
    std::ostream none{nullptr};
    return run_db_command(name, false, none, err, body);
}

}  // namespace nimbara::cli
