#include <gtest/gtest.h>

#include "platform/standard_faces.hpp"

using nimbara::Face;

TEST(StandardFaces, TextTakesTheSingleByteEncodingOrNothing)
{
    struct Case {
        const char* utf8;
        std::optional<std::string> encoded;
    };
    const Case cases[] = {
        {"Guia 12", "Guia 12"},
        {"Nº Crédito ção", "N\xBA Cr\xE9" "dito \xE7\xE3o"},
        {"€ – “x”", "\x80 \x96 \x93x\x94"},
        {"", ""},
        {"漢", std::nullopt},     // no place in the encoding
        {"\xC3", std::nullopt},   // a sequence cut short
        {"a\xFF", std::nullopt},  // no UTF-8 at all
    };
    for (const auto& c : cases) EXPECT_EQ(nimbara::to_win_ansi(c.utf8), c.encoded) << c.utf8;
    EXPECT_EQ(nimbara::to_win_ansi(std::string_view("a\0b", 3)), std::nullopt) << "a NUL would end the PDF's string";
}

TEST(StandardFaces, NamesMapToTheirFacesAndWidthsAreThoseOfTheFaces)
{
    struct Case {
        const char* name;
        bool bold;
        Face face;
        const char* text;
        double em;
    };
    const Case cases[] = {
        {"Times New Roman", false, Face::Serif, "AV", 1.444},
        {"Times New Roman", true, Face::SerifBold, "N\xBA", 1.052},
        {"Arial", false, Face::Sans, "AV", 1.334},
        {"Arial", true, Face::SansBold, "\x80", 0.556},  // the euro sign
        {"PDF417c", false, Face::Sans, "", 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(nimbara::face_of(c.name, c.bold), c.face) << c.name;
        EXPECT_NEAR(nimbara::text_width_em(c.face, c.text), c.em, 1e-9) << c.name << " " << c.text;
    }
}
