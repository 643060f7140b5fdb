// nimbara print GUIA.json...: validates each Guia, writes its report, prints it when it passes, and
// writes the answer of ImprimeGuia; with --one-file every Guia printed goes into one PDF.
#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>

#include "commands.hpp"
#include "guia_command.hpp"
#include "json_output.hpp"
#include "nimbara/PdfSurface.hpp"
#include "printer_target.hpp"
#include "standard_streams.hpp"

namespace nimbara::cli {
namespace {

struct PrintRun {
    GuiaRun guia;
    std::string one_file;
};

int print_guias(PrintRun run)
{
    std::shared_ptr<PdfSurface> batch;
    // With --one-file - the PDF is standard output, and the answers go to standard error instead.
    const bool to_stdout = run.one_file == "-";
    if (to_stdout && run.guia.json) {
        const std::string message = "--one-file - and --json both want standard output; name a file for the PDF";
        std::cerr << "nimbara print: " << message << '\n';
        write_json(std::cout, refusal_json("nimbara print", message));
        return 2;
    }
    // A queue that cannot take the jobs is refused before any Guia is read, so that nothing is sent.
    if (run.guia.queue) {
        try {
            usable_printer(*run.guia.queue);
        } catch (const std::exception& e) {
            std::cerr << "nimbara print: " << e.what() << '\n';
            if (run.guia.json) write_json(std::cout, refusal_json("nimbara print", e.what()));
            return 2;
        }
    }
    auto pdf = std::make_shared<std::string>();
    if (!run.one_file.empty()) {
        try {
            batch = to_stdout ? std::make_shared<PdfSurface>([pdf](int, std::string bytes) { *pdf = std::move(bytes); })
                              : std::make_shared<PdfSurface>(std::filesystem::path(run.one_file));
            batch->BeginBatch();
        } catch (const std::exception& e) {
            std::cerr << "nimbara print: " << e.what() << '\n';
            if (run.guia.json) write_json(std::cout, refusal_json("nimbara print", e.what()));
            return 2;
        }
        run.guia.printer = batch;
    }
    int status = 0;
    // With --json: one result for one Guia file, an array of them for several.
    auto results = nlohmann::json::array();
    for (const auto& file : run.guia.files) {
        run.guia.file = file;
        nlohmann::json result;
        status = std::max(status, run_guia(run.guia, to_stdout ? std::cerr : std::cout, std::cerr, "print", &result));
        if (run.guia.json) results.push_back(std::move(result));
    }
    // The batch's fate belongs to every Guia that passed into it, so the JSON is written after it.
    const auto finish = [&](int worst, const std::optional<std::string>& unprinted) {
        if (!run.guia.json) return worst;
        for (auto& r : results) {
            if (!batch || r.value("status", 2) != 0) continue;
            if (unprinted) {
                r["status"] = 3;
                r["not_printed"].push_back({{"place", "/"}, {"what", *unprinted}});
            } else {
                r["one_file"] = to_stdout ? "-" : batch->written().empty() ? "" : batch->written().front().string();
            }
        }
        write_json(std::cout, results.size() == 1 ? results[0] : results);
        return worst;
    };
    if (!batch) return finish(status, std::nullopt);
    // A batch holding a Guia that did not come out whole is not written at all.
    if (*run.guia.printer_spoiled) {
        const std::string why = run.one_file + ": a Guia in it did not come out whole";
        std::cerr << "nimbara print: not printed: " << why << '\n';
        return finish(std::max(status, 3), why);
    }
    try {
        batch->EndBatch();
        if (to_stdout && !pdf->empty()) write_standard_output(*pdf);
    } catch (const std::exception& e) {
        std::cerr << "nimbara print: not printed: " << e.what() << '\n';
        return finish(std::max(status, 3), e.what());
    }
    if (!run.guia.quiet) {
        for (const auto& file : batch->written()) std::cerr << "nimbara print: printed " << file.string() << '\n';
        if (to_stdout && !pdf->empty()) std::cerr << "nimbara print: printed to standard output\n";
    }
    return finish(status, std::nullopt);
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
                    "a taken name gains -2, -3...; - writes it to standard output, the answers then going to standard error "
                    "(not with --json)")
        ->excludes(out_dir);
    cmd->add_option("--printer", run->guia.queue,
                    "Send each copy to this CUPS queue as one job (A4, actual size) instead of writing PDFs; "
                    "nimbara printers lists the queues")
        ->excludes(out_dir)
        ->excludes(cmd->get_option("--one-file"));
    cmd->add_option("--print-log", run->guia.print_log,
                    "The print log (default: $XDG_STATE_HOME/nimbara/nimbara.log, or ~/.local/state/nimbara/nimbara.log)");
    cmd->footer("Exit status: the worst of the Guias: 0 printed, 1 a line or the Guia failed (see the report), 2 bad "
                "input, an output place or a printer's queue refused (no CUPS server, an unknown queue, a queue "
                "rejecting jobs), 3 validated but not printed whole (the field and line, or the job, are named; "
                "the Guia's jobs already sent are cancelled).\n"
                "Examples:\n  nimbara print examples/valid-guia.json --out-dir printed\n"
                "  nimbara print day/*.json --one-file day.pdf\n"
                "  nimbara print examples/valid-guia.json --printer office\n"
                "  nimbara print - --json < guia.json");
    cmd->callback([run, &status] { status = print_guias(*run); });
}

}  // namespace nimbara::cli
