#pragma once
// The rule tables of one database held in memory, read again only when the database's rule counter
// has moved since they were read (or, on a database without the counter, at every call).
#include <cstdint>
#include <memory>
#include <optional>

#include "db_validation/rule_tables.hpp"
#include "nimbara/Database.hpp"

namespace nimbara::db_validation {

class RuleCache {
public:
    // The rules as the database holds them now. Throws DatabaseError on the store's failure.
    const RuleTables& current(const std::shared_ptr<Database>& db);

    // The cache of this thread for a database, shared by every validator that works on it here, so
    // that a host making a validator per Guia does not read the tables each time.
    static RuleCache& of(const std::shared_ptr<Database>& db);

private:
    std::weak_ptr<Database> source_;
    bool has_counter_ = false;
    std::optional<std::int64_t> counter_;  // the counter the rules were read under
    std::optional<RuleTables> rules_;
};

}  // namespace nimbara::db_validation
