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
    add_guia_options(*cmd, *run);
    cmd->add_flag("--only-printer", run->only_printer, "Print without validating and without a report");
    cmd->add_option("--out-dir", run->out_dir,
                    "Folder of the printed PDFs, one file per copy, created if missing (default: the report folder)");
    cmd->add_option("--print-log", run->print_log,
                    "The print log (default: nimbara.log beside the program, or $XDG_STATE_HOME/nimbara/nimbara.log)");
    cmd->footer("Exit status: 0 printed, 1 a line or the Guia failed (see the report), 2 bad input or an output "
                "place refused, 3 validated but not printed whole (the field and line are named).\n"
                "Examples:\n  nimbara print examples/valid-guia.json --out-dir printed\n"
                "  nimbara print - --json < guia.json");
    cmd->callback([run, &status] { status = run_guia(*run, std::cout, std::cerr, "print"); });
}

}  // namespace nimbara::cli
