#include "stored_print.hpp"

#include "db_command.hpp"
#include "nimbara/FormImpressao.hpp"
#include "nimbara/cls_Guia_Cabecalho.hpp"
#include "nimbara/cls_Impressao.hpp"
#include "nimbara/cls_Parametro.hpp"

namespace nimbara::cli {
namespace {

// Margins are kept in twips, checked as whole numbers before printing; the page works in millimetres.
double margin_mm(const std::string& twips) { return std::stoi(twips) / kTwipsPerMm; }

}  // namespace

StoredGuiaPrint prepare_stored_print(const std::shared_ptr<Database>& db, std::int32_t n_req,
                                     const std::filesystem::path& print_log)
{
    if (db->open("SELECT N_Req FROM Tbl_Cab WHERE N_Req = ?", {n_req}).RecordCount() == 0)
        throw NotFoundError("no Guia with N_Req " + std::to_string(n_req));
    cls_Impressao printer(db);
    printer.set_log_path(print_log);
    // Whatever would stop the page is named before anything is drawn.
    if (const auto problems = printer.PrintProblems(n_req); !problems.empty()) {
        std::string text = "Guia " + std::to_string(n_req) + " not printed:";
        for (const auto& p : problems) text += "\n  " + p.place + ": " + p.what;
        throw CommandError(text);
    }
    cls_Guia_Cabecalho head(db);
    head.SelectMe(n_req);
    StoredGuiaPrint guia;
    guia.n_req = n_req;
    guia.date = head.vDReq.text().substr(0, 10);
    // The document number the form shows, as the Guia's file would carry it.
    guia.NDoc = guia.date.substr(0, 4) + "/" + std::to_string(head.vNIDReqAnual);
    const cls_Parametro parametros(db);
    guia.copies = std::stoi(parametros.vGuiaNVias);
    guia.top_mm = margin_mm(parametros.vGuiaMargensTopo);
    guia.left_mm = margin_mm(parametros.vGuiaMargensEsquerda);
    return guia;
}

std::vector<std::string> print_stored_copies(const std::shared_ptr<Database>& db, const StoredGuiaPrint& guia,
                                             PageSurface& surface, const std::filesystem::path& print_log)
{
    cls_Impressao printer(db);
    printer.set_log_path(print_log);
    std::int32_t DuplOrig = 0;
    for (std::int32_t via = 1; via <= guia.copies; ++via, ++DuplOrig)
        printer.Imprime_Parte_Variavel("", guia.n_req, 0, surface, form_impressao(), guia.top_mm, guia.left_mm, DuplOrig,
                                       guia.date, guia.NDoc);
    return printer.log_entries();
}

}  // namespace nimbara::cli
