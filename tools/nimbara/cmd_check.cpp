// nimbara check GUIA.json: validates the Guia and writes its report, never prints.
#include <iostream>
#include <memory>

#include "commands.hpp"
#include "guia_command.hpp"

namespace nimbara::cli {

void register_check(CLI::App& app, int& status)
{
    auto* cmd = app.add_subcommand("check", "Validate a Guia file and write its report; never print");
    auto run = std::make_shared<GuiaRun>();
    run->printing = false;
    add_guia_options(*cmd, *run);
    cmd->footer("Exit status: 0 the Guia passed, 1 a line or the Guia failed (see the report), 2 bad input or "
                "the report folder refused.\nExamples:\n  nimbara check examples/line-errors.json --report-dir reports\n"
                "  nimbara check - --json < guia.json");
    cmd->callback([run, &status] { status = run_guia(*run, std::cout, std::cerr, "check"); });
}

}  // namespace nimbara::cli
