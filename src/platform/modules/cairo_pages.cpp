#include "platform/cairo_pages.hpp"

#include <cairo-pdf.h>
#include <pango/pangocairo.h>

#include <cmath>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <variant>

#include "platform/modules/cairo_art.hpp"

namespace nimbara {
namespace {

void set_colour(cairo_t* cr, Colour c)
{
    const auto [r, g, b] = rgb_of(c);
    cairo_set_source_rgb(cr, r, g, b);
}

// Lines at the hatch pitch across the current path's extents, clipped to the path.
void hatch(cairo_t* cr, int style, double line)
{
    double x1, y1, x2, y2;
    cairo_save(cr);
    cairo_clip_preserve(cr);
    cairo_path_extents(cr, &x1, &y1, &x2, &y2);
    cairo_new_path(cr);
    const double span = (x2 - x1) + (y2 - y1);
    const Hatch h = hatch_of(style);
    for (double d = 0; d <= span; d += kHatchPitchTwips) {
        if (h.horizontal && y1 + d <= y2) cairo_move_to(cr, x1, y1 + d), cairo_line_to(cr, x2, y1 + d);
        if (h.vertical && x1 + d <= x2) cairo_move_to(cr, x1 + d, y1), cairo_line_to(cr, x1 + d, y2);
        if (h.up) cairo_move_to(cr, x1 + d, y2), cairo_line_to(cr, x1 + d - span, y2 - span);
        if (h.down) cairo_move_to(cr, x1 + d, y1), cairo_line_to(cr, x1 + d - span, y1 + span);
    }
    cairo_set_line_width(cr, line);
    cairo_stroke(cr);
    cairo_restore(cr);
}

// Fills and outlines the current path as the printer does its boxes and circles.
void fill_and_outline(cairo_t* cr, const Fill& fill, Colour outline, double line)
{
    if (fill.style == 0) {
        set_colour(cr, fill.colour);
        cairo_fill_preserve(cr);
    } else if (fill.style >= 2 && fill.style <= 7) {
        // The hatch consumes the path; the outline needs it again.
        std::unique_ptr<cairo_path_t, decltype(&cairo_path_destroy)> path(cairo_copy_path(cr), cairo_path_destroy);
        set_colour(cr, fill.colour);
        hatch(cr, fill.style, line);
        cairo_new_path(cr);
        cairo_append_path(cr, path.get());
    }
    set_colour(cr, outline);
    cairo_set_line_width(cr, line);
    cairo_stroke(cr);
}

void rectangle(cairo_t* cr, const RectOp& r)
{
    cairo_rectangle(cr, std::min(r.x1, r.x2), std::min(r.y1, r.y2), std::abs(r.x2 - r.x1), std::abs(r.y2 - r.y1));
}

std::shared_ptr<cairo_surface_t> make_image(const Picture& p)
{
    const int w = p.width_px * p.oversample, h = p.height_px * p.oversample;
    std::shared_ptr<cairo_surface_t> s(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, w, h), cairo_surface_destroy);
    if (cairo_surface_status(s.get()) != CAIRO_STATUS_SUCCESS) throw std::runtime_error("out of memory for a picture");
    cairo_surface_flush(s.get());
    auto* base = cairo_image_surface_get_data(s.get());
    const int stride = cairo_image_surface_get_stride(s.get());
    for (int y = 0; y < h; ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(base + static_cast<std::ptrdiff_t>(y) * stride);
        for (int x = 0; x < w; ++x) {
            const std::uint32_t px = p.argb[static_cast<std::size_t>(y) * w + x];
            const std::uint32_t a = px >> 24;
            // cairo keeps colours premultiplied by alpha
            const auto mul = [a](std::uint32_t c) { return (c * a + 127) / 255; };
            row[x] = (a << 24) | (mul((px >> 16) & 0xFF) << 16) | (mul((px >> 8) & 0xFF) << 8) | mul(px & 0xFF);
        }
    }
    cairo_surface_mark_dirty(s.get());
    return s;
}

// What drawing pages with cairo keeps between them: the text layouts and the pictures' rasters.
class CairoPainter {
public:
    CairoPainter();
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
class CairoPdfWriter final : public PageWriter {
public:
    explicit CairoPdfWriter(Output out);

    void add_page(const Page& page) override;
    void finish() override;

private:
    static cairo_status_t append(void* closure, const unsigned char* data, unsigned int length);

    CairoPainter painter_;
    Output out_;
    std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> pdf_;
};


CairoPainter::CairoPainter()
    : pango_(pango_font_map_create_context(pango_cairo_font_map_get_default()), g_object_unref)
{
    // Unhinted metrics, so that widths and positions are the same in the PDF and in every preview.
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    pango_cairo_context_set_font_options(pango_.get(), options);
    cairo_font_options_destroy(options);
}

std::shared_ptr<PangoLayout> CairoPainter::layout(const TextOp& t)
{
    std::string key = t.font_name + (t.bold ? "|b|" : "|n|") + std::to_string(t.points) + '\n' + t.text;
    if (auto it = layouts_.find(key); it != layouts_.end()) return it->second;
    if (layouts_.size() > 4096) layouts_.clear();
    std::shared_ptr<PangoLayout> l(pango_layout_new(pango_.get()), g_object_unref);
    std::unique_ptr<PangoFontDescription, decltype(&pango_font_description_free)> d(pango_font_description_new(),
                                                                                     pango_font_description_free);
    pango_font_description_set_family(d.get(), t.font_name.c_str());
    pango_font_description_set_weight(d.get(), t.bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_font_description_set_absolute_size(d.get(), t.points * kTwipsPerPoint * PANGO_SCALE);
    pango_layout_set_font_description(l.get(), d.get());
    pango_layout_set_text(l.get(), t.text.data(), static_cast<int>(t.text.size()));
    return layouts_.emplace(std::move(key), l).first->second;
}

double CairoPainter::text_width(const TextOp& text)
{
    PangoRectangle logical;
    pango_layout_get_extents(layout(text).get(), nullptr, &logical);
    return static_cast<double>(logical.width) / PANGO_SCALE;
}

std::shared_ptr<cairo_surface_t> CairoPainter::raster(const std::shared_ptr<const Picture>& p)
{
    if (auto it = rasters_.find(p); it != rasters_.end()) return it->second;
    return rasters_.emplace(p, make_image(*p)).first->second;
}

void CairoPainter::paint(cairo_t* cr, const Page& page, double line)
{
    const auto& ops = page.ops;
    for (std::size_t i = 0; i < ops.size();) {
        if (const RectOp* first = plain_box(ops[i])) {
            for (; i < ops.size() && plain_box(ops[i]) && plain_box(ops[i])->outline == first->outline; ++i)
                rectangle(cr, std::get<RectOp>(ops[i]));
            fill_and_outline(cr, first->fill, first->outline, line);
            continue;
        }
        const Op& op = ops[i++];
        if (const auto* r = std::get_if<RectOp>(&op)) {
            rectangle(cr, *r);
            fill_and_outline(cr, r->fill, r->outline, line);
        } else if (const auto* e = std::get_if<EllipseOp>(&op)) {
            trace_path(cr, ellipse_path(*e));
            fill_and_outline(cr, e->fill, e->outline, line);
        } else if (const auto* t = std::get_if<TextOp>(&op)) {
            set_colour(cr, t->colour);
            cairo_move_to(cr, t->x, t->y);
            pango_cairo_show_layout(cr, layout(*t).get());
            cairo_new_path(cr);
        } else if (const auto* p = std::get_if<PictureOp>(&op)) {
            cairo_save(cr);
            cairo_translate(cr, p->x, p->y);
            if (p->art) {
                cairo_scale(cr, kTwipsPerPicturePixel, kTwipsPerPicturePixel);
                draw_art(cr, *p->art);
            } else {
                const double scale = kTwipsPerPicturePixel / p->raster->oversample;
                cairo_scale(cr, scale, scale);
                cairo_set_source_surface(cr, raster(p->raster).get(), 0, 0);
                cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_GOOD);
                cairo_paint(cr);
            }
            cairo_restore(cr);
        } else if (const auto* m = std::get_if<ModulesOp>(&op)) {
            const ModuleMatrix& mm = *m->modules;
            std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> mask(
                cairo_image_surface_create(CAIRO_FORMAT_A8, mm.columns, mm.rows), cairo_surface_destroy);
            cairo_surface_flush(mask.get());
            auto* base = cairo_image_surface_get_data(mask.get());
            const int stride = cairo_image_surface_get_stride(mask.get());
            for (int r = 0; r < mm.rows; ++r)
                for (int c = 0; c < mm.columns; ++c) base[r * stride + c] = mm.is_dark(r, c) ? 0xFF : 0;
            cairo_surface_mark_dirty(mask.get());
            cairo_save(cr);
            cairo_translate(cr, m->x, m->y);
            cairo_scale(cr, m->module_width, m->module_height);
            cairo_set_source_rgb(cr, 0, 0, 0);
            cairo_pattern_t* pattern = cairo_pattern_create_for_surface(mask.get());
            cairo_pattern_set_filter(pattern, CAIRO_FILTER_NEAREST);
            cairo_mask(cr, pattern);
            cairo_pattern_destroy(pattern);
            cairo_restore(cr);
        }
    }
}

CairoPdfWriter::CairoPdfWriter(Output out) : out_(std::move(out)), pdf_(nullptr, cairo_surface_destroy)
{
    pdf_.reset(cairo_pdf_surface_create_for_stream(append, this, 1, 1));
    if (cairo_surface_status(pdf_.get()) != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error(std::string("cannot start a PDF document: ") + cairo_status_to_string(cairo_surface_status(pdf_.get())));
    cairo_pdf_surface_set_metadata(pdf_.get(), CAIRO_PDF_METADATA_CREATOR, "Guia Nimbara");
}

cairo_status_t CairoPdfWriter::append(void* closure, const unsigned char* data, unsigned int length)
{
    static_cast<CairoPdfWriter*>(closure)->out_(std::string_view(reinterpret_cast<const char*>(data), length));
    return CAIRO_STATUS_SUCCESS;
}

void CairoPdfWriter::add_page(const Page& page)
{
    cairo_pdf_surface_set_size(pdf_.get(), page.width / kTwipsPerPoint, page.height / kTwipsPerPoint);
    std::unique_ptr<cairo_t, decltype(&cairo_destroy)> cr(cairo_create(pdf_.get()), cairo_destroy);
    cairo_scale(cr.get(), 1 / kTwipsPerPoint, 1 / kTwipsPerPoint);
    painter_.paint(cr.get(), page, kPrinterLineTwips);
    cairo_show_page(cr.get());
}

void CairoPdfWriter::finish()
{
    cairo_surface_finish(pdf_.get());
    if (const auto status = cairo_surface_status(pdf_.get()); status != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error(cairo_status_to_string(status));
}


// The page drawn on an image of its size at `dpi`, on white.
std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> draw_image(CairoPainter& painter, const Page& page,
                                                                              double dpi)
{
    const double scale = dpi / kTwipsPerInch;
    const int w = static_cast<int>(std::lround(page.width * scale)), h = static_cast<int>(std::lround(page.height * scale));
    std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> s(cairo_image_surface_create(CAIRO_FORMAT_RGB24, w, h),
                                                                          cairo_surface_destroy);
    if (cairo_surface_status(s.get()) != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error("cannot make an image of " + std::to_string(w) + " x " + std::to_string(h) + " pixels");
    std::unique_ptr<cairo_t, decltype(&cairo_destroy)> cr(cairo_create(s.get()), cairo_destroy);
    cairo_set_source_rgb(cr.get(), 1, 1, 1);
    cairo_paint(cr.get());
    cairo_scale(cr.get(), scale, scale);
    painter.paint(cr.get(), page, 1 / scale);
    cairo_surface_flush(s.get());
    return s;
}

class PagesByCairo final : public CairoPages {
public:
    double text_width(const TextOp& text) override { return painter_.text_width(text); }

    std::unique_ptr<PageWriter> pdf_writer(PageWriter::Output out) override
    {
        return std::make_unique<CairoPdfWriter>(std::move(out));
    }

    RasterImage render(const Page& page, double dpi) override
    {
        const auto s = draw_image(painter_, page, dpi);
        RasterImage out{cairo_image_surface_get_width(s.get()), cairo_image_surface_get_height(s.get()), {}};
        out.rgb.resize(static_cast<std::size_t>(out.width) * out.height);
        const auto* base = cairo_image_surface_get_data(s.get());
        const int stride = cairo_image_surface_get_stride(s.get());
        for (int y = 0; y < out.height; ++y) {
            const auto* row = reinterpret_cast<const std::uint32_t*>(base + static_cast<std::ptrdiff_t>(y) * stride);
            for (int x = 0; x < out.width; ++x) out.rgb[static_cast<std::size_t>(y) * out.width + x] = row[x] & 0xFFFFFF;
        }
        return out;
    }

    std::string png(const Page& page, double dpi) override
    {
        const auto s = draw_image(painter_, page, dpi);
        std::string bytes;
        const auto append = [](void* closure, const unsigned char* data, unsigned int length) {
            static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
            return CAIRO_STATUS_SUCCESS;
        };
        if (const auto status = cairo_surface_write_to_png_stream(s.get(), append, &bytes); status != CAIRO_STATUS_SUCCESS)
            throw std::runtime_error(cairo_status_to_string(status));
        return bytes;
    }

private:
    CairoPainter painter_;
};

}  // namespace
}  // namespace nimbara

nimbara::CairoPages* nimbara_cairo_pages() { return new nimbara::PagesByCairo(); }
