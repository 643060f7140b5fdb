// The module "scan": PNG through libpng, JPEG through libjpeg, TIFF through libtiff, PDF through
// poppler, and the PDF417 symbols through zxing-cpp.
#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>

#define ZX_USE_UTF8
#include <ZXing/ReadBarcode.h>
#include <jpeglib.h>
#include <png.h>
#include <poppler/cpp/poppler-document.h>
#include <poppler/cpp/poppler-page-renderer.h>
#include <poppler/cpp/poppler-page.h>
#include <tiffio.h>

#include "platform/scan_reader.hpp"

namespace nimbara::platform {
namespace {

GrayImage blank(int width, int height)
{
    if (width <= 0 || height <= 0 || static_cast<long long>(width) * height > (1LL << 30))
        throw std::runtime_error("an image of " + std::to_string(width) + " x " + std::to_string(height) + " pixels");
    GrayImage image;
    image.width = width;
    image.height = height;
    image.pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    return image;
}

std::uint8_t luminance(unsigned r, unsigned g, unsigned b)
{
    return static_cast<std::uint8_t>((r * 299 + g * 587 + b * 114 + 500) / 1000);
}

GrayImage read_png(std::string_view bytes)
{
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    const auto done = [&png] { png_image_free(&png); };
    if (!png_image_begin_read_from_memory(&png, bytes.data(), bytes.size())) {
        const std::string message = png.message;
        done();
        throw std::runtime_error("damaged PNG: " + message);
    }
    png.format = PNG_FORMAT_GRAY;
    GrayImage image;
    try {
        image = blank(static_cast<int>(png.width), static_cast<int>(png.height));
    } catch (...) {
        done();
        throw;
    }
    // White behind transparent pixels, as the paper would be.
    png_color white{255, 255, 255};
    if (!png_image_finish_read(&png, &white, image.pixels.data(), 0, nullptr)) {
        const std::string message = png.message;
        done();
        throw std::runtime_error("damaged PNG: " + message);
    }
    return image;
}

// libjpeg reports a fatal error by calling error_exit, which must not return: it jumps back to the
// reading function with the message kept.
struct JpegErrors {
    jpeg_error_mgr manager;
    std::jmp_buf back;
    char message[JMSG_LENGTH_MAX];
};

void jpeg_fail(j_common_ptr info)
{
    auto* errors = reinterpret_cast<JpegErrors*>(info->err);
    (*info->err->format_message)(info, errors->message);
    std::longjmp(errors->back, 1);
}

// Decodes into `image` (made by the caller so that nothing with a destructor lives across the jump);
// answers the error's text, empty on success.
std::string decode_jpeg(std::string_view bytes, GrayImage& image)
{
    jpeg_decompress_struct info;
    JpegErrors errors;
    info.err = jpeg_std_error(&errors.manager);
    errors.manager.error_exit = jpeg_fail;
    errors.message[0] = '\0';
    if (setjmp(errors.back)) {
        jpeg_destroy_decompress(&info);
        return errors.message;
    }
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<unsigned long>(bytes.size()));
    jpeg_read_header(&info, TRUE);
    info.out_color_space = JCS_GRAYSCALE;
    jpeg_start_decompress(&info);
    const auto width = static_cast<long long>(info.output_width), height = static_cast<long long>(info.output_height);
    if (width * height > (1LL << 30)) {
        jpeg_destroy_decompress(&info);
        return "an image too large to read";
    }
    image.width = static_cast<int>(width);
    image.height = static_cast<int>(height);
    image.pixels.resize(static_cast<std::size_t>(width * height));
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = image.pixels.data() + static_cast<std::size_t>(info.output_scanline) * info.output_width;
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
    return {};
}

GrayImage read_jpeg(std::string_view bytes)
{
    GrayImage image;
    const std::string error = decode_jpeg(bytes, image);
    if (!error.empty()) throw std::runtime_error("damaged JPEG: " + error);
    return image;
}

// libtiff reads through these over the bytes in memory.
struct TiffBytes {
    std::string_view bytes;
    toff_t at = 0;
};

tsize_t tiff_read(thandle_t h, tdata_t buffer, tsize_t size)
{
    auto* t = static_cast<TiffBytes*>(h);
    const auto n = std::min<toff_t>(static_cast<toff_t>(size), t->at < t->bytes.size() ? t->bytes.size() - t->at : 0);
    std::memcpy(buffer, t->bytes.data() + t->at, n);
    t->at += n;
    return static_cast<tsize_t>(n);
}
tsize_t tiff_write(thandle_t, tdata_t, tsize_t) { return 0; }
toff_t tiff_seek(thandle_t h, toff_t offset, int whence)
{
    auto* t = static_cast<TiffBytes*>(h);
    const toff_t base = whence == SEEK_CUR ? t->at : whence == SEEK_END ? t->bytes.size() : 0;
    t->at = base + offset;
    return t->at;
}
int tiff_close(thandle_t) { return 0; }
toff_t tiff_size(thandle_t h) { return static_cast<TiffBytes*>(h)->bytes.size(); }

thread_local std::string tiff_error;
void tiff_error_handler(const char*, const char* format, va_list args)
{
    char text[512];
    std::vsnprintf(text, sizeof text, format, args);
    tiff_error = text;
}

std::vector<GrayImage> read_tiff(std::string_view bytes)
{
    TIFFSetErrorHandler(tiff_error_handler);
    TIFFSetWarningHandler(nullptr);
    tiff_error.clear();
    TiffBytes source{bytes};
    const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff(
        TIFFClientOpen("scan", "rm", &source, tiff_read, tiff_write, tiff_seek, tiff_close, tiff_size, nullptr, nullptr),
        TIFFClose);
    if (!tiff) throw std::runtime_error("damaged TIFF: " + tiff_error);
    std::vector<GrayImage> pages;
    do {
        std::uint32_t width = 0, height = 0;
        TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width);
        TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height);
        GrayImage image = blank(static_cast<int>(width), static_cast<int>(height));
        std::vector<std::uint32_t> rgba(image.pixels.size());
        if (!TIFFReadRGBAImageOriented(tiff.get(), width, height, rgba.data(), ORIENTATION_TOPLEFT, 0))
            throw std::runtime_error("damaged TIFF, page " + std::to_string(pages.size() + 1) + ": " + tiff_error);
        for (std::size_t i = 0; i < rgba.size(); ++i) {
            const std::uint32_t p = rgba[i];
            const unsigned alpha = TIFFGetA(p);
            // Composited over white paper.
            const auto over = [alpha](unsigned c) { return (c * alpha + 255 * (255 - alpha)) / 255; };
            image.pixels[i] = luminance(over(TIFFGetR(p)), over(TIFFGetG(p)), over(TIFFGetB(p)));
        }
        pages.push_back(std::move(image));
    } while (TIFFReadDirectory(tiff.get()));
    return pages;
}

std::vector<GrayImage> read_pdf(std::string_view bytes, double dpi)
{
    const std::unique_ptr<poppler::document> document(poppler::document::load_from_raw_data(bytes.data(), static_cast<int>(bytes.size())));
    if (!document) throw std::runtime_error("damaged PDF");
    if (document->is_locked()) throw std::runtime_error("a PDF locked by a password");
    poppler::page_renderer renderer;
    renderer.set_image_format(poppler::image::format_gray8);
    renderer.set_render_hint(poppler::page_renderer::antialiasing, true);
    std::vector<GrayImage> pages;
    for (int i = 0; i < document->pages(); ++i) {
        const std::unique_ptr<poppler::page> page(document->create_page(i));
        if (!page) throw std::runtime_error("page " + std::to_string(i + 1) + " cannot be read");
        const poppler::image rendered = renderer.render_page(page.get(), dpi, dpi);
        if (!rendered.is_valid()) throw std::runtime_error("page " + std::to_string(i + 1) + " cannot be rendered");
        GrayImage image = blank(rendered.width(), rendered.height());
        for (int y = 0; y < image.height; ++y)
            std::memcpy(image.pixels.data() + static_cast<std::size_t>(y) * image.width,
                        rendered.const_data() + static_cast<std::ptrdiff_t>(y) * rendered.bytes_per_row(),
                        static_cast<std::size_t>(image.width));
        pages.push_back(std::move(image));
    }
    if (pages.empty()) throw std::runtime_error("a PDF without pages");
    return pages;
}

std::vector<std::string> decode(const GrayImage& image, const ZXing::DecodeHints& hints)
{
    const ZXing::ImageView view(image.pixels.data(), image.width, image.height, ZXing::ImageFormat::Lum);
    std::vector<std::string> found;
    for (const auto& result : ZXing::ReadBarcodes(view, hints))
        if (result.isValid()) found.push_back(result.text());
    return found;
}

// The page turned by a small angle about its centre (nearest pixel, paper white outside): a wide
// symbol skewed by a degree or more drifts across its rows, which the decoder does not follow.
GrayImage straightened(const GrayImage& image, double degrees)
{
    GrayImage out = blank(image.width, image.height);
    std::fill(out.pixels.begin(), out.pixels.end(), std::uint8_t{255});
    const double a = degrees * 3.14159265358979323846 / 180, c = std::cos(a), s = std::sin(a);
    const double cx = image.width / 2.0, cy = image.height / 2.0;
    for (int y = 0; y < image.height; ++y) {
        // Along a row the source moves by (c, -s) a pixel: no trigonometry inside the loop.
        double sx = c * (0 - cx) + s * (y - cy) + cx, sy = -s * (0 - cx) + c * (y - cy) + cy;
        std::uint8_t* row = out.pixels.data() + static_cast<std::size_t>(y) * image.width;
        for (int x = 0; x < image.width; ++x, sx += c, sy -= s) {
            const int ix = static_cast<int>(sx + 0.5), iy = static_cast<int>(sy + 0.5);
            if (ix >= 0 && iy >= 0 && ix < image.width && iy < image.height)
                row[x] = image.pixels[static_cast<std::size_t>(iy) * image.width + ix];
        }
    }
    return out;
}

class Reader final : public ScanReader {
public:
    std::vector<GrayImage> images(std::string_view bytes, double pdf_dpi) override
    {
        const auto starts = [bytes](std::string_view magic) { return bytes.starts_with(magic); };
        if (starts("\x89PNG\r\n\x1a\n")) return {read_png(bytes)};
        if (starts("\xff\xd8\xff")) return {read_jpeg(bytes)};
        if (starts(std::string_view("II*\0", 4)) || starts(std::string_view("MM\0*", 4))) return read_tiff(bytes);
        if (starts("%PDF-")) return read_pdf(bytes, pdf_dpi);
        throw std::runtime_error("not a PNG, JPEG, TIFF or PDF file");
    }

    std::vector<std::string> symbols(const GrayImage& image) override
    {
        if (image.width <= 0 || image.height <= 0) return {};
        const auto hints = [](bool harder) {
            return ZXing::DecodeHints()
                .setFormats(ZXing::BarcodeFormat::PDF417)
                .setTryHarder(harder)
                .setTryRotate(harder)
                .setTryDownscale(harder);
        };
        // The quick look: upright or upside down, the page as it is.
        auto found = decode(image, hints(false));
        if (!found.empty()) return found;
        // A page turned by a quarter, or hard to binarise.
        found = decode(image, hints(true));
        if (!found.empty()) return found;
        // A page skewed on the scanner's glass: straightened by the likely angles, nearest first.
        for (const double degrees : {1.5, -1.5, 3.0, -3.0}) {
            auto straight = decode(straightened(image, degrees), ZXing::DecodeHints()
                                                                     .setFormats(ZXing::BarcodeFormat::PDF417)
                                                                     .setTryHarder(false)
                                                                     .setTryRotate(true));
            if (!straight.empty()) return straight;
        }
        return {};
    }
};

}  // namespace
}  // namespace nimbara::platform

nimbara::platform::ScanReader* nimbara_scan_reader()
{
    static nimbara::platform::Reader reader;
    return &reader;
}
