#pragma once
// The common course of every procedure: on one transaction of the target, empty the five data
// tables, withdraw E03 where the version says so, and copy each table row by row with bound values.
#include <array>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "import/mappings.hpp"
#include "nimbara/Database.hpp"
#include "platform/old_database.hpp"

namespace nimbara::import {

// A copy that stopped: the table, the row's key and the column, beside the reader's or the store's message.
class CopyFailed : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The rows that came in, table by table in the order the procedure copies them.
using TableCounts = std::array<std::int64_t, 5>;

// The five data tables in the order they are emptied: services, lines, headers, contracts, clients.
inline constexpr const char* kDataTables[] = {"Tbl_Linha_ServicoEspecial", "Tbl_Linha", "Tbl_Cab", "Tbl_Contrato",
                                              "Tbl_Cliente"};

// Empties the data tables on the caller's transaction.
void delete_data(Database& target);

struct RunResult {
    TableCounts counts{};
    // The rows brought in although their Guia, line, client or contract is missing (keep_orphans).
    std::vector<std::string> orphans;
};

// The import was stopped by its host before it ended; the target is as it was.
class ImportCancelled : public CopyFailed {
public:
    ImportCancelled() : CopyFailed("the import was cancelled") {}
};

// Asked before each row is copied: true stops the import.
using CancelCheck = std::function<bool()>;

// Runs `procedure` from `source` into `target` and commits; `progress` hears the bar's value after
// each table, and `cancelled` (when set) is asked before every row, ImportCancelled ending the run. A source whose rows do not hang together is refused before anything is written,
// unless `keep_orphans`, which brings rows of a missing parent in and lists them (damaged texts are
// refused all the same). On any failure nothing of it stays in the target, and CopyFailed says where
// it stopped.
RunResult run_procedure(const Procedure& procedure, const platform::OldDatabase& source, Database& target,
                        const std::function<void(int)>& progress, bool keep_orphans = false,
                        const CancelCheck& cancelled = {});

}  // namespace nimbara::import
