// nimbara form: prints the empty form of one edition as a test page to hold against pre-printed paper.
#include <stdlib.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>

#include "commands.hpp"
#include "option_checks.hpp"
#include "nimbara/cls_Impressao.hpp"
#include "nimbara/cls_ImpressaoA.hpp"
#include "nimbara/PdfSurface.hpp"
#include "standard_streams.hpp"

namespace nimbara::cli {
namespace {

struct FormOptions {
    std::string out;
    std::string png;
    double dpi = 150;
    std::string edition = "array";
    std::int32_t copy = 0;
    std::string date;
    double left = 0;
    double top = 0;
};

// The PNG of page 1 as bytes: rendered into a private folder that is removed at once.
std::string png_bytes(const PdfSurface& surface, double dpi)
{
    char name[] = "/tmp/nimbara-form-XXXXXX";
    if (::mkdtemp(name) == nullptr) throw std::runtime_error(std::string("cannot make a temporary folder: ") + std::strerror(errno));
    const std::filesystem::path folder = name;
    std::string bytes;
    try {
        surface.render_png(1, dpi, folder / "form.png");
        std::ifstream in(folder / "form.png", std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(in), {});
    } catch (...) {
        std::filesystem::remove_all(folder);
        throw;
    }
    std::filesystem::remove_all(folder);
    return bytes;
}

int print_form(const FormOptions& o)
{
    if (o.out == "-" && o.png == "-") {
        std::cerr << "nimbara form: --out - and --png - both want standard output; name a file for one of them\n";
        return 2;
    }
    // With "-" the document is kept in memory and written to standard output once whole.
    std::string pdf;
    const auto made = o.out == "-" ? std::make_unique<PdfSurface>([&pdf](int, std::string bytes) { pdf = std::move(bytes); })
                                   : std::make_unique<PdfSurface>(std::filesystem::path(o.out));
    PdfSurface& surface = *made;
    try {
        // As the print drive prepares the printer: A4 landscape.
        surface.setOrientation(printer::kLandscape);
        surface.setPaperSize(printer::kPaperA4);
        surface.setTrackDefault(false);
        surface.StartDoc();
    } catch (const std::exception& e) {
        std::cerr << "nimbara form: " << e.what() << '\n';
        return 2;
    }
    cls_ImpressaoA array;
    cls_Impressao database;
    ImpressaoComum& printer = o.edition == "database" ? static_cast<ImpressaoComum&>(database) : array;
    printer.SetPageOffsets(o.left, o.top);
    printer.PrintTestPage(surface, form_impressao(), o.copy, o.date);
    std::string png;
    try {
        surface.EndDoc();
        if (o.png == "-") png = png_bytes(surface, o.dpi);
        else if (!o.png.empty()) surface.render_png(1, o.dpi, o.png);
        if (o.out == "-") write_standard_output(pdf);
        if (o.png == "-") write_standard_output(png);
    } catch (const std::exception& e) {
        // The command makes both files or neither.
        std::error_code ignored;
        for (const auto& written : surface.written()) std::filesystem::remove(written, ignored);
        std::cerr << "nimbara form: " << e.what() << '\n';
        return 2;
    }
    // The names written go to standard output, unless it holds a document.
    std::ostream& names = o.out == "-" || o.png == "-" ? std::cerr : std::cout;
    if (o.out != "-") names << surface.written().front().string() << '\n';
    if (!o.png.empty() && o.png != "-") names << o.png << '\n';
    return 0;
}

}  // namespace

void register_form(CLI::App& app, int& status)
{
    auto* cmd = app.add_subcommand("form", "Print the empty form of one edition as a test page (A4 landscape PDF)");
    auto o = std::make_shared<FormOptions>();
    cmd->add_option("--out", o->out, "The PDF file to write; - writes it to standard output")->required();
    auto* png = cmd->add_option("--png", o->png, "Also render the page to this PNG file; - writes it to standard output");
    cmd->add_option("--dpi", o->dpi, "Resolution of the PNG (default 150)")->check(number_in(10, 2400))->needs(png);
    cmd->add_option("--edition", o->edition, "array (headless road, default) or database")
        ->check(one_of({"array", "database"}));
    cmd->add_option("--copy", o->copy, "0 prints \"Original\", N prints \"Duplicado N\"")->check(whole_in(0, 32767));
    cmd->add_option("--date", o->date, "The request date as printed, e.g. 2024-03-15");
    cmd->add_option("--left", o->left, "Left offset of the page in millimetres");
    cmd->add_option("--top", o->top, "Top offset of the page in millimetres");
    cmd->footer("Exit status: 0 written, 2 a bad option or a file that cannot be written (nothing is left).\n"
                "An existing file is never replaced: the PDF's name gains -2, -3...\n"
                "Example:\n  nimbara form --out form.pdf --png form.png --edition database --copy 1");
    cmd->callback([o, &status] { status = print_form(*o); });
}

}  // namespace nimbara::cli
