#pragma once
// SQLite files that hold the old tables, opened as old databases: sites that moved their Jet data
// into a SQLite file by other means hand that file to the import as it is.
#include <filesystem>
#include <memory>

#include "platform/old_database.hpp"

namespace nimbara::platform {

// Whether `file` begins with the SQLite header; false for a missing or unreadable file.
bool is_sqlite_file(const std::filesystem::path& file);

// Opens `file` read-only. Columns declared BOOL or BOOLEAN come as yes/no and those declared DATE,
// DATETIME or TIMESTAMP as dates (stored as ISO text); the rest keep the type each value is stored
// with. Throws OldDatabaseError naming the file when it is missing, empty or not a SQLite file.
std::unique_ptr<OldDatabase> open_sqlite_source(const std::filesystem::path& file);

}  // namespace nimbara::platform
