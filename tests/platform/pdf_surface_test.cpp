#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <string>

#include "nimbara/cls_Impressao.hpp"
#include "nimbara/cls_ImpressaoA.hpp"
#include "nimbara/PdfSurface.hpp"
#include "support/temp_folder.hpp"

namespace fs = std::filesystem;
using nimbara::PdfSurface;
using nimbara::RasterImage;
using nimbara::testing::TempFolder;

namespace {

constexpr double kDpi = 200;
int px(double mm) { return static_cast<int>(mm / 25.4 * kDpi); }

struct Box {
    int x1 = 1 << 30, y1 = 1 << 30, x2 = -1, y2 = -1;
    bool empty() const { return x2 < 0; }
};

// Where two renderings differ inside a region given in millimetres: the ink the second one added.
Box added_ink(const RasterImage& before, const RasterImage& after, double x1, double y1, double x2, double y2)
{
    Box b;
    for (int y = px(y1); y < px(y2); ++y)
        for (int x = px(x1); x < px(x2); ++x)
            if (before.at(x, y) != after.at(x, y)) {
                b.x1 = std::min(b.x1, x), b.y1 = std::min(b.y1, y);
                b.x2 = std::max(b.x2, x), b.y2 = std::max(b.y2, y);
            }
    return b;
}

// Five lines of ordinary remarks, as long as the frame takes.
std::string remarks()
{
    std::string r;
    while (r.size() < 650) r += "Entregar na portaria, das 9h às 17h, aos cuidados do Sr. Silva. ";
    return r;
}

}  // namespace

// The form of the array edition on page 1, and again with the header and page numbers on page 2.
class RenderedForm : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        dir = new TempFolder("RenderedForm");
        surface = new PdfSurface(dir->path() / "form.pdf");
        surface->setOrientation(2);
        surface->setPaperSize(9);
        nimbara::cls_ImpressaoA a;
        a.set_log_path(dir->path() / "print.log");
        a.PrintTestPage(*surface, nimbara::form_impressao(), 0, "2024-03-15");
        surface->NewPage();
        a.PrintTestPage(*surface, nimbara::form_impressao(), 0, "2024-03-15");
        a.ImprimeHeaderFooter(*surface, "TERC0001", "456", "123456789", "PP9", "Cliente Exemplar Lda", "501234567",
                              "Rua Direita 1", "1000-001 Lisboa", remarks(), "True", "1");
        a.Imprime_NumPaginas("12345678", *surface, 1, 1, "CMP-1");
        surface->EndDoc();
        before = new RasterImage(surface->render(1, kDpi));
        after = new RasterImage(surface->render(2, kDpi));
    }
    static void TearDownTestSuite()
    {
        delete before;
        delete after;
        delete surface;
        delete dir;
    }
    static inline TempFolder* dir;
    static inline PdfSurface* surface;
    static inline RasterImage *before, *after;
};

TEST_F(RenderedForm, IsOnePdfOfTwoA4LandscapePages)
{
    ASSERT_EQ(surface->written(), std::vector<fs::path>{dir->path() / "form.pdf"});
    const std::string pdf = nimbara::testing::read_file(dir->path() / "form.pdf");
    EXPECT_TRUE(pdf.starts_with("%PDF-"));
    const std::regex page(R"(/Type\s*/Page[^s])");
    EXPECT_EQ(std::distance(std::sregex_iterator(pdf.begin(), pdf.end(), page), std::sregex_iterator()), 2);
    EXPECT_FALSE(fs::exists(dir->path() / "form.pdf.part"));
    EXPECT_NEAR(static_cast<double>(before->width) / before->height, 297.0 / 210.0, 0.002);
    EXPECT_EQ(before->width, px(297) + 1);
    EXPECT_FALSE(fs::exists(dir->path() / "print.log")) << "nothing failed";
}

TEST_F(RenderedForm, PanelsAreGreyAndPaperIsWhite)
{
    struct Case { const char* what; double x, y; std::uint32_t rgb; };
    const Case cases[] = {
        {"footer panel between its rules", 195, 126, 0xD5D5D5},
        {"top-right panel beside its captions", 257.5, 20, 0xD5D5D5},
        {"a column strip", 16.5, 80, 0x808080},
        {"a row number cell", 1, 60, 0x000000},
        {"paper", 280, 100, 0xFFFFFF},
    };
    for (const auto& c : cases) EXPECT_EQ(before->at(px(c.x), px(c.y)), c.rgb) << c.what;
}

TEST_F(RenderedForm, TextLandsInsideItsFrames)
{
    struct Case {
        const char* what;
        double fx, fy, fw, fh;  // the frame
    };
    const Case cases[] = {
        {"third-party code", 1, 36, 25, 5},
        {"client name", 124, 36, 100, 5},
        {"document number", 228, 158, 28, 5},
        {"page count", 228, 166, 28, 5},
        {"commitment number", 228, 182, 28, 5},
        {"remarks", 5, 156, 165, 26},
    };
    for (const auto& c : cases) {
        // Search a margin around the frame; all the added ink must lie inside it.
        const Box ink = added_ink(*before, *after, c.fx - 3, c.fy - 3, c.fx + c.fw + 3, c.fy + c.fh + 3);
        ASSERT_FALSE(ink.empty()) << c.what;
        EXPECT_GT(ink.x1, px(c.fx)) << c.what;
        EXPECT_GT(ink.y1, px(c.fy)) << c.what;
        EXPECT_LT(ink.x2, px(c.fx + c.fw)) << c.what;
        EXPECT_LT(ink.y2, px(c.fy + c.fh)) << c.what;
    }
}

TEST(PdfSurface, JobsAreFilesOfTheirOwn)
{
    TempFolder dir;
    PdfSurface s(dir.path() / "guia.pdf");
    s.EndDoc();  // nothing drawn: no job, no file
    EXPECT_TRUE(s.written().empty());
    for (int job = 0; job < 2; ++job) {
        s.setCurrentX(100);
        s.Print("x");
        s.EndDoc();
    }
    EXPECT_EQ(s.written(), (std::vector<fs::path>{dir.path() / "guia.pdf", dir.path() / "guia-2.pdf"}));
    EXPECT_EQ(s.page_count(), 1);
    {
        PdfSurface abandoned(dir.path() / "abandoned.pdf");
        abandoned.Print("never ended");
    }
    EXPECT_FALSE(fs::exists(dir.path() / "abandoned.pdf"));
    EXPECT_FALSE(fs::exists(dir.path() / "abandoned.pdf.part"));
}

TEST(PdfSurface, UnwritablePlaceIsNamedAndLeavesNothing)
{
    PdfSurface s(fs::path("/nonexistent-folder/guia.pdf"));
    try {
        s.StartDoc();
        FAIL() << "no error";
    } catch (const std::runtime_error& e) {
        EXPECT_NE(std::string(e.what()).find("/nonexistent-folder/guia.pdf"), std::string::npos) << e.what();
    }
    EXPECT_THROW(s.Print("x"), std::runtime_error);
}

TEST(PdfSurface, PrintMovesDownOneLineAndBackToTheLeft)
{
    TempFolder dir;
    PdfSurface s(dir.path() / "p.pdf");
    s.setFontName("Times New Roman");
    s.setFontSize(8);
    s.setCurrentX(500);
    s.setCurrentY(1000);
    s.Print("first");
    EXPECT_EQ(s.CurrentX(), 0);
    // Liberation Serif, like the font it stands for, is 1.15 em from line to line.
    EXPECT_NEAR(s.CurrentY() - 1000, 8 * 20 * 1.15, 2);
    EXPECT_NEAR(s.TextWidth("MMMM"), 4 * s.TextWidth("M"), 0.01);
    EXPECT_GT(s.TextWidth("MMMM"), s.TextWidth("iiii"));
}

TEST(PdfSurface, HatchedBoxKeepsItsOutline)
{
    TempFolder dir;
    PdfSurface s(dir.path() / "h.pdf");
    s.setFillColor(0);
    s.setFillStyle(2);  // horizontal lines
    s.Line(20, 1440, 1440, 2880, 2880, 0);
    const auto img = s.render(1, 144);  // 10 pixels to the inch
    EXPECT_NE(img.at(144, 200), 0xFFFFFFu) << "outline of the left side";
    EXPECT_EQ(img.at(200, 150), 0xFFFFFFu) << "between the hatch lines";
    EXPECT_NE(img.at(200, 156), 0xFFFFFFu) << "a hatch line";
}
