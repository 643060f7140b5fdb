#include "export_table.hpp"

#include "delimited.hpp"
#include "json_output.hpp"
#include "line_services.hpp"
#include "nimbara/cls_Guia.hpp"

namespace nimbara::cli {

// The listing's columns, then one column per service code holding that service's amount on the
// line (empty when the line has no such service); JSON nests the services of each line instead.
int export_table(const std::shared_ptr<Database>& db, const ListingOptions& o, const std::string& chosen,
                 std::ostream& out)
{
    const LineServices services = read_line_services(*db);
    cls_Guia guia(db);
    const auto& columns = listing_columns();
    const bool json = chosen == "json";
    const TableFormat format = chosen == "tsv" ? TableFormat::Tsv : TableFormat::Csv;
    std::vector<std::size_t> at;
    std::vector<std::string> fields;
    auto rows = nlohmann::ordered_json::array();
    const std::vector<LineService> none;
    stream_guia_lines(guia, o,
                      {.columns =
                           [&](std::span<const std::string> names) {
                               at = listing_positions(names);
                               if (json) return;
                               fields = columns;
                               for (const auto& code : services.codes) fields.push_back("ServEsp_" + code);
                               write_record(out, format, fields);
                           },
                       .row = [&](std::span<FieldValue> values) {
                           const auto found = services.of_line.find(
                               {values[at[2]].integer(), values[at[4]].integer()});  // Req, N_linha
                           const auto& line = found == services.of_line.end() ? none : found->second;
                           if (json) {
                               nlohmann::ordered_json row;
                               for (std::size_t c = 0; c < columns.size(); ++c)
                                   row[columns[c]] = json_value(values[at[c]]);
                               row["servicos"] = nlohmann::ordered_json::array();
                               for (const auto& s : line)
                                   row["servicos"].push_back(
                                       {{"CodServEsp", s.code}, {"Designacao", s.designation}, {"Valor", s.amount}});
                               rows.push_back(std::move(row));
                               return;
                           }
                           fields.clear();
                           for (std::size_t c = 0; c < columns.size(); ++c) fields.push_back(values[at[c]].text());
                           for (const auto& code : services.codes) {
                               std::string amount;
                               for (const auto& s : line)
                                   if (s.code == code) amount = s.amount;
                               fields.push_back(amount);
                           }
                           write_record(out, format, fields);
                       }});
    if (json) write_json(out, rows);
    return 0;
}

}  // namespace nimbara::cli
