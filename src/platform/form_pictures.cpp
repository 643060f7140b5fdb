// The picture assets of the printed page, drawn with cairo and pango: as a recording for vector
// surfaces, and as a raster at kPictureOversample times their natural pixel size.
#include <cairo.h>
#include <pango/pangocairo.h>

#include <cmath>
#include <functional>
#include <memory>
#include <numbers>
#include <stdexcept>
#include <string>

#include "nimbara/FormImpressao.hpp"
#include "platform/picture_art.hpp"

namespace nimbara {
namespace {

constexpr std::uint32_t kPanelGreyRgb = 0xD5D5D5;  // the grey of the shaded panels
constexpr std::uint32_t kStripGreyRgb = 0x808080;  // the mid-grey ground of the column strips
constexpr std::uint32_t kWhite = 0xFFFFFF;
constexpr std::uint32_t kInk = 0x000000;

void set_rgb(cairo_t* cr, std::uint32_t rgb)
{
    cairo_set_source_rgb(cr, ((rgb >> 16) & 0xFF) / 255.0, ((rgb >> 8) & 0xFF) / 255.0, (rgb & 0xFF) / 255.0);
}

enum class Turn { None, QuarterLeft };

// Text centred on (cx, cy) in natural pixels, optionally turned to read upwards; the size in pixels
// shrinks until the text fits `room` along its direction.
void centred_text(cairo_t* cr, const std::string& text, const char* family, bool bold, double px, double cx, double cy,
                  std::uint32_t rgb, Turn turn = Turn::None, double room = 1e9)
{
    std::unique_ptr<PangoLayout, decltype(&g_object_unref)> layout(pango_cairo_create_layout(cr), g_object_unref);
    // The same unhinted font options as the page's text, so that a PDF embeds each font once.
    std::unique_ptr<cairo_font_options_t, decltype(&cairo_font_options_destroy)> options(cairo_font_options_create(),
                                                                                        cairo_font_options_destroy);
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
    pango_cairo_context_set_font_options(pango_layout_get_context(layout.get()), options.get());
    pango_layout_context_changed(layout.get());
    std::unique_ptr<PangoFontDescription, decltype(&pango_font_description_free)> desc(pango_font_description_new(),
                                                                                        pango_font_description_free);
    pango_font_description_set_family(desc.get(), family);
    pango_font_description_set_weight(desc.get(), bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_layout_set_text(layout.get(), text.c_str(), -1);
    PangoRectangle logical;
    for (;; px *= 0.95) {
        pango_font_description_set_absolute_size(desc.get(), px * PANGO_SCALE);
        pango_layout_set_font_description(layout.get(), desc.get());
        pango_layout_get_pixel_extents(layout.get(), nullptr, &logical);
        if (logical.width <= room || px < 4) break;
    }
    cairo_save(cr);
    cairo_translate(cr, cx, cy);
    if (turn == Turn::QuarterLeft) cairo_rotate(cr, -std::numbers::pi / 2);
    cairo_move_to(cr, -logical.width / 2.0 - logical.x, -(logical.y + logical.height / 2.0));
    set_rgb(cr, rgb);
    pango_cairo_show_layout(cr, layout.get());
    cairo_restore(cr);
}

using Art = std::function<void(cairo_t*)>;

void paint_ground_and_art(cairo_t* cr, std::uint32_t ground, const Art& art)
{
    set_rgb(cr, ground);
    cairo_paint(cr);
    art(cr);
}

// The drawing kept as a recording, so that a PDF carries the picture as vectors and text.
std::shared_ptr<const PictureArt> record(const std::string& name, int w, int h, std::uint32_t ground, const Art& art)
{
    const cairo_rectangle_t extents{0, 0, double(w), double(h)};
    std::shared_ptr<cairo_surface_t> surface(cairo_recording_surface_create(CAIRO_CONTENT_COLOR, &extents),
                                             cairo_surface_destroy);
    std::unique_ptr<cairo_t, decltype(&cairo_destroy)> cr(cairo_create(surface.get()), cairo_destroy);
    if (cairo_status(cr.get()) != CAIRO_STATUS_SUCCESS) throw std::runtime_error("cannot record picture " + name);
    paint_ground_and_art(cr.get(), ground, art);
    return std::make_shared<const PictureArt>(PictureArt{std::move(surface)});
}

// Draws a picture of w x h natural pixels on a ground of the given colour: its raster for surfaces
// that want pixels, and its recording.
Picture draw(const std::string& name, int w, int h, std::uint32_t ground, const Art& art)
{
    const int os = kPictureOversample;
    std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, w * os, h * os), cairo_surface_destroy);
    std::unique_ptr<cairo_t, decltype(&cairo_destroy)> cr(cairo_create(surface.get()), cairo_destroy);
    if (cairo_status(cr.get()) != CAIRO_STATUS_SUCCESS) throw std::runtime_error("cannot draw picture " + name);
    cairo_scale(cr.get(), os, os);
    paint_ground_and_art(cr.get(), ground, art);
    cairo_surface_flush(surface.get());

    Picture p{name, w, h, os, {}, record(name, w, h, ground, art)};
    p.argb.resize(static_cast<std::size_t>(w * os) * (h * os));
    const auto* base = cairo_image_surface_get_data(surface.get());
    const int stride = cairo_image_surface_get_stride(surface.get());
    for (int y = 0; y < h * os; ++y) {
        const auto* row = reinterpret_cast<const std::uint32_t*>(base + static_cast<std::ptrdiff_t>(y) * stride);
        for (int x = 0; x < w * os; ++x) p.argb[static_cast<std::size_t>(y) * (w * os) + x] = 0xFF000000u | (row[x] & 0xFFFFFF);
    }
    return p;
}

// A column strip's caption along it, turned a quarter turn, white on mid-grey.
Art strip_caption(int w, int h, const std::string& caption, double caption_left = 0)
{
    return [=](cairo_t* cr) {
        const double room_across = w - caption_left;
        centred_text(cr, caption, "Arial", true, std::min(room_across * 0.62, 9.5), caption_left + room_across / 2,
                     h / 2.0, kWhite, Turn::QuarterLeft, h - 10);
    };
}

Picture strip(const std::string& name, int w, int h, const std::string& caption)
{
    return draw(name, w, h, kStripGreyRgb, strip_caption(w, h, caption));
}

// The first strip also carries the row numbers in its left half: twelve black cells on the rows of
// the table, whose rules lie 6 mm apart from 47 mm, the strip starting at 41.5 mm.
Picture first_strip()
{
    constexpr int w = 38, h = 272, cells_w = 19;
    const auto px_of_mm = [](double mm) { return (mm - 41.5) * 56.7 / 15.0; };
    const Art caption = strip_caption(w, h, "ZONA DE TAXAÇÃO (Destinos)", cells_w);
    return draw("Pic_Barra_A1", w, h, kStripGreyRgb, [&](cairo_t* cr) {
        caption(cr);
        set_rgb(cr, kWhite);
        cairo_rectangle(cr, 0, 0, cells_w, h);
        cairo_fill(cr);
        for (int row = 0; row < 12; ++row) {
            const double top = row == 0 ? 0 : px_of_mm(47 + 6 * (row - 1)) + 0.5;
            const double bottom = row == 11 ? h : px_of_mm(47 + 6 * row) - 0.5;
            set_rgb(cr, kInk);
            cairo_rectangle(cr, 0, top, cells_w, bottom - top);
            cairo_fill(cr);
            centred_text(cr, std::to_string(row + 1), "Arial", true, 10, cells_w / 2.0, (top + bottom) / 2, kWhite);
        }
    });
}

Picture logo(const std::string& name, int w, int h, bool word_below)
{
    return draw(name, w, h, kWhite, [&](cairo_t* cr) {
        // An emblem: a black disc bearing a white envelope, and the operator's name beside or below it.
        const double r = word_below ? h * 0.3 : h * 0.38;
        const double cx = word_below ? w / 2.0 : r + 3, cy = word_below ? r + 3 : h / 2.0;
        set_rgb(cr, kInk);
        cairo_arc(cr, cx, cy, r, 0, 2 * std::numbers::pi);
        cairo_fill(cr);
        const double ew = r * 1.1, eh = r * 0.75;
        set_rgb(cr, kWhite);
        cairo_rectangle(cr, cx - ew / 2, cy - eh / 2, ew, eh);
        cairo_fill(cr);
        set_rgb(cr, kInk);
        cairo_set_line_width(cr, r * 0.09);
        cairo_move_to(cr, cx - ew / 2, cy - eh / 2);
        cairo_line_to(cr, cx, cy + eh * 0.1);
        cairo_line_to(cr, cx + ew / 2, cy - eh / 2);
        cairo_stroke(cr);
        if (word_below)
            centred_text(cr, "ZARTEL", "Arial", true, h * 0.22, w / 2.0, h - h * 0.17, kInk, Turn::None, w - 4);
        else
            centred_text(cr, "ZARTEL", "Arial", true, h * 0.34, (2 * r + 6 + w) / 2.0, h / 2.0, kInk, Turn::None,
                         w - 2 * r - 9);
    });
}

Picture dashed_circle()
{
    return draw("pic_circuloAceiteConferido", 75, 76, kWhite, [](cairo_t* cr) {
        set_rgb(cr, kInk);
        cairo_set_line_width(cr, 1.2);
        const double dashes[] = {5.0, 3.5};
        cairo_set_dash(cr, dashes, 2, 0);
        cairo_arc(cr, 37.5, 38, 35, 0, 2 * std::numbers::pi);
        cairo_stroke(cr);
    });
}

// A mark low in a cell of the amount boxes: a full stop, or a comma with its tail.
Picture low_mark(const std::string& name, bool comma)
{
    return draw(name, 6, 23, kPanelGreyRgb, [comma](cairo_t* cr) {
        set_rgb(cr, kInk);
        cairo_arc(cr, 3, 19.5, 1.3, 0, 2 * std::numbers::pi);
        cairo_fill(cr);
        if (comma) {
            cairo_set_line_width(cr, 0.9);
            cairo_move_to(cr, 4.1, 19.8);
            cairo_curve_to(cr, 4.2, 21.0, 3.4, 22.2, 2.1, 22.7);
            cairo_stroke(cr);
        }
    });
}

// Captions over the four combs of the request number in the top-right panel, whose ticks stand at
// 186.5 to 214.5, 216 to 224, 225.5 to 233.5 and 234.7 to 257.8 mm; the strip starts at 186.5 mm.
Picture request_captions()
{
    return draw("pict_ec_aceitante", 257, 18, kPanelGreyRgb, [](cairo_t* cr) {
        const auto px = [](double mm) { return (mm - 186.5) * 56.7 / 15.0; };
        const struct { double from, to; const char* text; } combs[] = {
            {186.5, 214.5, "EC Aceitante"}, {216, 224, "Ano"}, {225.5, 233.5, "Mês"}, {234.7, 254.5, "Nº de Ordem"}};
        for (const auto& c : combs)
            centred_text(cr, c.text, "Arial", true, 8.5, (px(c.from) + px(c.to)) / 2, 10, kInk, Turn::None,
                         px(c.to) - px(c.from) + 6);
    });
}

FormImpressao make_form()
{
    FormImpressao f;
    f.PictlogoZartel = logo("PictlogoZartel", 121, 64, false);
    f.Pic_Barra_A1 = first_strip();
    f.Pic_barraB1 = strip("Pic_barraB1", 18, 272, "PRODUTO");
    f.pic_barraC1 = strip("pic_barraC1", 18, 272, "ESCALÃO DE PESO - REAL - TOTAL");
    f.pic_barraD1 = strip("pic_barraD1", 19, 272, "QUANTIDADE");
    f.pic_barraE1 = strip("pic_barraE1", 20, 273, "VELOCIDADE");
    f.pic_barraF1 = strip("pic_barraF1", 19, 273, "FORMATO");
    f.pic_barraG1 = strip("pic_barraG1", 20, 273, "PRÉ - TRATAMENTO");
    f.pic_barraH1 = strip("pic_barraH1", 19, 274, "DESCONTOS");
    f.pic_barraI1 = strip("pic_barraI1", 18, 272, "SERVIÇOS ESPECIAIS");
    f.pic_barraJ1 = strip("pic_barraJ1", 18, 273, "VALOR");
    f.pic_barraK1 = strip("pic_barraK1", 17, 272, "CARACTERÍSTICAS DE ENTREGA");
    f.pic_barraL1 = strip("pic_barraL1", 18, 272, "TAXA DE ESPAÇO (Semanas)");
    f.pic_barraM1 = strip("pic_barraM1", 21, 273, "TAXA DE ESPAÇO (Quant. EC)");
    f.pic_barraN1 = strip("pic_barraN1", 19, 273, "DIVISÃO DO REMETENTE");
    f.pic_barraO1 = strip("pic_barraO1", 19, 273, "CONTEÚDOS");
    f.pic_barraP1 = strip("pic_barraP1", 17, 273, "REFERÊNCIA CLIENTE");
    f.pic_circuloAceiteConferido = dashed_circle();
    f.pic_euro = draw("pic_euro", 14, 19, kPanelGreyRgb, [](cairo_t* cr) {
        centred_text(cr, "€", "Arial", true, 15, 7, 9.5, kInk, Turn::None, 13);
    });
    f.pict_cobrado = draw("pict_cobrado", 49, 13, kPanelGreyRgb, [](cairo_t* cr) {
        centred_text(cr, "Cobrado", "Arial", true, 11, 24.5, 6.5, kInk, Turn::None, 47);
    });
    f.pict_ec_aceitante = request_captions();
    f.pict_ponto = low_mark("pict_ponto", false);
    f.pict_virgula = low_mark("pict_virgula", true);
    f.Pic_barra_ProcessadoComp = draw("Pic_barra_ProcessadoComp", 15, 177, kWhite, [](cairo_t* cr) {
        centred_text(cr, "Processado por Computador", "Arial", false, 9.5, 7.5, 88.5, kInk, Turn::QuarterLeft, 170);
    });
    f.PictlogoZartel_old = logo("PictlogoZartel_old", 90, 69, true);
    return f;
}

}  // namespace

const FormImpressao& form_impressao()
{
    static const FormImpressao form = make_form();
    return form;
}

}  // namespace nimbara
