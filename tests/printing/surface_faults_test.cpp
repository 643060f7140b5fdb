// A page surface that fails at its k-th call, for every k over a sample Guia: the print job must end
// (or its end be attempted), the failure be logged under its routine's name, nothing escape, and a PDF
// be either whole or absent.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <stdexcept>
#include <string>

#include "failing_surface.hpp"
#include "nimbara/cls_ImpressaoA.hpp"
#include "nimbara/PdfSurface.hpp"
#include "printing/recording_surface.hpp"
#include "support/sample_guia.hpp"
#include "support/temp_folder.hpp"

using namespace nimbara;
using nimbara::testing::TempFolder;
using printing_test::FailingSurface;

namespace {

// Two lines on one page, the first with services, so that every routine of a page draws.
GuiaArrays guia()
{
    auto g = nimbara::testing::sample_guia();
    const int a = nimbara::testing::add_line(g, {.product = "C13", .format = "03"});
    nimbara::testing::add_service(g, a, "02", "150");
    nimbara::testing::add_service(g, a, "07", "35");
    nimbara::testing::add_line(g, {.campaign = "VERAO"});
    return g;
}

struct Outcome {
    long calls;
    int end_attempts;
    std::string log;
};

Outcome print(PageSurface& inner, long fail_at, const std::filesystem::path& log)
{
    std::filesystem::remove(log);
    FailingSurface s(inner, fail_at);
    cls_ImpressaoA printer;
    printer.set_log_path(log);
    printer.arrays = guia();
    EXPECT_NO_THROW(
        printer.Imprime_Parte_Variavel("", 1027, 0, s, form_impressao(), 0, 0, 0, "2025-05-03", "2025/1027"));
    return {s.calls(), s.end_attempts(), nimbara::testing::read_file(log)};
}

// The log names a routine and the injected fault.
bool logged(const std::string& log, long k)
{
    return std::regex_search(log, std::regex("[A-Za-z_]+-Erro:injected fault at call " + std::to_string(k) + "\r?\n"));
}

}  // namespace

TEST(SurfaceFaults, EveryCallOfARecordedPrint)
{
    TempFolder folder;
    printing::RecordingSurface clean;
    const Outcome whole = print(clean, 0, folder.path() / "print.log");
    ASSERT_EQ(whole.log, "");
    ASSERT_GT(whole.calls, 500);
    for (long k = 1; k <= whole.calls; ++k) {
        printing::RecordingSurface inner;
        const Outcome r = print(inner, k, folder.path() / "print.log");
        EXPECT_TRUE(logged(r.log, k)) << "call " << k << ": " << r.log;
        EXPECT_GE(r.end_attempts, 1) << "call " << k;
        if (k != whole.calls) {
            EXPECT_EQ(inner.documents_ended(), 1) << "call " << k;
        }
        if (::testing::Test::HasFailure()) break;  // one call's story is enough
    }
}

TEST(SurfaceFaults, APdfIsWholeOrAbsent)
{
    TempFolder folder;
    const auto pdf = folder.path() / "guia.pdf";
    const auto log = folder.path() / "print.log";
    long calls = 0;
    {
        printing::RecordingSurface counting;
        calls = print(counting, 0, log).calls;
    }
    for (long k = 1; k <= calls; ++k) {
        std::filesystem::remove(pdf);
        {
            PdfSurface surface(pdf);
            const Outcome r = print(surface, k, log);
            EXPECT_TRUE(logged(r.log, k)) << "call " << k;
        }
        EXPECT_FALSE(std::filesystem::exists(folder.path() / "guia.pdf.part")) << "call " << k;
        if (std::filesystem::exists(pdf)) {
            const std::string bytes = nimbara::testing::read_file(pdf);
            EXPECT_EQ(bytes.rfind("%PDF-", 0), 0u) << "call " << k;
            EXPECT_NE(bytes.find("%%EOF", bytes.size() - 8), std::string::npos) << "call " << k;
        } else {
            EXPECT_EQ(k, calls) << "only a failed end of the job leaves no file";
        }
        if (::testing::Test::HasFailure()) break;
    }
}
