#include "support/scan_corpus.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

#include "nimbara/FormImpressao.hpp"
#include "nimbara/PdfSurface.hpp"
#include "nimbara/cls_ImpressaoA.hpp"

namespace nimbara::testing {
namespace {

template <class Use>
void print_copy(const GuiaArrays& guia, const std::filesystem::path& log, PdfSurface& surface, Use use)
{
    // As the print drive sets the job up: A4 landscape, the symbol in the top right corner.
    surface.setOrientation(printer::kLandscape);
    surface.setPaperSize(printer::kPaperA4);
    cls_ImpressaoA printer;
    printer.set_log_path(log);
    printer.arrays = guia;
    printer.Imprime_Parte_Variavel("", 1027, 0, surface, form_impressao(), 0, 0, 0, "2026-11-23", "2026/1027");
    use(surface);
}

std::uint8_t gray_of(std::uint32_t rgb)
{
    const unsigned r = (rgb >> 16) & 0xff, g = (rgb >> 8) & 0xff, b = rgb & 0xff;
    return static_cast<std::uint8_t>((r * 299 + g * 587 + b * 114 + 500) / 1000);
}

GrayImage sized(int width, int height, std::uint8_t fill)
{
    GrayImage out;
    out.width = width;
    out.height = height;
    out.pixels.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), fill);
    return out;
}

// One pass of a box blur along rows (or columns when `columns`).
GrayImage box_pass(const GrayImage& in, int radius, bool columns)
{
    GrayImage out = sized(in.width, in.height, 255);
    const int lines = columns ? in.width : in.height, length = columns ? in.height : in.width;
    const auto index = [&](int line, int i) {
        return columns ? static_cast<std::size_t>(i) * in.width + line : static_cast<std::size_t>(line) * in.width + i;
    };
    for (int line = 0; line < lines; ++line) {
        int sum = 0;
        for (int i = -radius; i <= radius; ++i) sum += in.pixels[index(line, std::clamp(i, 0, length - 1))];
        for (int i = 0; i < length; ++i) {
            out.pixels[index(line, i)] = static_cast<std::uint8_t>(sum / (2 * radius + 1));
            sum += in.pixels[index(line, std::min(i + radius + 1, length - 1))] - in.pixels[index(line, std::max(i - radius, 0))];
        }
    }
    return out;
}

}  // namespace

std::vector<GrayImage> rendered_pages(const GuiaArrays& guia, double dpi, const std::filesystem::path& log)
{
    std::vector<GrayImage> pages;
    PdfSurface surface([](int, std::string) {});
    print_copy(guia, log, surface, [&](PdfSurface& s) {
        for (int p = 1; p <= s.page_count(); ++p) {
            const RasterImage raster = s.render(p, dpi);
            GrayImage image = sized(raster.width, raster.height, 255);
            for (std::size_t i = 0; i < raster.rgb.size(); ++i) image.pixels[i] = gray_of(raster.rgb[i]);
            pages.push_back(std::move(image));
        }
    });
    return pages;
}

std::string printed_pdf(const GuiaArrays& guia, const std::filesystem::path& log)
{
    std::string pdf;
    PdfSurface surface([&pdf](int, std::string document) { pdf = std::move(document); });
    print_copy(guia, log, surface, [](PdfSurface&) {});
    return pdf;
}

GrayImage turned(const GrayImage& image, int quarters)
{
    quarters = ((quarters % 4) + 4) % 4;
    if (quarters == 0) return image;
    const bool swap = quarters % 2 == 1;
    GrayImage out = sized(swap ? image.height : image.width, swap ? image.width : image.height, 255);
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) {
            int nx = x, ny = y;
            if (quarters == 1) nx = image.height - 1 - y, ny = x;
            if (quarters == 2) nx = image.width - 1 - x, ny = image.height - 1 - y;
            if (quarters == 3) nx = y, ny = image.width - 1 - x;
            out.pixels[static_cast<std::size_t>(ny) * out.width + nx] = image.pixels[static_cast<std::size_t>(y) * image.width + x];
        }
    return out;
}

GrayImage skewed(const GrayImage& image, double degrees)
{
    GrayImage out = sized(image.width, image.height, 255);
    const double a = degrees * std::numbers::pi / 180, c = std::cos(a), s = std::sin(a);
    const double cx = image.width / 2.0, cy = image.height / 2.0;
    for (int y = 0; y < out.height; ++y)
        for (int x = 0; x < out.width; ++x) {
            // The source of each pixel: the turn undone.
            const double sx = c * (x - cx) + s * (y - cy) + cx, sy = -s * (x - cx) + c * (y - cy) + cy;
            const int x0 = static_cast<int>(std::floor(sx)), y0 = static_cast<int>(std::floor(sy));
            if (x0 < 0 || y0 < 0 || x0 + 1 >= image.width || y0 + 1 >= image.height) continue;
            const double fx = sx - x0, fy = sy - y0;
            const auto p = [&](int px, int py) { return image.pixels[static_cast<std::size_t>(py) * image.width + px]; };
            const double v = (p(x0, y0) * (1 - fx) + p(x0 + 1, y0) * fx) * (1 - fy) +
                             (p(x0, y0 + 1) * (1 - fx) + p(x0 + 1, y0 + 1) * fx) * fy;
            out.pixels[static_cast<std::size_t>(y) * out.width + x] = static_cast<std::uint8_t>(std::lround(v));
        }
    return out;
}

GrayImage blurred(const GrayImage& image, int radius)
{
    if (radius <= 0) return image;
    return box_pass(box_pass(image, radius, false), radius, true);
}

GrayImage speckled(const GrayImage& image, int strength, std::uint32_t seed)
{
    GrayImage out = image;
    std::mt19937 rng(seed);
    std::uniform_int_distribution<int> noise(-strength, strength);
    for (auto& p : out.pixels) p = static_cast<std::uint8_t>(std::clamp(p + noise(rng), 0, 255));
    return out;
}

std::vector<Spoiling> spoilings()
{
    return {
        {"upright"},
        {"turned 90", 1},
        {"turned 180", 2},
        {"turned 270", 3},
        {"skewed 3", 0, 3},
        {"skewed -2 turned 90", 1, -2},
        {"blurred", 0, 0, 1},
        {"speckled", 0, 0, 0, 40},
        {"skewed 1.5, blurred, speckled, turned 270", 3, 1.5, 1, 30},
    };
}

GrayImage spoilt(const GrayImage& page, const Spoiling& s, std::uint32_t seed)
{
    GrayImage out = s.skew != 0 ? skewed(page, s.skew) : page;
    if (s.blur > 0) out = blurred(out, s.blur);
    if (s.noise > 0) out = speckled(out, s.noise, seed);
    return turned(out, s.quarters);
}

}  // namespace nimbara::testing
