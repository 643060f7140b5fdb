#include <gtest/gtest.h>

#include "foundation/list_helpers.hpp"
#include "foundation/text.hpp"

namespace gf = nimbara::GlobalFrameWork;
using nimbara::ListArray;

TEST(ListHelpers, String2ArraySplitsWithoutTrimming)
{
    struct Case { std::string_view text; gf::OptionalList expected; };
    const Case cases[] = {
        {"", std::nullopt},
        {"01", ListArray{"01"}},
        {"01,,02", ListArray{"01", "", "02"}},
        {" 01 ,02", ListArray{" 01 ", "02"}},
        {",", ListArray{"", ""}},
    };
    for (const auto& c : cases) EXPECT_EQ(gf::String2Array(c.text), c.expected) << '"' << c.text << '"';
}

TEST(ListHelpers, JoinsLeaveNoCommaForLeadingEmpties)
{
    struct Case { gf::OptionalList list; std::string expected; };
    const Case cases[] = {
        {std::nullopt, ""},
        {ListArray{"01", "02"}, "01,02"},
        {ListArray{"", "", "02"}, "02"},
        {ListArray{"01", ""}, "01,"},
    };
    for (const auto& c : cases) EXPECT_EQ(gf::Array2String(c.list), c.expected);
}

TEST(ListHelpers, ArrayShrinkKeepsWhatWasNotStruck)
{
    struct Case { gf::StrikeList list; gf::OptionalList expected; };
    const Case cases[] = {
        {{std::nullopt, std::nullopt}, std::nullopt},
        {{std::nullopt, "02"}, ListArray{"02"}},
        {{"", std::nullopt}, std::nullopt},           // only an empty text is left: nothing
        {{"99", ""}, ListArray{"99", ""}},             // a trailing empty text survives the join
        {{"02", std::nullopt, "02"}, ListArray{"02", "02"}},
    };
    for (const auto& c : cases) EXPECT_EQ(gf::ArrayShrink(c.list), c.expected);
}

TEST(ListHelpers, InArrayAndIsArrayEmpty)
{
    EXPECT_FALSE(gf::inArray(std::nullopt, "02"));
    EXPECT_TRUE(gf::inArray(ListArray{"01", "02"}, "02"));
    EXPECT_FALSE(gf::inArray(ListArray{"01", "02 "}, "02"));

    using Row = std::optional<std::vector<std::optional<int>>>;
    EXPECT_TRUE(gf::isArrayEmpty(Row{}));
    EXPECT_TRUE(gf::isArrayEmpty(Row{{std::nullopt, std::nullopt}}));
    EXPECT_FALSE(gf::isArrayEmpty(Row{{std::nullopt, 7}}));
}

TEST(TextConversions, Int16AsAStringConvertsInArithmetic)
{
    struct Case { std::string_view text; std::optional<std::int16_t> expected; };
    const Case cases[] = {
        {"0", 0}, {"1", 1}, {" 2 ", 2}, {"-3", -3}, {"+4", 4}, {"2.5", 2}, {"3.5", 4}, {"1e2", 100},
        {"", std::nullopt}, {"x", std::nullopt}, {"1x", std::nullopt}, {"32768", std::nullopt}, {"-32768", -32768},
        {"nan", std::nullopt},
    };
    for (const auto& c : cases) EXPECT_EQ(nimbara::text::to_int16(c.text), c.expected) << '"' << c.text << '"';
}

TEST(TextConversions, Int32IsStrict)
{
    // Short plain digits are read on the spot, the rest by the general conversion: both must agree.
    struct Case { std::string_view text; std::optional<std::int32_t> expected; };
    const Case cases[] = {
        {"0", 0}, {"50", 50}, {"+7", 7}, {"007", 7}, {"999999999", 999999999}, {"2147483647", 2147483647},
        {"-5", -5}, {"-2147483648", -2147483648}, {"2147483648", std::nullopt}, {"12.0", std::nullopt},
        {" 12", std::nullopt}, {"12 ", std::nullopt}, {"1x", std::nullopt}, {"x1", std::nullopt},
        {"", std::nullopt}, {"+", std::nullopt}, {"-", std::nullopt}, {"\xff\xff", std::nullopt},
    };
    for (const auto& c : cases) EXPECT_EQ(nimbara::text::parse_int32(c.text), c.expected) << '"' << c.text << '"';
}

TEST(TextConversions, UpperCaseCoversAccentedLetters)
{
    EXPECT_EQ(nimbara::text::to_upper("<Activo>True</Activo> ção é"), "<ACTIVO>TRUE</ACTIVO> ÇÃO É");
}
