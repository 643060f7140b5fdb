#pragma once
// Creating the database of the component: every table of the register, the view the printing
// reads, keys and indexes, seeded with the reference lists, the rule tables and the factory barcode
// settings from the compiled-in catalogue.
#include <stdexcept>

#include "nimbara/Database.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

// The version CreateSchema writes into schema_version, for later versions to migrate from.
inline constexpr int kSchemaVersion = 1;

// The database already holds the component's tables.
class NIMBARA_API SchemaExistsError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Creates and seeds everything in one transaction, so that a failure leaves the database as it was.
// Refuses with SchemaExistsError, changing nothing, when any of the tables is there already.
NIMBARA_API void CreateSchema(Database& db);

}  // namespace nimbara
