#pragma once
// Jet database files (.mdb) of the older versions, opened as old databases. The reader lives in the
// module "jet", so that libmdb and glib are loaded only by an import from such a file.
#include <filesystem>
#include <memory>

#include "platform/old_database.hpp"

// The module's factory: the file opened as a new OldDatabase the caller owns.
extern "C" [[gnu::visibility("default")]] nimbara::platform::OldDatabase* nimbara_jet_open(
    const std::filesystem::path& file);

namespace nimbara::platform {

// Opens `file` for reading. A database password does not stand in the way: it guards nothing in the
// file's pages. Throws OldDatabaseError naming the file when it is missing, empty or not a Jet file,
// or naming the module when that cannot be loaded.
std::unique_ptr<OldDatabase> open_jet_database(const std::filesystem::path& file);

}  // namespace nimbara::platform
