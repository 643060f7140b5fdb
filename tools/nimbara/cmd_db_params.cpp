// nimbara db params [set NAME=VALUE...]: the twelve print and barcode settings of the database.
#include <strings.h>

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <memory>

#include "commands.hpp"
#include "db_command.hpp"
#include "json_output.hpp"
#include "nimbara/ImpressaoComum.hpp"
#include "nimbara/cls_Parametro.hpp"

namespace nimbara::cli {
namespace {

struct ParamsOptions {
    std::string conn;
    std::vector<std::string> assignments;
    bool json = false;
};

// A setting without a stored value shows the value the entity reads in its place, marked.
int show(const ParamsOptions& o)
{
    const auto db = open_command_database(o.conn);
    Recordset stored = db->open("SELECT * FROM Tbl_Parametro");
    const bool row = stored.RecordCount() > 0;
    if (row) stored.MoveFirst();
    cls_ParametroA defaults;
    defaults.PreencheObjecto(param::Table{});
    const auto fallback = [&](std::size_t i) {
        const std::array<const std::string*, cls_Parametro::kSettings> values = {
            &defaults.VCod2DFonteSize, &defaults.vCod2DRatio,       &defaults.vCod2DNColunas,
            &defaults.vCod2DNLinhas,   &defaults.vCod2DErroLevel,   &defaults.vCod2DPDFMode,
            &defaults.vCod2DTruncated, &defaults.vCod2DApplyTilde,  &defaults.vGuiaNVias,
            &defaults.vGuiaMargensTopo, &defaults.vGuiaMargensEsquerda, &defaults.vCodTerceiro};
        return *values[i];
    };
    nlohmann::ordered_json settings;
    for (std::size_t i = 0; i < cls_Parametro::kSettings; ++i) {
        const char* name = cls_Parametro::PropertyNames()[i];
        const char* column = cls_Parametro::ColumnNames()[i];
        const bool set = row && !stored[column].is_null();
        const std::string value = set ? stored[column].text() : fallback(i);
        if (o.json)
            settings[name] = {{"value", value}, {"set", set}};
        else
            std::cout << name << '\t' << value << (set ? "\n" : "\tnot set\n");
    }
    if (o.json) write_json(std::cout, nlohmann::ordered_json{{"status", 0}, {"settings", settings}});
    if (!row)
        std::cerr << "nimbara db params: Tbl_Parametro has no row: the values shown are not set, and db print refuses "
                     "until they are (nimbara db params set NAME=VALUE...)\n";
    return 0;
}

// A margin may be given in millimetres ("10mm"); the table keeps twips, 56.7 to the millimetre.
std::string margin_in_twips(const std::string& name, const std::string& value)
{
    if (!value.ends_with("mm")) return value;
    const std::string number = value.substr(0, value.size() - 2);
    char* end = nullptr;
    const double mm = number.empty() ? -1 : std::strtod(number.c_str(), &end);
    if (number.empty() || *end != '\0' || !(mm >= 0 && mm <= 100))
        throw CommandError(name + ": \"" + value + "\" is not a number of millimetres from 0 to 100. Nothing was saved.");
    return std::to_string(static_cast<long>(std::lround(mm * kTwipsPerMm)));
}

int set(const ParamsOptions& o)
{
    const auto db = open_command_database(o.conn);
    cls_Parametro p(db);
    const auto values = p.Properties();
    // A table without a row starts from the factory settings rather than from values that do not print.
    if (db->open("SELECT * FROM Tbl_Parametro").RecordCount() == 0) {
        cls_ParametroA factory = factory_print_settings();
        const std::array<const std::string*, cls_Parametro::kSettings> from = {
            &factory.VCod2DFonteSize, &factory.vCod2DRatio,       &factory.vCod2DNColunas,
            &factory.vCod2DNLinhas,   &factory.vCod2DErroLevel,   &factory.vCod2DPDFMode,
            &factory.vCod2DTruncated, &factory.vCod2DApplyTilde,  &factory.vGuiaNVias,
            &factory.vGuiaMargensTopo, &factory.vGuiaMargensEsquerda, &factory.vCodTerceiro};
        for (std::size_t i = 0; i < cls_Parametro::kSettings; ++i) *values[i] = *from[i];
    }
    for (const auto& a : o.assignments) {
        const auto eq = a.find('=');
        if (eq == std::string::npos || eq == 0) throw CommandError("\"" + a + "\" is not NAME=VALUE");
        const std::string name = a.substr(0, eq);
        std::size_t i = 0;
        while (i < cls_Parametro::kSettings && ::strcasecmp(cls_Parametro::PropertyNames()[i], name.c_str()) != 0) ++i;
        if (i == cls_Parametro::kSettings)
            throw CommandError("unknown setting \"" + name + "\" (the names are those `nimbara db params` prints)");
        const bool margin = i == 9 || i == 10;
        *values[i] = margin ? margin_in_twips(cls_Parametro::PropertyNames()[i], a.substr(eq + 1)) : a.substr(eq + 1);
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
