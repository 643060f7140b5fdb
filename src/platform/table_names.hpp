#pragma once
// The tables a database holds, read from the store's own catalogue: the one query that differs.
#include <string>
#include <vector>

#include "nimbara/Database.hpp"

namespace nimbara::platform {

// The names of the tables and views of the database (the store's own catalogue aside), in order.
std::vector<std::string> table_names(Database& db);

}  // namespace nimbara::platform
