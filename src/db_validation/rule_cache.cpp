#include "db_validation/rule_cache.hpp"

#include <map>

#include "entities/rule_counter.hpp"

namespace nimbara::db_validation {

RuleCache& RuleCache::of(const std::shared_ptr<Database>& db)
{
    // Keyed by address: a database made later at the address of a closed one is told apart by the
    // cache's own check of its source.
    thread_local std::map<const Database*, RuleCache> caches;
    std::erase_if(caches, [](const auto& entry) { return entry.second.source_.expired(); });
    return caches[db.get()];
}

const RuleTables& RuleCache::current(const std::shared_ptr<Database>& db)
{
    const bool same_source = !source_.owner_before(db) && !db.owner_before(source_) && !source_.expired();
    if (!same_source) {
        rules_.reset();
        source_ = db;
        has_counter_ = entities::has_rule_counter(*db);
    }
    std::optional<std::int64_t> now;
    if (has_counter_) {
        try {
            now = entities::read_rule_counter(*db);
        } catch (const DatabaseError&) {
            if (entities::has_rule_counter(*db)) throw;
            has_counter_ = false;  // the counter was dropped: the tables are read at every call from now
        }
    }
    if (!has_counter_) return rules_.emplace(RuleTables::read(*db));
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
