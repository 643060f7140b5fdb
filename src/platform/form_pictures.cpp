// The picture assets of the printed page, each drawn once as vectors: a PDF writes the drawing as it
// is, and previews rasterise it at their own resolution.
#include <algorithm>
#include <cmath>
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

enum class Turn { None, QuarterLeft };

// Text centred on (cx, cy) in natural pixels, optionally turned to read upwards; the size in pixels
// shrinks until the text fits `room` along its direction.
void centred_text(PictureArt& art, const std::string& text, bool bold, double px, double cx, double cy,
                  std::uint32_t rgb, Turn turn = Turn::None, double room = 1e9)
{
    const Face face = bold ? Face::SansBold : Face::Sans;
    const auto encoded = to_win_ansi(text);
    if (!encoded) throw std::logic_error("picture caption \"" + text + "\" has characters the printed faces lack");
    const double em = text_width_em(face, *encoded);
    while (em * px > room && px >= 4) px *= 0.95;
    const double width = em * px, height = (ascent_em(face) + descent_em(face)) * px;
    // The line's box is centred; its baseline lies the ascent below the box's top.
    const double along = -width / 2, across = -height / 2 + ascent_em(face) * px;
    const ArtPoint origin = turn == Turn::QuarterLeft ? ArtPoint{cx + across, cy - along} : ArtPoint{cx + along, cy + across};
    art.items.push_back(ArtText{text, face, px, origin, turn == Turn::QuarterLeft, rgb});
}

ArtShape filled(ArtPath path, std::uint32_t rgb) { return ArtShape{std::move(path), rgb, 0, {}}; }

ArtShape filled_rectangle(double x, double y, double w, double h, std::uint32_t rgb)
{
    ArtPath p;
    p.rectangle(x, y, w, h);
    return filled(std::move(p), rgb);
}

ArtShape filled_circle(double cx, double cy, double r, std::uint32_t rgb)
{
    ArtPath p;
    p.circle(cx, cy, r);
    return filled(std::move(p), rgb);
}

Picture picture(const std::string& name, PictureArt art)
{
    const int w = static_cast<int>(art.width), h = static_cast<int>(art.height);
    return Picture{name, w, h, 1, {}, std::make_shared<const PictureArt>(std::move(art))};
}

PictureArt ground(int w, int h, std::uint32_t rgb) { return PictureArt{double(w), double(h), rgb, {}}; }

// A column strip's caption along it, turned a quarter turn, white on mid-grey.
void strip_caption(PictureArt& art, const std::string& caption, double caption_left = 0)
{
    const double room_across = art.width - caption_left;
    centred_text(art, caption, true, std::min(room_across * 0.62, 9.5), caption_left + room_across / 2,
                 art.height / 2, kWhite, Turn::QuarterLeft, art.height - 10);
}

Picture strip(const std::string& name, int w, int h, const std::string& caption)
{
    auto art = ground(w, h, kStripGreyRgb);
    strip_caption(art, caption);
    return picture(name, std::move(art));
}

// The first strip also carries the row numbers in its left half: twelve black cells on the rows of
// the table, whose rules lie 6 mm apart from 47 mm, the strip starting at 41.5 mm.
Picture first_strip()
{
    constexpr int w = 38, h = 272, cells_w = 19;
    const auto px_of_mm = [](double mm) { return (mm - 41.5) * 56.7 / 15.0; };
    auto art = ground(w, h, kStripGreyRgb);
    strip_caption(art, "ZONA DE TAXAÇÃO (Destinos)", cells_w);
    art.items.push_back(filled_rectangle(0, 0, cells_w, h, kWhite));
    for (int row = 0; row < 12; ++row) {
        const double top = row == 0 ? 0 : px_of_mm(47 + 6 * (row - 1)) + 0.5;
        const double bottom = row == 11 ? h : px_of_mm(47 + 6 * row) - 0.5;
        art.items.push_back(filled_rectangle(0, top, cells_w, bottom - top, kInk));
        centred_text(art, std::to_string(row + 1), true, 10, cells_w / 2.0, (top + bottom) / 2, kWhite);
    }
    return picture("Pic_Barra_A1", std::move(art));
}

Picture logo(const std::string& name, int w, int h, bool word_below)
{
    // An emblem: a black disc bearing a white envelope, and the operator's name beside or below it.
    auto art = ground(w, h, kWhite);
    const double r = word_below ? h * 0.3 : h * 0.38;
    const double cx = word_below ? w / 2.0 : r + 3, cy = word_below ? r + 3 : h / 2.0;
    art.items.push_back(filled_circle(cx, cy, r, kInk));
    const double ew = r * 1.1, eh = r * 0.75;
    art.items.push_back(filled_rectangle(cx - ew / 2, cy - eh / 2, ew, eh, kWhite));
    ArtPath flap;
    flap.move_to(cx - ew / 2, cy - eh / 2);
    flap.line_to(cx, cy + eh * 0.1);
    flap.line_to(cx + ew / 2, cy - eh / 2);
    art.items.push_back(ArtShape{std::move(flap), kInk, r * 0.09, {}});
    if (word_below)
        centred_text(art, "ZARTEL", true, h * 0.22, w / 2.0, h - h * 0.17, kInk, Turn::None, w - 4);
    else
        centred_text(art, "ZARTEL", true, h * 0.34, (2 * r + 6 + w) / 2.0, h / 2.0, kInk, Turn::None, w - 2 * r - 9);
    return picture(name, std::move(art));
}

Picture dashed_circle()
{
    auto art = ground(75, 76, kWhite);
    ArtPath ring;
    ring.circle(37.5, 38, 35);
    art.items.push_back(ArtShape{std::move(ring), kInk, 1.2, {5.0, 3.5}});
    return picture("pic_circuloAceiteConferido", std::move(art));
}

// A mark low in a cell of the amount boxes: a full stop, or a comma with its tail.
Picture low_mark(const std::string& name, bool comma)
{
    auto art = ground(6, 23, kPanelGreyRgb);
    art.items.push_back(filled_circle(3, 19.5, 1.3, kInk));
    if (comma) {
        ArtPath tail;
        tail.move_to(4.1, 19.8);
        tail.curve_to({4.2, 21.0}, {3.4, 22.2}, {2.1, 22.7});
        art.items.push_back(ArtShape{std::move(tail), kInk, 0.9, {}});
    }
    return picture(name, std::move(art));
}

// Captions over the four combs of the request number in the top-right panel, whose ticks stand at
// 186.5 to 214.5, 216 to 224, 225.5 to 233.5 and 234.7 to 257.8 mm; the strip starts at 186.5 mm.
Picture request_captions()
{
    auto art = ground(257, 18, kPanelGreyRgb);
    const auto px = [](double mm) { return (mm - 186.5) * 56.7 / 15.0; };
    const struct { double from, to; const char* text; } combs[] = {
        {186.5, 214.5, "EC Aceitante"}, {216, 224, "Ano"}, {225.5, 233.5, "Mês"}, {234.7, 254.5, "Nº de Ordem"}};
    for (const auto& c : combs)
        centred_text(art, c.text, true, 8.5, (px(c.from) + px(c.to)) / 2, 10, kInk, Turn::None, px(c.to) - px(c.from) + 6);
    return picture("pict_ec_aceitante", std::move(art));
}

// A word or sign centred on its picture.
Picture caption(const std::string& name, int w, int h, std::uint32_t ground_rgb, const std::string& text, bool bold,
                double px, Turn turn, double room)
{
    auto art = ground(w, h, ground_rgb);
    centred_text(art, text, bold, px, w / 2.0, h / 2.0, kInk, turn, room);
    return picture(name, std::move(art));
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
    f.pic_euro = caption("pic_euro", 14, 19, kPanelGreyRgb, "€", true, 15, Turn::None, 13);
    f.pict_cobrado = caption("pict_cobrado", 49, 13, kPanelGreyRgb, "Cobrado", true, 11, Turn::None, 47);
    f.pict_ec_aceitante = request_captions();
    f.pict_ponto = low_mark("pict_ponto", false);
    f.pict_virgula = low_mark("pict_virgula", true);
    f.Pic_barra_ProcessadoComp = caption("Pic_barra_ProcessadoComp", 15, 177, kWhite, "Processado por Computador", false,
                                         9.5, Turn::QuarterLeft, 170);
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
