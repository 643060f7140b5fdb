#pragma once
// An old database file imported (or, as a dry run, read, checked and written, then rolled back): what
// `db import` runs and reports, and the web API's imports too.
#include <nlohmann/json.hpp>

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>

#include "nimbara/Database.hpp"
#include "nimbara/Notifier.hpp"

namespace nimbara::cli {

struct ImportOptions {
    std::string file;
    std::string version;    // empty: from the file's layout
    std::string procedure;  // empty: from the version or the layout
    bool keep_orphans = false;
    bool dry_run = false;
};

struct ImportOutcome {
    int status = 0;  // 0 imported (or would be), 1 the import failed and nothing changed
    // {"command", "status", "file", "layout", "version", "procedure", "dry_run", "replaced", "imported",
    // "orphans", "not_printable"}, or on failure {"command", "status", "file", "procedure", "dry_run", "error"}.
    nlohmann::ordered_json document;
};

// Refuses (CommandError) a missing or unreadable file, an unknown version or one the file's layout
// contradicts before `open` is called. `progress` is the notifier in force while the import runs
// (its progress in percent); the report in words goes to `text` when given, warnings and the
// failure's message to `warnings`.
ImportOutcome run_import(const ImportOptions& o, const std::function<std::shared_ptr<Database>()>& open,
                         Notifier& progress, std::ostream* text, std::ostream& warnings);

}  // namespace nimbara::cli
