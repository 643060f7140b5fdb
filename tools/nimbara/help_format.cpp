#include "help_format.hpp"

#include <sstream>

namespace nimbara::cli {
namespace {

// The parser's name of the value's type, before any check's description.
std::string base_type(const CLI::Option& option)
{
    const std::string full = option.get_type_name();
    return full.substr(0, full.find(':'));
}

// The description of the option's check, when it has one.
std::string check_description(const CLI::Option& option)
{
    const std::string full = option.get_type_name();
    const auto colon = full.find(':');
    return colon == std::string::npos ? std::string() : full.substr(colon + 1);
}

}  // namespace

std::string value_name(const CLI::Option& option)
{
    if (auto described = check_description(option); !described.empty()) return described;
    const std::string type = base_type(option);
    if (type == "FLOAT") return "NUMBER";
    if (type.starts_with("INT") || type.starts_with("UINT")) return "N";
    return type.empty() ? "VALUE" : type;
}

std::vector<std::string> value_choices(const CLI::Option& option)
{
    const std::string described = check_description(option);
    std::vector<std::string> words;
    if (described.find('|') == std::string::npos) return words;
    std::istringstream in(described);
    for (std::string word; std::getline(in, word, '|');) words.push_back(word);
    return words;
}

std::string PlainFormatter::make_option_opts(const CLI::Option* opt) const
{
    std::string out;
    // A flag has no type name: it takes no value.
    if (opt->get_type_size() != 0 && !base_type(*opt).empty()) {
        // An argument's name says what it is, and its words what it takes; an option's value is named.
        if (!opt->get_positional()) out += " " + value_name(*opt);
        else if (!value_choices(*opt).empty()) out += " " + value_name(*opt);
        if (opt->get_expected_max() == CLI::detail::expected_max_vector_size) out += " ...";
        if (opt->get_required()) out += " (required)";
    }
    for (const auto* other : opt->get_excludes()) out += " (not with " + other->get_name() + ")";
    for (const auto* other : opt->get_needs()) out += " (needs " + other->get_name() + ")";
    return out;
}

std::string PlainFormatter::make_option_usage(const CLI::Option* opt) const
{
    std::string out = opt->get_name();
    if (opt->get_expected_max() > 1) out += "...";
    return opt->get_required() ? out : "[" + out + "]";
}

std::string command_path(const CLI::App& command)
{
    if (const auto* parent = command.get_parent()) return command_path(*parent) + " " + command.get_name();
    return command.get_name().empty() ? "nimbara" : command.get_name();
}

std::string help_text(const CLI::App& command)
{
    const auto* parent = command.get_parent();
    return command.help(parent ? command_path(*parent) : std::string());
}

std::vector<const CLI::App*> all_commands(const CLI::App& app)
{
    std::vector<const CLI::App*> out{&app};
    for (const auto* sub : app.get_subcommands([](const CLI::App*) { return true; })) {
        const auto below = all_commands(*sub);
        out.insert(out.end(), below.begin(), below.end());
    }
    return out;
}

}  // namespace nimbara::cli
