// nimbara db ...: the database road. Each subcommand lives in its own cmd_db_*.cpp file.
#include "commands.hpp"

namespace nimbara::cli {

void register_db(CLI::App& app, int& status)
{
    auto* db = app.add_subcommand("db", "Work on the database: create it, read its lists and settings, store clients and Guias, check Guias against its rule tables, print them, import an old one");
    db->require_subcommand(1);
    db->footer("Every db command takes --db CONN. Exit status: that of the command run; 2 when the database cannot "
               "be opened or is not a Guia database.\nnimbara db help COMMAND (or nimbara help db COMMAND) shows a "
               "command's options, exit codes and examples.\nExamples:\n  nimbara db init --db sqlite:shop.db\n"
               "  nimbara db help import");
    register_db_init(*db, status);
    register_db_refs(*db, status);
    register_db_params(*db, status);
    register_db_import(*db, status);
    register_db_list(*db, status);
    register_db_export(*db, status);
    register_db_guia(*db, status);
    register_db_client(*db, status);
    register_db_check(*db, status);
    register_db_print(*db, status);
    register_db_where(*db, status);
    register_db_receive(*db, status);
}

}  // namespace nimbara::cli
