#pragma once
// What the entity classes share about their connection.
#include <memory>
#include <string>

#include "nimbara/Database.hpp"

namespace nimbara::entities {

// The connection an object opens at creation: OpenConnection's argument path. Empty after a
// failure, whose reason require() then reports.
std::shared_ptr<Database> connection_from_ini();

// The object's connection, or DatabaseError when it has none, as the first operation of an object
// without a connection failed.
Database& require(const std::shared_ptr<Database>& conn);

}  // namespace nimbara::entities
