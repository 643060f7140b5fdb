// Printed pages read back through the module "scan": a quick slice of the robustness corpus (every
// way of spoiling a page, at 200 and 300 dpi) and each file format a counter meets.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "nimbara/scan_reading.hpp"
#include "support/sample_guia.hpp"
#include "support/scan_corpus.hpp"
#include "support/symbol_corpus.hpp"
#include "support/temp_folder.hpp"

using namespace nimbara;
namespace fs = std::filesystem;

namespace {

bool holds(const std::vector<std::string>& found, const std::string& payload)
{
    return std::find(found.begin(), found.end(), payload) != found.end();
}

// An uncompressed grey TIFF with one page per image, little-endian.
std::string tiff_of(const std::vector<GrayImage>& pages)
{
    std::string out = std::string("II*\0", 4);
    const auto u16 = [&out](std::uint16_t v) { out += static_cast<char>(v & 0xff), out += static_cast<char>(v >> 8); };
    const auto u32 = [&out](std::uint32_t v) {
        for (int i = 0; i < 4; ++i) out += static_cast<char>((v >> (8 * i)) & 0xff);
    };
    u32(8);
    for (std::size_t p = 0; p < pages.size(); ++p) {
        const GrayImage& img = pages[p];
        const std::uint32_t entries = 8, ifd_size = 2 + entries * 12 + 4;
        const auto data_at = static_cast<std::uint32_t>(out.size() + ifd_size);
        const auto next = static_cast<std::uint32_t>(p + 1 < pages.size() ? data_at + img.pixels.size() : 0);
        u16(static_cast<std::uint16_t>(entries));
        const auto entry = [&](std::uint16_t tag, std::uint16_t type, std::uint32_t value) {
            u16(tag), u16(type), u32(1);
            if (type == 3) u16(static_cast<std::uint16_t>(value)), u16(0);
            else u32(value);
        };
        entry(256, 4, static_cast<std::uint32_t>(img.width));
        entry(257, 4, static_cast<std::uint32_t>(img.height));
        entry(258, 3, 8);
        entry(259, 3, 1);
        entry(262, 3, 1);  // black is zero
        entry(273, 4, data_at);
        entry(278, 4, static_cast<std::uint32_t>(img.height));
        entry(279, 4, static_cast<std::uint32_t>(img.pixels.size()));
        u32(next);
        out.append(img.pixels.begin(), img.pixels.end());
    }
    return out;
}

}  // namespace

// The ways of spoiling a page that every page must survive at 200 and 300 dpi, over a few Guias.
// Skew and blur at 200 dpi, and a skew beside a quarter turn, are not all read yet: their rates are
// the robustness figures' (bench/bench_scan_reading), not a requirement here.
TEST(ScanReading, EverySpoiltPageOfTheQuickSlice)
{
    const nimbara::testing::TempFolder folder("scan-slice");
    std::vector<nimbara::testing::NamedGuia> guias = nimbara::testing::example_guias();
    guias.resize(std::min<std::size_t>(guias.size(), 2));
    for (auto& g : nimbara::testing::random_guias(1, 11)) guias.push_back(std::move(g));
    const auto required = [](const nimbara::testing::Spoiling& s, double dpi) {
        return s.skew == 0 && s.blur == 0 ? true : dpi >= 300 && s.quarters == 0 && s.blur == 0;
    };
    std::uint32_t seed = 1;
    for (const double dpi : {200.0, 300.0}) {
        std::size_t turn = 0;
        for (const auto& g : guias) {
            const auto payloads = nimbara::testing::page_payloads(g.arrays, Edition::Array);
            const auto pages = nimbara::testing::rendered_pages(g.arrays, dpi, folder.path() / "print.log");
            ASSERT_EQ(pages.size(), payloads.size()) << g.name;
            // The spoilings take turns over the pages, so that each page meets some and each meets all pages.
            for (const auto& spoiling : nimbara::testing::spoilings()) {
                if (!required(spoiling, dpi)) continue;
                const std::size_t page = turn++ % pages.size();
                const auto found = read_symbols(nimbara::testing::spoilt(pages[page], spoiling, seed++));
                EXPECT_TRUE(holds(found, payloads[page]))
                    << g.name << " page " << page + 1 << " at " << dpi << " dpi, " << spoiling.name;
            }
        }
    }
}

TEST(ScanReading, EachFileFormat)
{
    const nimbara::testing::TempFolder folder("scan-formats");
    // A Guia of two pages.
    auto guia = nimbara::testing::sample_guia();
    for (int i = 0; i < 16; ++i) nimbara::testing::add_line(guia);
    const auto payloads = nimbara::testing::page_payloads(guia, Edition::Array);
    ASSERT_EQ(payloads.size(), 2u);
    const std::string pdf = nimbara::testing::printed_pdf(guia, folder.path() / "print.log");
    const auto pdf_file = folder.path() / "guia.pdf";
    { std::ofstream(pdf_file, std::ios::binary) << pdf; }

    struct Case { std::string name; std::string bytes; std::vector<std::string> where; };
    std::vector<Case> cases;
    cases.push_back({"pdf", pdf, {"guia.pdf:1", "guia.pdf:2"}});
    cases.push_back({"tiff", tiff_of(nimbara::testing::rendered_pages(guia, 200, folder.path() / "print.log")), {"t:1", "t:2"}});
    for (const char* format : {"png", "jpeg"}) {
        const std::string out = (folder.path() / format).string();
        const std::string cmd = std::string("pdftoppm -r 200 -gray -f 2 -l 2 -singlefile -") + format + " " +
                                pdf_file.string() + " " + out;
        ASSERT_EQ(std::system(cmd.c_str()), 0) << cmd;
        cases.push_back({format, nimbara::testing::read_file(out + (format == std::string("png") ? ".png" : ".jpg")), {format}});
    }
    for (const auto& c : cases) {
        const std::string name = c.name == "pdf" ? "guia.pdf" : c.name == "tiff" ? "t" : c.name;
        std::vector<ScannedPage> pages;
        ASSERT_NO_THROW(pages = read_scan(c.bytes, name)) << c.name;
        ASSERT_EQ(pages.size(), c.where.size()) << c.name;
        for (std::size_t i = 0; i < pages.size(); ++i) {
            EXPECT_EQ(pages[i].where, c.where[i]) << c.name;
            const std::size_t page = c.where.size() == 1 ? 1 : i;
            EXPECT_TRUE(holds(pages[i].symbols, payloads[page])) << c.name << " page " << i + 1;
        }
    }
}

TEST(ScanReading, RefusesWhatIsNoScan)
{
    struct Case { const char* what; std::string bytes; const char* message; };
    const Case cases[] = {
        {"text", "CR01 hello", "x: not a PNG, JPEG, TIFF or PDF file"},
        {"empty", "", "x: not a PNG, JPEG, TIFF or PDF file"},
        {"cut PNG", std::string("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR", 16), "x: damaged PNG"},
        {"cut JPEG", "\xff\xd8\xff\xe0", "x: damaged JPEG"},
        {"cut TIFF", std::string("II*\0\x08\0\0\0", 8), "x: damaged TIFF"},
        {"cut PDF", "%PDF-1.4\n1 0 obj", "x: damaged PDF"},
    };
    for (const auto& c : cases) {
        try {
            read_scan(c.bytes, "x");
            ADD_FAILURE() << c.what << ": read";
        } catch (const ScanError& e) {
            EXPECT_EQ(std::string(e.what()).rfind(c.message, 0), 0u) << c.what << ": " << e.what();
        }
    }
}
