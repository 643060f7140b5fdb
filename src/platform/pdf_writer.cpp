#include "platform/pdf_writer.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>
#include <variant>

namespace nimbara {
namespace {

// Operators and operands of a content stream, numbers written short: whole ones without a point,
// others with `decimals` places and no trailing zeros.
class Content {
public:
    explicit Content(int decimals) : decimals_(decimals) {}

    Content& num(double v) { return num(v, decimals_); }
    Content& num(double v, int decimals)
    {
        char buf[32];
        char* end;
        if (v == std::trunc(v) && std::abs(v) < 1e15) {
            end = std::to_chars(buf, buf + sizeof buf, static_cast<long long>(v)).ptr;
        } else {
            end = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed, decimals).ptr;
            while (end[-1] == '0') --end;
            if (end[-1] == '.') --end;
            if (end - buf == 2 && buf[0] == '-' && buf[1] == '0') buf[0] = '0', end = buf + 1;
        }
        text_.append(buf, end);
        text_ += ' ';
        return *this;
    }
    Content& op(std::string_view o)
    {
        text_ += o;
        text_ += '\n';
        return *this;
    }
    Content& raw(std::string_view r)
    {
        text_ += r;
        return *this;
    }
    // A literal string: its bytes as they are but for the three that delimit it and the line ends
    // that a reader would change.
    Content& string(std::string_view s)
    {
        text_ += '(';
        for (const char c : s) {
            if (c == '(' || c == ')' || c == '\\') text_ += '\\';
            if (c == '\r') text_ += "\\r";
            else if (c == '\n') text_ += "\\n";
            else text_ += c;
        }
        text_ += ") ";
        return *this;
    }
    const std::string& str() const { return text_; }
    void reserve(std::size_t n) { text_.reserve(n); }

private:
    int decimals_;
    std::string text_;
};

void rgb(Content& c, std::array<double, 3> v, std::string_view op)
{
    // Colours are bytes: three places give each of them back exactly.
    for (const double x : v) c.num(x, 3);
    c.op(op);
}

std::array<double, 3> rgb_of_hex(std::uint32_t rgb)
{
    return {((rgb >> 16) & 0xFF) / 255.0, ((rgb >> 8) & 0xFF) / 255.0, (rgb & 0xFF) / 255.0};
}

void trace(Content& c, const ArtPath& path)
{
    std::size_t k = 0;
    const auto& p = path.points;
    for (const auto step : path.steps) {
        switch (step) {
        case ArtPath::Step::Move: c.num(p[k].x).num(p[k].y).op("m"), ++k; break;
        case ArtPath::Step::Line: c.num(p[k].x).num(p[k].y).op("l"), ++k; break;
        case ArtPath::Step::Curve:
            c.num(p[k].x).num(p[k].y).num(p[k + 1].x).num(p[k + 1].y).num(p[k + 2].x).num(p[k + 2].y).op("c");
            k += 3;
            break;
        case ArtPath::Step::Close: c.op("h"); break;
        }
    }
}

std::string font_name(Face f) { return "/F" + std::to_string(static_cast<int>(f)) + ' '; }

// The text's place for the standard faces' single-byte encoding.
std::string encoded(const std::string& utf8)
{
    auto e = to_win_ansi(utf8);
    return e ? std::move(*e) : std::string();
}

// A picture's drawing in its natural pixels, y downwards as on the page.
std::string art_content(const PictureArt& art)
{
    Content c(3);
    rgb(c, rgb_of_hex(art.ground), "rg");
    c.num(0).num(0).num(art.width).num(art.height).op("re").op("f");
    for (const auto& item : art.items) {
        if (const auto* s = std::get_if<ArtShape>(&item)) {
            if (s->line_width <= 0) {
                rgb(c, rgb_of_hex(s->rgb), "rg");
                trace(c, s->path);
                c.op("f");
                continue;
            }
            rgb(c, rgb_of_hex(s->rgb), "RG");
            c.num(s->line_width).op("w");
            c.raw("[ ");
            for (const double d : s->dashes) c.num(d);
            c.raw("] ").num(0).op("d");
            trace(c, s->path);
            c.op("S");
        } else {
            const auto& t = std::get<ArtText>(item);
            rgb(c, rgb_of_hex(t.rgb), "rg");
            c.op("BT").raw(font_name(t.face)).num(t.size).op("Tf");
            // Glyphs stand upright on a page whose y runs downwards, or read upwards along a strip.
            if (t.upwards)
                c.num(0).num(-1).num(-1).num(0);
            else
                c.num(1).num(0).num(0).num(-1);
            c.num(t.origin.x).num(t.origin.y).op("Tm").string(encoded(t.text)).op("Tj").op("ET");
        }
    }
    return c.str();
}

}  // namespace

StandardPdfWriter::StandardPdfWriter(Output out) : out_(std::move(out))
{
    catalog_ = reserve(), pages_ = reserve(), info_ = reserve();
    for (int& f : fonts_) f = reserve();
    // The second line's bytes above 127 tell a reader that the file is binary.
    write("%PDF-1.4\n%\xE2\xE3\xCF\xD3\n");
    for (int f = 0; f < 4; ++f) {
        begin_object(fonts_[f]);
        write(std::string("<< /Type /Font /Subtype /Type1 /BaseFont /") + pdf_face_name(static_cast<Face>(f)) +
              " /Encoding /WinAnsiEncoding >>\nendobj\n");
    }
    begin_object(info_);
    write("<< /Creator (Guia Nimbara) /Producer (Guia Nimbara) >>\nendobj\n");
}

void StandardPdfWriter::write(std::string_view bytes)
{
    out_(bytes);
    offset_ += bytes.size();
}

void StandardPdfWriter::begin_object(int id)
{
    if (offsets_.size() <= static_cast<std::size_t>(id)) offsets_.resize(id + 1, 0);
    offsets_[id] = offset_;
    write(std::to_string(id) + " 0 obj\n");
}

void StandardPdfWriter::write_stream(int id, std::string_view dictionary, std::string_view data)
{
    begin_object(id);
    write("<< ");
    write(dictionary);
    write(" /Length " + std::to_string(data.size()) + " >>\nstream\n");
    write(data);
    write("\nendstream\nendobj\n");
}

int StandardPdfWriter::picture_object(const PictureOp& op)
{
    const void* key = op.art ? static_cast<const void*>(op.art.get()) : op.raster.get();
    if (auto it = pictures_.find(key); it != pictures_.end()) return it->second;
    const int id = reserve();
    if (op.art) {
        const PictureArt& art = *op.art;
        Content dict(3);
        dict.raw("/Type /XObject /Subtype /Form /BBox [ ").num(0).num(0).num(art.width).num(art.height).raw("] /Resources << /Font <<");
        for (int f = 0; f < 4; ++f) dict.raw(" /F" + std::to_string(f) + ' ' + std::to_string(fonts_[f]) + " 0 R");
        dict.raw(" >> >>");
        write_stream(id, dict.str(), art_content(art));
        kept_.push_back(op.art);
    } else {
        const Picture& p = *op.raster;
        const int w = p.width_px * p.oversample, h = p.height_px * p.oversample;
        // Transparent parts are laid on white paper.
        std::string samples(static_cast<std::size_t>(w) * h * 3, '\0');
        for (std::size_t i = 0; i < static_cast<std::size_t>(w) * h; ++i) {
            const std::uint32_t px = p.argb[i], a = px >> 24;
            for (int c = 0; c < 3; ++c) {
                const std::uint32_t v = (px >> (16 - 8 * c)) & 0xFF;
                samples[i * 3 + c] = static_cast<char>((v * a + 255 * (255 - a) + 127) / 255);
            }
        }
        write_stream(id,
                     "/Type /XObject /Subtype /Image /Width " + std::to_string(w) + " /Height " + std::to_string(h) +
                         " /ColorSpace /DeviceRGB /BitsPerComponent 8 /Interpolate true",
                     samples);
        kept_.push_back(op.raster);
    }
    pictures_.emplace(key, id);
    return id;
}

int StandardPdfWriter::modules_object(const ModuleMatrix& m)
{
    // A stencil, one bit a module: a set bit paints the fill colour, a clear one leaves the page.
    const std::size_t row_bytes = (static_cast<std::size_t>(m.columns) + 7) / 8;
    std::string bits(row_bytes * m.rows, '\0');
    for (int r = 0; r < m.rows; ++r)
        for (int c = 0; c < m.columns; ++c)
            if (m.is_dark(r, c)) bits[r * row_bytes + c / 8] |= static_cast<char>(0x80 >> (c % 8));
    const int id = reserve();
    write_stream(id,
                 "/Type /XObject /Subtype /Image /Width " + std::to_string(m.columns) + " /Height " +
                     std::to_string(m.rows) + " /ImageMask true /BitsPerComponent 1 /Decode [ 1 0 ]",
                 bits);
    return id;
}

void StandardPdfWriter::add_page(const Page& page)
{
    Content c(2);
    c.reserve(64 * 1024);
    std::string xobjects;
    std::optional<Colour> fill, stroke;
    std::optional<std::pair<Face, double>> font;
    const auto set_fill = [&](Colour col) {
        if (fill != col) rgb(c, rgb_of(col), "rg"), fill = col;
    };
    const auto set_stroke = [&](Colour col) {
        if (stroke != col) rgb(c, rgb_of(col), "RG"), stroke = col;
    };
    const auto rectangle = [&](const RectOp& r) {
        c.num(std::min(r.x1, r.x2)).num(std::min(r.y1, r.y2)).num(std::abs(r.x2 - r.x1)).num(std::abs(r.y2 - r.y1)).op("re");
    };
    // Fills and outlines a path as the printer does its boxes and circles.
    const auto fill_and_outline = [&](const Fill& f, Colour outline, double x, double y, double w, double h,
                                      const auto& path) {
        if (f.style == 0) {
            set_fill(f.colour), set_stroke(outline);
            path();
            c.op("B");
            return;
        }
        if (f.style >= 2 && f.style <= 7) {
            c.op("q");
            path();
            c.op("W").op("n");
            rgb(c, rgb_of(f.colour), "RG");
            const double span = w + h, x2 = x + w, y2 = y + h;
            const Hatch hatch = hatch_of(f.style);
            const auto segment = [&](double ax, double ay, double bx, double by) { c.num(ax).num(ay).op("m").num(bx).num(by).op("l"); };
            for (double d = 0; d <= span; d += kHatchPitchTwips) {
                if (hatch.horizontal && y + d <= y2) segment(x, y + d, x2, y + d);
                if (hatch.vertical && x + d <= x2) segment(x + d, y, x + d, y2);
                if (hatch.up) segment(x + d, y2, x + d - span, y2 - span);
                if (hatch.down) segment(x + d, y, x + d - span, y + span);
            }
            c.op("S").op("Q");
            fill.reset(), stroke.reset(), font.reset();
        }
        set_stroke(outline);
        path();
        c.op("S");
    };
    const auto use_xobject = [&](int id) {
        const std::string name = "/X" + std::to_string(id);
        if (xobjects.find(name + ' ') == std::string::npos) xobjects += name + ' ' + std::to_string(id) + " 0 R ";
        c.raw(name).raw(" ").op("Do");
    };

    // Twips from the top-left, y downwards, as the page was drawn.
    c.num(1 / kTwipsPerPoint).num(0).num(0).num(-1 / kTwipsPerPoint).num(0).num(page.height / kTwipsPerPoint).op("cm");
    c.num(kPrinterLineTwips).op("w");
    const auto& ops = page.ops;
    for (std::size_t i = 0; i < ops.size();) {
        if (const RectOp* first = plain_box(ops[i])) {
            set_fill(first->fill.colour), set_stroke(first->outline);
            for (; i < ops.size() && plain_box(ops[i]) && plain_box(ops[i])->outline == first->outline; ++i)
                rectangle(std::get<RectOp>(ops[i]));
            c.op("B");
            continue;
        }
        const Op& op = ops[i++];
        if (const auto* r = std::get_if<RectOp>(&op)) {
            fill_and_outline(r->fill, r->outline, std::min(r->x1, r->x2), std::min(r->y1, r->y2), std::abs(r->x2 - r->x1),
                             std::abs(r->y2 - r->y1), [&] { rectangle(*r); });
        } else if (const auto* e = std::get_if<EllipseOp>(&op)) {
            fill_and_outline(e->fill, e->outline, e->x - e->rx, e->y - e->ry, 2 * e->rx, 2 * e->ry,
                             [&] { trace(c, ellipse_path(*e)); });
        } else if (const auto* t = std::get_if<TextOp>(&op)) {
            set_fill(t->colour);
            c.op("BT");
            if (font != std::pair{t->face, t->points}) {
                c.raw(font_name(t->face)).num(t->points).op("Tf");
                font = std::pair{t->face, t->points};
            }
            // The text's top is given; its baseline lies the face's ascent lower.
            c.num(kTwipsPerPoint).num(0).num(0).num(-kTwipsPerPoint).num(t->x);
            c.num(t->y + ascent_em(t->face) * t->points * kTwipsPerPoint).op("Tm").string(t->win_ansi).op("Tj").op("ET");
        } else if (const auto* p = std::get_if<PictureOp>(&op)) {
            const int id = picture_object(*p);
            c.op("q");
            if (p->art) {
                c.num(kTwipsPerPicturePixel).num(0).num(0).num(kTwipsPerPicturePixel).num(p->x).num(p->y).op("cm");
            } else {
                const double w = p->raster->width_twips(), h = p->raster->height_twips();
                c.num(w).num(0).num(0).num(-h).num(p->x).num(p->y + h).op("cm");
            }
            use_xobject(id);
            c.op("Q");
            fill.reset(), stroke.reset(), font.reset();
        } else if (const auto* m = std::get_if<ModulesOp>(&op)) {
            const ModuleMatrix& mm = *m->modules;
            const int id = modules_object(mm);
            set_fill(kBlack);
            const double w = mm.columns * m->module_width, h = mm.rows * m->module_height;
            c.op("q").num(w).num(0).num(0).num(-h).num(m->x).num(m->y + h).op("cm");
            use_xobject(id);
            c.op("Q");
        }
    }

    const int content = reserve(), page_id = reserve();
    write_stream(content, "", c.str());
    begin_object(page_id);
    std::string dict = "<< /Type /Page /Parent " + std::to_string(pages_) + " 0 R /MediaBox [ 0 0 ";
    Content box(3);
    box.num(page.width / kTwipsPerPoint).num(page.height / kTwipsPerPoint);
    dict += box.str() + "] /Contents " + std::to_string(content) + " 0 R /Resources << /Font <<";
    for (int f = 0; f < 4; ++f) dict += " /F" + std::to_string(f) + ' ' + std::to_string(fonts_[f]) + " 0 R";
    dict += " >> /XObject << " + xobjects + ">> >> >>\nendobj\n";
    write(dict);
    page_ids_.push_back(page_id);
}

void StandardPdfWriter::finish()
{
    begin_object(pages_);
    std::string kids;
    for (const int id : page_ids_) kids += std::to_string(id) + " 0 R ";
    write("<< /Type /Pages /Kids [ " + kids + "] /Count " + std::to_string(page_ids_.size()) + " >>\nendobj\n");
    begin_object(catalog_);
    write("<< /Type /Catalog /Pages " + std::to_string(pages_) + " 0 R >>\nendobj\n");

    const std::size_t xref = offset_;
    std::string table = "xref\n0 " + std::to_string(next_id_) + "\n0000000000 65535 f \n";
    char line[24];
    for (int id = 1; id < next_id_; ++id) {
        std::snprintf(line, sizeof line, "%010zu 00000 n \n", offsets_[id]);
        table += line;
    }
    write(table);
    write("trailer\n<< /Size " + std::to_string(next_id_) + " /Root " + std::to_string(catalog_) + " 0 R /Info " +
          std::to_string(info_) + " 0 R >>\nstartxref\n" + std::to_string(xref) + "\n%%EOF\n");
}

}  // namespace nimbara
