#pragma once
// Jet database files (.mdb) of the older versions, opened as old databases.
#include <filesystem>
#include <memory>

#include "platform/old_database.hpp"

namespace nimbara::platform {

// Opens `file` for reading. A database password does not stand in the way: it guards nothing in the
// file's pages. Throws OldDatabaseError naming the file when it is missing, empty or not a Jet file.
std::unique_ptr<OldDatabase> open_jet_database(const std::filesystem::path& file);

}  // namespace nimbara::platform
