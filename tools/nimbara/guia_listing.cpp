#include "guia_listing.hpp"

#include <algorithm>

#include "db_command.hpp"
#include "option_checks.hpp"

namespace nimbara::cli {

void add_listing_options(CLI::App& cmd, ListingOptions& o)
{
    cmd.add_option("--year", o.year, "Only the Guias of this year");
    cmd.add_option("--month", o.month, "Only the Guias of this month (every month when left out)")->check(whole_in(1, 12));
    cmd.add_option("--client", o.client, "Only the Guias of this client number (0 for all)");
    cmd.add_option("--order", o.order,
                   "Column words separated by commas, each with asc or desc if wanted: guia, data, cliente, nome, "
                   "contrato, velocidade, produto, zona, peso, formato, ambito, quantidade "
                   "(default: client, then Guia)");
    add_db_option(cmd, o.conn);
}

const std::vector<std::string>& listing_columns()
{
    static const std::vector<std::string> columns = {
        "Req1",     "Req2",       "Req",     "Guia", "N_linha", "Data",       "Cliente",    "Nome",          "Contrato",
        "Velocidade", "Produto", "Zona", "Peso", "Formato", "Ambito", "Quantidade", "CodigoCampanha"};
    return columns;
}

Recordset guia_lines(cls_Guia& guia, const ListingOptions& o)
{
    std::int16_t erro = 0;
    auto rs = guia.getRSGuia(o.year, o.month, o.client, o.order, &erro);
    if (!rs) throw CommandError(guia.LastError());
    // The empty form is a grid's placeholder (it has no Guia column): here it means no lines.
    for (std::size_t c = 0; c < rs->FieldCount(); ++c)
        if (rs->FieldName(c) == "Guia") return std::move(*rs);
    return Recordset(listing_columns(), {});
}

void stream_guia_lines(cls_Guia& guia, const ListingOptions& o, const RowSink& sink)
{
    if (!guia.StreamGuiaLines(o.year, o.month, o.client, o.order, sink)) throw CommandError(guia.LastError());
}

std::vector<std::size_t> listing_positions(std::span<const std::string> names)
{
    std::vector<std::size_t> at;
    for (const auto& column : listing_columns()) {
        const auto found = std::find(names.begin(), names.end(), column);
        if (found == names.end()) throw CommandError("the listing has no column " + column);
        at.push_back(static_cast<std::size_t>(found - names.begin()));
    }
    return at;
}

}  // namespace nimbara::cli
