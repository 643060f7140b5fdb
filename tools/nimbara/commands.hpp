#pragma once
// Each command lives in its own file and registers itself here; a command's callback sets the exit status.
#include <CLI/CLI.hpp>

namespace nimbara::cli {

void register_document(CLI::App& app, int& status);
void register_check_lines(CLI::App& app, int& status);
void register_print(CLI::App& app, int& status);
void register_check(CLI::App& app, int& status);
void register_form(CLI::App& app, int& status);
void register_printers(CLI::App& app, int& status);
void register_read(CLI::App& app, int& status);
void register_codes(CLI::App& app, int& status);
void register_db(CLI::App& app, int& status);
void register_db_init(CLI::App& db, int& status);
void register_db_refs(CLI::App& db, int& status);
void register_db_params(CLI::App& db, int& status);
void register_db_import(CLI::App& db, int& status);
void register_db_list(CLI::App& db, int& status);
void register_db_export(CLI::App& db, int& status);
void register_db_guia(CLI::App& db, int& status);
void register_db_client(CLI::App& db, int& status);
void register_db_check(CLI::App& db, int& status);
void register_db_print(CLI::App& db, int& status);
void register_db_where(CLI::App& db, int& status);
void register_users(CLI::App& app, int& status);
void register_serve(CLI::App& app, int& status);
void register_db_receive(CLI::App& db, int& status);

inline void register_commands(CLI::App& app, int& status)
{
    register_document(app, status);
    register_check_lines(app, status);
    register_print(app, status);
    register_check(app, status);
    register_form(app, status);
    register_printers(app, status);
    register_read(app, status);
    register_codes(app, status);
    register_db(app, status);
    register_serve(app, status);
    register_users(app, status);
}

}  // namespace nimbara::cli
