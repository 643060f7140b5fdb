#pragma once
// The special-service checks of a line whose rule is settled, in the rule tables' edition: the rule's
// service rows, and the hand-written dependencies between services, fewer than the compiled-in
// validator knows (only "02" and "04" trigger, no C13 rows, no "04" with "05").
#include <optional>
#include <string_view>

#include "db_validation/rule_tables.hpp"
#include "nimbara/error_array.hpp"

namespace nimbara::db_validation {

// The services the rule does not admit, each service row striking one occurrence; nothing when
// all are admitted.
std::optional<ListArray> DoValServEsp(const TableRule& rule, const ListArray& services);

struct ProductServiceVerdict {
    int code = 0;   // 0: no rule fired; -1 to -6 a rule; -100 a failure, which the caller lets pass
    ListArray list;  // the codes the rule expects, for the explanation to the user
};

// `services` is nothing when the line has no list at all.
ProductServiceVerdict DoValServEspByProduto(std::string_view product, std::string_view zone,
                                            const ListArray* services);

}  // namespace nimbara::db_validation
