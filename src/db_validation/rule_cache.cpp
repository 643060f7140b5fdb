#include "db_validation/rule_cache.hpp"

#include "entities/rule_counter.hpp"

namespace nimbara::db_validation {

const RuleTables& RuleCache::current(const std::shared_ptr<Database>& db)
{
    const bool same_source = !source_.owner_before(db) && !db.owner_before(source_) && !source_.expired();
    if (!same_source) {
        rules_.reset();
        source_ = db;
        has_counter_ = entities::has_rule_counter(*db);
    }
    if (!has_counter_) return rules_.emplace(RuleTables::read(*db));

    std::optional<std::int64_t> now = entities::read_rule_counter(*db);
    if (rules_ && now && now == counter_) return *rules_;
    // Another station may commit a change while the tables are read; the counter read again after
    // them tells, and the tables are read once more until it stood still throughout.
    while (true) {
        RuleTables fresh = RuleTables::read(*db);
        const std::optional<std::int64_t> after = entities::read_rule_counter(*db);
        if (after == now) {
            counter_ = now;
            return rules_.emplace(std::move(fresh));
        }
        now = after;
    }
}

}  // namespace nimbara::db_validation
