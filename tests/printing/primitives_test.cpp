#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "nimbara/Notifier.hpp"
#include "nimbara/cls_Impressao.hpp"
#include "nimbara/cls_ImpressaoA.hpp"
#include "nimbara/PdfSurface.hpp"
#include "printed_text.hpp"
#include "support/temp_folder.hpp"

using nimbara::cls_Impressao;
using nimbara::cls_ImpressaoA;
using nimbara::printing::RecordingSurface;
using printing_test::boxes;

TEST(Primitives, BoxesTruncateEachArgumentToWholeTwips)
{
    struct Case {
        const char* what;
        double w, h, e, x, y;
        std::vector<std::vector<long>> sides;  // top, right, bottom, left
    };
    const Case cases[] = {
        {"hairline rule of 100 mm: four rectangles of no thickness", 100, 0, 0, 10, 20,
         {{567, 1134, 6237, 1134}, {6237, 1134, 6237, 1134}, {567, 1134, 6237, 1134}, {567, 1134, 567, 1134}}},
        {"0.1 mm rule: 5 twips each side of y", 255, 0, 0.1, 10, 47,
         {{567, 2664, 15025, 2669}, {15020, 2664, 15025, 2664}, {567, 2659, 15025, 2664}, {567, 2664, 572, 2664}}},
        {"x 10.3 and w 2.3 truncate apart: 584 + 130 ends at 714", 2.3, 1, 0.2, 10.3, 0,
         {{584, 0, 714, 11}, {703, 0, 714, 56}, {584, 45, 714, 56}, {584, 0, 595, 56}}},
        {"0.35 mm is 19 twips", 262, 32.1, 0.35, 0, 0,
         {{0, 0, 14855, 19}, {14836, 0, 14855, 1820}, {0, 1801, 14855, 1820}, {0, 0, 19, 1820}}},
    };
    for (const auto& c : cases) {
        RecordingSurface s;
        cls_ImpressaoA p;
        p.printaCaixa(c.w, c.h, c.e, c.x, c.y, s);
        EXPECT_EQ(boxes(s), c.sides) << c.what;
        EXPECT_EQ(s.fill_color(), nimbara::kBlack) << c.what;
        EXPECT_EQ(s.fill_style(), 0) << c.what;
    }
}

TEST(Primitives, FilledBoxUsesTheFillItFinds)
{
    RecordingSurface s;
    cls_ImpressaoA p;
    s.setFillColor(nimbara::kPanelGrey);
    s.setFillStyle(0);
    p.printaCaixaFilled(10, 5, 1, 1, s);
    p.printaCaixa(1, 1, 0.1, 0, 0, s);
    p.printaCaixaFilled(10, 5, 1, 1, s);  // no new fill colour: black
    const auto lines = s.calls_of("Line");
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines.front().whole(), (std::vector<long>{20, 56, 56, 623, 339, 0, nimbara::kPanelGrey, 0}));
    EXPECT_EQ(lines.back().numbers[6], nimbara::kBlack);
}

TEST(Primitives, CircleIsOneCallInWholeTwips)
{
    RecordingSurface s;
    cls_Impressao p;
    p.printacirculo(10.3, 2.3, 0.35, s);
    ASSERT_EQ(s.calls_of("Circle").size(), 1u);
    EXPECT_EQ(s.calls_of("Circle")[0].whole(), (std::vector<long>{0, 584, 130, 19, 0, 0, 0, 0}));
}

TEST(Primitives, ValorAlinhadoPicksCharactersFromTheRight)
{
    struct Case {
        std::string value;
        int width, position;
        const char* expected;  // nullptr: refused
    };
    const Case cases[] = {
        {"1234", 1, 1, "4"}, {"1234", 1, 2, "3"}, {"1234", 1, 4, "1"}, {"1234", 1, 5, nullptr},
        {"1234", 2, 2, "4"}, {"1234", 2, 3, "34"}, {"", 1, 1, ""}, {"é9", 1, 2, "é"},
    };
    for (const auto& c : cases) {
        for (auto f : {&cls_ImpressaoA::ValorAlinhado, &cls_ImpressaoA::ApagaValorAlinhado}) {
            if (c.expected == nullptr) {
                EXPECT_THROW(f(c.value, c.width, c.position), std::out_of_range) << c.value << " " << c.position;
            } else {
                EXPECT_EQ(f(c.value, c.width, c.position), c.expected) << c.value << " " << c.position;
            }
        }
    }
}

namespace {

struct CapturingNotifier final : nimbara::Notifier {
    std::vector<std::string> messages;
    void message(nimbara::MessageIcon, std::string_view, std::string_view text) override { messages.emplace_back(text); }
    void busy(bool) override {}
    void progress(int) override {}
};

}  // namespace

// A surface failure ends the box where it is, goes to the log with the routine's name, and never
// reaches the caller; the array edition also tells the notifier what it logs.
TEST(Primitives, FailuresAreLoggedAndSwallowed)
{
    nimbara::testing::TempFolder folder;
    const auto& dir = folder.path();
    nimbara::PdfSurface pdf(dir / "never.pdf");
    pdf.setDrawMode(9);  // the PDF surface draws boxes in copy mode only

    CapturingNotifier notes;
    nimbara::set_notifier(&notes);
    cls_ImpressaoA a;
    a.set_log_path(dir / "a.log");
    EXPECT_NO_THROW(a.printaCaixa(10, 10, 0.1, 0, 0, pdf));
    cls_Impressao d;
    d.set_log_path(dir / "d.log");
    EXPECT_NO_THROW(d.printaCaixaFilled(10, 10, 0, 0, pdf));
    nimbara::set_notifier(nullptr);

    const std::string a_log = nimbara::testing::read_file(dir / "a.log"), d_log = nimbara::testing::read_file(dir / "d.log");
    EXPECT_NE(a_log.find("\tprintaCaixa-Erro:Line in draw mode 9 is not supported"), std::string::npos) << a_log;
    EXPECT_NE(d_log.find("\tprintaCaixaFilled-Erro:Line in draw mode 9"), std::string::npos) << d_log;
    ASSERT_EQ(notes.messages.size(), 3u);
    EXPECT_EQ(notes.messages[0], "WriteLog - " + (dir / "a.log").string());
    EXPECT_TRUE(notes.messages[1].starts_with("Entry - printaCaixa-Erro:"));
    EXPECT_EQ(notes.messages[2], "WriteLog - error");
    EXPECT_FALSE(std::filesystem::exists(dir / "never.pdf"));
}
