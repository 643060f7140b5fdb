// nimbara print GUIA.json...: validates each Guia, writes its report, prints it when it passes, and
// writes the answer of ImprimeGuia; with --one-file every Guia printed goes into one PDF.
#include <algorithm>
#include <iostream>
#include <memory>

#include "commands.hpp"
#include "guia_command.hpp"
#include "nimbara/PdfSurface.hpp"

namespace nimbara::cli {
namespace {

struct PrintRun {
    GuiaRun guia;
    std::string one_file;
};

int print_guias(PrintRun run)
{
    std::shared_ptr<PdfSurface> batch;
    if (!run.one_file.empty()) {
        try {
            batch = std::make_shared<PdfSurface>(std::filesystem::path(run.one_file));
            batch->BeginBatch();
        } catch (const std::exception& e) {
            std::cerr << "nimbara print: " << e.what() << '\n';
            return 2;
        }
        run.guia.printer = batch;
    }
    int status = 0;
    for (const auto& file : run.guia.files) {
        run.guia.file = file;
        status = std::max(status, run_guia(run.guia, std::cout, std::cerr, "print"));
    }
    if (!batch) return status;
    // A batch holding a Guia that did not come out whole is not written at all.
    if (*run.guia.printer_spoiled) {
        std::cerr << "nimbara print: not printed: " << run.one_file << ": a Guia in it did not come out whole\n";
        return std::max(status, 3);
    }
    try {
        batch->EndBatch();
    } catch (const std::exception& e) {
        std::cerr << "nimbara print: not printed: " << e.what() << '\n';
        return std::max(status, 3);
    }
    if (!run.guia.quiet)
        for (const auto& pdf : batch->written()) std::cerr << "nimbara print: printed " << pdf.string() << '\n';
    return status;
}

}  // namespace

void register_print(CLI::App& app, int& status)
{
    auto* cmd = app.add_subcommand("print", "Validate Guia files, write their reports, print those that pass");
    auto run = std::make_shared<PrintRun>();
    add_guia_options(*cmd, run->guia, true);
    cmd->add_flag("--only-printer", run->guia.only_printer, "Print without validating and without a report")
        ->excludes(cmd->get_option("--report"));
    auto* out_dir = cmd->add_option("--out-dir", run->guia.out_dir,
                    "Folder of the printed PDFs, one file per copy, created if missing (default: the report folder)");
    cmd->add_option("--one-file", run->one_file,
                    "Print every copy of every Guia that passes into this one PDF, as one print job (for batches); "
                    "a taken name gains -2, -3...")
        ->excludes(out_dir);
    cmd->add_option("--print-log", run->guia.print_log,
                    "The print log (default: $XDG_STATE_HOME/nimbara/nimbara.log, or ~/.local/state/nimbara/nimbara.log)");
    cmd->footer("Exit status: the worst of the Guias: 0 printed, 1 a line or the Guia failed (see the report), 2 bad "
                "input or an output place refused, 3 validated but not printed whole (the field and line are named).\n"
                "Examples:\n  nimbara print examples/valid-guia.json --out-dir printed\n"
                "  nimbara print day/*.json --one-file day.pdf\n"
                "  nimbara print - --json < guia.json");
    cmd->callback([run, &status] { status = print_guias(*run); });
}

}  // namespace nimbara::cli
