#include "platform/modules/cairo_art.hpp"

#include <pango/pangocairo.h>

#include <memory>
#include <numbers>

namespace nimbara {
namespace {

void set_rgb(cairo_t* cr, std::uint32_t rgb)
{
    cairo_set_source_rgb(cr, ((rgb >> 16) & 0xFF) / 255.0, ((rgb >> 8) & 0xFF) / 255.0, (rgb & 0xFF) / 255.0);
}

struct Drawer {
    cairo_t* cr;

    void operator()(const ArtShape& s) const
    {
        trace_path(cr, s.path);
        set_rgb(cr, s.rgb);
        if (s.line_width <= 0) {
            cairo_fill(cr);
            return;
        }
        cairo_set_line_width(cr, s.line_width);
        cairo_set_dash(cr, s.dashes.data(), static_cast<int>(s.dashes.size()), 0);
        cairo_stroke(cr);
        cairo_set_dash(cr, nullptr, 0, 0);
    }

    void operator()(const ArtText& t) const
    {
        std::unique_ptr<PangoLayout, decltype(&g_object_unref)> layout(pango_cairo_create_layout(cr), g_object_unref);
        // Unhinted, as the page's own text.
        std::unique_ptr<cairo_font_options_t, decltype(&cairo_font_options_destroy)> options(
            cairo_font_options_create(), cairo_font_options_destroy);
        cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
        cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
        pango_cairo_context_set_font_options(pango_layout_get_context(layout.get()), options.get());
        pango_layout_context_changed(layout.get());
        std::unique_ptr<PangoFontDescription, decltype(&pango_font_description_free)> desc(
            pango_font_description_new(), pango_font_description_free);
        pango_font_description_set_family(desc.get(), preview_family(t.face));
        pango_font_description_set_weight(desc.get(), t.face == Face::SerifBold || t.face == Face::SansBold
                                                          ? PANGO_WEIGHT_BOLD
                                                          : PANGO_WEIGHT_NORMAL);
        pango_font_description_set_absolute_size(desc.get(), t.size * PANGO_SCALE);
        pango_layout_set_font_description(layout.get(), desc.get());
        pango_layout_set_text(layout.get(), t.text.c_str(), -1);
        cairo_save(cr);
        cairo_translate(cr, t.origin.x, t.origin.y);
        if (t.upwards) cairo_rotate(cr, -std::numbers::pi / 2);
        cairo_move_to(cr, 0, -t.size * ascent_em(t.face));
        set_rgb(cr, t.rgb);
        pango_cairo_show_layout(cr, layout.get());
        cairo_restore(cr);
        cairo_new_path(cr);
    }
};

}  // namespace

void trace_path(cairo_t* cr, const ArtPath& path)
{
    std::size_t p = 0;
    const auto& pts = path.points;
    for (const auto step : path.steps) {
        switch (step) {
        case ArtPath::Step::Move: cairo_move_to(cr, pts[p].x, pts[p].y), ++p; break;
        case ArtPath::Step::Line: cairo_line_to(cr, pts[p].x, pts[p].y), ++p; break;
        case ArtPath::Step::Curve:
            cairo_curve_to(cr, pts[p].x, pts[p].y, pts[p + 1].x, pts[p + 1].y, pts[p + 2].x, pts[p + 2].y);
            p += 3;
            break;
        case ArtPath::Step::Close: cairo_close_path(cr); break;
        }
    }
}

void draw_art(cairo_t* cr, const PictureArt& art)
{
    cairo_save(cr);
    cairo_rectangle(cr, 0, 0, art.width, art.height);
    cairo_clip(cr);
    set_rgb(cr, art.ground);
    cairo_paint(cr);
    const Drawer d{cr};
    for (const auto& item : art.items) std::visit(d, item);
    cairo_restore(cr);
}

}  // namespace nimbara
