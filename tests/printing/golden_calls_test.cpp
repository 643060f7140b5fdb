// Every call a print makes, against the calls recorded in tests/data/golden. After a deliberate
// change of layout, run with NIMBARA_REWRITE_GOLDEN=1 to write the files anew, and review their diff.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>

#include "nimbara/cls_Impressao.hpp"
#include "nimbara/cls_ImpressaoA.hpp"
#include "printing/call_log.hpp"
#include "printing/recording_surface.hpp"
#include "support/sample_guia.hpp"
#include "support/temp_folder.hpp"

using namespace nimbara;
using nimbara::printing::RecordingSurface;
using nimbara::testing::add_line;
using nimbara::testing::add_service;
using nimbara::testing::call_log;
using nimbara::testing::first_difference;
using nimbara::testing::LineShape;
using nimbara::testing::sample_guia;

namespace {

// A Guia printed as one copy by the array edition's page driver.
std::function<void(RecordingSurface&)> printed_guia(std::function<void(GuiaArrays&)> lines, double left = 0, double top = 0)
{
    return [=](RecordingSurface& s) {
        nimbara::testing::TempFolder folder("golden");
        cls_ImpressaoA printer;
        printer.set_log_path(folder.path() / "print.log");
        printer.arrays = sample_guia();
        lines(printer.arrays);
        printer.Imprime_Parte_Variavel("", 1027, 0, s, form_impressao(), left, top, 0, "2025-05-03", "2025/1027");
    };
}

template <class Printer>
std::function<void(RecordingSurface&)> empty_form(int copy)
{
    return [=](RecordingSurface& s) {
        nimbara::testing::TempFolder folder("golden");
        Printer p;
        p.set_log_path(folder.path() / "print.log");
        p.PrintTestPage(s, form_impressao(), copy, "2024-03-15");
    };
}

// The fixed form with a header, footer and page numbers of the database edition, whose page driver
// lives elsewhere.
std::function<void(RecordingSurface&)> database_page(int page, int pages)
{
    return [=](RecordingSurface& s) {
        nimbara::testing::TempFolder folder("golden");
        cls_Impressao p;
        p.set_log_path(folder.path() / "print.log");
        p.SetPageOffsets(2, 1);
        p.PrintaParteFixaGuiaExp(s, form_impressao(), 0, "2024-03-15");
        p.ImprimeHeaderFooter(s, "0", "456", "123", "1", "Papelaria Horizonte, Lda.", "501234567",
                              "Rua das Flores, 12", "1000-100 LISBOA", "Entrega na loja\nFrágil", "0", "0");
        p.Imprime_NumPaginas("2025/1027", s, page, pages);
    };
}

}  // namespace

TEST(GoldenCalls, EveryPrintAgainstItsRecordedCalls)
{
    struct Case { const char* name; std::function<void(RecordingSurface&)> print; };
    const Case cases[] = {
        {"empty-form-array", empty_form<cls_ImpressaoA>(0)},
        {"empty-form-array-duplicate", empty_form<cls_ImpressaoA>(2)},
        {"empty-form-database", empty_form<cls_Impressao>(0)},
        {"database-first-of-two-pages", database_page(1, 2)},
        {"database-last-page", database_page(2, 2)},
        {"guia-one-line", printed_guia([](GuiaArrays& g) { add_line(g); })},
        {"guia-services-and-margins", printed_guia([](GuiaArrays& g) {
             const int a = add_line(g, {.product = "C13", .format = "03"});
             for (const auto& [code, value] : {std::pair{"02", "150"}, {"10", "0"}, {"07", "35"}, {"04", "12"}})
                 add_service(g, a, code, value);
             const int b = add_line(g, {.product = "C24", .weight = "10", .campaign = "VERAO"});
             add_service(g, b, "06", "2");
         }, 5, 3)},
        {"guia-c07-format", printed_guia([](GuiaArrays& g) {
             add_line(g, {.product = "C07", .quantity = "1234", .format = "07", .tax_quantity = "0"});
             add_line(g, {.product = "C07", .weight = "1000", .format = "08"});
         })},
        {"guia-fourteen-lines-with-services", printed_guia([](GuiaArrays& g) {
             for (int i = 0; i < 14; ++i) {
                 const int n = add_line(g, {.quantity = std::to_string(100 + i)});
                 if (i % 3 == 0) add_service(g, n, "02", std::to_string(10 * i + 5));
             }
         })},
    };
    const bool rewrite = std::getenv("NIMBARA_REWRITE_GOLDEN") != nullptr;
    for (const auto& c : cases) {
        RecordingSurface s;
        c.print(s);
        const std::string actual = call_log(s);
        const auto file = std::filesystem::path(NIMBARA_SOURCE_DIR) / "tests/data/golden" / (std::string(c.name) + ".calls");
        if (rewrite) {
            std::ofstream(file, std::ios::binary | std::ios::trunc) << actual;
            continue;
        }
        const std::string expected = nimbara::testing::read_file(file);
        ASSERT_FALSE(expected.empty()) << file << " is missing; NIMBARA_REWRITE_GOLDEN=1 writes it";
        EXPECT_TRUE(expected == actual) << c.name << ": " << first_difference(expected, actual);
    }
}
