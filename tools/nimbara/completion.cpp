#include "completion.hpp"

#include <map>
#include <set>
#include <string>
#include <vector>

#include "help_format.hpp"
#include "nimbara/GlobalXML.hpp"

namespace nimbara::cli {
namespace {

// Options and arguments that name a file or a folder, by their name in any command.
const std::set<std::string>& file_names()
{
    static const std::set<std::string> names = {"--out", "--png", "--one-file", "--print-log", "GUIA", "FILE", "CLIENT"};
    return names;
}

const std::set<std::string>& folder_names()
{
    static const std::set<std::string> names = {"--report-dir", "--out-dir"};
    return names;
}

std::string joined(const std::vector<std::string>& words)
{
    std::string out;
    for (const auto& w : words) out += (out.empty() ? "" : " ") + w;
    return out;
}

// What an option or argument takes: "file", "dir", "value", or its words.
std::string takes(const CLI::Option& opt, const std::string& path)
{
    if (file_names().contains(opt.get_name())) return "file";
    if (folder_names().contains(opt.get_name())) return "dir";
    if (const auto words = value_choices(opt); !words.empty()) return joined(words);
    if (path == "nimbara document" && opt.get_positional()) {
        std::vector<std::string> names;
        for (const auto n : GlobalXML::document_names()) names.emplace_back(n);
        return joined(names);
    }
    return "value";
}

void entry(std::ostream& out, const std::string& key, const std::string& value)
{
    out << "        [\"" << key << "\"]=\"" << value << "\"\n";
}

}  // namespace

void write_completion(std::ostream& out, const CLI::App& app)
{
    std::map<std::string, std::string> subs, opts, values, positional;
    for (const auto* command : all_commands(app)) {
        // Keyed by the whole name ("nimbara db init"), as bash takes no empty key.
        const std::string path = command_path(*command);
        std::vector<std::string> sub_names, option_names;
        for (const auto* sub : command->get_subcommands([](const CLI::App*) { return true; }))
            sub_names.push_back(sub->get_name());
        for (const auto* opt : command->get_options()) {
            if (opt->get_positional()) {
                positional[path] = takes(*opt, path);
                continue;
            }
            for (const auto& n : opt->get_lnames()) option_names.push_back("--" + n);
            for (const auto& n : opt->get_snames()) option_names.push_back("-" + n);
            if (opt->get_type_size() == 0) continue;
            for (const auto& n : opt->get_lnames()) values[path + " --" + n] = takes(*opt, path);
            for (const auto& n : opt->get_snames()) values[path + " -" + n] = takes(*opt, path);
        }
        if (command == &app) sub_names.push_back("help");
        if (!sub_names.empty()) subs[path] = joined(sub_names);
        opts[path] = joined(option_names);
    }

    out << "# bash completion for nimbara; made by `nimbara help --completion`\n"
           "_nimbara()\n{\n"
           "    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}\n";
    const auto table = [&](const char* name, const std::map<std::string, std::string>& rows) {
        out << "    local -A " << name << "=(\n";
        for (const auto& [key, value] : rows) entry(out, key, value);
        out << "    )\n";
    };
    table("subs", subs);
    table("opts", opts);
    table("values", values);
    table("positional", positional);
    out << R"(    local path=nimbara word i first=1
    COMPREPLY=()
    # `nimbara help COMMAND...` completes the names of commands only.
    if [[ ${COMP_WORDS[1]} == help && $COMP_CWORD -gt 1 ]]; then
        first=2
    fi
    for ((i = first; i < COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        if [[ " ${subs[$path]} " == *" $word "* && $word != help ]]; then
            path="$path $word"
        fi
    done
    if [[ $first == 2 ]]; then
        COMPREPLY=($(compgen -W "${subs[$path]}" -- "$cur"))
        return 0
    fi
    if [[ $prev == -* && -n ${values["$path $prev"]+set} ]]; then
        case ${values["$path $prev"]} in
            file) compopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -f -- "$cur")) ;;
            dir) compopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -d -- "$cur")) ;;
            value) ;;
            *) COMPREPLY=($(compgen -W "${values["$path $prev"]}" -- "$cur")) ;;
        esac
        return 0
    fi
    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "${opts[$path]}" -- "$cur"))
        return 0
    fi
    if [[ -n ${subs[$path]} ]]; then
        COMPREPLY=($(compgen -W "${subs[$path]}" -- "$cur"))
        return 0
    fi
    case ${positional[$path]} in
        file) compopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -f -- "$cur")) ;;
        dir) compopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -d -- "$cur")) ;;
        value | "") ;;
        *) COMPREPLY=($(compgen -W "${positional[$path]}" -- "$cur")) ;;
    esac
    return 0
}
complete -F _nimbara nimbara
)";
}

}  // namespace nimbara::cli
