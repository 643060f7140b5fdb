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

// The recorded forms show the array edition's duplicate; the database edition's stands a line higher
// and takes a number of two digits.
TEST(FixedForm, DatabaseEditionCopyMark)
{
    cls_Impressao d;
    const auto mark = find_text(form_of(d, 12), "Duplicado 12");
    ASSERT_TRUE(mark);
    EXPECT_EQ(std::pair(mark->x_mm, mark->y_mm), std::pair(150.0, 182.0));
    EXPECT_TRUE(mark->bold);
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
