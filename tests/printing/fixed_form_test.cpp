#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "nimbara/cls_Impressao.hpp"
#include "nimbara/cls_ImpressaoA.hpp"
#include "printed_text.hpp"

using nimbara::cls_Impressao;
using nimbara::cls_ImpressaoA;
using nimbara::form_impressao;
using nimbara::ImpressaoComum;
using nimbara::printing::RecordingSurface;
using namespace printing_test;

namespace {

RecordingSurface form_of(ImpressaoComum& p, int copy = 0, const std::string& date = "2024-03-15")
{
    RecordingSurface s;
    p.PrintaParteFixaGuiaExp(s, form_impressao(), copy, date);
    return s;
}

}  // namespace

TEST(FixedForm, CopyMarkAndVersion)
{
    struct Case { bool array; int copy; const char* mark; double mark_y, version_x, version_y; bool version_bold; };
    // The copies the recorded empty forms do not show.
    const Case cases[] = {
        {true, 1, "Duplicado 1", 183, 5, 183, false},
        {false, 12, "Duplicado 12", 182, 100, 182, true},
    };
    for (const auto& c : cases) {
        cls_ImpressaoA a;
        cls_Impressao d;
        const auto s = c.array ? form_of(a, c.copy) : form_of(d, c.copy);
        const auto mark = find_text(s, c.mark);
        ASSERT_TRUE(mark) << c.mark;
        EXPECT_EQ(mark->x_mm, 150);
        EXPECT_EQ(mark->y_mm, c.mark_y);
        EXPECT_TRUE(mark->bold);
        const auto version = find_text(s, "Versão 5.3.15");
        ASSERT_TRUE(version);
        EXPECT_EQ(std::pair(version->x_mm, version->y_mm), std::pair(c.version_x, c.version_y)) << c.array;
        EXPECT_EQ(version->bold, c.version_bold);
        EXPECT_EQ(version->font, "Arial");
        EXPECT_EQ(version->size, 7);
    }
}

TEST(FixedForm, EmptyDateChangesNothingElse)
{
    cls_ImpressaoA a;
    auto with = form_of(a, 0, "2024-03-15").calls(), without = form_of(a, 0, "").calls();
    ASSERT_EQ(with.size(), without.size());
    int differences = 0;
    for (std::size_t i = 0; i < with.size(); ++i)
        if (with[i].op != without[i].op || with[i].numbers != without[i].numbers || with[i].text != without[i].text) {
            ++differences;
            EXPECT_EQ(with[i].text, "2024-03-15");
            EXPECT_EQ(without[i].text, "");
        }
    EXPECT_EQ(differences, 1);
}
