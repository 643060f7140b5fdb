// The database road behind a nimbara_store: open, save and load Guia files, list, check and print.
#include <string>

#include "capi/handles.hpp"
#include "capi/outcome.hpp"
#include "capi/printing.hpp"
#include "capi/texts.hpp"
#include "entities/listing_order.hpp"
#include "nimbara/Schema.hpp"
#include "nimbara/cls_Guia.hpp"
#include "nimbara/cls_Guia_Cabecalho.hpp"
#include "nimbara/cls_ValProdutos.hpp"
#include "nimbara/stored_guia_check.hpp"
#include "nimbara/guia_store.hpp"

namespace nimbara::capi {
namespace {

// The stored Guia judged as `nimbara db check` judges it: each line against the rule tables, then
// the Guia in the station's own working table.
nimbara_outcome check_stored(const std::shared_ptr<Database>& db, std::int32_t n_req)
{
    const auto verdict = check_stored_guia(db, n_req);
    if (!verdict) throw Refusal(NIMBARA_NOT_FOUND, "no Guia with N_Req " + std::to_string(n_req));
    nimbara_outcome outcome;
    for (std::size_t i = 0; i < verdict->lines.size(); ++i)
        if (const auto& result = verdict->lines[i].result)
            outcome.errors.push_back(
                outcome_error(*result, static_cast<std::int32_t>(i), std::to_string(verdict->lines[i].N_Linha)));
    if (verdict->guia) outcome.errors.push_back(outcome_error(*verdict->guia, -1, ""));
    return outcome;
}

}  // namespace
}  // namespace nimbara::capi

using namespace nimbara::capi;

extern "C" {

nimbara_status nimbara_store_open(const char* conn, size_t conn_size, nimbara_open_mode mode, nimbara_store** store)
{
    return guarded([&] {
        required(store, "store");
        const auto text = text_in(conn, conn_size, "conn");
        if (text.empty()) throw Refusal(NIMBARA_BAD_ARGUMENT, "the connection string is empty");
        std::shared_ptr<nimbara::Database> db;
        if (enumerator(mode, NIMBARA_OPEN_CREATE, "open mode") == NIMBARA_OPEN_CREATE) {
            db = nimbara::OpenDatabase(text, nimbara::OpenMode::Create);
            if (!nimbara::IsGuiaDatabase(*db)) nimbara::CreateSchema(*db);
        } else {
            db = nimbara::OpenGuiaDatabase(text);
        }
        *store = new nimbara_store{std::move(db)};
    });
}

void nimbara_store_destroy(nimbara_store* store) { delete store; }

nimbara_status nimbara_store_save(nimbara_store* store, const nimbara_guia* guia, int32_t* n_req, int32_t* n_req2,
                                  int32_t* id_req_anual)
{
    return guarded([&] {
        required(store, "store");
        const auto saved = nimbara::save_guia_file(store->db, required(guia, "guia").file, "the Guia");
        if (n_req) *n_req = saved.N_Req;
        if (n_req2) *n_req2 = saved.N_Req2;
        if (id_req_anual) *id_req_anual = saved.Id_Req_Anual;
    });
}

nimbara_status nimbara_store_load(nimbara_store* store, int32_t n_req, nimbara_guia** guia)
{
    return guarded([&] {
        required(store, "store");
        required(guia, "guia");
        *guia = new nimbara_guia{nimbara::load_guia_file(store->db, n_req)};
    });
}

nimbara_status nimbara_store_list(nimbara_store* store, const nimbara_list_filter* filter, nimbara_listing** listing)
{
    return guarded([&] {
        required(store, "store");
        required(listing, "listing");
        const auto f = sized_in(filter, "filter");
        const std::string year(text_in(f.year, f.year_size, "year")), month(text_in(f.month, f.month_size, "month"));
        const std::string client(text_in(f.client, f.client_size, "client"));
        const std::string order(text_in(f.order, f.order_size, "order"));
        // A refused order word is the host's mistake, told apart from the store's failures.
        if (!order.empty()) nimbara::entities::listing_order_columns(order);
        auto result = std::make_unique<nimbara_listing>();
        nimbara::RowSink sink;
        sink.columns = [&](std::span<const std::string> names) { result->columns.assign(names.begin(), names.end()); };
        sink.row = [&](std::span<nimbara::FieldValue> values) {
            auto& row = result->rows.emplace_back();
            row.reserve(values.size());
            for (const auto& v : values) row.push_back({v.is_null() ? std::string() : v.text(), v.is_null()});
        };
        nimbara::cls_Guia guias(store->db);
        if (!guias.StreamGuiaLines(year, month, client, order, sink)) throw nimbara::DatabaseError(guias.LastError());
        *listing = result.release();
    });
}

void nimbara_listing_destroy(nimbara_listing* listing) { delete listing; }

size_t nimbara_listing_column_count(const nimbara_listing* listing) { return listing ? listing->columns.size() : 0; }

size_t nimbara_listing_row_count(const nimbara_listing* listing) { return listing ? listing->rows.size() : 0; }

nimbara_status nimbara_listing_column(const nimbara_listing* listing, size_t column, const char** name,
                                      size_t* name_size)
{
    return guarded([&] {
        const auto& columns = required(listing, "listing").columns;
        if (column >= columns.size())
            throw Refusal(NIMBARA_BAD_ARGUMENT, "column " + std::to_string(column) + " of " + std::to_string(columns.size()));
        required(name, "name") = columns[column].c_str();
        if (name_size) *name_size = columns[column].size();
    });
}

nimbara_status nimbara_listing_cell(const nimbara_listing* listing, size_t row, size_t column, const char** text,
                                    size_t* text_size, int* is_null)
{
    return guarded([&] {
        const auto& rows = required(listing, "listing").rows;
        if (row >= rows.size() || column >= rows[row].size())
            throw Refusal(NIMBARA_BAD_ARGUMENT, "no cell at row " + std::to_string(row) + ", column " + std::to_string(column));
        const auto& cell = rows[row][column];
        required(text, "text") = cell.text.c_str();
        if (text_size) *text_size = cell.text.size();
        if (is_null) *is_null = cell.null;
    });
}

nimbara_status nimbara_store_check(nimbara_store* store, int32_t n_req, nimbara_outcome** outcome)
{
    return guarded([&] {
        required(outcome, "outcome");
        return hand_out(check_stored(required(store, "store").db, n_req), outcome);
    });
}

nimbara_status nimbara_store_print(nimbara_store* store, int32_t n_req, const char* folder, size_t folder_size,
                                   nimbara_print_job** job)
{
    return guarded([&] {
        required(store, "store");
        required(job, "job");
        const auto place = text_in(folder, folder_size, "folder");
        nimbara::cls_ValProdutosA guia;
        if (const auto refused = nimbara::fill_guia(guia, nimbara::load_guia_file(store->db, n_req)))
            throw Refusal(NIMBARA_BAD_ARGUMENT, "Guia " + std::to_string(n_req) + ": " + *refused);
        const auto problems = guia.PrintProblems();
        if (!problems.empty())
            throw Refusal(NIMBARA_BAD_ARGUMENT, "Guia " + std::to_string(n_req) + " would not print whole: " +
                                                    problems.front().where + ": " + problems.front().cause);
        *job = new nimbara_print_job(
            print_guia(std::move(guia), place.empty() ? std::nullopt : std::optional<std::filesystem::path>(place)));
    });
}

}
