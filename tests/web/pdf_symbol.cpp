// Reads the PDF417 symbol of one page of a printed Guia and writes its text, so that the browser
// tests can check the PDF a page downloaded: pdf_symbol FILE.pdf [PAGE]
#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <string>

#include "cli/pdf_pages.hpp"

int main(int argc, char** argv)
{
    if (argc < 2 || argc > 3) {
        std::cerr << "usage: pdf_symbol FILE.pdf [PAGE]\n";
        return 2;
    }
    const std::filesystem::path pdf = argv[1];
    const int page = argc == 3 ? std::stoi(argv[2]) : 1;
    const auto work = std::filesystem::temp_directory_path() / ("nimbara-pdf-symbol-" + std::to_string(::getpid()));
    std::filesystem::create_directories(work);
    const std::string text = nimbara::testing::symbol_of(pdf, page, work);
    std::filesystem::remove_all(work);
    std::cout << text << '\n';
    return text.starts_with('<') ? 1 : 0;
}
