#pragma once
// The robustness corpus, made on the fly and never stored: Guias printed, their pages rendered at a
// resolution, then turned, skewed, blurred and speckled as scans and photographs are.
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "nimbara/guia_arrays.hpp"
#include "nimbara/scan_reading.hpp"

namespace nimbara::testing {

// The pages of one copy printed by the headless edition, rendered at `dpi` (cairo), in grey; `log`
// receives the print log.
std::vector<GrayImage> rendered_pages(const GuiaArrays& guia, double dpi, const std::filesystem::path& log);

// The same copy as a PDF document.
std::string printed_pdf(const GuiaArrays& guia, const std::filesystem::path& log);

// A quarter turn clockwise, `quarters` times.
GrayImage turned(const GrayImage& image, int quarters);

// Turned by a small angle about the centre, paper white where nothing was; bilinear.
GrayImage skewed(const GrayImage& image, double degrees);

// A box blur of the given radius in pixels, along the rows and then the columns.
GrayImage blurred(const GrayImage& image, int radius);

// Grey noise of the given strength (0 to 255), the same for the same seed.
GrayImage speckled(const GrayImage& image, int strength, std::uint32_t seed);

// The ways a page is spoilt in the corpus, by name.
struct Spoiling {
    std::string name;
    int quarters = 0;
    double skew = 0;
    int blur = 0;
    int noise = 0;
};
std::vector<Spoiling> spoilings();
GrayImage spoilt(const GrayImage& page, const Spoiling& s, std::uint32_t seed);


}  // namespace nimbara::testing
