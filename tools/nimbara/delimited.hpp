#pragma once
// The table formats the listings write: CSV as RFC 4180 has it, TSV without quoting, and a row's
// values as JSON; `db list` and `db export` share them so that both read the same in a spreadsheet.
#include <nlohmann/json.hpp>

#include <iosfwd>
#include <string>
#include <vector>

#include "nimbara/Recordset.hpp"

namespace nimbara::cli {

enum class TableFormat { Csv, Tsv };

// A CSV field, quoted (its quotes doubled) when it holds a comma, a quote, a line break or blanks at
// either end that a spreadsheet would trim.
std::string csv_field(const std::string& text);

// A TSV field: TSV has no quoting, so tabs and line breaks inside a value become blanks.
std::string tsv_field(const std::string& text);

// One record: CSV ends it with CR LF, TSV with LF.
void write_record(std::ostream& out, TableFormat format, const std::vector<std::string>& fields);

// Numbers and yes/no as JSON has them, Null as null, everything else (dates too) as its text.
nlohmann::ordered_json json_value(const FieldValue& value);

}  // namespace nimbara::cli
