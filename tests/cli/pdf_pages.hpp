#pragma once
// The pages of a printed PDF as a test reads them: how many there are, and the symbol of one,
// rendered and read back.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "printing/symbol_reader.hpp"
#include "support/temp_folder.hpp"

namespace nimbara::testing {

// The symbol of one page of a PDF: the top-right corner rendered at 600 dpi and read back.
inline std::string symbol_of(const std::filesystem::path& pdf, int page, const std::filesystem::path& work)
{
    constexpr double dpi = 600;
    const auto px = [](double mm) { return std::to_string(static_cast<int>(mm / 25.4 * dpi)); };
    const auto out = work / ("page" + std::to_string(page));
    const std::string cmd = "pdftoppm -r 600 -gray -singlefile -f " + std::to_string(page) + " -l " +
                            std::to_string(page) + " -x " + px(150) + " -y " + px(1) + " -W " + px(111.5) + " -H " +
                            px(18) + " " + pdf.string() + " " + out.string();
    if (std::system(cmd.c_str()) != 0) return "<pdftoppm failed>";
    const std::string pgm = read_file(out.string() + ".pgm");
    // P5, width, height, maximum, then the bytes.
    std::istringstream header(pgm);
    std::string magic;
    int w = 0, h = 0, max = 0;
    header >> magic >> w >> h >> max;
    std::vector<std::uint8_t> gray(pgm.begin() + header.tellg() + 1, pgm.end());
    return printing_test::decode_pixels(gray, w, h);
}

inline int pages_of(const std::filesystem::path& pdf)
{
    const std::string text = read_file(pdf);
    const std::regex page(R"(/Type\s*/Page[^s])");
    return static_cast<int>(std::distance(std::sregex_iterator(text.begin(), text.end(), page), std::sregex_iterator()));
}

}  // namespace nimbara::testing
