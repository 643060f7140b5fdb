// nimbara db print N_REQ: a stored Guia printed by the database edition (or, with --edition array,
// by the headless edition from the same Guia read as a Guia file), one PDF per copy, named as the
// headless road names them.
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands.hpp"
#include "option_checks.hpp"
#include "db_command.hpp"
#include "guia_command.hpp"
#include "stored_print.hpp"
#include "nimbara/FormImpressao.hpp"
#include "nimbara/cls_Guia_Cabecalho.hpp"
#include "nimbara/cls_Impressao.hpp"
#include "nimbara/cls_Parametro.hpp"
#include "nimbara/cls_ValProdutosA.hpp"
#include "nimbara/guia_file.hpp"
#include "nimbara/guia_store.hpp"
#include "nimbara/pdf_printer.hpp"
#include "nimbara/printer_queue.hpp"
#include "printer_target.hpp"

namespace nimbara::cli {
namespace {

namespace fs = std::filesystem;

struct PrintOptions {
    std::string conn;
    std::int32_t n_req = 0;
    std::string out_dir = ".";
    std::string edition = "database";
    std::optional<std::string> print_log;
    std::optional<std::string> queue;  // --printer: the copies go to this CUPS queue instead of files
    bool quiet = false;
};

// Every cause, one a line, in the refusal.
std::string refusal(std::int32_t n_req, const std::vector<PrintProblem>& problems, const std::string& how = "")
{
    std::string text = "Guia " + std::to_string(n_req) + " not printed" + how + ":";
    for (const auto& p : problems) text += "\n  " + p.place + ": " + p.what;
    return text;
}

// The run's files go when a copy did not come out whole: a partial Guia is no printed Guia.
void keep_only_whole(std::int32_t n_req, const std::vector<fs::path>& written, std::size_t copies,
                     const std::vector<std::string>& faults)
{
    if (faults.empty() && written.size() == copies) return;
    for (const auto& pdf : written) fs::remove(pdf);
    throw CommandError("Guia " + std::to_string(n_req) +
                       " not printed: " + (faults.empty() ? std::string("a copy was not written") : faults.front()));
}

// The Guia's printer of --printer; its queue was checked when the command began.
std::unique_ptr<QueuePrinter> queue_printer(const PrintOptions& o, const std::string& guia_id)
{
    try {
        return std::make_unique<QueuePrinter>(*o.queue, guia_id);
    } catch (const PrinterError& e) {
        throw CommandError(printer_refusal(e));
    }
}

// As keep_only_whole for jobs: a Guia whose copies did not all go has the ones sent withdrawn.
void keep_only_whole_jobs(std::int32_t n_req, QueuePrinter& queue, std::size_t copies, std::vector<std::string> faults,
                          bool quiet)
{
    if (faults.empty() && queue.jobs().size() == copies) {
        if (!quiet) tell_jobs(std::cerr, "db print", queue.queue(), queue.jobs());
        return;
    }
    queue.cancel_all();
    tell_jobs(std::cerr, "db print", queue.queue(), queue.jobs());
    throw CommandError("Guia " + std::to_string(n_req) + " not printed: " +
                       (faults.empty() ? std::string("a copy was not sent") : faults.front()) +
                       (queue.jobs().empty() ? "" : "; the jobs sent for it were cancelled"));
}

fs::path output_folder(const std::string& out_dir)
{
    try {
        return usable_folder("output folder", out_dir);
    } catch (const std::exception& e) {
        throw CommandError(e.what());
    }
}

// The headless edition from the stored Guia read as its Guia file: its head carries the yearly
// number, so a history beyond N_Req 9999 still prints.
int print_as_array(const PrintOptions& o, const std::shared_ptr<Database>& db)
{
    const GuiaFile file = load_guia_file(db, o.n_req);
    cls_ValProdutosA guia;
    if (const auto refused = fill_guia(guia, file)) throw CommandError("Guia " + std::to_string(o.n_req) + ": " + *refused);
    std::vector<PrintProblem> problems;
    for (const auto& f : guia.PrintProblems()) problems.push_back({f.where, f.cause, {}});
    if (!problems.empty())
        throw CommandError(refusal(o.n_req, problems,
                                   " by the array edition (the places are those of its Guia file: nimbara db show " +
                                       std::to_string(o.n_req) + ")"));
    std::unique_ptr<QueuePrinter> queue;
    if (o.queue) {
        queue = queue_printer(o, file.cabecalho.cb_NDoc.empty() ? std::to_string(o.n_req) : file.cabecalho.cb_NDoc);
        guia.setPrinter(queue->surface());
    } else {
        guia.setPrintFolder(output_folder(o.out_dir));
    }
    guia.setPrintLog(o.print_log ? fs::path(*o.print_log) : default_print_log());
    const GuiaOutcome outcome = guia.ImprimeGuiaOutcome(true);
    if (outcome.failure) throw CommandError("Guia " + std::to_string(o.n_req) + " not printed: " + outcome.failure->cause);
    if (queue) {
        keep_only_whole_jobs(o.n_req, *queue, static_cast<std::size_t>(outcome.copies), outcome.print_failures, o.quiet);
        return 0;
    }
    keep_only_whole(o.n_req, outcome.printed, static_cast<std::size_t>(outcome.copies), outcome.print_failures);
    if (!o.quiet)
        for (const auto& pdf : outcome.printed) std::cerr << "nimbara db print: printed " << pdf.string() << '\n';
    return 0;
}

int print_guia(const PrintOptions& o)
{
    const auto db = open_command_database(o.conn);
    if (db->open("SELECT N_Req FROM Tbl_Cab WHERE N_Req = ?", {o.n_req}).RecordCount() == 0)
        throw CommandError("no Guia with N_Req " + std::to_string(o.n_req));
    if (o.queue) {
        try {
            usable_printer(*o.queue);
        } catch (const std::exception& e) {
            throw CommandError(e.what());
        }
    }
    if (o.edition == "array") return print_as_array(o, db);

    const fs::path log = o.print_log ? fs::path(*o.print_log) : default_print_log();
    const StoredGuiaPrint guia = prepare_stored_print(db, o.n_req, log);
    std::unique_ptr<QueuePrinter> queue;
    std::shared_ptr<PdfSurface> surface;
    if (o.queue) {
        queue = queue_printer(o, guia.NDoc);
        surface = queue->surface();
    } else {
        const fs::path folder = output_folder(o.out_dir);
        surface = make_pdf_printer(folder, guia.NDoc);
        // An output place that cannot be written is known before anything is drawn.
        try {
            surface->StartDoc();
        } catch (const std::exception& e) {
            throw CommandError("Guia " + std::to_string(o.n_req) + " not printed: cannot write into \"" +
                               folder.string() + "\": " + e.what());
        }
    }
    surface->setOrientation(printer::kLandscape);
    surface->setPaperSize(printer::kPaperA4);
    const auto faults = print_stored_copies(db, guia, *surface, log);

    // The page routines log their faults and go on; a copy with a fault is not a printed Guia, and
    // none of this run's files (or jobs) stays behind it.
    const auto copies = static_cast<std::size_t>(guia.copies);
    if (queue) {
        keep_only_whole_jobs(o.n_req, *queue, copies, faults, o.quiet);
        return 0;
    }
    keep_only_whole(o.n_req, surface->written(), copies, faults);
    if (!o.quiet)
        for (const auto& pdf : surface->written()) std::cerr << "nimbara db print: printed " << pdf.string() << '\n';
    return 0;
}

}  // namespace

void register_db_print(CLI::App& db, int& status)
{
    auto o = std::make_shared<PrintOptions>();
    auto* cmd = db.add_subcommand("print", "Print a stored Guia as the database edition prints it: one PDF per copy "
                                           "(GuiaNVias of Tbl_Parametro)");
    cmd->add_option("N_REQ", o->n_req, "The Guia's number")->required();
    auto* out_dir = cmd->add_option("--out-dir", o->out_dir, "Folder of the printed PDFs, created if missing (default: "
                                                             "the current folder)");
    cmd->add_option("--printer", o->queue,
                    "Send each copy to this CUPS queue as one job (A4, actual size) instead of writing PDFs; "
                    "nimbara printers lists the queues")
        ->excludes(out_dir);
    cmd->add_option("--edition", o->edition,
                    "database (default): the database edition, whose symbol holds N_Req in four digits; array: the "
                    "headless edition, whose symbol carries the yearly number, for Guias beyond N_Req 9999")
        ->check(one_of({"database", "array"}));
    cmd->add_option("--print-log", o->print_log,
                    "The print log (default: $XDG_STATE_HOME/nimbara/nimbara.log, or ~/.local/state/nimbara/nimbara.log)");
    cmd->add_flag("-q,--quiet", o->quiet, "Do not name the printed files");
    add_db_option(*cmd, o->conn);
    cmd->footer("Files are named Guia_<year>-<yearly number>_via<copy>.pdf; a taken name gains -2, -3...\nBefore "
                "printing, every field that printing converts or the symbol carries at a fixed width is checked, and "
                "each fault is named with its column and line.\nExit status: 0 every copy printed, 2 no such Guia, a "
                "Guia or setting that would not print whole (each cause named), an output folder that cannot be "
                "written, a printer's queue refused (no CUPS server, an unknown queue, a queue rejecting jobs) or a "
                "copy that could not be printed whole (no file is left then, and the jobs sent are cancelled).\nExamples:\n  nimbara db "
                "print 1 --out-dir printed\n  nimbara db print 10250 --edition array\n  nimbara db print 1 --printer office");
    cmd->callback([o, &status] { status = run_db_command("print", std::cerr, [&] { return print_guia(*o); }); });
}

}  // namespace nimbara::cli
