#include "document/pdf_printer.hpp"

#include <string>

#include "platform/pdf_surface.hpp"

namespace nimbara::document {
namespace {

bool plain(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
           c == '.';
}

}  // namespace

std::filesystem::path pdf_file_name(const std::filesystem::path& folder, std::string_view guia_id, int copy)
{
    std::string id;
    for (const char c : guia_id) id += plain(c) ? c : '-';
    if (id.empty()) id = "sem-numero";
    const std::string stem = "Guia_" + id + "_via" + std::to_string(copy);
    auto path = folder / (stem + ".pdf");
    std::error_code ec;
    for (int n = 2; std::filesystem::exists(path, ec); ++n) path = folder / (stem + "-" + std::to_string(n) + ".pdf");
    return path;
}

std::unique_ptr<PageSurface> make_pdf_printer(std::filesystem::path folder, std::string guia_id)
{
    return std::make_unique<platform::PdfSurface>(
        [folder = std::move(folder), id = std::move(guia_id)](int job) { return pdf_file_name(folder, id, job); });
}

}  // namespace nimbara::document
