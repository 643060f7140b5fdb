// nimbara print GUIA.json: validates the Guia, writes its report, prints it when it passes, and
// writes the answer of ImprimeGuia.
#include <iostream>
#include <memory>

#include "commands.hpp"
#include "guia_command.hpp"

namespace nimbara::cli {

void register_print(CLI::App& app, int& status)
{
    auto* cmd = app.add_subcommand("print", "Validate a Guia file, write its report, print it when it passes");
    auto run = std::make_shared<GuiaRun>();
    cmd->add_option("GUIA", run->file, "The Guia file (JSON)")->required();
    cmd->add_flag("--only-printer", run->only_printer, "Print without validating and without a report");
    cmd->add_option("--report-dir", run->report_dir, "Folder of the report (default: the program's folder)");
    cmd->add_option("--out-dir", run->out_dir,
                    "Folder of the printed PDFs, one file per copy (default: the report folder)");
    cmd->callback([run, &status] { status = run_guia(*run, std::cout, std::cerr, "print"); });
}

}  // namespace nimbara::cli
