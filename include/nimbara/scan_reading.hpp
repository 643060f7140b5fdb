#pragma once
// Scans and photographs of printed pages read for their PDF417 symbols: PNG, JPEG, TIFF (every page
// of a multi-page file) and PDF (each page rendered for reading). The image libraries, the PDF
// renderer and the symbol decoder live in the module "scan", loaded on the first read.
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "nimbara/export.hpp"

namespace nimbara {

// A file that cannot be read as a scan: its name and why (not an image or PDF we read, damaged).
class ScanError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Grey pixels, one byte each, rows top to bottom without padding.
struct GrayImage {
    int width = 0, height = 0;
    std::vector<std::uint8_t> pixels;
};

// One page of a scan and the text of every symbol found on it.
struct ScannedPage {
    std::string where;  // the file's name, with ":N" for page N of a file of several pages
    std::vector<std::string> symbols;
};

// The resolution PDF pages are rendered at for reading: enough for the smallest symbol the print
// settings make, without the cost of finer renders.
inline constexpr double kScanPdfDpi = 200;

// Every page of the file held in `bytes` (named `name` in messages) and its symbols. Throws
// ScanError for a file that is no PNG, JPEG, TIFF or PDF, or that cannot be decoded.
NIMBARA_API std::vector<ScannedPage> read_scan(std::string_view bytes, const std::string& name);

// The pages of the file as grey images, PDF pages rendered at `pdf_dpi`.
NIMBARA_API std::vector<GrayImage> scan_images(std::string_view bytes, const std::string& name,
                                               double pdf_dpi = kScanPdfDpi);

// Every PDF417 symbol found in the image, in no set order: a quick look first, then a closer one
// (turned pages, harder binarising) only when the quick one finds nothing.
NIMBARA_API std::vector<std::string> read_symbols(const GrayImage& image);

}  // namespace nimbara
