// nimbara db export: the lines of the stored Guias as db list selects them, with their special
// services: CSV (RFC 4180), TSV or JSON, or the library's old text with --format legacy.
#include <iostream>
#include <memory>
#include <optional>

#include "commands.hpp"
#include "db_command.hpp"
#include "delimited.hpp"
#include "guia_listing.hpp"
#include "json_output.hpp"
#include "line_services.hpp"
#include "export_table.hpp"
#include "option_checks.hpp"

namespace nimbara::cli {
namespace {

struct ExportOptions : ListingOptions {
    std::string format = "csv";
    std::optional<std::string> sep;
};

// A value must not break its line: the separator and line breaks inside it become blanks.
std::string legacy_cell(std::string text, const std::string& sep)
{
    for (std::size_t at = 0; (at = text.find(sep, at)) != std::string::npos;) text.replace(at, sep.size(), " ");
    for (char& c : text)
        if (c == '\n' || c == '\r') c = ' ';
    return text;
}

// The old text: every value followed by the separator, then getRSServEspExport's text of the line.
int export_legacy(const ExportOptions& o, std::ostream& out)
{
    const std::string sep = o.sep.value_or(";");
    if (sep.empty()) throw CommandError("--sep must not be empty");
    cls_Guia guia(open_command_database(o.conn));
    Recordset rs = guia_lines(guia, o);
    const auto& columns = listing_columns();
    for (const auto& c : columns) out << c << sep;
    out << "ServicosEspeciais\n";
    for (; !rs.IsEOF(); rs.MoveNext()) {
        for (const auto& c : columns) out << legacy_cell(rs[c].text(), sep) << sep;
        const auto n_req = static_cast<std::int32_t>(rs["Req"].integer());
        const auto n_linha = static_cast<std::int32_t>(rs["N_linha"].integer());
        std::string services = guia.getRSServEspExport(n_req, n_linha, sep);
        if (services.empty()) throw CommandError(guia.LastError());
        out << services << '\n';
    }
    return 0;
}

int export_lines(const ExportOptions& o, bool json_flag, bool format_given)
{
    if (json_flag && format_given && o.format != "json")
        throw CommandError("--json and --format " + o.format + " ask for two formats; give one");
    ExportOptions chosen = o;
    if (json_flag) chosen.format = "json";
    if (chosen.sep && chosen.format != "legacy")
        throw CommandError("--sep belongs to --format legacy; csv is separated by commas and tsv by tabs");
    if (chosen.format == "legacy") return export_legacy(chosen, std::cout);
    return export_table(open_command_database(chosen.conn), chosen, chosen.format, std::cout);
}

}  // namespace

void register_db_export(CLI::App& db, int& status)
{
    auto* cmd = db.add_subcommand("export", "Write the lines of the stored Guias with their special services: CSV "
                                            "(default), TSV, JSON, or the old separated text");
    auto o = std::make_shared<ExportOptions>();
    auto json = std::make_shared<bool>(false);
    add_listing_options(*cmd, *o);
    auto* format = cmd->add_option("--format", o->format,
                                   "csv (default; RFC 4180, UTF-8, CR LF), tsv, json, or legacy (the old text, "
                                   "values separated by --sep)")
                       ->check(one_of({"csv", "tsv", "json", "legacy"}));
    cmd->add_flag("--json", *json, "The same as --format json");
    cmd->add_option("--sep", o->sep, "The separator of --format legacy (default: ;)");
    cmd->footer("CSV and TSV have the columns of db list, then ServEsp_CODE for every special-service code of the "
                "database (those the rules use, on a database that db init made: 01 to 07 and 10 to 15): the service's amount on that line in cents, "
                "digits only, as the Guia file's Valor; empty when the line has no such service. JSON nests each "
                "line's services as \"servicos\": [{\"CodServEsp\", \"Designacao\", \"Valor\"}].\n"
                "Exit status: 0 written, 2 a refused filter or option, or the database could not be read.\n"
                "Examples:\n  nimbara db export --year 2026 > guias.csv\n"
                "  nimbara db export --format legacy --sep ';'");
    cmd->callback([o, json, format, &status] {
        const bool as_json = *json || o->format == "json";
        status = run_db_command("export", as_json, std::cout, std::cerr,
                                [&] { return export_lines(*o, *json, format->count() > 0); });
    });
}

}  // namespace nimbara::cli
