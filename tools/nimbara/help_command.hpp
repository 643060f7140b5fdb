#pragma once
// `nimbara help [COMMAND...]` and `nimbara COMMAND... help [SUBCOMMAND...]`: a command's help at any
// depth; `help --man` and `help --completion` write the manual page and the bash completion.
#include <CLI/CLI.hpp>

#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace nimbara::cli {

// The exit status when the words ask for help, or nothing when they do not.
std::optional<int> answer_help(const CLI::App& app, const std::vector<std::string>& words, std::ostream& out,
                               std::ostream& err);

}  // namespace nimbara::cli
