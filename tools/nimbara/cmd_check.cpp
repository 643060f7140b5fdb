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
    cmd->add_option("GUIA", run->file, "The Guia file (JSON)")->required();
    cmd->add_option("--report-dir", run->report_dir, "Folder of the report (default: the program's folder)");
    cmd->callback([run, &status] { status = run_guia(*run, std::cout, std::cerr, "check"); });
}

}  // namespace nimbara::cli
