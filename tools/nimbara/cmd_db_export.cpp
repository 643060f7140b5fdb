// nimbara db export: the lines of the stored Guias as db list selects them, each followed by its
// special services, every value separated by --sep.
#include <iostream>
#include <memory>

#include "commands.hpp"
#include "db_command.hpp"
#include "guia_listing.hpp"

namespace nimbara::cli {
namespace {

struct ExportOptions : ListingOptions {
    std::string sep = ";";
};

// A value must not break its line: the separator and line breaks inside it become blanks.
std::string cell(std::string text, const std::string& sep)
{
    for (std::size_t at = 0; (at = text.find(sep, at)) != std::string::npos;) text.replace(at, sep.size(), " ");
    for (char& c : text)
        if (c == '\n' || c == '\r') c = ' ';
    return text;
}

int export_lines(const ExportOptions& o)
{
    if (o.sep.empty()) throw CommandError("--sep must not be empty");
    cls_Guia guia(open_command_database(o.conn));
    Recordset rs = guia_lines(guia, o);
    const auto& columns = listing_columns();
    auto& out = std::cout;
    for (const auto& c : columns) out << c << o.sep;
    out << "ServicosEspeciais\n";
    for (; !rs.IsEOF(); rs.MoveNext()) {
        for (const auto& c : columns) out << cell(rs[c].text(), o.sep) << o.sep;
        const auto n_req = static_cast<std::int32_t>(rs["Req"].integer());
        const auto n_linha = static_cast<std::int32_t>(rs["N_linha"].integer());
        std::string services = guia.getRSServEspExport(n_req, n_linha, o.sep);
        if (services.empty()) throw CommandError(guia.LastError());
        out << services << '\n';
    }
    return 0;
}

}  // namespace

void register_db_export(CLI::App& db, int& status)
{
    auto* cmd = db.add_subcommand("export", "Print the lines of the stored Guias with their special services, "
                                            "values separated by --sep, with a header line");
    auto o = std::make_shared<ExportOptions>();
    add_listing_options(*cmd, *o);
    cmd->add_option("--sep", o->sep, "The separator (default: ;)");
    cmd->footer("Exit status: 0 exported (no line matching is no error), 2 a filter or order word refused or a "
                "database that cannot be read.\nExamples:\n  nimbara db export --year 2026 > lines.txt\n"
                "  nimbara db export --month 11 --sep \"|\"");
    cmd->callback([o, &status] { status = run_db_command("export", std::cerr, [&] { return export_lines(*o); }); });
}

}  // namespace nimbara::cli
