// Printing throughput: the empty form of a page written to PDF, in pages a second.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "nimbara/cls_ImpressaoA.hpp"
#include "platform/pdf_surface.hpp"

namespace {

// Each iteration is one print job of range(0) pages, written to a temporary file.
void BM_EmptyFormPdf(benchmark::State& state)
{
    const auto pdf = std::filesystem::temp_directory_path() / ("nimbara-bench-" + std::to_string(::getpid()) + ".pdf");
    nimbara::platform::PdfSurface surface([&](int) { return pdf; });
    surface.setOrientation(2);
    surface.setPaperSize(9);
    nimbara::cls_ImpressaoA printer;
    const auto& form = nimbara::form_impressao();
    const auto pages = state.range(0);
    for (auto _ : state) {
        for (int p = 0; p < pages; ++p) {
            if (p > 0) surface.NewPage();
            printer.PrintTestPage(surface, form, 0, "2024-03-15");
        }
        surface.EndDoc();
    }
    state.SetItemsProcessed(state.iterations() * pages);
    state.counters["pages/s"] = benchmark::Counter(static_cast<double>(state.iterations() * pages), benchmark::Counter::kIsRate);
    std::filesystem::remove(pdf);
}
BENCHMARK(BM_EmptyFormPdf)->Arg(1)->Arg(10)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
