#include "help_command.hpp"

#include "completion.hpp"
#include "help_format.hpp"
#include "man_page.hpp"
#include "suggest.hpp"

namespace nimbara::cli {
namespace {

const CLI::App* subcommand(const CLI::App& command, const std::string& name)
{
    for (const auto* sub : command.get_subcommands([](const CLI::App*) { return true; }))
        if (sub->get_name() == name) return sub;
    return nullptr;
}

std::vector<std::string> subcommand_names(const CLI::App& command)
{
    std::vector<std::string> names;
    for (const auto* sub : command.get_subcommands([](const CLI::App*) { return true; })) names.push_back(sub->get_name());
    return names;
}

int show(const CLI::App& app, const std::vector<std::string>& path, std::ostream& out, std::ostream& err)
{
    const CLI::App* command = &app;
    for (const auto& word : path) {
        const CLI::App* sub = subcommand(*command, word);
        if (!sub) {
            const auto near = closest(word, subcommand_names(*command));
            err << "nimbara help: unknown command \"" << word << "\""
                << (near ? "; did you mean \"" + *near + "\"?" : std::string()) << " (" << command_path(*command)
                << " --help lists " << (command == &app ? "the commands" : "its commands") << ")\n";
            return 2;
        }
        command = sub;
    }
    out << help_text(*command);
    return 0;
}

}  // namespace

std::optional<int> answer_help(const CLI::App& app, const std::vector<std::string>& words, std::ostream& out,
                               std::ostream& err)
{
    if (words.empty()) return std::nullopt;
    if (words[0] == "help") {
        if (words.size() == 2 && words[1] == "--man") {
            write_man_page(out, app);
            return 0;
        }
        if (words.size() == 2 && words[1] == "--completion") {
            write_completion(out, app);
            return 0;
        }
        return show(app, {words.begin() + 1, words.end()}, out, err);
    }
    // "db help init": the words before "help" name commands, one inside the other.
    const CLI::App* command = &app;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i] == "help" && i > 0) {
            std::vector<std::string> path(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(i));
            path.insert(path.end(), words.begin() + static_cast<std::ptrdiff_t>(i) + 1, words.end());
            return show(app, path, out, err);
        }
        command = subcommand(*command, words[i]);
        if (!command) return std::nullopt;
    }
    return std::nullopt;
}

}  // namespace nimbara::cli
