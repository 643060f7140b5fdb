// Printing throughput: the empty form of a page, and a whole Guia, written to PDF, in pages a second.
// The faces argument sets the PDF's text: 0 the standard faces (the default), 1 embedded faces
// written by cairo, the way every PDF was written before, kept for the ratio.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <filesystem>
#include <string>

#include "nimbara/cls_ImpressaoA.hpp"
#include "nimbara/PdfSurface.hpp"
#include "support/sample_guia.hpp"

namespace {

nimbara::PdfSurface::Faces faces_of(const benchmark::State& state)
{
    return state.range(0) == 0 ? nimbara::PdfSurface::Faces::Standard : nimbara::PdfSurface::Faces::Embedded;
}

// Each iteration is one print job of range(1) pages, written to a temporary file.
void BM_EmptyFormPdf(benchmark::State& state)
{
    const auto pdf = std::filesystem::temp_directory_path() / ("nimbara-bench-" + std::to_string(::getpid()) + ".pdf");
    nimbara::PdfSurface surface([&](int, int) { return pdf; });
    surface.setFaces(faces_of(state));
    surface.setOrientation(nimbara::printer::kLandscape);
    surface.setPaperSize(nimbara::printer::kPaperA4);
    nimbara::cls_ImpressaoA printer;
    const auto& form = nimbara::form_impressao();
    const auto pages = state.range(1);
    for (auto _ : state) {
        for (int p = 0; p < pages; ++p) {
            if (p > 0) surface.NewPage();
            printer.PrintTestPage(surface, form, 0, "2024-03-15");
        }
        surface.EndDoc();
        std::filesystem::remove(pdf);  // a job's file never replaces another
    }
    state.SetItemsProcessed(state.iterations() * pages);
    state.counters["pages/s"] = benchmark::Counter(static_cast<double>(state.iterations() * pages), benchmark::Counter::kIsRate);
    std::filesystem::remove(pdf);
}
BENCHMARK(BM_EmptyFormPdf)->ArgNames({"faces", "pages"})->ArgsProduct({{0, 1}, {1, 10}})->Unit(benchmark::kMillisecond);

// A twelve-line Guia with services: one page with its symbol.
nimbara::GuiaArrays twelve_line_guia()
{
    auto guia = nimbara::testing::sample_guia();
    for (int line = 1; line <= 12; ++line) nimbara::testing::add_line(guia, {.quantity = std::to_string(100 * line), .campaign = {}});
    for (int line : {1, 4, 7}) nimbara::testing::add_service(guia, line, "6", "0");
    for (int line : {2, 5, 8, 11}) nimbara::testing::add_service(guia, line, "4", "1250");
    return guia;
}

// The Guia, one copy: one print job, a file a time.
void BM_PrintGuiaPdf(benchmark::State& state)
{
    const auto pdf = std::filesystem::temp_directory_path() / ("nimbara-bench-guia-" + std::to_string(::getpid()) + ".pdf");
    const auto guia = twelve_line_guia();
    nimbara::PdfSurface surface([&](int, int) { return pdf; });
    surface.setFaces(faces_of(state));
    const auto& form = nimbara::form_impressao();
    const auto heap_before = ::mallinfo2().uordblks;
    std::size_t heap_peak = 0;
    for (auto _ : state) {
        nimbara::cls_ImpressaoA printer;
        printer.arrays = guia;
        surface.setOrientation(nimbara::printer::kLandscape);
        surface.setPaperSize(nimbara::printer::kPaperA4);
        printer.Imprime_Parte_Variavel("", 1027, 0, surface, form, 0, 0, 0, "2025-05-03", "2025/1027");
        heap_peak = std::max(heap_peak, ::mallinfo2().uordblks);
        std::filesystem::remove(pdf);
    }
    if (surface.page_count() != 1) state.SkipWithError("the Guia did not print on one page");
    state.SetItemsProcessed(state.iterations());
    state.counters["pages/s"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
    // What a Guia's print job holds in memory beyond the surface's caches: the pages kept for previews.
    state.counters["heap KiB"] = static_cast<double>(heap_peak > heap_before ? heap_peak - heap_before : 0) / 1024;
    std::filesystem::remove(pdf);
}
BENCHMARK(BM_PrintGuiaPdf)->ArgName("faces")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// Many copies of the Guia into one print job (a batch), range(1) Guias a file.
void BM_PrintGuiaBatch(benchmark::State& state)
{
    const auto pdf = std::filesystem::temp_directory_path() / ("nimbara-bench-batch-" + std::to_string(::getpid()) + ".pdf");
    const auto guia = twelve_line_guia();
    nimbara::PdfSurface surface([&](int, int) { return pdf; });
    surface.setFaces(faces_of(state));
    const auto& form = nimbara::form_impressao();
    const auto guias = state.range(1);
    for (auto _ : state) {
        surface.BeginBatch();
        for (int g = 0; g < guias; ++g) {
            nimbara::cls_ImpressaoA printer;
            printer.arrays = guia;
            surface.setOrientation(nimbara::printer::kLandscape);
            surface.setPaperSize(nimbara::printer::kPaperA4);
            printer.Imprime_Parte_Variavel("", 1027, 0, surface, form, 0, 0, 0, "2025-05-03", "2025/1027");
        }
        surface.EndBatch();
        std::filesystem::remove(pdf);
    }
    state.SetItemsProcessed(state.iterations() * guias);
    state.counters["pages/s"] = benchmark::Counter(static_cast<double>(state.iterations() * guias), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_PrintGuiaBatch)->ArgNames({"faces", "guias"})->Args({0, 100})->Args({1, 100})->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
