#pragma once
// What the module "scan" does for scan_reading.cpp: files decoded into grey pages, and the symbols
// found on a page. Its errors are std::runtime_error with the library's own reason.
#include <string>
#include <string_view>
#include <vector>

#include "nimbara/scan_reading.hpp"

namespace nimbara::platform {

class ScanReader {
public:
    virtual ~ScanReader() = default;
    virtual std::vector<GrayImage> images(std::string_view bytes, double pdf_dpi) = 0;
    virtual std::vector<std::string> symbols(const GrayImage& image) = 0;
};

}  // namespace nimbara::platform

// The module's factory: the one reader, kept for the life of the process.
extern "C" [[gnu::visibility("default")]] nimbara::platform::ScanReader* nimbara_scan_reader();
