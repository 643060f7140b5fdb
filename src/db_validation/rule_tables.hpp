#pragma once
// The database's rule tables read once into memory: the active rules of each product, each with its
// weight bounds, the codes it accepts per dimension, whether it offers pre-treatment and its
// special-service rows. Comparisons stay those of the per-rule queries they replace: exact text,
// numeric weight bounds of which a Null one accepts nothing.
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "nimbara/Database.hpp"

namespace nimbara::db_validation {

enum class Dimension { Zone, Speed, Format, Discount, Scope };
inline constexpr std::size_t kDimensionCount = 5;

struct TableRule {
    std::int64_t id = 0;
    std::optional<double> min;  // Null bounds fail every comparison, as in SQL
    std::optional<double> max;
    std::vector<std::string> accepted[kDimensionCount];
    bool pre_treatment = false;          // the rule has a pre-treatment row, whatever its value
    std::vector<std::string> services;   // one entry per service row

    bool accepts(Dimension d, std::string_view code) const;
    // Both bounds included.
    bool accepts_weight(std::int32_t weight) const;
};

class RuleTables {
public:
    // Reads every table; throws DatabaseError on the store's failure.
    static RuleTables read(Database& db);

    // The active rules of a product; empty for a product without one.
    std::span<const TableRule> active_rules(std::string_view product) const;

private:
    struct TransparentHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
    };
    std::unordered_map<std::string, std::vector<TableRule>, TransparentHash, std::equal_to<>> products_;
};

}  // namespace nimbara::db_validation
