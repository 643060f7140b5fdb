#pragma once
// The PostgreSQL store over libpq: one server for many stations. It lives in the module
// "postgresql", so that libpq and what it pulls in are loaded only when a server is used.
#include <memory>
#include <string>

#include "nimbara/Database.hpp"

// The module's factory: a connection as a new Database the caller owns. Throws DatabaseError with
// libpq's reason when the server cannot be reached.
extern "C" [[gnu::visibility("default")]] nimbara::Database* nimbara_postgres_open(const std::string& conninfo);

namespace nimbara::platform {

// `conninfo` is a libpq URI or key=value string; the password comes from it, PGPASSWORD or ~/.pgpass.
// A module that cannot be loaded is a DatabaseError as well.
std::shared_ptr<Database> open_postgres(const std::string& conninfo);

}  // namespace nimbara::platform
