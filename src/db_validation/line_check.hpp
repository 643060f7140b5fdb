#pragma once
// Judging one product line against the rule tables by elimination: the active rules of the product,
// struck out dimension by dimension, exactly one left, then its special services.
#include <cstdint>
#include <string_view>

#include "db_validation/rule_tables.hpp"
#include "nimbara/error_array.hpp"

namespace nimbara::db_validation {

struct TableLine {
    std::string_view product;
    std::string_view zone;
    std::int32_t weight = 0;
    std::string_view speed;
    std::string_view format;
    bool pre_treatment = false;  // handed over and never read: every rule must offer pre-treatment
    std::string_view discount;
    std::string_view scope;
    const ListArray* services = nullptr;  // nothing: the line has no list of services
};

ValidationResult validate_table_line(const RuleTables& rules, const TableLine& line);

}  // namespace nimbara::db_validation
