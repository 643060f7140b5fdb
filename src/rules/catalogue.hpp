#pragma once
// Access to the compiled-in rule table for the subsystems above the catalogue.
#include <span>

#include "rules/build/rule_table.hpp"

namespace nimbara::rules {

std::span<const RuleRow> rule_table();

// The rows that the dimension documents write twice before their closing tag.
std::span<const RepeatedRow> repeated_rows();

}  // namespace nimbara::rules
