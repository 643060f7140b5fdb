#pragma once
// The helpers every routine of a printed page shares: millimetres from the page offsets into twips,
// text at a place, fonts, frames, the remarks and page-number panels, and the guard that logs a
// routine's failure. They work on one printer object and stay inside the library.
#include <cstddef>
#include <cstdint>
#include <exception>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "nimbara/FormImpressao.hpp"
#include "nimbara/ImpressaoComum.hpp"
#include "nimbara/PageSurface.hpp"

namespace nimbara::printing {

// A slice of the remarks: its first character (from 1) and its length.
struct Slice {
    std::ptrdiff_t start;
    std::size_t count;
};

class Page {
public:
    explicit Page(ImpressaoComum& printer) : printer_(printer) {}

    Edition edition() const { return printer_.edition_; }
    double LeftX() const { return printer_.LeftX; }
    double TopY() const { return printer_.TopY; }

    double twipsX(double mm) const { return (mm + printer_.LeftX) * kTwipsPerMm; }
    double twipsY(double mm) const { return (mm + printer_.TopY) * kTwipsPerMm; }

    // Prints the text with its top-left at (x, y) millimetres from the page offsets.
    void printAt(PageSurface& s, double x, double y, std::string_view text) const;
    // Sets the font's name and size, and its boldness when given.
    static void setFont(PageSurface& s, std::string_view name, double size, std::optional<bool> bold = std::nullopt);
    // printaCaixa at (x, y) millimetres from the page offsets.
    void frame(PageSurface& s, double x, double y, double w, double h, double e) const;
    // The logo at (1, 1) millimetres from the page offsets.
    void paintLogo(PageSurface& s, const FormImpressao& imagens) const;
    // The five lines of the remarks frame: the first at (6.5, 157.5), each later one a font line lower.
    void printRemarks(PageSurface& s, std::string_view remarks, std::span<const Slice, 5> slices) const;
    // The page numbers and, on the last page, the total's caption and comb; NCompromisso only where
    // the edition prints it.
    void printPageNumbers(PageSurface& s, const std::string& NDoc, std::int32_t pag, std::int32_t TotPaginas,
                          const std::string* NCompromisso) const;

    // Runs a printing routine's body; a failure ends it, and is logged as "<routine>-Erro:" and the
    // description, and the routine returns normally, so that a page with faults still comes out.
    template <class Body>
    void guarded(std::string_view routine, Body&& body) const
    {
        try {
            body();
        } catch (const std::exception& e) {
            printer_.WriteLog(std::string(routine) + "-Erro:" + e.what());
        }
    }

private:
    ImpressaoComum& printer_;
};

// A text read as a boolean, as the yes/no fields reach the page: the words True and False in any
// case, or a number, true unless 0; anything else is refused with std::invalid_argument.
bool as_boolean(std::string_view field);

// Turns line breaks into blanks up to the next multiple of iChars characters, so that fixed slices
// of iChars fall on the text's own lines.
std::string replace_breaks(std::string_view sString, std::int16_t iChars);

}  // namespace nimbara::printing
