#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

#include "printing/page_plan.hpp"
#include "support/sample_guia.hpp"

using namespace nimbara;
using nimbara::testing::add_line;
using nimbara::testing::add_service;

namespace {

// What a planned page holds, without its coordinates.
struct PageShape {
    std::vector<int> lines;
    int service_rows = 0;
    bool erases = false;
    std::string symbol;  // the page number in its symbol and the count of the items, "" without symbol

    bool operator==(const PageShape&) const = default;
};

std::vector<PageShape> shapes(const printing::PagePlan& plan)
{
    std::vector<PageShape> out;
    for (const auto& page : plan.pages) {
        PageShape shape;
        for (const auto& step : page.steps) {
            if (const auto* line = std::get_if<printing::step::Line>(&step)) shape.lines.push_back(line->index);
            shape.service_rows += std::holds_alternative<printing::step::ServiceRow>(step);
            shape.erases |= std::holds_alternative<printing::step::EraseLastRow>(step);
            // The head keeps 85 characters, the page number at 46; the item count follows it.
            if (const auto* s = std::get_if<printing::step::Symbol>(&step))
                shape.symbol = s->payload.substr(45, 2) + " " + s->payload.substr(85, 2);
        }
        out.push_back(shape);
    }
    return out;
}

std::vector<int> range(int from, int to)
{
    std::vector<int> out;
    for (int i = from; i <= to; ++i) out.push_back(i);
    return out;
}

GuiaArrays lines(int n)
{
    auto g = nimbara::testing::sample_guia();
    while (n-- > 0) add_line(g);
    return g;
}

GuiaArrays with_services(GuiaArrays g, int line, int count, const char* value = "0")
{
    for (int code = 1; code <= count; ++code) add_service(g, line, std::to_string(code), value);
    return g;
}

}  // namespace

TEST(PagePlan, LinesServicesAndPageTurns)
{
    auto bad_quantity = lines(3);
    bad_quantity.arrGuia.set(guia::D_Quantidade, 1, std::string("x"));

    struct Case {
        const char* what;
        GuiaArrays guia;
        std::int32_t forecast;
        std::vector<PageShape> pages;
        bool fails = false;
    };
    const Case cases[] = {
        {"no lines: nothing to walk", lines(0), 0, {}, true},
        {"twelve lines fill one page", lines(12), 1, {{range(0, 11), 0, false, "01 12"}}},
        {"the thirteenth line turns the page", lines(13), 2, {{range(0, 11), 0, false, "01 12"}, {{12}, 0, false, "02 01"}}},
        {"three services without value flush a row of their own", with_services(lines(2), 1, 3), 1,
         {{{0, 1}, 1, false, "01 02"}}},
        {"two services with a value share the line's row", with_services(lines(1), 1, 2, "150"), 1,
         {{{0}, 1, false, "01 01"}}},
        // The forecast knows nothing of the move.
        {"four services cannot start on the last row", with_services(lines(12), 12, 4), 2,
         {{range(0, 11), 0, true, "01 11"}, {{11}, 2, false, "02 01"}}},
        // The service rows fill the page in the middle of the line: the finished page's symbol names
        // the next page, and the forecast falls one page short.
        {"service rows turn the page mid-line", with_services(lines(11), 11, 6), 1,
         {{range(0, 10), 2, false, "02 10"}, {{}, 0, false, "02 01"}}},
        {"a fault stops the walk where it stands", bad_quantity, 1, {{{0, 1}, 0, false, ""}}, true},
    };
    for (const auto& c : cases) {
        const auto plan = printing::plan_pages(printing::ArraySource(c.guia));
        EXPECT_EQ(plan.TotPaginas, c.forecast) << c.what;
        EXPECT_EQ(shapes(plan), c.pages) << c.what;
        EXPECT_EQ(plan.failure.has_value(), c.fails) << c.what;
    }
}
