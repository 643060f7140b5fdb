#include "nimbara/PdfSurface.hpp"
#include "foundation/pending_file.hpp"
#include "platform/picture_art.hpp"

#include <cairo-pdf.h>
#include <cairo.h>
#include <pango/pangocairo.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <numbers>
#include <optional>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <variant>

namespace nimbara {
namespace {

constexpr double kTwipsPerPoint = 20.0;
constexpr double kTwipsPerInch = 1440.0;
// A printer's device line: one dot at 600 dpi. Previews use one pixel of their own resolution.
constexpr double kPrinterLineTwips = kTwipsPerInch / 600.0;
// The hatches of the fill styles are drawn at the screen pitch of 8 pixels at 96 dpi.
constexpr double kHatchPitchTwips = 8 * 15.0;

struct CairoDeleter {
    void operator()(cairo_t* c) const { cairo_destroy(c); }
    void operator()(cairo_surface_t* s) const { cairo_surface_destroy(s); }
};
using CairoHandle = std::unique_ptr<cairo_t, CairoDeleter>;
using SurfaceHandle = std::unique_ptr<cairo_surface_t, CairoDeleter>;
using SharedSurface = std::shared_ptr<cairo_surface_t>;

struct GObjectDeleter {
    void operator()(void* o) const { g_object_unref(o); }
};
using ContextHandle = std::unique_ptr<PangoContext, GObjectDeleter>;
using SharedLayout = std::shared_ptr<PangoLayout>;

struct FileCloser {
    void operator()(std::FILE* f) const { std::fclose(f); }
};
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

struct FontDescDeleter {
    void operator()(PangoFontDescription* d) const { pango_font_description_free(d); }
};
using FontDescHandle = std::unique_ptr<PangoFontDescription, FontDescDeleter>;

void set_colour(cairo_t* cr, Colour c)
{
    cairo_set_source_rgb(cr, (c & 0xFF) / 255.0, ((c >> 8) & 0xFF) / 255.0, ((c >> 16) & 0xFF) / 255.0);
}

// Paper sizes by the printer's numbers, portrait, in millimetres.
std::optional<std::pair<double, double>> paper_mm(int size)
{
    switch (size) {
    case 1: return std::pair{215.9, 279.4};  // Letter
    case 5: return std::pair{215.9, 355.6};  // Legal
    case 8: return std::pair{297.0, 420.0};  // A3
    case 9: return std::pair{210.0, 297.0};  // A4
    case 11: return std::pair{148.0, 210.0};  // A5
    default: return std::nullopt;
    }
}

double mm_to_twips(double mm) { return mm / 25.4 * kTwipsPerInch; }

struct Fill {
    Colour colour;
    int style;  // 0 solid, 1 transparent, 2 to 7 hatches
};

struct RectOp {
    double x1, y1, x2, y2;
    Colour outline;
    Fill fill;
};
struct EllipseOp {
    double x, y, rx, ry, start, end;
    Colour outline;
    Fill fill;
};
struct TextOp {
    double x, y;
    Colour colour;
    SharedLayout layout;
};
struct PictureOp {
    double x, y, scale;
    SharedSurface image;
};
// A stencil of modules, one mask pixel a module, stretched to the module's size without smoothing.
struct ModulesOp {
    double x, y, module_width, module_height;
    SharedSurface mask;
};
using Op = std::variant<RectOp, EllipseOp, TextOp, PictureOp, ModulesOp>;

struct Page {
    double width = 0, height = 0;  // twips
    std::vector<Op> ops;
};

// Lines at the hatch pitch across the current path's extents, clipped to the path.
void hatch(cairo_t* cr, int style, double line)
{
    double x1, y1, x2, y2;
    cairo_save(cr);
    cairo_clip_preserve(cr);
    cairo_path_extents(cr, &x1, &y1, &x2, &y2);
    cairo_new_path(cr);
    const double span = (x2 - x1) + (y2 - y1);
    const bool horizontal = style == 2 || style == 6, vertical = style == 3 || style == 6;
    const bool up = style == 4 || style == 7, down = style == 5 || style == 7;
    for (double d = 0; d <= span; d += kHatchPitchTwips) {
        if (horizontal && y1 + d <= y2) cairo_move_to(cr, x1, y1 + d), cairo_line_to(cr, x2, y1 + d);
        if (vertical && x1 + d <= x2) cairo_move_to(cr, x1 + d, y1), cairo_line_to(cr, x1 + d, y2);
        if (up) cairo_move_to(cr, x1 + d, y2), cairo_line_to(cr, x1 + d - span, y2 - span);
        if (down) cairo_move_to(cr, x1 + d, y1), cairo_line_to(cr, x1 + d - span, y1 + span);
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

struct Replayer {
    cairo_t* cr;
    double line;  // a device line in twips

    void operator()(const RectOp& r) const
    {
        cairo_rectangle(cr, std::min(r.x1, r.x2), std::min(r.y1, r.y2), std::abs(r.x2 - r.x1), std::abs(r.y2 - r.y1));
        fill_and_outline(cr, r.fill, r.outline, line);
    }
    void operator()(const EllipseOp& e) const
    {
        cairo_save(cr);
        cairo_translate(cr, e.x, e.y);
        cairo_scale(cr, e.rx, e.ry);
        if (e.start == e.end) {
            cairo_new_sub_path(cr);
            cairo_arc(cr, 0, 0, 1, 0, 2 * std::numbers::pi);
            cairo_close_path(cr);
        } else {
            // Angles run counter-clockwise from three o'clock; a negative one also draws its radius.
            if (e.start < 0) cairo_move_to(cr, 0, 0);
            cairo_arc_negative(cr, 0, 0, 1, -std::abs(e.start), -std::abs(e.end));
            if (e.end < 0) cairo_line_to(cr, 0, 0);
            if (e.start < 0) cairo_close_path(cr);
        }
        cairo_restore(cr);  // the path stays; the outline keeps its device width
        fill_and_outline(cr, e.fill, e.outline, line);
    }
    void operator()(const TextOp& t) const
    {
        set_colour(cr, t.colour);
        cairo_move_to(cr, t.x, t.y);
        pango_cairo_show_layout(cr, t.layout.get());
        cairo_new_path(cr);
    }
    void operator()(const PictureOp& p) const
    {
        cairo_save(cr);
        cairo_translate(cr, p.x, p.y);
        cairo_scale(cr, p.scale, p.scale);
        cairo_set_source_surface(cr, p.image.get(), 0, 0);
        cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_GOOD);
        cairo_paint(cr);
        cairo_restore(cr);
    }
    void operator()(const ModulesOp& m) const
    {
        cairo_save(cr);
        cairo_translate(cr, m.x, m.y);
        cairo_scale(cr, m.module_width, m.module_height);
        cairo_set_source_rgb(cr, 0, 0, 0);
        cairo_pattern_t* mask = cairo_pattern_create_for_surface(m.mask.get());
        cairo_pattern_set_filter(mask, CAIRO_FILTER_NEAREST);
        cairo_mask(cr, mask);
        cairo_pattern_destroy(mask);
        cairo_restore(cr);
    }
};

// A solid box outlined in its own colour: a run of them draws the same as one path filled and
// stroked once, which keeps the PDF's content (and the time to write it) small.
bool plain_box(const Op& op, Colour colour)
{
    const auto* r = std::get_if<RectOp>(&op);
    return r && r->fill.style == 0 && r->fill.colour == colour && r->outline == colour;
}

void replay(cairo_t* cr, const Page& page, double line)
{
    const Replayer r{cr, line};
    const auto& ops = page.ops;
    for (std::size_t i = 0; i < ops.size();) {
        const auto* first = std::get_if<RectOp>(&ops[i]);
        if (!first || !plain_box(ops[i], first->outline)) {
            std::visit(r, ops[i++]);
            continue;
        }
        for (; i < ops.size() && plain_box(ops[i], first->outline); ++i) {
            const auto& b = std::get<RectOp>(ops[i]);
            cairo_rectangle(cr, std::min(b.x1, b.x2), std::min(b.y1, b.y2), std::abs(b.x2 - b.x1), std::abs(b.y2 - b.y1));
        }
        fill_and_outline(cr, first->fill, first->outline, line);
    }
}

std::filesystem::path part_name(const std::filesystem::path& target)
{
    auto temp = target;
    temp += ".part";
    return temp;
}

// A picture's raster as the printer is given it, kept while the pixels stay the same, so that a
// document embeds each asset once however many pages show it.
struct CachedPicture {
    const std::uint32_t* data;
    std::vector<std::uint32_t> pixels;
    SharedSurface surface;
};

SharedSurface make_image(const Picture& p)
{
    const int w = p.width_px * p.oversample, h = p.height_px * p.oversample;
    if (w <= 0 || h <= 0 || p.argb.size() != static_cast<std::size_t>(w) * h)
        throw std::invalid_argument("picture \"" + p.name + "\" has no pixels of its stated size");
    bool opaque = true;
    for (auto px : p.argb) opaque = opaque && (px >> 24) == 0xFF;
    SharedSurface s(cairo_image_surface_create(opaque ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32, w, h),
                    cairo_surface_destroy);
    if (cairo_surface_status(s.get()) != CAIRO_STATUS_SUCCESS) throw std::runtime_error("out of memory for a picture");
    cairo_surface_flush(s.get());
    auto* base = cairo_image_surface_get_data(s.get());
    const int stride = cairo_image_surface_get_stride(s.get());
    for (int y = 0; y < h; ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(base + static_cast<std::ptrdiff_t>(y) * stride);
        for (int x = 0; x < w; ++x) {
            const std::uint32_t px = p.argb[static_cast<std::size_t>(y) * w + x];
            const std::uint32_t a = px >> 24;
            if (a == 0xFF) {
                row[x] = px;
            } else {  // cairo keeps colours premultiplied by alpha
                auto mul = [a](std::uint32_t c) { return (c * a + 127) / 255; };
                row[x] = (a << 24) | (mul((px >> 16) & 0xFF) << 16) | (mul((px >> 8) & 0xFF) << 8) | mul(px & 0xFF);
            }
        }
    }
    cairo_surface_mark_dirty(s.get());
    return s;
}

}  // namespace

struct PdfSurface::Impl {
    JobNamer namer;     // jobs go to files...
    DocumentSink sink;  // ...or to the host

    // Printer state.
    int orientation = 1;
    int paper = 9;
    double x = 0, y = 0;
    std::string font_name = "Arial";
    double font_size = 10;
    bool bold = false;
    Colour fore = kBlack;
    Fill fill{kBlack, 1};
    int draw_mode = 13;

    // Text machinery: one Pango context; layouts and line heights cached by font and text.
    ContextHandle pango;
    std::unordered_map<std::string, SharedLayout> layouts;
    std::map<std::string, double> line_heights;
    std::vector<CachedPicture> pictures;

    // The job in progress.
    int jobs_done = 0;
    bool in_job = false;
    std::optional<PendingFile> file;
    std::string bytes;  // the job's PDF, for a sink
    std::string write_error;
    SurfaceHandle pdf;
    bool page_open = false;
    std::vector<Page> pages;
    std::vector<std::filesystem::path> written;

    Impl(JobNamer n, DocumentSink k) : namer(std::move(n)), sink(std::move(k))
    {
        pango.reset(pango_font_map_create_context(pango_cairo_font_map_get_default()));
        // Unhinted metrics, so that widths and positions are the same in the PDF and in every preview.
        cairo_font_options_t* options = cairo_font_options_create();
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
        pango_cairo_context_set_font_options(pango.get(), options);
        cairo_font_options_destroy(options);
    }

    ~Impl() { abandon_job(); }

    std::string font_key() const
    {
        return font_name + (bold ? "|b|" : "|n|") + std::to_string(font_size);
    }

    FontDescHandle font_description() const
    {
        FontDescHandle d(pango_font_description_new());
        pango_font_description_set_family(d.get(), font_name.c_str());
        pango_font_description_set_weight(d.get(), bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
        pango_font_description_set_absolute_size(d.get(), font_size * kTwipsPerPoint * PANGO_SCALE);
        return d;
    }

    SharedLayout layout(std::string_view text)
    {
        std::string key = font_key();
        key += '\n';
        key += text;
        if (auto it = layouts.find(key); it != layouts.end()) return it->second;
        if (layouts.size() > 4096) layouts.clear();
        SharedLayout l(pango_layout_new(pango.get()), g_object_unref);
        pango_layout_set_font_description(l.get(), font_description().get());
        pango_layout_set_text(l.get(), text.data(), static_cast<int>(text.size()));
        layouts.emplace(std::move(key), l);
        return l;
    }

    // One line of the current font: its ascent, descent and line gap.
    double line_height()
    {
        const std::string key = font_key();
        if (auto it = line_heights.find(key); it != line_heights.end()) return it->second;
        PangoFontMetrics* m = pango_context_get_metrics(pango.get(), font_description().get(), nullptr);
        const double h = static_cast<double>(pango_font_metrics_get_height(m)) / PANGO_SCALE;
        pango_font_metrics_unref(m);
        return line_heights.emplace(key, h).first->second;
    }

    std::pair<double, double> page_twips() const
    {
        const auto [w, h] = *paper_mm(paper);
        return orientation == 2 ? std::pair{mm_to_twips(h), mm_to_twips(w)} : std::pair{mm_to_twips(w), mm_to_twips(h)};
    }

    static cairo_status_t write_out(void* closure, const unsigned char* data, unsigned int length)
    {
        auto& self = *static_cast<Impl*>(closure);
        const std::string_view chunk(reinterpret_cast<const char*>(data), length);
        if (!self.file) {
            self.bytes.append(chunk);
            return CAIRO_STATUS_SUCCESS;
        }
        try {
            self.file->write(chunk);
            return CAIRO_STATUS_SUCCESS;
        } catch (const std::exception& e) {
            self.write_error = e.what();
            return CAIRO_STATUS_WRITE_ERROR;
        }
    }

    std::filesystem::path job_name(int attempt) const { return namer(jobs_done + 1, attempt); }

    void begin_job()
    {
        if (in_job) return;
        file.reset();
        if (namer) {
            const auto path = job_name(1);
            try {
                file.emplace(path.parent_path());
            } catch (const std::system_error& e) {
                throw std::runtime_error("cannot write \"" + path.string() + "\": " + e.code().message());
            }
        }
        bytes.clear();
        write_error.clear();
        const auto [w, h] = page_twips();
        SurfaceHandle s(cairo_pdf_surface_create_for_stream(write_out, this, w / kTwipsPerPoint, h / kTwipsPerPoint));
        if (cairo_surface_status(s.get()) != CAIRO_STATUS_SUCCESS) {
            file.reset();
            throw std::runtime_error("cannot start a PDF document: " +
                                     std::string(cairo_status_to_string(cairo_surface_status(s.get()))));
        }
        cairo_pdf_surface_set_metadata(s.get(), CAIRO_PDF_METADATA_CREATOR, "Guia Nimbara");
        pdf = std::move(s);
        pages.clear();
        page_open = false;
        in_job = true;
    }

    Page& page()
    {
        begin_job();
        if (!page_open) {
            const auto [w, h] = page_twips();
            pages.push_back(Page{w, h, {}});
            page_open = true;
        }
        return pages.back();
    }

    void finish_page()
    {
        const Page& p = pages.back();
        cairo_pdf_surface_set_size(pdf.get(), p.width / kTwipsPerPoint, p.height / kTwipsPerPoint);
        CairoHandle cr(cairo_create(pdf.get()));
        cairo_scale(cr.get(), 1 / kTwipsPerPoint, 1 / kTwipsPerPoint);
        replay(cr.get(), p, kPrinterLineTwips);
        cairo_show_page(cr.get());
        page_open = false;
    }

    void end_job()
    {
        if (!in_job) return;
        if (page_open) finish_page();
        cairo_surface_finish(pdf.get());
        const auto status = cairo_surface_status(pdf.get());
        pdf.reset();
        in_job = false;
        const std::string place = namer ? "\"" + job_name(1).string() + "\"" : std::string("the PDF");
        if (status != CAIRO_STATUS_SUCCESS) {
            file.reset();
            throw std::runtime_error("cannot write " + place + ": " +
                                     (write_error.empty() ? std::string(cairo_status_to_string(status)) : write_error));
        }
        ++jobs_done;
        if (!file) {
            sink(jobs_done, std::move(bytes));
            bytes.clear();
            return;
        }
        try {
            written.push_back(file->publish([this](int attempt) { return namer(jobs_done, attempt); }));
        } catch (const std::system_error& e) {
            file.reset();
            --jobs_done;
            throw std::runtime_error("cannot write " + place + ": " + e.code().message());
        }
        file.reset();
    }

    // A job never ended leaves no file.
    void abandon_job()
    {
        if (!in_job) return;
        pdf.reset();
        file.reset();
        bytes.clear();
        in_job = false;
    }

    SharedSurface picture_surface(const Picture& p)
    {
        for (const auto& c : pictures)
            if (c.data == p.argb.data() && c.pixels == p.argb) return c.surface;
        if (pictures.size() > 64) pictures.clear();
        auto surface = make_image(p);
        pictures.push_back({p.argb.data(), p.argb, surface});
        return surface;
    }

    void require_copy_pen(const char* what) const
    {
        if (draw_mode != printer::kDrawCopyPen)
            throw std::invalid_argument(std::string(what) + " in draw mode " + std::to_string(draw_mode) +
                                        " is not supported; only 13 (copy pen) is");
    }
};

PdfSurface::PdfSurface(JobNamer namer) : impl_(std::make_unique<Impl>(std::move(namer), nullptr)) {}

PdfSurface::PdfSurface(DocumentSink sink) : impl_(std::make_unique<Impl>(nullptr, std::move(sink))) {}

PdfSurface::PdfSurface(const std::filesystem::path& pdf)
    : PdfSurface([pdf](int job, int attempt) {
          std::string stem = pdf.stem().string();
          if (job > 1) stem += "-" + std::to_string(job);
          if (attempt > 1) stem += "-" + std::to_string(attempt);
          auto named = pdf;
          named.replace_filename(stem + pdf.extension().string());
          return named;
      })
{
}

PdfSurface::~PdfSurface() = default;

void PdfSurface::setScaleMode(int mode)
{
    if (mode != printer::kScaleTwips) throw std::invalid_argument("scale mode " + std::to_string(mode) + " is not supported; only 1 (twips) is");
}

void PdfSurface::setOrientation(int orientation)
{
    if (orientation != 1 && orientation != 2)
        throw std::invalid_argument("orientation " + std::to_string(orientation) + " is neither 1 nor 2");
    impl_->orientation = orientation;
}

void PdfSurface::setPaperSize(int size)
{
    if (!paper_mm(size)) throw std::invalid_argument("paper size " + std::to_string(size) + " is not supported");
    impl_->paper = size;
}

void PdfSurface::setTrackDefault(bool) {}  // a file has no system default printer to follow

void PdfSurface::setFontName(std::string_view name) { impl_->font_name = name; }

void PdfSurface::setFontSize(double points)
{
    if (!(points > 0 && points < 2048)) throw std::invalid_argument("font size " + std::to_string(points) + " is out of range");
    impl_->font_size = points;
}

void PdfSurface::setFontBold(bool bold) { impl_->bold = bold; }
void PdfSurface::setForeColor(Colour colour) { impl_->fore = colour; }
void PdfSurface::setFillColor(Colour colour) { impl_->fill.colour = colour; }

void PdfSurface::setFillStyle(int style)
{
    if (style < 0 || style > 7) throw std::invalid_argument("fill style " + std::to_string(style) + " is not 0 to 7");
    impl_->fill.style = style;
}

void PdfSurface::setDrawMode(int mode)
{
    if (mode < 1 || mode > 16) throw std::invalid_argument("draw mode " + std::to_string(mode) + " is not 1 to 16");
    impl_->draw_mode = mode;
}

void PdfSurface::setCurrentX(double twips) { impl_->x = twips; }
void PdfSurface::setCurrentY(double twips) { impl_->y = twips; }
double PdfSurface::CurrentX() const { return impl_->x; }
double PdfSurface::CurrentY() const { return impl_->y; }

// Text is drawn whatever the draw mode, as the printer's text output ignores it.
void PdfSurface::Print(std::string_view text)
{
    auto& page = impl_->page();
    if (!text.empty()) page.ops.push_back(TextOp{impl_->x, impl_->y, impl_->fore, impl_->layout(text)});
    impl_->x = 0;
    impl_->y += impl_->line_height();
}

double PdfSurface::TextWidth(std::string_view text)
{
    PangoRectangle logical;
    pango_layout_get_extents(impl_->layout(text).get(), nullptr, &logical);
    return static_cast<double>(logical.width) / PANGO_SCALE;
}

void PdfSurface::Line(int flags, double x1, double y1, double x2, double y2, Colour)
{
    if (flags != printer::kLineBox) throw std::invalid_argument("Line flags " + std::to_string(flags) + " are not supported; only 20 (box) is");
    impl_->require_copy_pen("Line");
    impl_->page().ops.push_back(RectOp{x1, y1, x2, y2, impl_->fore, impl_->fill});
}

void PdfSurface::Circle(int, double x, double y, double radius, Colour, double start, double end, double aspect)
{
    impl_->require_copy_pen("Circle");
    // An aspect of 0 is how a late-bound call leaves it out: a round circle.
    const double a = aspect > 0 ? aspect : 1.0;
    const double rx = a <= 1 ? radius : radius / a, ry = a <= 1 ? radius * a : radius;
    impl_->page().ops.push_back(EllipseOp{x, y, rx, ry, start, end, impl_->fore, impl_->fill});
}

void PdfSurface::PaintPicture(const Picture& picture, double x, double y)
{
    // A drawing stays vectors in the PDF and costs no raster compression per job.
    if (picture.art) {
        impl_->page().ops.push_back(PictureOp{x, y, 15.0, picture.art->recording});
        return;
    }
    auto image = impl_->picture_surface(picture);
    impl_->page().ops.push_back(PictureOp{x, y, 15.0 / picture.oversample, std::move(image)});
}

// One stencil for the whole symbol: a PDF holds it as a small image rather than thousands of boxes.
void PdfSurface::PaintModules(const ModuleMatrix& modules, double x, double y, double module_width, double module_height)
{
    if (modules.rows <= 0 || modules.columns <= 0) return;
    SharedSurface mask(cairo_image_surface_create(CAIRO_FORMAT_A8, modules.columns, modules.rows), cairo_surface_destroy);
    if (cairo_surface_status(mask.get()) != CAIRO_STATUS_SUCCESS) throw std::runtime_error("out of memory for a symbol");
    cairo_surface_flush(mask.get());
    auto* base = cairo_image_surface_get_data(mask.get());
    const int stride = cairo_image_surface_get_stride(mask.get());
    for (int r = 0; r < modules.rows; ++r)
        for (int c = 0; c < modules.columns; ++c) base[r * stride + c] = modules.is_dark(r, c) ? 0xFF : 0;
    cairo_surface_mark_dirty(mask.get());
    impl_->page().ops.push_back(ModulesOp{x, y, module_width, module_height, std::move(mask)});
}

void PdfSurface::NewPage()
{
    impl_->page();
    impl_->finish_page();
}

void PdfSurface::EndDoc() { impl_->end_job(); }

void PdfSurface::StartDoc() { impl_->begin_job(); }

int PdfSurface::page_count() const { return static_cast<int>(impl_->pages.size()); }

const std::vector<std::filesystem::path>& PdfSurface::written() const { return impl_->written; }

namespace {

SurfaceHandle render_surface(const std::vector<Page>& pages, int number, double dpi)
{
    if (number < 1 || number > static_cast<int>(pages.size()))
        throw std::out_of_range("page " + std::to_string(number) + " is not one of the " + std::to_string(pages.size()) + " pages");
    if (!(dpi >= 10 && dpi <= 2400)) throw std::invalid_argument("resolution " + std::to_string(dpi) + " is not 10 to 2400 dpi");
    const Page& page = pages[static_cast<std::size_t>(number) - 1];
    const double scale = dpi / kTwipsPerInch;
    const int w = static_cast<int>(std::lround(page.width * scale)), h = static_cast<int>(std::lround(page.height * scale));
    SurfaceHandle s(cairo_image_surface_create(CAIRO_FORMAT_RGB24, w, h));
    if (cairo_surface_status(s.get()) != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error("cannot make an image of " + std::to_string(w) + " x " + std::to_string(h) + " pixels");
    CairoHandle cr(cairo_create(s.get()));
    cairo_set_source_rgb(cr.get(), 1, 1, 1);
    cairo_paint(cr.get());
    cairo_scale(cr.get(), scale, scale);
    replay(cr.get(), page, 1 / scale);
    cairo_surface_flush(s.get());
    return s;
}

}  // namespace

RasterImage PdfSurface::render(int page, double dpi) const
{
    const auto s = render_surface(impl_->pages, page, dpi);
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

void PdfSurface::render_png(int page, double dpi, const std::filesystem::path& png) const
{
    const auto s = render_surface(impl_->pages, page, dpi);
    const auto temp = part_name(png);
    const auto status = cairo_surface_write_to_png(s.get(), temp.c_str());
    std::error_code ec;
    if (status != CAIRO_STATUS_SUCCESS) {
        std::filesystem::remove(temp, ec);
        throw std::runtime_error("cannot write \"" + png.string() + "\": " + cairo_status_to_string(status));
    }
    std::filesystem::rename(temp, png, ec);
    if (ec) {
        std::filesystem::remove(temp);
        throw std::runtime_error("cannot write \"" + png.string() + "\": " + ec.message());
    }
}

}  // namespace nimbara
