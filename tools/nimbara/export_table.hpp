#pragma once
// The export of the listed lines with their special services as a table (CSV, TSV or JSON), which
// `db export` writes and the web API answers.
#include <iosfwd>
#include <memory>
#include <string>

#include "guia_listing.hpp"
#include "nimbara/Database.hpp"

namespace nimbara::cli {

// The listing's columns, then one column per service code holding that service's amount on the
// line (empty when the line has no such service); JSON ("json") nests the services of each line
// instead. `format` is "csv", "tsv" or "json". Throws CommandError as guia_lines does.
int export_table(const std::shared_ptr<Database>& db, const ListingOptions& o, const std::string& format,
                 std::ostream& out);

}  // namespace nimbara::cli
