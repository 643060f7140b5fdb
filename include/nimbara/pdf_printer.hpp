#pragma once
// The default printer of the headless road: each print job (one copy of a Guia) becomes a PDF file.
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "nimbara/PdfSurface.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

// The file of copy n is "Guia_<id>_via<n>.pdf" in the folder, where the id is the Guia's document
// number (the request number when it has none) with anything but letters, digits, '-', '_' and '.'
// turned into '-', cut to 100 characters. Attempt 2, 3... (the name was taken) gain "-2", "-3".
NIMBARA_API std::filesystem::path pdf_file_name(const std::filesystem::path& folder, std::string_view guia_id,
                                                int copy, int attempt = 1);

// A surface that writes each copy to its file, never over an existing file.
NIMBARA_API std::unique_ptr<PdfSurface> make_pdf_printer(std::filesystem::path folder, std::string guia_id);

}  // namespace nimbara
