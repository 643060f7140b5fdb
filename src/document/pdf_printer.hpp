#pragma once
// The default printer of the headless road: each print job (one copy of a Guia) becomes a PDF file.
#include <filesystem>
#include <memory>
#include <string_view>

#include "nimbara/PageSurface.hpp"

namespace nimbara::document {

// The file of copy n is "Guia_<id>_via<n>.pdf" in the folder, where the id is the Guia's document
// number (the request number when it has none) with anything but letters, digits, '-', '_' and '.'
// turned into '-'. An existing file is never overwritten: the name gains "-2", "-3"...
std::filesystem::path pdf_file_name(const std::filesystem::path& folder, std::string_view guia_id, int copy);

std::unique_ptr<PageSurface> make_pdf_printer(std::filesystem::path folder, std::string guia_id);

}  // namespace nimbara::document
