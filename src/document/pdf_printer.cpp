#include "nimbara/pdf_printer.hpp"

#include <string>

namespace nimbara {
namespace {

bool plain(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
           c == '.';
}

// Long enough for any document number a form shows, short enough for any file system's names.
constexpr std::size_t kMaxIdLength = 100;

}  // namespace

std::filesystem::path pdf_file_name(const std::filesystem::path& folder, std::string_view guia_id, int copy,
                                    int attempt)
{
    std::string id;
    for (const char c : guia_id.substr(0, kMaxIdLength)) id += plain(c) ? c : '-';
    if (id.empty()) id = "sem-numero";
    std::string stem = "Guia_" + id + "_via" + std::to_string(copy);
    if (attempt > 1) stem += "-" + std::to_string(attempt);
    return folder / (stem + ".pdf");
}

std::unique_ptr<PdfSurface> make_pdf_printer(std::filesystem::path folder, std::string guia_id)
{
    return std::make_unique<PdfSurface>([folder = std::move(folder), id = std::move(guia_id)](int job, int attempt) {
        return pdf_file_name(folder, id, job, attempt);
    });
}

}  // namespace nimbara
