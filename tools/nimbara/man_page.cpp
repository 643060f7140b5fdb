#include "man_page.hpp"

#include <sstream>
#include <string>

#include "help_format.hpp"
#include "nimbara/version.hpp"

namespace nimbara::cli {
namespace {

// Text as roff shows it literally: backslashes escaped, a line that begins with a dot or an apostrophe
// kept from being read as a request.
std::string roff_line(const std::string& line)
{
    std::string out;
    if (!line.empty() && (line[0] == '.' || line[0] == '\'')) out += "\\&";
    for (char c : line) {
        if (c == '\\') out += "\\e";
        else if (c == '-') out += "\\-";
        else out += c;
    }
    return out;
}

// The help text as a block kept line for line.
void preformatted(std::ostream& out, const std::string& text)
{
    out << ".nf\n";
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) out << roff_line(line) << '\n';
    out << ".fi\n";
}

}  // namespace

void write_man_page(std::ostream& out, const CLI::App& app)
{
    out << ".TH NIMBARA 1 \"\" \"nimbara " << kVersionText << "\" \"User Commands\"\n";
    out << ".SH NAME\nnimbara \\- " << roff_line(app.get_description().substr(app.get_description().find(": ") + 2))
        << '\n';
    out << ".SH SYNOPSIS\n.B nimbara\n.I COMMAND\n.RI [ OPTIONS ]\n.br\n.B nimbara help\n.RI [ COMMAND ...]\n";
    out << ".SH DESCRIPTION\n";
    preformatted(out, help_text(app));
    out << ".SH COMMANDS\n";
    for (const auto* command : all_commands(app)) {
        if (command == &app) continue;
        out << ".SS " << roff_line(command_path(*command)) << '\n';
        preformatted(out, help_text(*command));
    }
}

}  // namespace nimbara::cli
