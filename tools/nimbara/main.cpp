// nimbara: the command-line program over the component.
#include <CLI/CLI.hpp>

#include <iostream>

#include "commands.hpp"
#include "nimbara/version.hpp"

int main(int argc, char** argv)
{
    CLI::App app{"nimbara: checks, reports and prints Guias (dispatch notes of business mailings)"};
    app.set_version_flag("--version", "nimbara " + std::string(nimbara::kVersionText));
    app.require_subcommand(1);

    int status = 0;
    nimbara::cli::register_commands(app, status);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e) == 0 ? 0 : 2;
    }
    return status;
}
