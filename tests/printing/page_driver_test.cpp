#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "failing_surface.hpp"
#include "nimbara/cls_ImpressaoA.hpp"
#include "printed_text.hpp"
#include "printing/barcode_payload.hpp"
#include "support/sample_guia.hpp"
#include "support/temp_folder.hpp"
#include "symbol_reader.hpp"

using namespace nimbara;
using nimbara::printing::RecordingSurface;
using nimbara::testing::add_line;
using nimbara::testing::add_service;
using nimbara::testing::LineShape;
using nimbara::testing::sample_guia;
using namespace printing_test;

namespace {

// The head of the sample Guia without its page fields, and a default line's item without services.
const std::string kHeadStart = "CR050315000000000123000000456000000005123" "0007";
const std::string kHeadEnd = "SNNN00000770000000000000000000000000";
const std::string kLine = std::string("01C010000200000100021001") + "0100" + "0" + "0000000000000" + "00" + "000000000";

std::string head(int page, int pages) { return kHeadStart + printing::pad_zero(std::to_string(page), 2) + printing::pad_zero(std::to_string(pages), 2) + kHeadEnd; }
std::string lines(int n, const std::string& item = kLine + "00")
{
    std::string out;
    while (n-- > 0) out += item;
    return out;
}

struct Printed {
    RecordingSurface surface;
    std::vector<std::string> symbols;
    std::string log;
    std::int32_t forecast = 0;
    GuiaArrays arrays;  // as the run left them
};

Printed print(GuiaArrays g, double left = 0, double top = 0)
{
    nimbara::testing::TempFolder folder;
    cls_ImpressaoA printer;
    printer.set_log_path(folder.path() / "print.log");
    printer.arrays = std::move(g);
    Printed out;
    out.forecast = printer.Calcula_TotalidadePaginas(1027);
    printer.Imprime_Parte_Variavel("", 1027, 0, out.surface, form_impressao(), left, top, 0, "2025-05-03", "2025/1027");
    out.arrays = printer.arrays;
    out.symbols = recorded_symbols(out.surface);
    out.log = nimbara::testing::read_file(folder.path() / "print.log");
    EXPECT_EQ(printer.Str_CodBarrasServEsp, "");
    EXPECT_EQ(printer.Total_Se_CodBarras, 0);
    return out;
}

GuiaArrays guia_of(int n, const LineShape& line = {})
{
    auto g = sample_guia();
    while (n-- > 0) add_line(g, line);
    return g;
}

}  // namespace

TEST(PageDriver, PagesAndTheirSymbols)
{
    const std::string serv3 = "03" + printing::item_servico("1", "0") + printing::item_servico("2", "0") + printing::item_servico("3", "0");
    auto three = guia_of(1);
    for (const char* code : {"1", "2", "3"}) add_service(three, 1, code, "0");
    // Eleven lines, then one with four services on the last row: it moves to the next page, and its
    // item there has lost its service section and count.
    auto moved = guia_of(12);
    for (const char* code : {"1", "2", "3", "4"}) add_service(moved, 12, code, "0");
    // A "C25" line after a "C03" is the C03's service "25" and makes no item of its own.
    auto follower = guia_of(1, {.product = "C03", .campaign = {}});
    add_line(follower, {.product = "C25", .weight = "75", .campaign = {}});
    const std::string c03 = std::string("01C03") + kLine.substr(5) + "01" + "250000075";

    // Plain pages of twelve lines and a second page are pinned by the recorded calls of fourteen lines.
    struct Case { const char* what; GuiaArrays guia; int forecast, new_pages; std::vector<std::string> symbols; };
    const Case cases[] = {
        {"three services without value", three, 1, 0, {head(1, 1) + "01" + kLine + serv3}},
        {"a line moved off the last row", moved, 2, 1, {head(1, 2) + "11" + lines(11), head(2, 2) + "01" + lines(1)}},
        {"C25 follower", follower, 1, 0, {head(1, 1) + "01" + c03}},
    };
    for (const auto& c : cases) {
        const auto p = print(c.guia);
        EXPECT_EQ(p.forecast, c.forecast) << c.what;
        EXPECT_EQ(p.surface.calls_of("NewPage").size(), static_cast<std::size_t>(c.new_pages)) << c.what;
        EXPECT_EQ(p.surface.documents_ended(), 1) << c.what;
        EXPECT_EQ(p.symbols, c.symbols) << c.what;
        EXPECT_EQ(p.log, "") << c.what;
    }
}

TEST(PageDriver, AFaultEndsTheCopyButNotTheJob)
{
    auto g = guia_of(2);
    g.arrGuia.set(guia::D_Quantidade, 1, std::string("12345678"));
    const auto p = print(g);
    EXPECT_EQ(p.surface.documents_ended(), 1);
    EXPECT_TRUE(p.symbols.empty()) << "the page's symbol never came";
    EXPECT_NE(p.log.find("Imprime_Parte_Variavel-Erro:Invalid procedure call or argument"), std::string::npos) << p.log;
}

// Format "07" of product "C07" prints as "01", while the printer's own table holds "07" at every
// call the print makes.
TEST(PageDriver, TheC07FormatChangesInThePrintedLineOnly)
{
    nimbara::testing::TempFolder folder;
    cls_ImpressaoA printer;
    printer.set_log_path(folder.path() / "print.log");
    printer.arrays = guia_of(1, {.product = "C07", .format = "07", .campaign = {}});
    RecordingSurface recorded;
    int changed = 0;
    FailingSurface s(recorded, 0, [&] { changed += printer.arrays.arrGuia.text(guia::Formato, 0) != "07"; });
    printer.Imprime_Parte_Variavel("", 1027, 0, s, form_impressao(), 0, 0, 0, "2025-05-03", "2025/1027");
    EXPECT_EQ(changed, 0);
    EXPECT_EQ(recorded_symbols(recorded).at(0).substr(87, 24), "01C070000200000100011001");
}
