#include "db_command.hpp"

#include <ostream>

#include "json_output.hpp"
#include "nimbara/Schema.hpp"
#include "nimbara/mdl_Biz.hpp"

namespace nimbara::cli {

void add_db_option(CLI::App& cmd, std::string& conn)
{
    cmd.add_option("--db", conn,
                   "The database: sqlite:FILE, postgresql://... or Provider=...;Data Source = FILE "
                   "(default: Conn of Zartel_Nimbara.Ini in the working directory)");
}

std::string command_connection(const std::string& conn)
{
    if (!conn.empty()) return conn;
    if (!Le_Ini())
        throw CommandError("no database: give --db, or a Conn in section [Nimbarauto] of Zartel_Nimbara.Ini "
                           "in the working directory");
    return gConnString;
}

std::shared_ptr<Database> open_command_database(const std::string& conn)
{
    return OpenGuiaDatabase(command_connection(conn));
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
