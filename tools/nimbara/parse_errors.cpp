#include "parse_errors.hpp"

#include <algorithm>
#include <cctype>
#include <optional>

#include "help_format.hpp"
#include "suggest.hpp"

namespace nimbara::cli {
namespace {

std::string in_quotes(const std::string& text) { return "\"" + text + "\""; }

std::vector<std::string> option_names(const CLI::App& command)
{
    std::vector<std::string> names;
    for (const auto* opt : command.get_options()) {
        for (const auto& n : opt->get_lnames()) names.push_back("--" + n);
        for (const auto& n : opt->get_snames()) names.push_back("-" + n);
    }
    return names;
}

std::vector<std::string> subcommand_names(const CLI::App& command)
{
    std::vector<std::string> names;
    for (const auto* sub : command.get_subcommands([](const CLI::App*) { return true; })) names.push_back(sub->get_name());
    return names;
}

// "a, b or c".
std::string listed(const std::vector<std::string>& words)
{
    std::string out;
    for (std::size_t i = 0; i < words.size(); ++i) out += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + words[i];
    return out;
}

const CLI::Option* find_option(const CLI::App& command, const std::string& name)
{
    for (const auto* opt : command.get_options())
        if (opt->get_name() == name || opt->check_name(name)) return opt;
    return nullptr;
}

// The option's own words, with a small first letter, to follow "takes" or a colon.
std::string described(const CLI::Option* opt)
{
    if (!opt || opt->get_description().empty()) return {};
    std::string d = opt->get_description();
    // "The PDF file" reads on as "the PDF file"; "NAME=VALUE" stays as written.
    if (d.size() > 1 && std::islower(static_cast<unsigned char>(d[1])))
        d[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(d[0])));
    return " (" + d + ")";
}

// What a value of the option must be, as the end of "must be ...".
std::string kind_of_value(const CLI::Option* opt)
{
    if (!opt) return "a value";
    const auto choices = value_choices(*opt);
    if (!choices.empty()) return listed(choices);
    const std::string name = value_name(*opt);
    if (name == "NUMBER") return "a number";
    if (name == "N") return "a whole number";
    return "a value";
}

// The text before the first ": " names the option in most of the parser's messages.
std::pair<std::string, std::string> split_name(const std::string& message)
{
    const auto colon = message.find(": ");
    if (colon == std::string::npos) return {"", message};
    return {message.substr(0, colon), message.substr(colon + 2)};
}

// An option the command does not know, which the parser may have taken for an argument too many.
std::optional<std::string> unknown_option(const CLI::App& command, const std::vector<std::string>& args)
{
    auto names = option_names(command);
    for (const CLI::App* above = command.get_parent(); above; above = above->get_parent()) {
        const auto more = option_names(*above);
        names.insert(names.end(), more.begin(), more.end());
    }
    for (const auto& arg : args) {
        // "-1" is a value, not an option.
        if (arg.size() < 2 || arg[0] != '-' || !(arg[1] == '-' || std::isalpha(static_cast<unsigned char>(arg[1]))))
            continue;
        const std::string name = arg.substr(0, arg.find('='));
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            const auto near = closest(name, option_names(command));
            return "unknown option " + in_quotes(name) + (near ? "; did you mean " + in_quotes(*near) + "?" : "");
        }
    }
    return std::nullopt;
}

std::string extras(const CLI::App& command, const std::string& message)
{
    // The parser names the words it could not place after its own wording.
    const auto colon = message.rfind(": ");
    const std::string words = colon == std::string::npos ? message : message.substr(colon + 2);
    const auto subs = subcommand_names(command);
    if (!subs.empty()) {
        const auto near = closest(words.substr(0, words.find(' ')), subs);
        return "unknown command " + in_quotes(words) + (near ? "; did you mean " + in_quotes(*near) + "?" : "") +
               " (the commands here: " + listed(subs) + ")";
    }
    return "unexpected argument" + std::string(words.find(' ') == std::string::npos ? " " : "s ") + in_quotes(words) +
           ": the command takes no more";
}

std::string mismatch(const CLI::App& command, const std::string& message)
{
    const auto [name, rest] = split_name(message);
    const CLI::Option* opt = find_option(command, name);
    if (rest.find("required") != std::string::npos && rest.find("missing") != std::string::npos)
        return name + " needs a value" + described(opt);
    if (rest.starts_with("At Most")) {
        const auto max = opt ? opt->get_expected_max() : 1;
        return name + " takes " + (max == 1 ? "one value" : "at most " + std::to_string(max) + " values") +
               ", and more were given";
    }
    if (rest.starts_with("At least")) return name + " needs more values" + described(opt);
    return (name.empty() ? std::string("an option") : name) + " got the wrong number of values" + described(opt);
}

std::string required(const CLI::App& command, const std::string& message, const std::vector<std::string>& args)
{
    if (message.starts_with("A subcommand") || message.starts_with("Requires at least")) {
        // A word where the command was expected is a command misspelt rather than one left out.
        const auto subs = subcommand_names(command);
        const auto at = std::find(args.begin(), args.end(), command.get_name());
        for (auto it = at == args.end() ? at : at + 1; it != args.end(); ++it) {
            if (it->starts_with('-')) continue;
            const auto near = closest(*it, subs);
            return "unknown command " + in_quotes(*it) + (near ? "; did you mean " + in_quotes(*near) + "?" : "") +
                   " (the commands here: " + listed(subs) + ")";
        }
        return "a command is needed here: " + listed(subs);
    }
    const std::string name = message.substr(0, message.find(" is required"));
    return name + " is missing" + described(find_option(command, name));
}

std::string two_names(const std::string& message, const std::string& word)
{
    const auto at = message.find(word);
    if (at == std::string::npos) return message;
    return message.substr(0, at) + "|" + message.substr(at + word.size());
}

}  // namespace

std::string plain_parse_error(const CLI::ParseError& e, const CLI::App& command, const std::vector<std::string>& args)
{
    const std::string message = e.what();
    if (dynamic_cast<const CLI::ExtrasError*>(&e) || dynamic_cast<const CLI::ArgumentMismatch*>(&e))
        if (const auto unknown = unknown_option(command, args)) return *unknown;
    if (dynamic_cast<const CLI::ExtrasError*>(&e)) return extras(command, message);
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&e)) return mismatch(command, message);
    if (dynamic_cast<const CLI::RequiredError*>(&e)) return required(command, message, args);
    if (dynamic_cast<const CLI::ExcludesError*>(&e)) {
        const auto both = two_names(message, " excludes ");
        const auto bar = both.find('|');
        return both.substr(0, bar) + " and " + both.substr(bar + 1) + " cannot be given together";
    }
    if (dynamic_cast<const CLI::RequiresError*>(&e)) {
        const auto both = two_names(message, " requires ");
        const auto bar = both.find('|');
        return both.substr(0, bar) + " needs " + both.substr(bar + 1) + " as well";
    }
    if (dynamic_cast<const CLI::ValidationError*>(&e)) {
        // The program's checks say "must be ..." themselves.
        const auto [name, rest] = split_name(message);
        if (rest.starts_with("must be")) return name + " " + rest;
        return name + " must be " + kind_of_value(find_option(command, name));
    }
    if (dynamic_cast<const CLI::ConversionError*>(&e)) {
        // "Could not convert: --left = north", or "The value X is not an allowed value for NAME".
        std::string name, value;
        if (const auto colon = message.find(": "), eq = message.find(" = "); colon != std::string::npos && eq != std::string::npos) {
            name = message.substr(colon + 2, eq - colon - 2);
            value = message.substr(eq + 3);
        } else if (const auto for_at = message.rfind(" for "); for_at != std::string::npos) {
            name = message.substr(for_at + 5);
        }
        const CLI::Option* opt = find_option(command, name);
        return (name.empty() ? std::string("a value") : name) + " must be " + kind_of_value(opt) +
               (value.empty() ? std::string() : ", not " + in_quotes(value));
    }
    return "the command line cannot be read: " + message;
}

}  // namespace nimbara::cli
