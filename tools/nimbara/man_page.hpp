#pragma once
// The manual page nimbara(1), in roff, made from the same help text that --help shows.
#include <CLI/CLI.hpp>

#include <ostream>

namespace nimbara::cli {

void write_man_page(std::ostream& out, const CLI::App& app);

}  // namespace nimbara::cli
