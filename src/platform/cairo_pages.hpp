#pragma once
// Recorded pages drawn with cairo and pango: rendered to images for previews, or written to a PDF
// that embeds the faces the system's fonts resolve to.
#include <cairo.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/page_ops.hpp"

typedef struct _PangoContext PangoContext;
typedef struct _PangoLayout PangoLayout;

namespace nimbara {

// What drawing pages with cairo keeps between them: the text layouts and the pictures' rasters.
class CairoPainter {
public:
    CairoPainter();
    ~CairoPainter();
    CairoPainter(const CairoPainter&) = delete;
    CairoPainter& operator=(const CairoPainter&) = delete;

    // Draws the page in twips onto `cr`, a device line being `line` twips wide.
    void paint(cairo_t* cr, const Page& page, double line);
    // The advance of the text in the font the system resolves its name to, in twips.
    double text_width(const TextOp& text);

private:
    std::shared_ptr<PangoLayout> layout(const TextOp& t);
    std::shared_ptr<cairo_surface_t> raster(const std::shared_ptr<const Picture>& p);

    std::shared_ptr<PangoContext> pango_;
    std::unordered_map<std::string, std::shared_ptr<PangoLayout>> layouts_;
    std::map<std::shared_ptr<const Picture>, std::shared_ptr<cairo_surface_t>> rasters_;
};

// A PDF of whole pages written by cairo: each font used is embedded as a subset.
class CairoPdfWriter {
public:
    // Receives the document's bytes in order.
    using Output = std::function<void(std::string_view)>;
    explicit CairoPdfWriter(Output out);
    ~CairoPdfWriter();
    CairoPdfWriter(const CairoPdfWriter&) = delete;
    CairoPdfWriter& operator=(const CairoPdfWriter&) = delete;

    void add_page(const Page& page);
    // Completes the document; throws with cairo's reason when it could not be made.
    void finish();

private:
    static cairo_status_t append(void* closure, const unsigned char* data, unsigned int length);

    CairoPainter painter_;
    Output out_;
    std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> pdf_;
};

}  // namespace nimbara
