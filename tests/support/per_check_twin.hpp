#pragma once
// The database validator done the straightforward way: every check of every candidate rule is a
// query of its own on the rule tables, as the old class ran them. Slow by design; the benchmark's
// baseline and the tests' second opinion on cls_ValProdutos, which reads the tables into memory.
#include <cstdint>
#include <string>

#include "nimbara/Database.hpp"
#include "nimbara/error_array.hpp"

namespace nimbara::testing {

struct TwinLine {
    std::string product, zone;
    std::int32_t weight = 0;
    std::string speed, format;
    bool pre_treatment = false;
    std::string discount, scope;
    ListArray services;  // empty: no list
};

ValidationResult per_check_validate_line(Database& db, const TwinLine& line);

}  // namespace nimbara::testing
