// Reading printed pages back: the decode rate per resolution over the robustness corpus (every
// example Guia and random ones, printed, rendered, turned, skewed, blurred and speckled), and the
// reading speed in pages a second at 300 dpi on one core, for decoded images and for PDF files.
// A plain program: bench_scan_reading [RANDOM_GUIAS] (default 12).
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "nimbara/scan_reading.hpp"
#include "support/scan_corpus.hpp"
#include "support/symbol_corpus.hpp"

using namespace nimbara;
using Clock = std::chrono::steady_clock;

namespace {

double seconds_since(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

bool found(const std::vector<std::string>& symbols, const std::string& payload)
{
    for (const auto& s : symbols)
        if (s == payload) return true;
    return false;
}

}  // namespace

int main(int argc, char** argv)
{
    std::setvbuf(stdout, nullptr, _IOLBF, 0);  // each resolution's figures as soon as they are known
    const int random = argc > 1 ? std::atoi(argv[1]) : 12;
    const auto log = std::filesystem::temp_directory_path() / ("nimbara-bench-scan-" + std::to_string(::getpid()) + ".log");
    auto guias = testing::example_guias();
    for (auto& g : testing::random_guias(random, 2026)) guias.push_back(std::move(g));
    const auto spoilings = testing::spoilings();
    std::printf("%zu Guias, %zu ways of spoiling each page\n", guias.size(), spoilings.size());
    std::printf("%6s %8s %8s %7s   %s\n", "dpi", "pages", "read", "rate", "missed (way: count)");
    for (const double dpi : {150.0, 200.0, 300.0, 600.0}) {
        std::vector<int> missed(spoilings.size(), 0);
        int pages = 0, read = 0;
        double decode_seconds = 0;
        int decoded = 0;
        std::uint32_t seed = 1;
        for (const auto& g : guias) {
            const auto payloads = testing::page_payloads(g.arrays, Edition::Array);
            const auto images = testing::rendered_pages(g.arrays, dpi, log);
            for (std::size_t p = 0; p < images.size() && p < payloads.size(); ++p)
                for (std::size_t k = 0; k < spoilings.size(); ++k) {
                    const GrayImage image = testing::spoilt(images[p], spoilings[k], seed++);
                    const auto start = Clock::now();
                    const auto symbols = read_symbols(image);
                    decode_seconds += seconds_since(start);
                    ++decoded;
                    ++pages;
                    if (found(symbols, payloads[p])) ++read;
                    else ++missed[k];
                }
        }
        std::printf("%6.0f %8d %8d %6.1f%%  ", dpi, pages, read, pages ? 100.0 * read / pages : 0.0);
        for (std::size_t k = 0; k < spoilings.size(); ++k)
            if (missed[k] > 0) std::printf(" %s: %d;", spoilings[k].name.c_str(), missed[k]);
        std::printf("   (%.1f pages/s decoding)\n", decoded / decode_seconds);
    }

    // The speed of a counter's reading at 300 dpi: decoded images, and PDF files rendered for reading.
    int pages = 0;
    double seconds = 0;
    for (const auto& g : guias) {
        for (const auto& image : testing::rendered_pages(g.arrays, 300, log)) {
            const auto start = Clock::now();
            (void)read_symbols(image);
            seconds += seconds_since(start);
            ++pages;
        }
    }
    std::printf("reading speed, 300 dpi images: %.1f pages/s (%d pages)\n", pages / seconds, pages);
    pages = 0;
    seconds = 0;
    for (const auto& g : guias) {
        const std::string pdf = testing::printed_pdf(g.arrays, log);
        const auto start = Clock::now();
        pages += static_cast<int>(read_scan(pdf, g.name).size());
        seconds += seconds_since(start);
    }
    std::printf("reading speed, PDF files rendered at %.0f dpi: %.1f pages/s (%d pages)\n", kScanPdfDpi, pages / seconds, pages);
    std::filesystem::remove(log);
    return 0;
}
