// The PDF of the standard faces, read by other programs: well formed to qpdf, and rendered by
// poppler as the preview renders the same page.
#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>
#include <string>
#include <vector>
#include <sstream>

#include "nimbara/cls_ImpressaoA.hpp"
#include "nimbara/PdfSurface.hpp"
#include "support/temp_folder.hpp"

namespace fs = std::filesystem;
using nimbara::PdfSurface;
using nimbara::RasterImage;
using nimbara::testing::read_file;
using nimbara::testing::TempFolder;

namespace {

constexpr int kDpi = 100;

RasterImage poppler_render(const fs::path& pdf, int page)
{
    const auto out = pdf.parent_path() / ("page" + std::to_string(page));
    const std::string cmd = "pdftoppm -r " + std::to_string(kDpi) + " -singlefile -f " + std::to_string(page) + " -l " +
                            std::to_string(page) + " " + pdf.string() + " " + out.string();
    if (std::system(cmd.c_str()) != 0) return {};
    const std::string ppm = read_file(out.string() + ".ppm");
    std::istringstream header(ppm);
    std::string magic;
    RasterImage img;
    int max = 0;
    header >> magic >> img.width >> img.height >> max;
    const auto* p = reinterpret_cast<const unsigned char*>(ppm.data()) + static_cast<std::size_t>(header.tellg()) + 1;
    for (int i = 0; i < img.width * img.height; ++i, p += 3) img.rgb.push_back((p[0] << 16) | (p[1] << 8) | p[2]);
    return img;
}

// The share of pixels whose colours lie far apart: edges of glyphs and lines drawn by two
// renderers differ a little, a misplaced or missing drawing a lot.
double far_apart(const RasterImage& a, const RasterImage& b)
{
    const int w = a.width, h = a.height;
    int n = 0;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            int worst = 0;
            for (int shift : {0, 8, 16})
                worst = std::max(worst, std::abs(static_cast<int>((a.at(x, y) >> shift) & 0xFF) -
                                                 static_cast<int>((b.at(x, y) >> shift) & 0xFF)));
            n += worst > 96;
        }
    return static_cast<double>(n) / (w * h);
}

}  // namespace

// The form, and what the form itself never draws: a host's raster, a circle, a hatched box, a
// symbol, and text with the characters a PDF string has to escape.
void draw_everything(PdfSurface& surface, const fs::path& log)
{
    surface.setOrientation(2);
    surface.setPaperSize(9);
    nimbara::cls_ImpressaoA printer;
    printer.set_log_path(log);
    printer.PrintTestPage(surface, nimbara::form_impressao(), 1, "2024-03-15");
    nimbara::Picture red{"red", 40, 20, 1, std::vector<std::uint32_t>(800, 0xFFFF0000u), nullptr};
    surface.PaintPicture(red, 1000, 9000);
    surface.setFillStyle(0);
    surface.setFillColor(0xFF0000);  // blue, in the printer's byte order
    surface.Circle(0, 3000, 9500, 400, 0, 0, 0, 0);
    surface.setFillStyle(6);
    surface.Line(20, 4000, 9100, 5200, 9900, 0);
    surface.PaintModules({4, 8, {1, 0, 1, 0, 1, 0, 1, 0, 0, 1, 0, 1, 0, 1, 0, 1, 1, 1, 1, 1, 0, 0, 0, 0, 1, 0, 1, 0, 1, 0, 1, 0}},
                         6000, 9100, 100, 200);
    surface.setFontName("Arial");
    surface.setFontSize(12);
    surface.setCurrentX(8000);
    surface.setCurrentY(9200);
    surface.Print(R"(a (b) \c € ção)");
    surface.EndDoc();
}

// Against the same page written by cairo with embedded faces, both rendered by poppler: only the
// glyphs may differ a little (the standard faces are not kerned).
TEST(StandardPdf, EveryKindOfDrawingIsWellFormedAndRendersAsWithEmbeddedFaces)
{
    TempFolder dir;
    PdfSurface standard(dir.path() / "standard.pdf"), embedded(dir.path() / "embedded.pdf");
    embedded.setFaces(PdfSurface::Faces::Embedded);
    draw_everything(standard, dir.path() / "print.log");
    draw_everything(embedded, dir.path() / "print.log");
    ASSERT_FALSE(fs::exists(dir.path() / "print.log")) << read_file(dir.path() / "print.log");

    const auto pdf = dir.path() / "standard.pdf";
    ASSERT_EQ(std::system(("qpdf --check " + pdf.string() + " > " + (dir.path() / "qpdf.txt").string()).c_str()), 0)
        << read_file(dir.path() / "qpdf.txt");
    const auto printed = poppler_render(pdf, 1), reference = poppler_render(dir.path() / "embedded.pdf", 1);
    ASSERT_EQ(printed.width, reference.width);
    ASSERT_EQ(printed.height, reference.height);
    EXPECT_LT(far_apart(printed, reference), 0.005);
}

TEST(StandardPdf, TextOutsideTheFacesIsRefusedAndEmbeddedFacesTakeIt)
{
    std::string pdf;
    PdfSurface surface([&](int, std::string bytes) { pdf = std::move(bytes); });
    surface.setFaces(PdfSurface::Faces::Standard);
    try {
        surface.Print("漢字");
        ADD_FAILURE() << "accepted";
    } catch (const std::invalid_argument& e) {
        EXPECT_STREQ(e.what(), "text \"漢字\" has a character that the standard faces lack");
    }
    surface.EndDoc();

    surface.setFaces(PdfSurface::Faces::Embedded);
    surface.Print("漢字");
    surface.EndDoc();
    EXPECT_NE(pdf.find("/FontFile"), std::string::npos) << "the embedded faces' document carries its fonts";
}

// By default a document keeps the standard faces until a text asks for more; it is then written
// whole with embedded faces, the pages drawn before included, and says which texts asked.
TEST(StandardPdf, ATextBeyondTheStandardFacesTurnsTheWholeDocumentToEmbeddedFaces)
{
    std::vector<std::string> pdfs;
    PdfSurface surface([&](int, std::string bytes) { pdfs.push_back(std::move(bytes)); });
    const auto page = [&](std::string_view text) {
        surface.setCurrentX(1000);
        surface.setCurrentY(1000);
        surface.Print(text);
    };
    page("Lisboa");
    surface.EndDoc();
    EXPECT_TRUE(surface.EmbeddedFacesAskedBy().empty());

    page("Rua das Flores");
    surface.NewPage();
    page("Łódź Książki");
    EXPECT_GT(surface.TextWidth("Łódź"), 0) << "measured as the embedded faces draw it";
    page("Łódź Książki");
    surface.EndDoc();
    EXPECT_EQ(surface.EmbeddedFacesAskedBy(), std::vector<std::string>{"Łódź Książki"});

    surface.BeginBatch();
    page("first job, standard so far");
    surface.EndDoc();
    page("second job: Gdańsk");
    surface.EndDoc();
    surface.EndBatch();

    ASSERT_EQ(pdfs.size(), 3u);
    EXPECT_EQ(pdfs[0].find("/FontFile"), std::string::npos) << "nothing asked: nothing embedded";
    for (std::size_t i : {1u, 2u}) {
        EXPECT_NE(pdfs[i].find("/FontFile"), std::string::npos) << "document " << i;
        const std::regex page_object(R"(/Type\s*/Page[^s])");
        EXPECT_EQ(std::distance(std::sregex_iterator(pdfs[i].begin(), pdfs[i].end(), page_object), std::sregex_iterator()), 2)
            << "the page drawn before the text is in the document " << i;
    }
}
