#pragma once
// The SQLite store: one file, WAL journal, a busy timeout so that stations wait for each other
// instead of failing.
#include <filesystem>
#include <memory>

#include "nimbara/Database.hpp"

namespace nimbara::platform {

std::shared_ptr<Database> open_sqlite(const std::filesystem::path& file, OpenMode mode);

}  // namespace nimbara::platform
