// nimbara db params [set NAME=VALUE...]: the twelve print and barcode settings of the database.
#include <strings.h>

#include <iostream>
#include <memory>

#include "commands.hpp"
#include "db_command.hpp"
#include "nimbara/cls_Parametro.hpp"

namespace nimbara::cli {
namespace {

struct ParamsOptions {
    std::string conn;
    std::vector<std::string> assignments;
};

int show(const ParamsOptions& o)
{
    cls_Parametro p(open_command_database(o.conn));
    const auto values = p.Properties();
    for (std::size_t i = 0; i < cls_Parametro::kSettings; ++i)
        std::cout << cls_Parametro::PropertyNames()[i] << '\t' << *values[i] << '\n';
    return 0;
}

int set(const ParamsOptions& o)
{
    cls_Parametro p(open_command_database(o.conn));
    const auto values = p.Properties();
    for (const auto& a : o.assignments) {
        const auto eq = a.find('=');
        if (eq == std::string::npos || eq == 0) throw CommandError("\"" + a + "\" is not NAME=VALUE");
        const std::string name = a.substr(0, eq);
        std::size_t i = 0;
        while (i < cls_Parametro::kSettings && ::strcasecmp(cls_Parametro::PropertyNames()[i], name.c_str()) != 0) ++i;
        if (i == cls_Parametro::kSettings)
            throw CommandError("unknown setting \"" + name + "\" (the names are those `nimbara db params` prints)");
        *values[i] = a.substr(eq + 1);
    }
    try {
        p.DoSave();
    } catch (const ParametroError& e) {
        throw CommandError(std::string(e.what()) + " Nothing was saved.");
    } catch (const std::invalid_argument&) {
        throw CommandError("vGuiaNVias, vCod2DNColunas and vCod2DErroLevel must be whole numbers. Nothing was saved.");
    }
    return 0;
}

}  // namespace

void register_db_params(CLI::App& db, int& status)
{
    auto* cmd = db.add_subcommand("params", "Print the twelve print and barcode settings, one NAME<TAB>VALUE a line");
    auto o = std::make_shared<ParamsOptions>();
    add_db_option(*cmd, o->conn);
    auto* set_cmd = cmd->add_subcommand("set", "Check and save settings given as NAME=VALUE");
    set_cmd->add_option("ASSIGNMENT", o->assignments, "NAME=VALUE, NAME one of the names `params` prints")->required();
    add_db_option(*set_cmd, o->conn);
    set_cmd->callback([o, &status] { status = run_db_command("params set", std::cerr, [&] { return set(*o); }); });
    cmd->callback([set_cmd, o, &status] {
        if (set_cmd->parsed()) return;
        status = run_db_command("params", std::cerr, [&] { return show(*o); });
    });
}

}  // namespace nimbara::cli
