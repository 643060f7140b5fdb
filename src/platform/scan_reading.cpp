// Scans read through the module "scan": the module decodes, this names the file in what goes wrong.
#include "nimbara/scan_reading.hpp"

#include "platform/module_loader.hpp"
#include "platform/scan_reader.hpp"

namespace nimbara {
namespace {

platform::ScanReader& reader()
{
    static platform::ScanReader* const instance =
        platform::loaded_module("scan").entry<decltype(nimbara_scan_reader)>("nimbara_scan_reader")();
    return *instance;
}

}  // namespace

std::vector<GrayImage> scan_images(std::string_view bytes, const std::string& name, double pdf_dpi)
{
    try {
        return reader().images(bytes, pdf_dpi);
    } catch (const platform::ModuleError&) {
        throw;
    } catch (const std::exception& e) {
        throw ScanError(name + ": " + e.what());
    }
}

std::vector<std::string> read_symbols(const GrayImage& image) { return reader().symbols(image); }

std::vector<ScannedPage> read_scan(std::string_view bytes, const std::string& name)
{
    const std::vector<GrayImage> images = scan_images(bytes, name);
    std::vector<ScannedPage> pages;
    for (std::size_t i = 0; i < images.size(); ++i)
        pages.push_back({images.size() == 1 ? name : name + ":" + std::to_string(i + 1), read_symbols(images[i])});
    return pages;
}

}  // namespace nimbara
