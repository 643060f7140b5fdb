#include <gtest/gtest.h>

#include <vector>

#include "platform/jet_values.hpp"

using nimbara::platform::OldDateTime;
namespace jet = nimbara::platform::jet;

TEST(JetValues, DateSerialsBecomeDatesOnBothSidesOf1900)
{
    struct Case { double serial; std::optional<OldDateTime> expected; };
    const Case cases[] = {
        {0.0, OldDateTime{1899, 12, 30, 0, 0, 0}},
        {2.0, OldDateTime{1900, 1, 1, 0, 0, 0}},
        {61.0, OldDateTime{1900, 3, 1, 0, 0, 0}},  // no 29 February 1900 in Jet's count
        {38020.0, OldDateTime{2004, 2, 3, 0, 0, 0}},
        {39082.5, OldDateTime{2006, 12, 31, 12, 0, 0}},
        {39082.0 + 86399.6 / 86400.0, OldDateTime{2007, 1, 1, 0, 0, 0}},  // rounding to the second carries the day
        {-1.0, OldDateTime{1899, 12, 29, 0, 0, 0}},
        {-1.25, OldDateTime{1899, 12, 29, 6, 0, 0}},  // the time counts forward from a negative day
        {-0.5, OldDateTime{1899, 12, 30, 12, 0, 0}},
        {-18095.75, OldDateTime{1850, 6, 15, 18, 0, 0}},
        {-657434.0, OldDateTime{100, 1, 1, 0, 0, 0}},
        {2958465.0 + 3723.0 / 86400.0, OldDateTime{9999, 12, 31, 1, 2, 3}},
        {-657435.0, std::nullopt},
        {2958466.0, std::nullopt},
    };
    for (const auto& c : cases) EXPECT_EQ(jet::date_time_from_serial(c.serial), c.expected) << c.serial;
}

TEST(JetValues, StoredTextBecomesUtf8)
{
    struct Case { const char* what; std::vector<unsigned char> stored; std::string expected; };
    const Case cases[] = {
        {"empty", {}, ""},
        {"two bytes a character", {'O', 0, 0xE7, 0, 0xAC, 0x20}, "O\xC3\xA7\xE2\x82\xAC"},
        {"compressed", {0xFF, 0xFE, 'R', 'u', 'a', ' ', 0xE9}, "Rua \xC3\xA9"},
        {"compressed with a switch to two bytes and back", {0xFF, 0xFE, '1', 0, 0xAC, 0x20, 0, '2'}, "1\xE2\x82\xAC" "2"},
        {"compressed empty", {0xFF, 0xFE}, ""},
        {"tab, quote and line break kept", {0xFF, 0xFE, '"', '\t', '\r', '\n'}, "\"\t\r\n"},
        {"surrogate pair", {0x3D, 0xD8, 0x00, 0xDE}, "\xF0\x9F\x98\x80"},
        {"lone high surrogate", {0x3D, 0xD8, 'a', 0}, "\xEF\xBF\xBD" "a"},
        {"lone low surrogate", {0x00, 0xDE}, "\xEF\xBF\xBD"},
        {"stray last byte", {'a', 0, 'b'}, "a\xEF\xBF\xBD"},
    };
    for (const auto& c : cases) EXPECT_EQ(jet::jet4_text_to_utf8(c.stored), c.expected) << c.what;
}

TEST(JetValues, CodePageTextOfJet3BecomesUtf8)
{
    const std::vector<unsigned char> stored{'a', 0x80, 0xE7, 0x93, 0x81};
    EXPECT_EQ(jet::cp1252_to_utf8(stored), "a\xE2\x82\xAC\xC3\xA7\xE2\x80\x9C\xC2\x81");
}
