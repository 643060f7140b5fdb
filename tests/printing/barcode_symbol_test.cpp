#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "nimbara/cls_ImpressaoA.hpp"
#include "support/sample_guia.hpp"
#include "support/temp_folder.hpp"
#include "symbol_reader.hpp"

using namespace nimbara;
using nimbara::printing::RecordingSurface;
using namespace printing_test;

namespace {

const std::string kPayload = "CR05031500000000012300000045600000000512300070101SNNN00000770000000000000000000000000" +
                             std::string("01") + "01C010000200000100021001010000000000000000000000000000000";

struct Drawn {
    std::string font;
    double font_size = 0;
    double left_mm = 1e9, right_mm = 0, top_mm = 1e9, bottom_mm = 0;
    std::vector<std::string> symbols;
    std::string log;
    std::string font_after;
};

Drawn draw(param::Field param, const std::string& value, const std::string& payload = kPayload)
{
    nimbara::testing::TempFolder folder;
    cls_ImpressaoA printer;
    printer.set_log_path(folder.path() / "print.log");
    printer.arrays = nimbara::testing::sample_guia();
    printer.arrays.arrParametros.set(param, 0, value);
    RecordingSurface s;
    printer.PrintCreatedPDF(s, payload);
    Drawn d;
    for (const auto& c : s.calls()) {
        if (c.op == "setFontName" && c.text.starts_with("PDF417")) d.font = c.text;
        if (c.op == "setFontSize" && d.font_size == 0) d.font_size = c.numbers[0];
        if (c.op == "Line") {
            d.left_mm = std::min(d.left_mm, c.numbers[1] / 56.7), d.top_mm = std::min(d.top_mm, c.numbers[2] / 56.7);
            d.right_mm = std::max(d.right_mm, c.numbers[3] / 56.7), d.bottom_mm = std::max(d.bottom_mm, c.numbers[4] / 56.7);
        }
    }
    d.symbols = recorded_symbols(s);
    d.log = nimbara::testing::read_file(folder.path() / "print.log");
    d.font_after = s.font_name() + " " + std::to_string(static_cast<int>(s.font_size()));
    return d;
}

}  // namespace

TEST(PrintCreatedPDF, SettingsShapeTheSymbolOrAreLogged)
{
    struct Case { const char* what; param::Field param; std::string value; std::string font; double size; };  // font "": refused
    const Case cases[] = {
        {"the bundled examples' settings", param::vCod2DRatio, "0", "PDF417c2", 10},
        {"ratio 1", param::vCod2DRatio, "1", "PDF417c", 10},
        {"ratio 2 keeps the default font", param::vCod2DRatio, "2", "PDF417c4", 10},
        {"font size 5", param::VCod2DFonteSize, "5", "PDF417c2", 14},
        {"truncated", param::VCod2DTruncatedRuncated, "1", "PDF417c2", 10},
        {"tilde processing", param::vCod2DApplyTilde, "1", "PDF417c2", 10},
        {"error level that is no number", param::vCod2DErroLevel, "x", "", 0},
        {"error level above 8", param::vCod2DErroLevel, "9", "", 0},
        {"too many columns", param::vCod2DNColunas, "33", "", 0},
    };
    for (const auto& c : cases) {
        const auto d = draw(c.param, c.value);
        if (c.font.empty()) {
            EXPECT_TRUE(d.symbols.empty()) << c.what;
            EXPECT_NE(d.log.find("PrintCreatedPDF-Erro:"), std::string::npos) << c.what << d.log;
            continue;
        }
        EXPECT_EQ(d.font, c.font) << c.what;
        EXPECT_EQ(d.font_size, c.size) << c.what;
        EXPECT_EQ(d.symbols, std::vector<std::string>{kPayload}) << c.what;
        EXPECT_NEAR(d.right_mm, 261, 1e-9) << c.what;
        EXPECT_NEAR(d.top_mm, 2, 1e-9) << c.what;
        EXPECT_EQ(d.log, "") << c.what;
        EXPECT_EQ(d.font_after, "Arial 8") << c.what;
    }
}

TEST(PrintCreatedPDF, BundledSettingsFitAboveTheTopRightPanel)
{
    // The fullest page: twelve lines, each with the three valueless services that still fit its row.
    std::string full_page = kPayload.substr(0, 85) + "12";
    for (int line = 0; line < 12; ++line)
        full_page += "01C01000050000030002100000" + std::string(27, '0') + "03" + std::string(3 * 9, '0');
    for (const auto& payload : {kPayload, full_page}) {
        const auto d = draw(param::vCod2DRatio, "0", payload);
        EXPECT_EQ(d.symbols, std::vector<std::string>{payload});
        EXPECT_LT(d.bottom_mm, 19.1) << "the grey panel starts at 19.1 mm; payload of " << payload.size();
        EXPECT_GT(d.left_mm, 141) << "the request date's frame ends at 141 mm";
    }
}
