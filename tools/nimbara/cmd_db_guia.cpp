// nimbara db save GUIA.json | db show N_REQ | db delete N_REQ: Guia files in and out of the database.
#include <iostream>
#include <memory>

#include "commands.hpp"
#include "db_command.hpp"
#include "guia_command.hpp"
#include "guia_json.hpp"
#include "json_output.hpp"
#include "nimbara/cls_Guia_Cabecalho.hpp"
#include "nimbara/cls_Impressao.hpp"
#include "nimbara/guia_file.hpp"
#include "nimbara/guia_store.hpp"

namespace nimbara::cli {
namespace {

struct GuiaOptions {
    std::string conn;
    std::string file;
    std::int32_t n_req = 0;
    bool json = false;
};

int save(const GuiaOptions& o)
{
    const GuiaFile file = read_guia_input(o.file);
    const auto db = open_command_database(o.conn);
    const SavedGuia saved = save_guia_file(db, file, o.file == "-" ? "<stdin>" : o.file);
    if (!o.json) std::cout << saved.N_Req << '\t' << saved.N_Req2 << '\t' << saved.Id_Req_Anual << '\n';
    // Stored all the same: the site learns now rather than at the counter.
    const auto problems = stored_print_problems(db, saved.N_Req);
    for (const auto& p : problems)
        std::cerr << "nimbara db save: warning: Guia " << saved.N_Req << " will not print by the database edition: "
                  << p.place << ": " << p.what << '\n';
    if (o.json) write_json(std::cout, saved_guia_json(o.file, saved, problems));
    return 0;
}

int show(const GuiaOptions& o)
{
    std::cout << write_guia_file(load_guia_file(open_command_database(o.conn), o.n_req));
    return 0;
}

int remove(const GuiaOptions& o)
{
    const auto deleted = delete_guia(open_command_database(o.conn), o.n_req, true);
    if (o.json) {
        write_json(std::cout, nlohmann::ordered_json{{"command", "nimbara db delete"}, {"status", 0}, {"deleted", deleted}});
    } else {
        const auto lines = deleted["lines"].get<std::int64_t>(), services = deleted["services"].get<std::int64_t>();
        std::cout << "deleted Guia " << o.n_req << " of client " << deleted["cod_cliente"].get<std::string>() << " \""
                  << deleted["nome"].get<std::string>() << "\" with " << lines
                  << (lines == 1 ? " line and " : " lines and ") << services
                  << (services == 1 ? " service\n" : " services\n");
    }
    return 0;
}

}  // namespace

void register_db_guia(CLI::App& db, int& status)
{
    auto o = std::make_shared<GuiaOptions>();
    auto* save_cmd = db.add_subcommand("save", "Store a Guia file as a new Guia with fresh numbers; print N_Req, N_Req2 and Id_Req_Anual");
    save_cmd->add_option("GUIA", o->file, "The Guia file (JSON), as check and print read it; - reads standard input")->required();
    add_db_option(*save_cmd, o->conn);
    save_cmd->add_flag("--json", o->json,
                       "Write {\"input\", \"status\", \"N_Req\", \"N_Req2\", \"Id_Req_Anual\", \"not_printable\"} as JSON");
    save_cmd->footer("Exit status: 0 stored (a warning names what would keep it from printing), 2 a refused file or "
                     "value, or an unknown client or contract (nothing is stored).\nExamples:\n"
                     "  nimbara db save examples/valid-guia.json\n  nimbara db save - < guia.json");
    save_cmd->callback([o, &status] {
        status = run_db_command("save", o->json, std::cout, std::cerr, [&] { return save(*o); });
    });

    auto* show_cmd = db.add_subcommand("show", "Write a stored Guia as a Guia file");
    show_cmd->add_option("N_REQ", o->n_req, "The Guia's number")->required();
    add_db_option(*show_cmd, o->conn);
    show_cmd->footer("Exit status: 0 written, 2 no such Guia or a database that cannot be read.\nExample:\n"
                     "  nimbara db show 12 > guia.json");
    show_cmd->callback([o, &status] { status = run_db_command("show", std::cerr, [&] { return show(*o); }); });

    auto* delete_cmd = db.add_subcommand("delete", "Delete a stored Guia with its lines and services; print what went");
    delete_cmd->add_option("N_REQ", o->n_req, "The Guia's number")->required();
    add_db_option(*delete_cmd, o->conn);
    delete_cmd->add_flag("--json", o->json, "Write what was deleted as one JSON document");
    delete_cmd->footer("Exit status: 0 deleted, 2 no such Guia or a database that cannot be written (nothing is "
                       "deleted).\nExamples:\n  nimbara db delete 12\n  nimbara db delete 12 --json");
    delete_cmd->callback([o, &status] {
        status = run_db_command("delete", o->json, std::cout, std::cerr, [&] { return remove(*o); });
    });
}

}  // namespace nimbara::cli
