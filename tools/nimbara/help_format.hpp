#pragma once
// How the program's help reads: each command's usage under its whole name ("nimbara db init"), values
// named in plain words (a number's range, a choice's words) rather than the parser's type names.
#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace nimbara::cli {

class PlainFormatter : public CLI::Formatter {
public:
    std::string make_option_opts(const CLI::Option* opt) const override;
    std::string make_option_usage(const CLI::Option* opt) const override;
};

// What an option's value is called in the help: the words of a choice ("array|database"), a range
// ("10 to 2400"), or NUMBER, N or TEXT.
std::string value_name(const CLI::Option& option);

// The words of a choice an option takes; none when it takes any value.
std::vector<std::string> value_choices(const CLI::Option& option);

// "nimbara", "nimbara db", "nimbara db init".
std::string command_path(const CLI::App& command);

// The command's help, as --help shows it.
std::string help_text(const CLI::App& command);

// Every command under `app`, the app first, depth first in the order they were added.
std::vector<const CLI::App*> all_commands(const CLI::App& app);

}  // namespace nimbara::cli
