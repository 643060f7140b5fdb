#include <gtest/gtest.h>

#include "platform/pdf417_encoder.hpp"
#include "printing/symbol_reader.hpp"

using nimbara::platform::encode_pdf417;
using nimbara::platform::Pdf417Options;
using nimbara::platform::Pdf417Symbol;

namespace {

// Reads the matrix back drawn the way the page draws it: rows three modules high.
std::string decode(const Pdf417Symbol& s)
{
    std::vector<printing_test::Rect> modules;
    for (int r = 0; r < s.rows; ++r)
        for (int c = 0; c < s.width; ++c)
            if (s.dark(r, c)) modules.push_back({double(c), r * 3.0, c + 1.0, r * 3.0 + 3});
    return printing_test::decode_rects(modules, 0.5);
}

}  // namespace

TEST(Pdf417Encoder, SymbolsDecodeToTheirData)
{
    const std::string head = "CR05031500000000012300000045600000000512300070101NSN00000000000000000000000000000000";
    struct Case { const char* what; std::string data; Pdf417Options options; std::string expected; };
    const Case cases[] = {
        {"page payload, level 2, 6 columns", head + "01" + "01C01000050000100000100000000000000000000000000000000000", {2, 6, 0, false, 0, false}, ""},
        {"truncated", head + "00", {2, 4, 0, true, 0, false}, ""},
        {"fixed rows", "0123456789ABCDEF", {1, 3, 10, false, 0, false}, ""},
        {"tilde turns ~d065 into A", "X~d065Y", {2, 0, 0, false, 0, true}, "XAY"},
        {"without tilde the text stands", "X~d065Y", {2, 0, 0, false, 0, false}, "X~d065Y"},
    };
    for (const auto& c : cases) {
        const auto symbol = encode_pdf417(c.data, c.options);
        EXPECT_EQ(decode(symbol), c.expected.empty() ? c.data : c.expected) << c.what;
    }
}

TEST(Pdf417Encoder, OptionsShapeTheSymbolOrAreRefused)
{
    const auto wide = encode_pdf417("0123456789", {2, 6, 0, false, 0, false});
    const auto narrow = encode_pdf417("0123456789", {2, 2, 0, false, 0, false});
    EXPECT_GT(wide.width, narrow.width);
    EXPECT_LT(wide.rows, narrow.rows);
    EXPECT_LT(encode_pdf417("0123456789", {2, 2, 0, true, 0, false}).width, narrow.width);
    EXPECT_EQ(encode_pdf417("0123456789", {2, 2, 12, false, 0, false}).rows, 12);
    EXPECT_THROW(encode_pdf417("123", {9, 0, 0, false, 0, false}), std::runtime_error);
    EXPECT_THROW(encode_pdf417("123", {2, 31, 0, false, 0, false}), std::runtime_error);
}
