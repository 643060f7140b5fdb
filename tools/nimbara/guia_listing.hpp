#pragma once
// What `db list` and `db export` share: the filter options and the listing they select.
#include <CLI/CLI.hpp>

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "nimbara/Recordset.hpp"
#include "nimbara/cls_Guia.hpp"

namespace nimbara::cli {

struct ListingOptions {
    std::string conn;
    std::string year;
    std::string month;
    std::string client;
    std::string order;
};

// Adds --year, --month, --client, --order and --db.
void add_listing_options(CLI::App& cmd, ListingOptions& o);

// The columns of a listing's line, as the listing names them.
const std::vector<std::string>& listing_columns();

// The lines under the filters; no rows when nothing matches. Throws CommandError with the reason
// when the listing fails (a refused order word, a filter that is no number, the store's error).
Recordset guia_lines(cls_Guia& guia, const ListingOptions& o);

// The same lines handed to the sink as they are read; nothing matching hands no row. Throws
// CommandError as guia_lines does.
void stream_guia_lines(cls_Guia& guia, const ListingOptions& o, const RowSink& sink);

// Where each of listing_columns() is among a result's column names; throws CommandError when one is
// missing.
std::vector<std::size_t> listing_positions(std::span<const std::string> names);

}  // namespace nimbara::cli
