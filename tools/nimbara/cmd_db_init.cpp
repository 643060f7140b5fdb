// nimbara db init: creates and seeds the database; refuses one that has the tables already.
#include <filesystem>
#include <iostream>
#include <memory>

#include "commands.hpp"
#include "db_command.hpp"
#include "nimbara/Schema.hpp"

namespace nimbara::cli {
namespace {

struct InitOptions {
    std::string conn;
    bool into_existing = false;
};

int init(const InitOptions& o)
{
    const std::string& conn_option = o.conn;
    const std::string conn = command_connection(conn_option);
    // A file this command creates is removed again if the creation fails, so nothing half-made stays.
    const auto file = SqliteFileOf(conn);
    std::error_code ec;
    const bool fresh = file && !std::filesystem::exists(*file, ec);
    warn_if_shared_over_network(conn);
    try {
        auto db = OpenDatabase(conn, OpenMode::Create);
        CreateSchema(*db, o.into_existing ? SchemaPlace::IntoExisting : SchemaPlace::EmptyOnly);
    } catch (const ForeignTablesError& e) {
        throw CommandError(std::string(e.what()) + " (give --into-existing to add the Guia tables beside them)");
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
    auto o = std::make_shared<InitOptions>();
    add_db_option(*cmd, o->conn);
    cmd->add_flag("--into-existing", o->into_existing,
                  "Add the Guia tables to a database that holds tables of another program");
    cmd->footer("Exit status: 0 created, 2 no database named, a database that holds the tables already, another "
                "program's tables without --into-existing, or a database that cannot be opened or created (nothing is "
                "created then).\nExamples:\n  nimbara db init --db sqlite:shop.db\n"
                "  nimbara db init --db postgresql://clerk@server/guias");
    cmd->callback([o, &status] { status = run_db_command("init", std::cerr, [&] { return init(*o); }); });
}

}  // namespace nimbara::cli
