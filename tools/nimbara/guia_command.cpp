#include "guia_command.hpp"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <tuple>
#include <iostream>
#include <nlohmann/json.hpp>

#include "nimbara/GlobalFrameWork.hpp"
#include "nimbara/cls_ValProdutosA.hpp"
#include "nimbara/guia_file.hpp"
#include "nimbara/printer_queue.hpp"
#include "explanation.hpp"
#include "json_output.hpp"
#include "option_checks.hpp"
#include "printer_target.hpp"
#include "standard_streams.hpp"
#include "verdict_json.hpp"

namespace nimbara::cli {
namespace {

namespace fs = std::filesystem;

// Messages of the print run: the log's debugging echoes only when asked for, the rest unless quiet.
class ProgramNotifier final : public Notifier {
public:
    ProgramNotifier(std::ostream& err, bool quiet, bool verbose) : err_(err), quiet_(quiet), verbose_(verbose) {}
    void message(MessageIcon icon, std::string_view title, std::string_view text) override
    {
        if (icon == MessageIcon::None ? !verbose_ : quiet_) return;
        err_ << (title.empty() ? std::string_view("nimbara") : title) << ": " << text << '\n';
    }
    void busy(bool) override {}
    void progress(int) override {}

private:
    std::ostream& err_;
    bool quiet_;
    bool verbose_;
};

// Input or an output place the command refuses; its text is the whole message.
struct Refusal : std::runtime_error {
    using std::runtime_error::runtime_error;
};

nlohmann::json as_json(const GuiaOutcome& outcome, const std::vector<Failure>& problems,
                       const std::vector<std::string>& warnings, int status, const GuiaFile& file)
{
    nlohmann::json j;
    j["answer"] = guia_answer(outcome);
    j["erro_id"] = outcome.failure || outcome.errors ? -1 : 0;
    j["report"] = outcome.report ? nlohmann::json(outcome.report->string()) : nlohmann::json(nullptr);
    j["pdfs"] = nlohmann::json::array();
    for (const auto& p : outcome.printed) j["pdfs"].push_back(p.string());
    j["errors"] = nlohmann::json::array();
    for (const auto& e : outcome.line_errors) {
        auto d = error_json(e.error);
        d["line"] = e.N_Linha;
        d["place"] = "/produtos/" + std::to_string(e.row);
        // What the report lists as accepted in the failing field's place.
        d["possible_values"] = possible_values_json(e.possible_values, e.weight_steps);
        if (const auto x = explanation(e.error, file, e.row)) d["explanation"] = *x;
        j["errors"].push_back(d);
    }
    if (outcome.guia_error) {
        auto d = error_json(*outcome.guia_error);
        d["place"] = "/";
        if (const auto x = explanation(*outcome.guia_error, file, std::nullopt)) d["explanation"] = *x;
        j["errors"].push_back(d);
    }
    j["not_printed"] = nlohmann::json::array();
    for (const auto& p : problems) j["not_printed"].push_back({{"place", p.where}, {"what", p.cause}});
    for (const auto& f : outcome.print_failures) j["not_printed"].push_back({{"place", "/"}, {"what", f}});
    j["warnings"] = warnings;
    j["status"] = status;
    return j;
}

int run(const GuiaRun& run, std::ostream& out, std::ostream& err, const std::string& command, nlohmann::json& document)
{
    for (const auto& [option, place, what] : {std::tuple{"--report-dir", run.report_dir, "the report folder"},
                                             std::tuple{"--out-dir", run.out_dir, "the output folder"},
                                             std::tuple{"--print-log", run.print_log, "the print log"}})
        if (place)
            if (const auto refused = stream_name_refusal(option, *place, what)) throw Refusal{*refused};
    const GuiaFile file = read_guia_input(run.file);
    const std::string source = run.file == "-" ? "<stdin>" : run.file;
    // The library passes a Guia without lines, as it always did; the program does not take one.
    if (file.produtos.empty())
        throw Refusal{source + ": /produtos: the Guia has no product lines; nothing was checked or printed"};
    // Both inputs read a weight the same way: a whole number of 32 bits (a weight not given is 0, as
    // the façade reads an empty cell).
    for (std::size_t i = 0; i < file.produtos.size(); ++i) {
        if (!file.produtos[i].Escalao.empty() && !read_weight(file.produtos[i].Escalao))
            throw Refusal{source + ": /produtos/" + std::to_string(i) + "/Escalao: \"" + file.produtos[i].Escalao +
                          "\" is not a whole number of 32 bits"};
    }

    cls_ValProdutosA guia;
    if (const auto refused = fill_guia(guia, file)) throw Refusal{source + ": " + *refused};

    // A day code that is not its date's would put another day in the symbol than on the form.
    std::vector<std::string> warnings;
    if (const auto conflict = guia.DayCodeConflict()) {
        if (run.printing) throw Refusal{source + ": /cabecalho: " + *conflict + "; nothing printed"};
        warnings.push_back("/cabecalho: " + *conflict);
        if (!run.quiet) err << "nimbara " << command << ": warning: " << source << ": " << warnings.back() << '\n';
    }

    const fs::path reports = usable_folder("report folder", run.report_dir ? fs::path(*run.report_dir) : fs::path("."));
    ProgramNotifier notes(err, run.quiet, run.verbose);
    guia.setNotifier(&notes);
    guia.setReportFolder(reports);
    guia.setPrintingEnabled(run.printing);
    if (run.printing) {
        guia.setPrintFolder(run.out_dir ? usable_folder("output folder", *run.out_dir) : reports);
        guia.setPrintLog(run.print_log ? fs::path(*run.print_log) : default_print_log());
        if (run.printer) guia.setPrinter(run.printer);
    }
    // Each Guia's copies are jobs of their own, named after it.
    std::unique_ptr<QueuePrinter> queue;
    if (run.printing && run.queue) {
        const std::string& ndoc = file.cabecalho.cb_NDoc;
        try {
            queue = std::make_unique<QueuePrinter>(*run.queue, ndoc.empty() ? file.cabecalho.cb_N_Req : ndoc);
        } catch (const PrinterError& e) {
            throw Refusal{printer_refusal(e)};
        }
        guia.setPrinter(queue->surface());
    }

    // What would not print whole is found before printing: the Guia is then validated and reported only.
    std::vector<Failure> problems;
    if (run.printing) {
        problems = guia.PrintProblems();
        if (!problems.empty()) guia.setPrintingEnabled(false);
    }
    if (run.only_printer && !problems.empty()) {
        for (const auto& p : problems) err << "nimbara " << command << ": not printed: " << p.where << ": " << p.cause << '\n';
        document = as_json(GuiaOutcome{}, problems, warnings, 3, file);
        return 3;
    }

    GuiaOutcome outcome = guia.ImprimeGuiaOutcome(run.only_printer);
    if (outcome.failure) throw Refusal{source + ": " + outcome.failure->cause};
    // A report that was not asked for goes again: the answer then names no file.
    if (outcome.report && (run.report == "never" || (run.report == "errors" && !outcome.errors))) {
        std::error_code ignored;
        fs::remove(*outcome.report, ignored);
        outcome.report.reset();
    }

    int status = outcome.errors ? 1 : 0;
    if (status == 0 && run.printing) {
        // A shared printer's file is told by whoever holds it.
        const auto made = queue ? queue->jobs().size() : outcome.printed.size();
        const bool whole = problems.empty() && outcome.print_failures.empty() && outcome.copies > 0 &&
                           (run.printer || made == static_cast<std::size_t>(outcome.copies));
        if (!whole) status = 3;
        if (run.printer && !outcome.print_failures.empty()) *run.printer_spoiled = true;
        // A Guia whose copies did not all go is no printed Guia: the ones sent are withdrawn.
        if (!whole && queue) queue->cancel_all();
    }
    if (run.json) {
        document = as_json(outcome, status == 1 ? std::vector<Failure>{} : problems, warnings, status, file);
        if (queue) {
            document["printer"] = queue->queue();
            document["jobs"] = jobs_json(queue->jobs());
        }
    } else {
        out << guia_answer(outcome) << '\n';
    }
    if (!run.quiet) {
        for (const auto& e : outcome.line_errors)
            if (const auto x = explanation(e.error, file, e.row))
                err << "nimbara " << command << ": " << source << ": /produtos/" << e.row << " (line " << e.N_Linha
                    << "): " << e.error.number << ": " << *x << '\n';
        if (outcome.guia_error)
            if (const auto x = explanation(*outcome.guia_error, file, std::nullopt))
                err << "nimbara " << command << ": " << source << ": " << outcome.guia_error->number << ": " << *x << '\n';
    }
    if (!run.quiet)
        for (const auto& pdf : outcome.printed) err << "nimbara " << command << ": printed " << pdf.string() << '\n';
    if (queue && (!run.quiet || status == 3)) tell_jobs(err, command, queue->queue(), queue->jobs());
    if (status == 3) {
        for (const auto& p : problems) err << "nimbara " << command << ": not printed: " << source << ": " << p.where << ": " << p.cause << '\n';
        for (const auto& f : outcome.print_failures) err << "nimbara " << command << ": not printed whole: " << f << '\n';
        if (problems.empty() && outcome.print_failures.empty())
            err << "nimbara " << command << ": " << (queue ? queue->jobs().size() : outcome.printed.size()) << " of "
                << file.parametros.vGuiaNVias << " copies printed\n";
    }
    return status;
}

}  // namespace

GuiaFile read_guia_input(const std::string& file)
{
    if (file != "-") return read_guia_file(file);
    std::string text;
    try {
        text = read_standard_input(kMaxGuiaFileBytes);
    } catch (const std::runtime_error& e) {
        throw GuiaFileError(e.what());
    }
    return parse_guia_file(text, "<stdin>");
}

fs::path usable_folder(const std::string& what, const fs::path& folder)
{
    std::error_code ec;
    fs::create_directories(folder, ec);
    if (ec) throw Refusal{"cannot create the " + what + " \"" + folder.string() + "\": " + ec.message()};
    if (!fs::is_directory(folder, ec)) throw Refusal{"the " + what + " \"" + folder.string() + "\" is not a folder"};
    return folder;
}

fs::path default_print_log()
{
    const fs::path log = GlobalFrameWork::DefaultPrintLog();
    return usable_folder("print log folder", log.parent_path()) / log.filename();
}

void add_guia_options(CLI::App& cmd, GuiaRun& r, bool many)
{
    cmd.add_option("GUIA", r.files, many ? "The Guia files (JSON), handled in turn; - reads standard input"
                                         : "The Guia file (JSON); - reads standard input")
        ->required()
        ->expected(1, many ? -1 : 1);
    cmd.parse_complete_callback([&r] {
        if (!r.files.empty()) r.file = r.files.front();
    });
    cmd.add_option("--report-dir", r.report_dir, "Folder of the report, created if missing (default: the current folder)");
    cmd.add_flag("--json", r.json,
                 many ? "Write one JSON document: per Guia file its answer, report, PDFs, errors with their place and "
                        "possible values, and status (an array for several files; a refusal too)"
                      : "Write one JSON document: the answer, report, errors with their place and possible values, "
                        "and status (a refusal too)");
    cmd.add_option("--report", r.report,
                   "When to leave a report: always (default, as ImprimeGuia does), errors (only for a Guia that "
                   "failed) or never")
        ->check(one_of({"always", "errors", "never"}));
    auto* quiet = cmd.add_flag("-q,--quiet", r.quiet, "Say nothing on standard error but refusals");
    cmd.add_flag("-v,--verbose", r.verbose, "Also show the print log's debugging messages")->excludes(quiet);
}

int run_guia(const GuiaRun& r, std::ostream& out, std::ostream& err, const std::string& command,
             nlohmann::json* document)
{
    nlohmann::json result;
    int status = 2;
    std::string refused;
    try {
        status = run(r, out, err, command, result);
    } catch (const GuiaFileError& e) {
        refused = e.what();
    } catch (const Refusal& e) {
        refused = e.what();
    }
    if (!refused.empty()) {
        err << "nimbara " << command << ": " << refused << '\n';
        result = refusal_json("nimbara " + command, refused);
    }
    if (!r.json) return status;
    // Each result names its input, so that an item of an array of several reads on its own.
    nlohmann::json named = {{"input", r.file}};
    if (result.is_object()) named.update(result);
    if (document)
        *document = std::move(named);
    else
        write_json(out, named);
    return status;
}

}  // namespace nimbara::cli
