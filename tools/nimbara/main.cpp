// nimbara: the command-line program over the component.
#include <CLI/CLI.hpp>

#include <csignal>
#include <iostream>

#include "commands.hpp"
#include "nimbara/GlobalFrameWork.hpp"
#include "nimbara/version.hpp"
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

std::vector<std::string> option_names(const CLI::App& command)
{
    std::vector<std::string> names;
    for (const auto* opt : command.get_options()) {
        for (const auto& n : opt->get_lnames()) names.push_back("--" + n);
        for (const auto& n : opt->get_snames()) names.push_back("-" + n);
    }
    return names;
}

std::string with_suggestion(const std::string& what, const std::string& word, const std::vector<std::string>& known)
{
    const auto near = nimbara::cli::closest(word, known);
    return what + " \"" + word + "\"" + (near ? "; did you mean \"" + *near + "\"?" : "");
}

// `nimbara help [COMMAND]`, a missing or unknown command: answered before the parser sees them.
std::optional<int> answer_without_parsing(CLI::App& app, int argc, char** argv)
{
    const std::string first = argc > 1 ? argv[1] : "";
    if (first == "help") {
        if (argc <= 2) {
            std::cout << app.help();
            return 0;
        }
        for (auto* sub : app.get_subcommands([](const CLI::App*) { return true; })) {
            if (sub->get_name() == argv[2]) {
                std::cout << sub->help();
                return 0;
            }
        }
        std::cerr << "nimbara help: " << with_suggestion("unknown command", argv[2], command_names(app)) << '\n';
        return 2;
    }
    if (first.empty()) {
        std::cerr << app.help() << "\nnimbara: a command is required\n";
        return 2;
    }
    if (first.starts_with('-')) return std::nullopt;
    const auto names = command_names(app);
    if (std::find(names.begin(), names.end(), first) == names.end()) {
        std::cerr << "nimbara: " << with_suggestion("unknown command", first, names)
                  << " (nimbara help lists the commands)\n";
        return 2;
    }
    return std::nullopt;
}

}  // namespace

int main(int argc, char** argv)
{
    CLI::App app{"nimbara: checks, reports and prints Guias (dispatch notes of business mailings)"};
    app.set_version_flag("--version", "nimbara " + std::string(nimbara::kVersionText));
    app.require_subcommand(1);
    app.footer("Exit status: 0 success, 1 the Guia or a line failed validation, 2 bad input or an output place "
               "refused, 3 validated but not printed whole.\nnimbara help COMMAND shows a command's options "
               "and examples.");

    int status = 0;
    nimbara::cli::register_commands(app, status);
    if (const auto answered = answer_without_parsing(app, argc, argv)) return *answered;

    std::signal(SIGINT, on_stop_signal);
    std::signal(SIGTERM, on_stop_signal);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForVersion& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        const CLI::App* command = &app;
        for (const auto* sub : app.get_subcommands()) command = sub;
        const std::string who = command == &app ? "nimbara" : "nimbara " + command->get_name();
        std::string message = e.what();
        if (const auto* extras = dynamic_cast<const CLI::ExtrasError*>(&e)) {
            (void)extras;
            for (int i = 1; i < argc; ++i) {
                const std::string arg = argv[i];
                const auto names = option_names(*command);
                if (arg.starts_with('-') && arg != "-" && std::find(names.begin(), names.end(), arg.substr(0, arg.find('='))) == names.end()) {
                    message = with_suggestion("unknown option", arg.substr(0, arg.find('=')), names);
                    break;
                }
            }
        }
        std::cerr << who << ": " << message << " (" << who << " --help shows the options)\n";
        return 2;
    }
    return status;
}
