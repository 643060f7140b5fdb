// Guias: checked before saving, saved, listed, shown as a Guia file, deleted with what goes with
// them, their printability, their printed copies and the export of their lines.
#include <cctype>
#include <sstream>

#include "db_command.hpp"
#include "export_table.hpp"
#include "guia_command.hpp"
#include "stored_print.hpp"
#include "nimbara/PdfSurface.hpp"
#include "delimited.hpp"
#include "guia_json.hpp"
#include "guia_listing.hpp"
#include "handlers.hpp"
#include "handlers_input.hpp"
#include "nimbara/cls_Guia.hpp"
#include "nimbara/guia_file.hpp"
#include "nimbara/guia_store.hpp"
#include "nimbara/stored_guia_check.hpp"

namespace nimbara::serve {
namespace {

using nlohmann::ordered_json;
constexpr std::int64_t kMostNumber = 2'147'483'647;

std::int32_t guia_number(const ApiRequest& request)
{
    return static_cast<std::int32_t>(path_whole(request, "id", 1, kMostNumber));
}

void require_guia(const ApiRequest& request, std::int32_t n_req)
{
    if (request.db->open("SELECT N_Req FROM Tbl_Cab WHERE N_Req = ?", {n_req}).RecordCount() == 0)
        throw InputError(404, "no Guia with N_Req " + std::to_string(n_req), "id");
}

// The listing's filters from the query, each checked: a year and month in range, a client number.
cli::ListingOptions listing_filters(const ApiRequest& request)
{
    cli::ListingOptions o;
    if (const auto year = query_whole(request, "year", 1900, 9999)) o.year = std::to_string(*year);
    if (const auto month = query_whole(request, "month", 1, 12)) o.month = std::to_string(*month);
    if (const auto client = query_whole(request, "client", 0, 999'999'999)) o.client = std::to_string(*client);
    o.order = query_text(request, "order").value_or("");
    return o;
}

// The listing refuses an order word with the store's own text; that is the order's fault.
void stream_lines(const ApiRequest& request, const cli::ListingOptions& o, const RowSink& sink)
{
    cls_Guia guia(request.db);
    try {
        cli::stream_guia_lines(guia, o, sink);
    } catch (const cli::CommandError& e) {
        throw InputError(o.order.empty() ? 500 : 400, e.what(), o.order.empty() ? "" : "order");
    }
}

}  // namespace

// Judged by the database's rule tables as `db check` judges a stored Guia: the Guia is stored in a
// transaction that is rolled back, so nothing of it stays.
ApiResponse check_guia(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {});
        const GuiaFile file = parse_guia_file(request.body, "body");
        Transaction t(*request.db);
        const SavedGuia saved = save_guia_file(request.db, file, "body");
        const auto verdict = check_stored_guia(request.db, saved.N_Req);
        if (!verdict) throw std::runtime_error("the Guia being checked was not found in its own transaction");
        ordered_json document = cli::stored_verdict_json(saved.N_Req, *verdict);
        document.erase("N_Req");
        // Each line's place in the body, by its N_Linha, for the page to show the error in place.
        for (auto& line : document["lines"]) {
            for (std::size_t row = 0; row < file.produtos.size(); ++row)
                if (std::to_string(line["N_Linha"].get<std::int64_t>()) == file.produtos[row].N_Linha) {
                    line["place"] = "/produtos/" + std::to_string(row);
                    break;
                }
        }
        return json_response(200, document);
    });
}

ApiResponse save_guia(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {});
        const GuiaFile file = parse_guia_file(request.body, "body");
        const SavedGuia saved = save_guia_file(request.db, file, "body");
        return json_response(201, cli::saved_guia_json("body", saved, cli::stored_print_problems(request.db, saved.N_Req)));
    });
}

ApiResponse list_guias(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {"year", "month", "client", "order"});
        const auto& columns = cli::listing_columns();
        std::vector<std::size_t> at;
        auto rows = ordered_json::array();
        stream_lines(request, listing_filters(request),
                     {.columns = [&](std::span<const std::string> names) { at = cli::listing_positions(names); },
                      .row = [&](std::span<FieldValue> values) {
                          ordered_json row;
                          for (std::size_t c = 0; c < columns.size(); ++c) row[columns[c]] = cli::json_value(values[at[c]]);
                          rows.push_back(std::move(row));
                      }});
        return json_response(200, rows);
    });
}

ApiResponse get_guia(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {});
        return ApiResponse{200, "application/json", write_guia_file(load_guia_file(request.db, guia_number(request))),
                           {}, std::nullopt};
    });
}

ApiResponse delete_guia(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {"dry_run"});
        const bool dry = dry_run(request);
        const auto deleted = cli::delete_guia(request.db, guia_number(request), !dry);
        auto response = json_response(200, {{"status", 0}, {"dry_run", dry}, {"deleted", deleted}});
        if (!dry)
            response.audit = AuditEntry{"delete guia", "Guia " + deleted["n_req"].dump() + " of client " +
                                                           deleted["cod_cliente"].get<std::string>() + " with " +
                                                           deleted["lines"].dump() + " lines"};
        return response;
    });
}

ApiResponse guia_printable(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {});
        const std::int32_t n_req = guia_number(request);
        require_guia(request, n_req);
        const auto problems = cli::stored_print_problems(request.db, n_req);
        return json_response(200, {{"status", 0}, {"N_Req", n_req}, {"printable", problems.empty()},
                                   {"problems", cli::print_problems_json(problems)}});
    });
}

// Every copy (vGuiaNVias) in one PDF, made in memory: a browser downloads one file per Guia, where
// `db print` writes a file per copy.
ApiResponse guia_pdf(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {});
        const std::int32_t n_req = guia_number(request);
        const auto log = cli::default_print_log();
        cli::StoredGuiaPrint guia;
        try {
            guia = cli::prepare_stored_print(request.db, n_req, log);
        } catch (const cli::NotFoundError& e) {
            throw InputError(404, e.what(), "id");
        } catch (const cli::CommandError& e) {
            throw InputError(422, e.what());
        }
        std::string pdf;
        PdfSurface surface([&pdf](int, std::string bytes) { pdf = std::move(bytes); });
        surface.setOrientation(printer::kLandscape);
        surface.setPaperSize(printer::kPaperA4);
        surface.BeginBatch();
        surface.StartDoc();
        const auto faults = cli::print_stored_copies(request.db, guia, surface, log);
        surface.EndBatch();
        // A partial Guia is no printed Guia.
        if (!faults.empty() || pdf.empty())
            throw InputError(500, "Guia " + std::to_string(n_req) + " not printed: " +
                                      (faults.empty() ? std::string("no page came out") : faults.front()));
        std::string name = "Guia_" + guia.NDoc + ".pdf";
        for (char& c : name)
            if (!std::isalnum(static_cast<unsigned char>(c)) && c != '-' && c != '_' && c != '.') c = '-';
        return ApiResponse{200, "application/pdf", std::move(pdf),
                           {{"Content-Disposition", "attachment; filename=\"" + name + "\""}}, std::nullopt};
    });
}

ApiResponse export_guias(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {"format", "year", "month", "client", "order"});
        const std::string format = query_text(request, "format").value_or("csv");
        if (format != "csv" && format != "tsv" && format != "json")
            throw InputError(400, "format: \"" + format + "\" is none of csv, tsv and json", "format");
        const auto filters = listing_filters(request);
        std::ostringstream out;
        try {
            cli::export_table(request.db, filters, format, out);
        } catch (const cli::CommandError& e) {
            throw InputError(filters.order.empty() ? 500 : 400, e.what(), filters.order.empty() ? "" : "order");
        }
        if (format == "json") return ApiResponse{200, "application/json", out.str(), {}, std::nullopt};
        const std::string type = format == "csv" ? "text/csv; charset=utf-8" : "text/tab-separated-values; charset=utf-8";
        return ApiResponse{200, type, out.str(),
                           {{"Content-Disposition", "attachment; filename=\"guias." + format + "\""}}, std::nullopt};
    });
}

}  // namespace nimbara::serve
