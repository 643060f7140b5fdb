#pragma once
// The parser's refusals as plain sentences: which option or argument, and what it takes.
#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace nimbara::cli {

// The message for a refused command line, without the command's name; `command` is the deepest
// command the parser reached, `args` the words after the program's name.
std::string plain_parse_error(const CLI::ParseError& error, const CLI::App& command, const std::vector<std::string>& args);

}  // namespace nimbara::cli
