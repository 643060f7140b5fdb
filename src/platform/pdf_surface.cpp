#include "nimbara/PdfSurface.hpp"
#include "foundation/pending_file.hpp"
#include "platform/cairo_pages.hpp"
#include "platform/module_loader.hpp"
#include "platform/page_ops.hpp"
#include "platform/pdf_writer.hpp"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>

namespace nimbara {
namespace {

struct FileCloser {
    void operator()(std::FILE* f) const { std::fclose(f); }
};
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

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

std::filesystem::path part_name(const std::filesystem::path& target)
{
    auto temp = target;
    temp += ".part";
    return temp;
}

// Drawing with cairo, from its module: loaded by the first preview or document with embedded faces.
std::unique_ptr<CairoPages> load_cairo_pages()
{
    const auto make = platform::loaded_module("cairo").entry<decltype(nimbara_cairo_pages)>("nimbara_cairo_pages");
    return std::unique_ptr<CairoPages>(make());
}

}  // namespace

struct PdfSurface::Impl {
    JobNamer namer;     // jobs go to files...
    DocumentSink sink;  // ...or to the host
    Faces faces = Faces::Automatic;

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

    // Host rasters, kept while their pixels stay the same, so that a document embeds each once.
    std::vector<std::shared_ptr<const Picture>> rasters;
    // Text layouts and rasters for previews and for measuring embedded faces; made on first use.
    std::unique_ptr<CairoPages> painter;

    // The document in progress: one job's, or a batch's.
    int jobs_done = 0;
    bool in_job = false;
    bool batch = false;
    int document_pages = 0;  // pages written into the document in progress
    std::unique_ptr<PageWriter> writer;  // by the faces the document carries
    Faces writer_faces = Faces::Standard;
    std::optional<PendingFile> file;
    std::string bytes;        // the document, for a sink
    std::string write_error;  // the first write the file refused; the rest of the document is dropped
    bool page_open = false;
    std::vector<Page> pages;  // of the job in progress, or of the last one
    // The texts the standard faces lack, of the job in progress and of the last finished one.
    std::vector<std::string> job_asked, last_job_asked;
    // A batch's pages written with the standard faces, kept while a later text may still ask the
    // whole document for embedded faces.
    std::vector<Page> kept;
    std::vector<std::filesystem::path> written;

    Impl(JobNamer n, DocumentSink k) : namer(std::move(n)), sink(std::move(k)) {}
    // A writer may still write as it goes, so it goes before the file it writes to.
    ~Impl() { writer.reset(); }

    CairoPages& cairo()
    {
        if (!painter) painter = load_cairo_pages();
        return *painter;
    }

    Face face() const { return face_of(font_name, bold); }

    std::pair<double, double> page_twips() const
    {
        const auto [w, h] = *paper_mm(paper);
        return orientation == 2 ? std::pair{mm_to_twips(h), mm_to_twips(w)} : std::pair{mm_to_twips(w), mm_to_twips(h)};
    }

    std::filesystem::path job_name(int attempt) const { return namer(jobs_done + 1, attempt); }

    void open_document(std::optional<Faces> forced = std::nullopt)
    {
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
        const auto output = [this](std::string_view chunk) { write_out(chunk); };
        try {
            writer_faces = forced ? *forced : faces == Faces::Embedded ? Faces::Embedded : Faces::Standard;
            if (writer_faces == Faces::Standard)
                writer = std::make_unique<StandardPdfWriter>(output);
            else
                writer = cairo().pdf_writer(output);
        } catch (...) {
            file.reset();
            throw;
        }
        document_pages = 0;
        kept.clear();
    }

    // A text the standard faces lack: the document starts again with embedded faces, and the pages
    // it has so far go into it as they were drawn, so that it comes out whole.
    void ask_embedded(const std::string& text)
    {
        if (std::find(job_asked.begin(), job_asked.end(), text) == job_asked.end()) job_asked.push_back(text);
        if (writer_faces == Faces::Embedded) return;
        std::vector<Page> finished = std::move(kept);
        if (!batch) finished.assign(pages.begin(), pages.end() - (page_open ? 1 : 0));
        writer.reset();
        file.reset();
        open_document(Faces::Embedded);
        for (const Page& p : finished) writer->add_page(p);
        document_pages = static_cast<int>(finished.size());
    }

    void write_out(std::string_view chunk)
    {
        if (!file) {
            bytes.append(chunk);
            return;
        }
        if (!write_error.empty()) return;
        try {
            file->write(chunk);
        } catch (const std::system_error& e) {
            write_error = e.code().message();
        }
    }

    void begin_job()
    {
        if (in_job) return;
        if (!writer) open_document();
        pages.clear();
        job_asked.clear();
        page_open = false;
        in_job = true;
    }

    Page& page()
    {
        begin_job();
        if (!page_open) {
            const auto [w, h] = page_twips();
            pages.push_back(Page{w, h, {}});
            // A Guia's page is some fifteen hundred calls: grown once, not copied again and again.
            pages.back().ops.reserve(2048);
            page_open = true;
        }
        return pages.back();
    }

    void finish_page()
    {
        ++document_pages;
        writer->add_page(pages.back());
        if (batch && faces == Faces::Automatic && writer_faces == Faces::Standard) kept.push_back(pages.back());
        page_open = false;
    }

    std::string place() const { return namer ? "\"" + job_name(1).string() + "\"" : std::string("the PDF"); }

    // Writes the document out: to its file under its first free name, or to the sink.
    void close_document()
    {
        try {
            writer->finish();
        } catch (const std::exception& e) {
            writer.reset();
            file.reset();
            throw std::runtime_error("cannot write " + place() + ": " + e.what());
        }
        writer.reset();
        if (!file) {
            ++jobs_done;
            sink(jobs_done, std::move(bytes));
            bytes.clear();
            return;
        }
        if (!write_error.empty()) {
            file.reset();
            throw std::runtime_error("cannot write " + place() + ": " + write_error);
        }
        try {
            written.push_back(file->publish([this](int attempt) { return job_name(attempt); }));
        } catch (const std::system_error& e) {
            const std::string where = place();
            file.reset();
            throw std::runtime_error("cannot write " + where + ": " + e.code().message());
        }
        file.reset();
        ++jobs_done;
    }

    void end_job()
    {
        if (!in_job) return;
        if (page_open) finish_page();
        in_job = false;
        last_job_asked = job_asked;
        if (!batch) close_document();
    }

    std::shared_ptr<const Picture> raster(const Picture& p)
    {
        for (const auto& r : rasters)
            if (r->argb.data() == p.argb.data() && r->argb == p.argb) return r;
        const int w = p.width_px * p.oversample, h = p.height_px * p.oversample;
        if (w <= 0 || h <= 0 || p.argb.size() != static_cast<std::size_t>(w) * h)
            throw std::invalid_argument("picture \"" + p.name + "\" has no pixels of its stated size");
        if (rasters.size() > 64) rasters.clear();
        return rasters.emplace_back(std::make_shared<const Picture>(p));
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
    auto& state = *impl_;
    auto& page = state.page();
    if (!text.empty()) {
        TextOp op{state.x, state.y, state.fore, state.font_name, state.bold, state.font_size, state.face(), std::string(text), {}};
        if (state.writer_faces == Faces::Standard) {
            auto encoded = to_win_ansi(text);
            if (encoded)
                op.win_ansi = std::move(*encoded);
            else if (state.faces == Faces::Automatic)
                state.ask_embedded(op.text);
            else
                throw std::invalid_argument("text \"" + op.text + "\" has a character that the standard faces lack");
        }
        page.ops.push_back(std::move(op));
    }
    state.x = 0;
    state.y += line_height_em(state.face()) * state.font_size * kTwipsPerPoint;
}

// Measured as the document in progress, or else the next one, draws it.
double PdfSurface::TextWidth(std::string_view text)
{
    auto& state = *impl_;
    if ((state.writer ? state.writer_faces : state.faces) == Faces::Embedded)
        return state.cairo().text_width(TextOp{0, 0, state.fore, state.font_name, state.bold, state.font_size, state.face(),
                                               std::string(text), {}});
    const auto encoded = to_win_ansi(text);
    // Such a text will ask the document for embedded faces, whose metrics are those of the page.
    if (!encoded && state.faces == Faces::Automatic)
        return state.cairo().text_width(TextOp{0, 0, state.fore, state.font_name, state.bold, state.font_size, state.face(),
                                               std::string(text), {}});
    if (!encoded) throw std::invalid_argument("text \"" + std::string(text) + "\" has a character that the standard faces lack");
    return text_width_em(state.face(), *encoded) * state.font_size * kTwipsPerPoint;
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
    // A drawing stays vectors in the PDF; a host's raster is embedded once per document.
    if (picture.art) {
        impl_->page().ops.push_back(PictureOp{x, y, picture.art, nullptr});
        return;
    }
    auto raster = impl_->raster(picture);
    impl_->page().ops.push_back(PictureOp{x, y, nullptr, std::move(raster)});
}

// One stencil for the whole symbol: a PDF holds it as a small image rather than thousands of boxes.
void PdfSurface::PaintModules(const ModuleMatrix& modules, double x, double y, double module_width, double module_height)
{
    if (modules.rows <= 0 || modules.columns <= 0) return;
    impl_->page().ops.push_back(ModulesOp{x, y, module_width, module_height, std::make_shared<const ModuleMatrix>(modules)});
}

void PdfSurface::NewPage()
{
    impl_->page();
    impl_->finish_page();
}

void PdfSurface::EndDoc() { impl_->end_job(); }

void PdfSurface::StartDoc() { impl_->begin_job(); }

void PdfSurface::setFaces(Faces faces) { impl_->faces = faces; }

std::vector<std::string> PdfSurface::EmbeddedFacesAskedBy() const { return impl_->last_job_asked; }

void PdfSurface::BeginBatch()
{
    if (impl_->batch) return;
    impl_->end_job();
    impl_->batch = true;
    impl_->open_document();
}

void PdfSurface::EndBatch()
{
    auto& state = *impl_;
    if (!state.batch) return;
    state.end_job();
    state.batch = false;
    if (state.document_pages == 0) {
        // A PDF without pages is no document: nothing is written.
        state.kept.clear();
        state.writer.reset();
        state.file.reset();
        return;
    }
    state.close_document();
}

int PdfSurface::page_count() const { return static_cast<int>(impl_->pages.size()); }

const std::vector<std::filesystem::path>& PdfSurface::written() const { return impl_->written; }

namespace {

const Page& page_to_render(const std::vector<Page>& pages, int number, double dpi)
{
    if (number < 1 || number > static_cast<int>(pages.size()))
        throw std::out_of_range("page " + std::to_string(number) + " is not one of the " + std::to_string(pages.size()) + " pages");
    if (!(dpi >= 10 && dpi <= 2400)) throw std::invalid_argument("resolution " + std::to_string(dpi) + " is not 10 to 2400 dpi");
    return pages[static_cast<std::size_t>(number) - 1];
}

}  // namespace

RasterImage PdfSurface::render(int page, double dpi) const
{
    const Page& drawn = page_to_render(impl_->pages, page, dpi);
    return impl_->cairo().render(drawn, dpi);
}

void PdfSurface::render_png(int page, double dpi, const std::filesystem::path& png) const
{
    const Page& drawn = page_to_render(impl_->pages, page, dpi);
    // Encoded in memory first, so that a write that fails is told by its own cause, not cairo's.
    CairoPages& cairo = impl_->cairo();
    std::string bytes;
    try {
        bytes = cairo.png(drawn, dpi);
    } catch (const std::runtime_error& e) {
        throw std::runtime_error("cannot encode \"" + png.string() + "\": " + e.what());
    }
    const auto temp = part_name(png);
    const auto fail = [&](int cause) {
        std::error_code ignored;
        std::filesystem::remove(temp, ignored);
        throw std::runtime_error("cannot write \"" + png.string() + "\": " + std::strerror(cause));
    };
    FileHandle file(std::fopen(temp.c_str(), "wb"));
    if (!file) fail(errno);
    if (std::fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size() || std::fflush(file.get()) != 0) fail(errno);
    if (std::fclose(file.release()) != 0) fail(errno);
    std::error_code ec;
    std::filesystem::rename(temp, png, ec);
    if (ec) fail(ec.value());
}

}  // namespace nimbara
