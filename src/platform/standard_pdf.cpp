#include "platform/standard_pdf.hpp"

#include <hpdf.h>

#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <vector>

namespace nimbara {

struct StandardPdfWriter::State {
    HPDF_Doc doc = nullptr;
    HPDF_STATUS error = HPDF_OK, detail = HPDF_OK;
    std::array<HPDF_Font, 4> fonts{};
    // Each raster a host hands in is one image of the document, however many pages show it.
    std::map<std::shared_ptr<const Picture>, HPDF_Image> images;

    void check() const
    {
        if (error == HPDF_OK) return;
        char code[64];
        std::snprintf(code, sizeof code, "0x%04X, detail %u", static_cast<unsigned>(error), static_cast<unsigned>(detail));
        throw std::runtime_error(std::string("the PDF writer failed (error ") + code + ")");
    }

    HPDF_Font font(Face face)
    {
        auto& f = fonts[static_cast<std::size_t>(face)];
        if (!f) f = HPDF_GetFont(doc, pdf_face_name(face), "WinAnsiEncoding");
        return f;
    }
};

namespace {

void on_error(HPDF_STATUS error, HPDF_STATUS detail, void* user)
{
    auto& s = *static_cast<StandardPdfWriter::State*>(user);
    if (s.error == HPDF_OK) s.error = error, s.detail = detail;
}

// The smallest of a few factors that makes every length of a dash a whole number, as the PDF
// library takes them.
double dash_factor(const std::vector<double>& dashes)
{
    for (const double f : {1.0, 2.0, 4.0, 10.0, 100.0}) {
        bool whole = true;
        for (const double d : dashes) whole = whole && std::abs(d * f - std::round(d * f)) < 1e-9;
        if (whole) return f;
    }
    return 1000.0;
}

// Draws one page's operations, in twips with y downwards.
class PagePainter {
public:
    PagePainter(StandardPdfWriter::State& s, HPDF_Page p) : s_(s), p_(p) {}

    void paint(const Page& page)
    {
        HPDF_Page_Concat(p_, 1 / kTwipsPerPoint, 0, 0, -1 / kTwipsPerPoint, 0, page.height / kTwipsPerPoint);
        HPDF_Page_SetLineWidth(p_, kPrinterLineTwips);
        const auto& ops = page.ops;
        for (std::size_t i = 0; i < ops.size();) {
            if (const RectOp* first = plain_box(ops[i])) {
                fill(first->fill.colour);
                stroke(first->outline);
                for (; i < ops.size() && plain_box(ops[i]) && plain_box(ops[i])->outline == first->outline; ++i)
                    rectangle(std::get<RectOp>(ops[i]));
                HPDF_Page_FillStroke(p_);
                continue;
            }
            std::visit(*this, ops[i++]);
        }
    }

    void operator()(const RectOp& r)
    {
        const double x = std::min(r.x1, r.x2), y = std::min(r.y1, r.y2);
        fill_and_outline(r.fill, r.outline, {x, y, std::abs(r.x2 - r.x1), std::abs(r.y2 - r.y1)},
                         [&] { rectangle(r); });
    }

    void operator()(const EllipseOp& e)
    {
        const ArtPath path = ellipse_path(e);
        fill_and_outline(e.fill, e.outline, {e.x - e.rx, e.y - e.ry, 2 * e.rx, 2 * e.ry}, [&] { trace(path, 1); });
    }

    void operator()(const TextOp& t)
    {
        HPDF_Page_BeginText(p_);
        font(t.face, t.points);
        fill(t.colour);
        // The text's top is given; its baseline lies the face's ascent lower.
        HPDF_Page_SetTextMatrix(p_, kTwipsPerPoint, 0, 0, -kTwipsPerPoint, t.x,
                                t.y + ascent_em(t.face) * t.points * kTwipsPerPoint);
        HPDF_Page_ShowText(p_, t.win_ansi.c_str());
        HPDF_Page_EndText(p_);
    }

    void operator()(const PictureOp& pic)
    {
        save();
        if (pic.art) {
            const PictureArt& art = *pic.art;
            HPDF_Page_Concat(p_, kTwipsPerPicturePixel, 0, 0, kTwipsPerPicturePixel, pic.x, pic.y);
            HPDF_Page_Rectangle(p_, 0, 0, art.width, art.height);
            HPDF_Page_Clip(p_);
            HPDF_Page_EndPath(p_);
            fill_rgb(art.ground);
            HPDF_Page_Rectangle(p_, 0, 0, art.width, art.height);
            HPDF_Page_Fill(p_);
            for (const auto& item : art.items) std::visit([this](const auto& x) { draw(x); }, item);
        } else {
            const Picture& raster = *pic.raster;
            const double w = raster.width_twips(), h = raster.height_twips();
            HPDF_Page_Concat(p_, w, 0, 0, -h, pic.x, pic.y + h);
            HPDF_Page_ExecuteXObject(p_, image(pic.raster));
        }
        restore();
    }

    void operator()(const ModulesOp& m)
    {
        const ModuleMatrix& mm = *m.modules;
        if (mm.rows <= 0 || mm.columns <= 0) return;
        // A stencil: a clear bit paints the fill colour, a set one leaves the page as it is.
        const std::size_t row_bytes = (static_cast<std::size_t>(mm.columns) + 7) / 8;
        std::vector<HPDF_BYTE> bits(row_bytes * mm.rows, 0);
        for (int r = 0; r < mm.rows; ++r)
            for (int c = 0; c < mm.columns; ++c)
                if (!mm.is_dark(r, c)) bits[r * row_bytes + c / 8] |= static_cast<HPDF_BYTE>(0x80 >> (c % 8));
        HPDF_Image mask = HPDF_LoadRawImageFromMem(s_.doc, bits.data(), mm.columns, mm.rows, HPDF_CS_DEVICE_GRAY, 1);
        s_.check();
        HPDF_Dict_RemoveElement(mask, "ColorSpace");
        HPDF_Dict_AddBoolean(mask, "ImageMask", HPDF_TRUE);
        fill(kBlack);
        save();
        const double w = mm.columns * m.module_width, h = mm.rows * m.module_height;
        HPDF_Page_Concat(p_, w, 0, 0, -h, m.x, m.y + h);
        HPDF_Page_ExecuteXObject(p_, mask);
        restore();
    }

private:
    struct Extents {
        double x, y, w, h;
    };

    void save() { HPDF_Page_GSave(p_); }
    void restore()
    {
        HPDF_Page_GRestore(p_);
        // What was set inside is gone with it.
        fill_ = stroke_ = std::nullopt;
        face_ = std::nullopt;
    }

    void fill_rgb(std::uint32_t rgb)
    {
        HPDF_Page_SetRGBFill(p_, ((rgb >> 16) & 0xFF) / 255.0f, ((rgb >> 8) & 0xFF) / 255.0f, (rgb & 0xFF) / 255.0f);
        fill_ = std::nullopt;
    }

    void fill(Colour c)
    {
        if (fill_ == c) return;
        const auto [r, g, b] = rgb_of(c);
        HPDF_Page_SetRGBFill(p_, static_cast<HPDF_REAL>(r), static_cast<HPDF_REAL>(g), static_cast<HPDF_REAL>(b));
        fill_ = c;
    }

    void stroke(Colour c)
    {
        if (stroke_ == c) return;
        const auto [r, g, b] = rgb_of(c);
        HPDF_Page_SetRGBStroke(p_, static_cast<HPDF_REAL>(r), static_cast<HPDF_REAL>(g), static_cast<HPDF_REAL>(b));
        stroke_ = c;
    }

    void font(Face face, double size)
    {
        if (face_ == face && size_ == size) return;
        HPDF_Page_SetFontAndSize(p_, s_.font(face), static_cast<HPDF_REAL>(size));
        face_ = face, size_ = size;
    }

    void rectangle(const RectOp& r)
    {
        HPDF_Page_Rectangle(p_, std::min(r.x1, r.x2), std::min(r.y1, r.y2), std::abs(r.x2 - r.x1), std::abs(r.y2 - r.y1));
    }

    void trace(const ArtPath& path, double scale)
    {
        std::size_t k = 0;
        const auto& pts = path.points;
        for (const auto step : path.steps) {
            switch (step) {
            case ArtPath::Step::Move: HPDF_Page_MoveTo(p_, pts[k].x * scale, pts[k].y * scale), ++k; break;
            case ArtPath::Step::Line: HPDF_Page_LineTo(p_, pts[k].x * scale, pts[k].y * scale), ++k; break;
            case ArtPath::Step::Curve:
                HPDF_Page_CurveTo(p_, pts[k].x * scale, pts[k].y * scale, pts[k + 1].x * scale, pts[k + 1].y * scale,
                                  pts[k + 2].x * scale, pts[k + 2].y * scale);
                k += 3;
                break;
            case ArtPath::Step::Close: HPDF_Page_ClosePath(p_); break;
            }
        }
    }

    // Fills and outlines a path as the printer does its boxes and circles.
    template <typename Trace>
    void fill_and_outline(const Fill& f, Colour outline, Extents box, Trace trace_path)
    {
        if (f.style == 0) {
            fill(f.colour);
            stroke(outline);
            trace_path();
            HPDF_Page_FillStroke(p_);
            return;
        }
        if (f.style >= 2 && f.style <= 7) {
            save();
            trace_path();
            HPDF_Page_Clip(p_);
            HPDF_Page_EndPath(p_);
            stroke(f.colour);
            const double span = box.w + box.h, x1 = box.x, y1 = box.y, x2 = box.x + box.w, y2 = box.y + box.h;
            const Hatch h = hatch_of(f.style);
            const auto segment = [&](double ax, double ay, double bx, double by) {
                HPDF_Page_MoveTo(p_, ax, ay);
                HPDF_Page_LineTo(p_, bx, by);
            };
            for (double d = 0; d <= span; d += kHatchPitchTwips) {
                if (h.horizontal && y1 + d <= y2) segment(x1, y1 + d, x2, y1 + d);
                if (h.vertical && x1 + d <= x2) segment(x1 + d, y1, x1 + d, y2);
                if (h.up) segment(x1 + d, y2, x1 + d - span, y2 - span);
                if (h.down) segment(x1 + d, y1, x1 + d - span, y1 + span);
            }
            HPDF_Page_Stroke(p_);
            restore();
        }
        stroke(outline);
        trace_path();
        HPDF_Page_Stroke(p_);
    }

    void draw(const ArtShape& shape)
    {
        if (shape.line_width <= 0) {
            fill_rgb(shape.rgb);
            trace(shape.path, 1);
            HPDF_Page_Fill(p_);
            return;
        }
        // Dash lengths are whole numbers to the library: the stroke is drawn in a finer unit when needed.
        const double f = dash_factor(shape.dashes);
        HPDF_Page_GSave(p_);
        HPDF_Page_Concat(p_, 1 / f, 0, 0, 1 / f, 0, 0);
        HPDF_Page_SetRGBStroke(p_, ((shape.rgb >> 16) & 0xFF) / 255.0f, ((shape.rgb >> 8) & 0xFF) / 255.0f,
                               (shape.rgb & 0xFF) / 255.0f);
        HPDF_Page_SetLineWidth(p_, shape.line_width * f);
        if (!shape.dashes.empty()) {
            std::vector<HPDF_UINT16> dash;
            for (const double d : shape.dashes) dash.push_back(static_cast<HPDF_UINT16>(std::lround(d * f)));
            HPDF_Page_SetDash(p_, dash.data(), static_cast<HPDF_UINT>(dash.size()), 0);
        }
        trace(shape.path, f);
        HPDF_Page_Stroke(p_);
        HPDF_Page_GRestore(p_);
    }

    void draw(const ArtText& t)
    {
        HPDF_Page_BeginText(p_);
        HPDF_Page_SetFontAndSize(p_, s_.font(t.face), static_cast<HPDF_REAL>(t.size));
        face_ = std::nullopt;
        fill_rgb(t.rgb);
        // Glyphs stand upright on a page whose y runs downwards, or read upwards along a strip.
        if (t.upwards)
            HPDF_Page_SetTextMatrix(p_, 0, -1, -1, 0, t.origin.x, t.origin.y);
        else
            HPDF_Page_SetTextMatrix(p_, 1, 0, 0, -1, t.origin.x, t.origin.y);
        const auto encoded = to_win_ansi(t.text);
        HPDF_Page_ShowText(p_, encoded ? encoded->c_str() : "");
        HPDF_Page_EndText(p_);
    }

    HPDF_Image image(const std::shared_ptr<const Picture>& picture)
    {
        if (auto it = s_.images.find(picture); it != s_.images.end()) return it->second;
        const Picture& p = *picture;
        const int w = p.width_px * p.oversample, h = p.height_px * p.oversample;
        // Transparent parts are laid on white paper.
        std::vector<HPDF_BYTE> rgb(static_cast<std::size_t>(w) * h * 3);
        for (std::size_t i = 0; i < static_cast<std::size_t>(w) * h; ++i) {
            const std::uint32_t px = p.argb[i], a = px >> 24;
            for (int c = 0; c < 3; ++c) {
                const std::uint32_t v = (px >> (16 - 8 * c)) & 0xFF;
                rgb[i * 3 + c] = static_cast<HPDF_BYTE>((v * a + 255 * (255 - a) + 127) / 255);
            }
        }
        HPDF_Image img = HPDF_LoadRawImageFromMem(s_.doc, rgb.data(), w, h, HPDF_CS_DEVICE_RGB, 8);
        s_.check();
        return s_.images.emplace(picture, img).first->second;
    }

    StandardPdfWriter::State& s_;
    HPDF_Page p_;
    std::optional<Colour> fill_, stroke_;
    std::optional<Face> face_;
    double size_ = 0;
};

}  // namespace

StandardPdfWriter::StandardPdfWriter() : state_(std::make_unique<State>())
{
    state_->doc = HPDF_New(on_error, state_.get());
    if (!state_->doc) throw std::runtime_error("cannot start a PDF document: out of memory");
    HPDF_SetCompressionMode(state_->doc, HPDF_COMP_NONE);
    HPDF_SetInfoAttr(state_->doc, HPDF_INFO_CREATOR, "Guia Nimbara");
    HPDF_SetInfoAttr(state_->doc, HPDF_INFO_PRODUCER, "Guia Nimbara");
    state_->check();
}

StandardPdfWriter::~StandardPdfWriter()
{
    if (state_->doc) HPDF_Free(state_->doc);
}

void StandardPdfWriter::add_page(const Page& page)
{
    HPDF_Page p = HPDF_AddPage(state_->doc);
    state_->check();
    HPDF_Page_SetWidth(p, static_cast<HPDF_REAL>(page.width / kTwipsPerPoint));
    HPDF_Page_SetHeight(p, static_cast<HPDF_REAL>(page.height / kTwipsPerPoint));
    PagePainter(*state_, p).paint(page);
    state_->check();
}

std::string StandardPdfWriter::finish()
{
    HPDF_SaveToStream(state_->doc);
    state_->check();
    std::string bytes(HPDF_GetStreamSize(state_->doc), '\0');
    HPDF_UINT32 size = static_cast<HPDF_UINT32>(bytes.size());
    HPDF_ResetStream(state_->doc);
    const HPDF_STATUS read = HPDF_ReadFromStream(state_->doc, reinterpret_cast<HPDF_BYTE*>(bytes.data()), &size);
    // Reading to the end is reported as an error of its own kind.
    if (read == HPDF_STREAM_EOF && state_->error == HPDF_STREAM_EOF) state_->error = HPDF_OK;
    state_->check();
    bytes.resize(size);
    return bytes;
}

}  // namespace nimbara
