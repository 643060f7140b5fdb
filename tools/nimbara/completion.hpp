#pragma once
// The bash completion of the program, made from its commands: commands and subcommands, options,
// the words an option or argument takes, and file names where a file is taken.
#include <CLI/CLI.hpp>

#include <ostream>

namespace nimbara::cli {

void write_completion(std::ostream& out, const CLI::App& app);

}  // namespace nimbara::cli
