#pragma once
// Checks of option values whose descriptions and messages are plain sentences: the help shows the
// description as the value's name, and a refusal says what the option takes ("must be ...").
#include <CLI/CLI.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace nimbara::cli {

// One of the words; shown as "a|b|c".
CLI::Validator one_of(std::vector<std::string> words);

// A number (a decimal point allowed) from `low` to `high`.
CLI::Validator number_in(double low, double high);

// A whole number from `low` to `high`.
CLI::Validator whole_in(std::int64_t low, std::int64_t high);

}  // namespace nimbara::cli
