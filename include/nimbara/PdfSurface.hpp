#pragma once
// The page surface that prints: each print job (everything up to EndDoc) becomes one PDF, written to a
// file or handed to the host as bytes, or a batch of jobs becomes one PDF; any page of the current or
// last job can be rendered to an image or a PNG file for previews.
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "nimbara/PageSurface.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

// A rendered page: 0x00RRGGBB pixels, row-major.
struct RasterImage {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> rgb;

    std::uint32_t at(int x, int y) const { return rgb[static_cast<std::size_t>(y) * width + x]; }
};

class NIMBARA_API PdfSurface final : public PageSurface {
public:
    // Gives the file of each print job, counted from 1, and the names to try after it when it is
    // taken (attempt 2, 3...): a job's file never replaces another file.
    using JobNamer = std::function<std::filesystem::path(int job, int attempt)>;
    // Receives each finished job's whole PDF, counted from 1.
    using DocumentSink = std::function<void(int job, std::string pdf)>;

    explicit PdfSurface(JobNamer namer);
    // Job 1 writes `pdf`; a later job n writes the same name with "-n" before the extension; a
    // taken name gains "-2", "-3"... after that.
    explicit PdfSurface(const std::filesystem::path& pdf);
    // Every job goes to the sink instead of a file.
    explicit PdfSurface(DocumentSink sink);

    // How a PDF carries its text. Standard: the Times and Helvetica faces every reader has, with the
    // widths of the Times New Roman and Arial the page is laid out in; nothing is embedded, so files
    // are small and quick to make, and a text beyond the Western European characters is refused.
    // Embedded: the system's fonts for those names (metric-compatible, so the layout stays), embedded,
    // for any character. Automatic (the default): the standard faces, until a text asks for more;
    // the whole document is then written with embedded faces, its earlier pages included.
    enum class Faces { Standard, Embedded, Automatic };
    // Applies from the next document on.
    void setFaces(Faces faces);
    // The texts of the last finished job that the standard faces could not show, for which its
    // document was written with embedded faces; empty when it needed none.
    std::vector<std::string> EmbeddedFacesAskedBy() const override;
    ~PdfSurface() override;
    PdfSurface(const PdfSurface&) = delete;
    PdfSurface& operator=(const PdfSurface&) = delete;

    void setScaleMode(int mode) override;
    void setOrientation(int orientation) override;
    void setPaperSize(int size) override;
    void setTrackDefault(bool track) override;
    void setFontName(std::string_view name) override;
    void setFontSize(double points) override;
    void setFontBold(bool bold) override;
    void setForeColor(Colour colour) override;
    void setFillColor(Colour colour) override;
    void setFillStyle(int style) override;
    void setDrawMode(int mode) override;
    void setCurrentX(double twips) override;
    void setCurrentY(double twips) override;
    double CurrentX() const override;
    double CurrentY() const override;
    void Print(std::string_view text) override;
    double TextWidth(std::string_view text) override;
    void Line(int flags, double x1, double y1, double x2, double y2, Colour colour) override;
    void Circle(int flags, double x, double y, double radius, Colour colour, double start, double end,
                double aspect) override;
    void PaintPicture(const Picture& picture, double x, double y) override;
    void PaintModules(const ModuleMatrix& modules, double x, double y, double module_width,
                      double module_height) override;
    void NewPage() override;
    // Finishes the job's file; a job that could not be written throws here with the reason, and
    // leaves no file behind. The file is written under a temporary name in its folder and takes its
    // name only when whole.
    void EndDoc() override;

    // From BeginBatch to EndBatch every job goes into one document, which takes the name of the first
    // job and is written whole by EndBatch; a batch never ended, or without pages, leaves no file.
    void BeginBatch();
    void EndBatch();

    // Opens the job's file now rather than at the first drawing call, so that an output place that
    // cannot be written is known before anything is drawn.
    void StartDoc();

    // Pages of the job in progress, or of the last finished one when none is in progress.
    int page_count() const;
    RasterImage render(int page, double dpi) const;  // page counted from 1
    void render_png(int page, double dpi, const std::filesystem::path& png) const;

    // Every file this surface has finished, in order.
    const std::vector<std::filesystem::path>& written() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace nimbara
