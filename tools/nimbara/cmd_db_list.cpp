// nimbara db list: the lines of the stored Guias under filters and an order, with a header line,
// as tab-separated rows, CSV or JSON.
#include <nlohmann/json.hpp>

#include <iostream>
#include <memory>
#include <variant>

#include "commands.hpp"
#include "option_checks.hpp"
#include "db_command.hpp"
#include "guia_listing.hpp"

namespace nimbara::cli {
namespace {

struct ListOptions : ListingOptions {
    std::string format = "tsv";
};

// A tab-separated cell must not break its row: tabs and line breaks become blanks.
std::string tsv_cell(const std::string& text)
{
    std::string t = text;
    for (char& c : t)
        if (c == '\t' || c == '\n' || c == '\r') c = ' ';
    return t;
}

// Quoted when a spreadsheet would otherwise split or trim the cell, with its quotes doubled.
std::string csv_cell(const std::string& text)
{
    if (text.find_first_of(",\"\r\n") == std::string::npos && (text.empty() || (text.front() != ' ' && text.back() != ' ')))
        return text;
    std::string out = "\"";
    for (char c : text) {
        if (c == '"') out += '"';
        out += c;
    }
    return out + '"';
}

// Numbers and yes/no as JSON has them, Null as null, everything else (dates too) as its text.
nlohmann::ordered_json json_value(const FieldValue& v)
{
    const auto& a = v.alternatives();
    if (v.is_null()) return nullptr;
    if (const auto* i = std::get_if<std::int64_t>(&a)) return *i;
    if (const auto* d = std::get_if<double>(&a)) return *d;
    if (const auto* b = std::get_if<bool>(&a)) return *b;
    return v.text();
}

void write_row(std::ostream& out, const std::string& format, const std::vector<std::string>& cells)
{
    const bool csv = format == "csv";
    for (std::size_t c = 0; c < cells.size(); ++c)
        out << (c ? (csv ? "," : "\t") : "") << (csv ? csv_cell(cells[c]) : tsv_cell(cells[c]));
    // Spreadsheets take a CSV record's end as CR LF.
    out << (csv ? "\r\n" : "\n");
}

int list(const ListOptions& o)
{
    cls_Guia guia(open_command_database(o.conn));
    const auto& columns = listing_columns();
    const bool json = o.format == "json";
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
                                   write_row(out, o.format, columns);
                           },
                       .row = [&](std::span<FieldValue> values) {
                           if (json) {
                               nlohmann::ordered_json row;
                               for (std::size_t c = 0; c < columns.size(); ++c)
                                   row[columns[c]] = json_value(values[at[c]]);
                               out << (first ? "\n" : ",\n") << row.dump();
                           } else {
                               for (std::size_t c = 0; c < columns.size(); ++c) cells[c] = values[at[c]].text();
                               write_row(out, o.format, cells);
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
    cmd->add_option("--format", o->format, "tsv (default), csv or json")->check(one_of({"tsv", "csv", "json"}));
    cmd->footer("Exit status: 0 listed (no line matching is no error), 2 a filter or order word refused or a "
                "database that cannot be read.\nExamples:\n  nimbara db list --year 2026 --month 11\n"
                "  nimbara db list --client 456 --order \"data desc,guia\" --format csv > lines.csv");
    cmd->callback([o, &status] { status = run_db_command("list", std::cerr, [&] { return list(*o); }); });
}

}  // namespace nimbara::cli
