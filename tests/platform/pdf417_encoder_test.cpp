#define ZX_USE_UTF8
#include <gtest/gtest.h>

#include <ZXing/ReadBarcode.h>

#include "platform/pdf417_encoder.hpp"

using nimbara::platform::encode_pdf417;
using nimbara::platform::Pdf417Options;
using nimbara::platform::Pdf417Symbol;

namespace {

// Rasterises the matrix the way the page draws it (rows three modules high) and reads it back.
std::string decode(const Pdf417Symbol& s)
{
    constexpr int scale = 2, quiet = 10, row_height = 3;
    const int w = (s.width + 2 * quiet) * scale, h = (s.rows * row_height + 2 * quiet) * scale;
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(w * h), 255);
    for (int r = 0; r < s.rows; ++r)
        for (int c = 0; c < s.width; ++c)
            if (s.dark(r, c))
                for (int y = 0; y < row_height * scale; ++y)
                    for (int x = 0; x < scale; ++x)
                        pixels[static_cast<std::size_t>(((quiet + r * row_height) * scale + y) * w + (quiet + c) * scale + x)] = 0;
    const ZXing::ImageView image(pixels.data(), w, h, ZXing::ImageFormat::Lum);
    const auto result = ZXing::ReadBarcode(image, ZXing::DecodeHints().setFormats(ZXing::BarcodeFormat::PDF417));
    return result.isValid() ? result.text() : std::string("<no symbol>");
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

TEST(Pdf417Encoder, OptionsShapeTheSymbol)
{
    const auto wide = encode_pdf417("0123456789", {2, 6, 0, false, 0, false});
    const auto narrow = encode_pdf417("0123456789", {2, 2, 0, false, 0, false});
    EXPECT_GT(wide.width, narrow.width);
    EXPECT_LT(wide.rows, narrow.rows);
    EXPECT_LT(encode_pdf417("0123456789", {2, 2, 0, true, 0, false}).width, narrow.width);
    EXPECT_EQ(encode_pdf417("0123456789", {2, 2, 12, false, 0, false}).rows, 12);
}

TEST(Pdf417Encoder, RefusedOptionsThrow)
{
    EXPECT_THROW(encode_pdf417("123", {9, 0, 0, false, 0, false}), std::runtime_error);
    EXPECT_THROW(encode_pdf417("123", {2, 31, 0, false, 0, false}), std::runtime_error);
}
