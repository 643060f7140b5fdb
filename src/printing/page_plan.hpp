#pragma once
// How a Guia falls into pages, decided before anything is drawn: which lines and service rows go on
// which page and at which row, where the pages turn, and each page's symbol. The page driver draws
// the plan step by step; the page forecast is part of it, and keeps its old blind spot: it knows
// nothing of a line moved off the last row, so the real pages may outrun it.
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "nimbara/ImpressaoComum.hpp"
#include "nimbara/cls_ImpressaoA.hpp"
#include "printing/guia_source.hpp"

namespace nimbara::printing {

using ServiceSlots = cls_ImpressaoA::ServiceSlots;

// The steps of a page, each a call of the printer's routines, in the order they are drawn.
namespace step {
// The fixed form, the header and footer, and the logo.
struct PageTop {};
// A line of the source, as it prints, at row y.
struct Line {
    int index;
    std::int32_t y;
};
struct PageNumbers {
    std::int32_t pag;
};
// A row of special services from the gathered slots; without slots, one service alone.
struct ServiceRow {
    std::string code, value;
    std::int32_t y;
    struct Slots {
        ServiceSlots val, cod;
        std::int32_t nVal, nCod;
    };
    std::optional<Slots> slots;
};
// Blanks over the line just printed on the last row, which moves to the next page.
struct EraseLastRow {};
// The sum of the quantities, digit by digit into the total's comb.
struct Total {
    std::int32_t quantity;
};
// The header's remarks again, with the campaign remarks gathered so far.
struct Remarks {
    std::string text;
};
// The page's symbol.
struct Symbol {
    std::string payload;
};
}  // namespace step

using Step = std::variant<step::PageTop, step::Line, step::PageNumbers, step::ServiceRow, step::EraseLastRow,
                          step::Total, step::Remarks, step::Symbol>;

// One sheet: every page after the first begins with a new page of the job.
struct PlannedPage {
    std::vector<Step> steps;
};

struct PagePlan {
    std::int32_t TotPaginas = 0;  // the forecast, which the page numbers and the symbols carry
    std::vector<PlannedPage> pages;
    std::int32_t pag = 0;  // the page counter where the walk ended, which can run ahead of the sheets
    // What stopped the walk, if anything did: the steps before it are drawn, and the job ends there.
    std::optional<std::string> failure;
    // Where it stopped: the line being walked (its index) and, among its services, the row, when known.
    std::optional<int> failure_line;
    std::optional<int> failure_service;
};

// The array edition's forecast: the pages foretold from the rows the lines and their services need.
// A fault in the Guia ends the count where it stands.
std::int32_t forecast_pages(const GuiaSource& source);

// The database edition's forecast: the walk itself, without drawing; its page counter at the end,
// and what stopped it, if anything did.
struct DryRun {
    std::int32_t pages;
    std::optional<std::string> failure;
};
DryRun dry_run_pages(const GuiaSource& source);

// The whole walk of one copy in the edition's manner. It never throws: a fault in the Guia becomes
// the plan's failure.
PagePlan plan_pages(const GuiaSource& source, Edition edition = Edition::Array);

}  // namespace nimbara::printing
