// nimbara db init: creates and seeds the database; refuses one that has the tables already.
#include <filesystem>
#include <iostream>
#include <memory>

#include "commands.hpp"
#include "db_command.hpp"
#include "nimbara/Schema.hpp"

namespace nimbara::cli {
namespace {

int init(const std::string& conn_option)
{
    const std::string conn = command_connection(conn_option);
    // A file this command creates is removed again if the creation fails, so nothing half-made stays.
    const auto file = SqliteFileOf(conn);
    std::error_code ec;
    const bool fresh = file && !std::filesystem::exists(*file, ec);
    try {
        auto db = OpenDatabase(conn, OpenMode::Create);
        CreateSchema(*db);
    } catch (...) {
        if (fresh)
            for (const char* suffix : {"", "-wal", "-shm", "-journal"}) std::filesystem::remove(*file + suffix, ec);
        throw;
    }
    std::cout << "created the database " << (file ? *file : std::string("on the PostgreSQL server")) << '\n';
    return 0;
}

}  // namespace

void register_db_init(CLI::App& db, int& status)
{
    auto* cmd = db.add_subcommand("init", "Create the tables, the view and the seed rows in an empty database");
    auto conn = std::make_shared<std::string>();
    add_db_option(*cmd, *conn);
    cmd->callback([conn, &status] { status = run_db_command("init", std::cerr, [&] { return init(*conn); }); });
}

}  // namespace nimbara::cli
