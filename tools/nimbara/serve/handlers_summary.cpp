// A month's summary: its Guias, lines and quantities per product, from the same listing db list reads.
#include <map>
#include <set>

#include "guia_listing.hpp"
#include "handlers.hpp"
#include "handlers_input.hpp"
#include "nimbara/cls_Guia.hpp"

namespace nimbara::serve {

ApiResponse month_summary(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {"year", "month"});
        cli::ListingOptions o;
        const auto year = query_whole(request, "year", 1900, 9999);
        const auto month = query_whole(request, "month", 1, 12);
        if (month && !year) throw InputError(400, "year: a month needs its year", "year");
        if (year) o.year = std::to_string(*year);
        if (month) o.month = std::to_string(*month);
        struct Product {
            std::int64_t lines = 0;
            std::int64_t quantity = 0;
        };
        std::map<std::string, Product> products;
        std::set<std::int64_t> guias;
        std::int64_t lines = 0;
        std::vector<std::size_t> at;
        cls_Guia guia(request.db);
        cli::stream_guia_lines(guia, o,
                               {.columns = [&](std::span<const std::string> names) { at = cli::listing_positions(names); },
                                .row = [&](std::span<FieldValue> values) {
                                    // Columns of listing_columns(): Req is the third, Produto the eleventh, Quantidade the sixteenth.
                                    guias.insert(values[at[2]].integer());
                                    ++lines;
                                    auto& p = products[values[at[10]].text()];
                                    ++p.lines;
                                    p.quantity += values[at[15]].is_null() ? 0 : values[at[15]].integer();
                                }});
        auto rows = nlohmann::ordered_json::array();
        for (const auto& [code, p] : products) rows.push_back({{"product", code}, {"lines", p.lines}, {"quantity", p.quantity}});
        return json_response(200, {{"status", 0},
                                   {"year", year ? nlohmann::ordered_json(*year) : nullptr},
                                   {"month", month ? nlohmann::ordered_json(*month) : nullptr},
                                   {"guias", guias.size()},
                                   {"lines", lines},
                                   {"products", rows}});
    });
}

}  // namespace nimbara::serve
