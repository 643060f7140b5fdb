// nimbara db print N_REQ: the database edition prints a stored Guia, one PDF per copy, named as the
// headless road names them.
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands.hpp"
#include "db_command.hpp"
#include "guia_command.hpp"
#include "nimbara/FormImpressao.hpp"
#include "nimbara/Recordset.hpp"
#include "nimbara/cls_Guia_Cabecalho.hpp"
#include "nimbara/cls_Impressao.hpp"
#include "nimbara/cls_Parametro.hpp"
#include "nimbara/pdf_printer.hpp"

namespace nimbara::cli {
namespace {

namespace fs = std::filesystem;

struct PrintOptions {
    std::string conn;
    std::int32_t n_req = 0;
    std::string out_dir = ".";
    std::optional<std::string> print_log;
    bool quiet = false;
};

// A whole number of a parameter, or a message naming it.
std::int32_t whole_parameter(const std::string& name, const std::string& value)
{
    try {
        std::size_t used = 0;
        const long n = std::stol(value, &used);
        if (used == value.size()) return static_cast<std::int32_t>(n);
    } catch (const std::exception&) {
    }
    throw CommandError("Tbl_Parametro: " + name + " \"" + value + "\" is not a whole number");
}

// Margins are kept in twips; the page works in millimetres.
double twips_to_mm(std::int32_t twips) { return twips * 10.0 / 567; }

int print_guia(const PrintOptions& o)
{
    const auto db = open_command_database(o.conn);
    if (db->open("SELECT N_Req FROM Tbl_Cab WHERE N_Req = ?", {o.n_req}).RecordCount() == 0)
        throw CommandError("no Guia with N_Req " + std::to_string(o.n_req));
    // The symbol's head holds the request number in four digits; the page would stop at it.
    if (o.n_req > 9999 || o.n_req < 0)
        throw CommandError("Guia " + std::to_string(o.n_req) +
                           " not printed: the symbol of this edition holds the request number in four digits");
    cls_Guia_Cabecalho guia(db);
    guia.SelectMe(o.n_req);
    const std::string date = guia.vDReq.text().substr(0, 10);
    // The document number the form shows, as the Guia's file would carry it.
    const std::string NDoc = date.substr(0, 4) + "/" + std::to_string(guia.vNIDReqAnual);

    cls_Parametro parametros(db);
    // The page reads its symbol's settings from the table itself, not from the defaults.
    Recordset stored;
    parametros.SelectAll(stored);
    if (stored.RecordCount() == 0)
        throw CommandError("Tbl_Parametro has no row: save the print settings first (nimbara db params set ...)");
    const std::int32_t vias = whole_parameter("GuiaNVias", parametros.vGuiaNVias);
    const double top = twips_to_mm(whole_parameter("GuiaMargensTopo", parametros.vGuiaMargensTopo));
    const double left = twips_to_mm(whole_parameter("GuiaMargensEsquerda", parametros.vGuiaMargensEsquerda));

    fs::path folder;
    try {
        folder = usable_folder("output folder", o.out_dir);
    } catch (const std::exception& e) {
        throw CommandError(e.what());
    }
    if (vias <= 0) {
        if (!o.quiet) std::cerr << "nimbara db print: GuiaNVias is " << vias << ": no copy to print\n";
        return 0;
    }
    const auto surface = make_pdf_printer(folder, NDoc);
    surface->setOrientation(printer::kLandscape);
    surface->setPaperSize(printer::kPaperA4);
    // An output place that cannot be written is known before anything is drawn.
    try {
        surface->StartDoc();
    } catch (const std::exception& e) {
        throw CommandError("Guia " + std::to_string(o.n_req) + " not printed: cannot write into \"" + folder.string() +
                           "\": " + e.what());
    }

    cls_Impressao printer(db);
    printer.set_log_path(o.print_log ? fs::path(*o.print_log) : default_print_log());
    std::int32_t DuplOrig = 0;
    for (std::int32_t via = 1; via <= vias; ++via, ++DuplOrig)
        printer.Imprime_Parte_Variavel("", o.n_req, 0, *surface, form_impressao(), top, left, DuplOrig, date, NDoc);

    // The page routines log their faults and go on; a copy with a fault is not a printed Guia, and
    // none of this run's files stays behind it.
    const std::vector<fs::path>& written = surface->written();
    if (!printer.log_entries().empty() || static_cast<std::int32_t>(written.size()) != vias) {
        for (const auto& pdf : written) fs::remove(pdf);
        std::string why = printer.log_entries().empty() ? "a copy was not written" : printer.log_entries().front();
        throw CommandError("Guia " + std::to_string(o.n_req) + " not printed: " + why);
    }
    if (!o.quiet)
        for (const auto& pdf : written) std::cerr << "nimbara db print: printed " << pdf.string() << '\n';
    return 0;
}

}  // namespace

void register_db_print(CLI::App& db, int& status)
{
    auto o = std::make_shared<PrintOptions>();
    auto* cmd = db.add_subcommand("print", "Print a stored Guia as the database edition prints it: one PDF per copy "
                                           "(GuiaNVias of Tbl_Parametro)");
    cmd->add_option("N_REQ", o->n_req, "The Guia's number")->required();
    cmd->add_option("--out-dir", o->out_dir, "Folder of the printed PDFs, created if missing (default: the current "
                                             "folder)");
    cmd->add_option("--print-log", o->print_log,
                    "The print log (default: $XDG_STATE_HOME/nimbara/nimbara.log, or ~/.local/state/nimbara/nimbara.log)");
    cmd->add_flag("-q,--quiet", o->quiet, "Do not name the printed files");
    add_db_option(*cmd, o->conn);
    cmd->footer("Files are named Guia_<year>-<yearly number>_via<copy>.pdf; a taken name gains -2, -3...\nExit "
                "status: 0 every copy printed, 2 no such Guia, a parameter that is no number, an output folder that "
                "cannot be written or a copy that could not be printed whole (no file is left then).\nExample:\n  "
                "nimbara db print 1 --out-dir printed");
    cmd->callback([o, &status] { status = run_db_command("print", std::cerr, [&] { return print_guia(*o); }); });
}

}  // namespace nimbara::cli
