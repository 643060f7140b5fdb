// nimbara db list: the lines of the stored Guias under filters and an order, with a header line,
// as tab-separated rows, CSV or JSON.
#include <nlohmann/json.hpp>

#include <iostream>
#include <memory>

#include "commands.hpp"
#include "option_checks.hpp"
#include "db_command.hpp"
#include "delimited.hpp"
#include "guia_listing.hpp"

namespace nimbara::cli {
namespace {

struct ListOptions : ListingOptions {
    std::string format = "tsv";
};

int list(const ListOptions& o)
{
    cls_Guia guia(open_command_database(o.conn));
    const auto& columns = listing_columns();
    const bool json = o.format == "json";
    const TableFormat table_format = o.format == "csv" ? TableFormat::Csv : TableFormat::Tsv;
    auto& out = std::cout;
    std::vector<std::size_t> at(columns.size());  // each listed column's place in the store's row
    std::vector<std::string> cells(columns.size());
    bool first = true;
    // Each row is written as it is read, so that a listing of any length takes little memory; the
    // header waits for the store to accept the query, so that a refused listing writes nothing.
    stream_guia_lines(guia, o,
                      {.columns =
                           [&](std::span<const std::string> names) {
                               at = listing_positions(names);
                               if (json)
                                   out << '[';
                               else
                                   write_record(out, table_format, columns);
                           },
                       .row = [&](std::span<FieldValue> values) {
                           if (json) {
                               nlohmann::ordered_json row;
                               for (std::size_t c = 0; c < columns.size(); ++c)
                                   row[columns[c]] = json_value(values[at[c]]);
                               out << (first ? "\n" : ",\n") << row.dump();
                           } else {
                               for (std::size_t c = 0; c < columns.size(); ++c) cells[c] = values[at[c]].text();
                               write_record(out, table_format, cells);
                           }
                           first = false;
                       }});
    if (json) out << "\n]\n";
    return 0;
}

}  // namespace

void register_db_list(CLI::App& db, int& status)
{
    auto* cmd = db.add_subcommand("list", "Print the lines of the stored Guias, one a row with a header line");
    auto o = std::make_shared<ListOptions>();
    add_listing_options(*cmd, *o);
    auto* format = cmd->add_option("--format", o->format, "tsv (default), csv (RFC 4180, as db export writes it) or json")
                       ->check(one_of({"tsv", "csv", "json"}));
    auto json = std::make_shared<bool>(false);
    cmd->add_flag("--json", *json, "The same as --format json");
    cmd->footer("Exit status: 0 listed (no line matching is no error), 2 a filter or order word refused or a "
                "database that cannot be read.\nExamples:\n  nimbara db list --year 2026 --month 11\n"
                "  nimbara db list --client 456 --order \"data desc,guia\" --format csv > lines.csv");
    cmd->callback([o, json, format, &status] {
        status = run_db_command("list", *json || o->format == "json", std::cout, std::cerr, [&] {
            if (*json && format->count() > 0 && o->format != "json")
                throw CommandError("--json and --format " + o->format + " ask for two formats; give one");
            ListOptions chosen = *o;
            if (*json) chosen.format = "json";
            return list(chosen);
        });
    });
}

}  // namespace nimbara::cli
