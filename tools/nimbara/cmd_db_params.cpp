// nimbara db params [set NAME=VALUE...]: the twelve print and barcode settings of the database.
#include <strings.h>

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <memory>

#include "commands.hpp"
#include "db_command.hpp"
#include "json_output.hpp"
#include "settings_json.hpp"
#include "nimbara/ImpressaoComum.hpp"
#include "nimbara/cls_Parametro.hpp"

namespace nimbara::cli {
namespace {

struct ParamsOptions {
    std::string conn;
    std::vector<std::string> assignments;
    bool json = false;
};

int show(const ParamsOptions& o)
{
    const auto db = open_command_database(o.conn);
    const auto settings = settings_json(db);
    if (o.json)
        write_json(std::cout, nlohmann::ordered_json{{"status", 0}, {"settings", settings}});
    else
        for (const auto& [name, s] : settings.items())
            std::cout << name << '\t' << s["value"].get<std::string>() << (s["set"].get<bool>() ? "\n" : "\tnot set\n");
    if (db->open("SELECT * FROM Tbl_Parametro").RecordCount() == 0)
        std::cerr << "nimbara db params: Tbl_Parametro has no row: the values shown are not set, and db print refuses "
                     "until they are (nimbara db params set NAME=VALUE...)\n";
    return 0;
}

int set(const ParamsOptions& o)
{
    std::vector<std::pair<std::string, std::string>> assignments;
    for (const auto& a : o.assignments) {
        const auto eq = a.find('=');
        if (eq == std::string::npos || eq == 0) throw CommandError("\"" + a + "\" is not NAME=VALUE");
        assignments.emplace_back(a.substr(0, eq), a.substr(eq + 1));
    }
    save_settings(open_command_database(o.conn), assignments);
    return 0;
}

}  // namespace

void register_db_params(CLI::App& db, int& status)
{
    auto* cmd = db.add_subcommand("params", "Print the twelve print and barcode settings, one NAME<TAB>VALUE a line; "
                                            "a setting that is not stored is marked \"not set\" in a third column");
    auto o = std::make_shared<ParamsOptions>();
    add_db_option(*cmd, o->conn);
    cmd->add_flag("--json", o->json,
                  "Write the settings as one JSON document: {\"status\", \"settings\": {NAME: {\"value\", \"set\"}}}");
    cmd->footer("Exit status: 0 printed, 2 a database that cannot be read.\nExamples:\n  nimbara db params\n"
                "  nimbara db params set vGuiaNVias=2");
    auto* set_cmd = cmd->add_subcommand("set", "Check and save settings given as NAME=VALUE");
    set_cmd->add_option("ASSIGNMENT", o->assignments, "NAME=VALUE, NAME one of the names `params` prints")->required();
    set_cmd->footer("Margins (vGuiaMargensTopo, vGuiaMargensEsquerda) are whole twips, 567 to 10 millimetres, or "
                    "millimetres written with \"mm\" (10mm). Every setting is checked by the rules printing reads it "
                    "with; a refused one saves nothing.\nExit status: 0 saved, 2 a refused setting or a database that "
                    "cannot be written (nothing is saved).\nExample:\n  nimbara db params set vGuiaNVias=2 "
                    "vGuiaMargensTopo=10mm");
    add_db_option(*set_cmd, o->conn);
    set_cmd->callback([o, &status] { status = run_db_command("params set", std::cerr, [&] { return set(*o); }); });
    cmd->callback([set_cmd, o, &status] {
        if (set_cmd->parsed()) return;
        status = run_db_command("params", o->json, std::cout, std::cerr, [&] { return show(*o); });
    });
}

}  // namespace nimbara::cli
