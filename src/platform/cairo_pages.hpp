#pragma once
// Recorded pages drawn with cairo and pango: rendered to images for previews, or written to a PDF
// that embeds the faces the system's fonts resolve to. They live in the module "cairo", so that
// printing with the standard faces never loads cairo, pango, fontconfig or what they pull in.
#include <memory>
#include <string>

#include "nimbara/PdfSurface.hpp"
#include "platform/page_ops.hpp"

namespace nimbara {

// What drawing with cairo keeps between pages (the text layouts, the pictures' rasters), and what it
// makes of them.
class CairoPages {
public:
    virtual ~CairoPages() = default;

    // The advance of the text in the font the system resolves its name to, in twips.
    virtual double text_width(const TextOp& text) = 0;
    // A PDF in which each font used is embedded as a subset.
    virtual std::unique_ptr<PageWriter> pdf_writer(PageWriter::Output out) = 0;
    // The page drawn at `dpi` (10 to 2400): its pixels, or those encoded as a PNG file's bytes.
    virtual RasterImage render(const Page& page, double dpi) = 0;
    virtual std::string png(const Page& page, double dpi) = 0;
};

}  // namespace nimbara

// The module's factory: a new CairoPages the caller owns.
extern "C" [[gnu::visibility("default")]] nimbara::CairoPages* nimbara_cairo_pages();
