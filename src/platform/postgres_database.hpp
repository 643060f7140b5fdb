#pragma once
// The PostgreSQL store over libpq: one server for many stations.
#include <memory>
#include <string>

#include "nimbara/Database.hpp"

namespace nimbara::platform {

// `conninfo` is a libpq URI or key=value string; the password comes from it, PGPASSWORD or ~/.pgpass.
std::shared_ptr<Database> open_postgres(const std::string& conninfo);

}  // namespace nimbara::platform
