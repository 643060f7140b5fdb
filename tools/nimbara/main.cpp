// nimbara: the command-line program over the component.
#include <CLI/CLI.hpp>

#include <csignal>
#include <iostream>

#include "commands.hpp"
#include "nimbara/GlobalFrameWork.hpp"
#include "nimbara/version.hpp"
#include "help_command.hpp"
#include "help_format.hpp"
#include "parse_errors.hpp"
#include "suggest.hpp"

namespace {

// A file being written when the program is stopped is removed, so nothing is left half-written.
extern "C" void on_stop_signal(int signal)
{
    nimbara::GlobalFrameWork::RemovePendingFiles();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

std::vector<std::string> command_names(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const auto* sub : app.get_subcommands([](const CLI::App*) { return true; })) names.push_back(sub->get_name());
    return names;
}

// A missing or unknown command, answered before the parser sees it.
std::optional<int> answer_without_parsing(const CLI::App& app, const std::vector<std::string>& words)
{
    const std::string first = words.empty() ? "" : words[0];
    if (first.empty()) {
        std::cerr << nimbara::cli::help_text(app) << "\nnimbara: a command is required\n";
        return 2;
    }
    if (first.starts_with('-')) return std::nullopt;
    const auto names = command_names(app);
    if (std::find(names.begin(), names.end(), first) == names.end()) {
        const auto near = nimbara::cli::closest(first, names);
        std::cerr << "nimbara: unknown command \"" << first << "\""
                  << (near ? "; did you mean \"" + *near + "\"?" : std::string())
                  << " (nimbara help lists the commands)\n";
        return 2;
    }
    return std::nullopt;
}

// The deepest command the parser reached.
const CLI::App& reached(const CLI::App& app)
{
    for (const auto* sub : app.get_subcommands())
        if (sub->parsed()) return reached(*sub);
    return app;
}

}  // namespace

int main(int argc, char** argv)
{
    CLI::App app{"nimbara: checks, reports and prints Guias (dispatch notes of business mailings)", "nimbara"};
    // Set before the commands are added, as each command takes its parent's formatter when made.
    app.formatter(std::make_shared<nimbara::cli::PlainFormatter>());
    app.set_version_flag("--version", "nimbara " + std::string(nimbara::kVersionText));
    app.require_subcommand(1);

    int status = 0;
    nimbara::cli::register_commands(app, status);
    // Set after the commands are added, so that none takes these codes as its own.
    app.footer("Exit status: 0 success, 1 the Guia or a line failed validation, 2 bad input or an output place "
               "refused, 3 validated but not printed whole; each command's help tells its own.\n"
               "nimbara help COMMAND... (or nimbara COMMAND help SUBCOMMAND) shows a command's options, exit "
               "codes and examples.\nExamples:\n  nimbara help print\n  nimbara help db init\n  nimbara codes zone "
               "--product C01");

    const std::vector<std::string> words(argv + 1, argv + argc);
    if (const auto answered = nimbara::cli::answer_help(app, words, std::cout, std::cerr)) return *answered;
    if (const auto answered = answer_without_parsing(app, words)) return *answered;

    std::signal(SIGINT, on_stop_signal);
    std::signal(SIGTERM, on_stop_signal);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForVersion& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        const CLI::App& command = reached(app);
        const std::string who = nimbara::cli::command_path(command);
        std::cerr << who << ": " << nimbara::cli::plain_parse_error(e, command, words) << " (" << who
                  << " --help shows the options)\n";
        return 2;
    }
    return status;
}
