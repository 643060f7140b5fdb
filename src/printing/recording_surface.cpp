#include "printing/recording_surface.hpp"

#include <cmath>
#include <utility>

namespace nimbara::printing {

std::vector<long> SurfaceCall::whole() const
{
    std::vector<long> out;
    out.reserve(numbers.size());
    for (double n : numbers) out.push_back(std::lround(n));
    return out;
}

void RecordingSurface::record(std::string op, std::vector<double> numbers, std::string text)
{
    calls_.push_back({std::move(op), std::move(numbers), std::move(text)});
}

void RecordingSurface::setScaleMode(int mode) { record("setScaleMode", {double(mode)}); }
void RecordingSurface::setOrientation(int orientation) { record("setOrientation", {double(orientation)}); }
void RecordingSurface::setPaperSize(int size) { record("setPaperSize", {double(size)}); }
void RecordingSurface::setTrackDefault(bool track) { record("setTrackDefault", {track ? 1.0 : 0.0}); }

void RecordingSurface::setFontName(std::string_view name)
{
    font_name_ = name;
    record("setFontName", {}, std::string(name));
}

void RecordingSurface::setFontSize(double points)
{
    font_size_ = points;
    record("setFontSize", {points});
}

void RecordingSurface::setFontBold(bool bold)
{
    bold_ = bold;
    record("setFontBold", {bold ? 1.0 : 0.0});
}

void RecordingSurface::setForeColor(Colour colour)
{
    fore_color_ = colour;
    record("setForeColor", {double(colour)});
}

void RecordingSurface::setFillColor(Colour colour)
{
    fill_color_ = colour;
    record("setFillColor", {double(colour)});
}

void RecordingSurface::setFillStyle(int style)
{
    fill_style_ = style;
    record("setFillStyle", {double(style)});
}

void RecordingSurface::setDrawMode(int mode) { record("setDrawMode", {double(mode)}); }

void RecordingSurface::setCurrentX(double twips)
{
    x_ = twips;
    record("setCurrentX", {twips});
}

void RecordingSurface::setCurrentY(double twips)
{
    y_ = twips;
    record("setCurrentY", {twips});
}

void RecordingSurface::Print(std::string_view text)
{
    record("Print", {x_, y_, font_size_}, std::string(text));
    x_ = 0;
    y_ += line_height();
}

double RecordingSurface::TextWidth(std::string_view text)
{
    // Counts characters, not bytes, so accented letters weigh as much as plain ones.
    std::size_t chars = 0;
    for (unsigned char c : text)
        if ((c & 0xC0) != 0x80) ++chars;
    return static_cast<double>(chars) * font_size_ * 20.0 * 0.5;
}

void RecordingSurface::Line(int flags, double x1, double y1, double x2, double y2, Colour colour)
{
    record("Line", {double(flags), x1, y1, x2, y2, double(colour), double(fill_color_), double(fill_style_)});
}

void RecordingSurface::Circle(int flags, double x, double y, double radius, Colour colour, double start, double end,
                              double aspect)
{
    record("Circle", {double(flags), x, y, radius, double(colour), start, end, aspect});
}

void RecordingSurface::PaintPicture(const Picture& picture, double x, double y)
{
    record("PaintPicture", {x, y, picture.width_twips(), picture.height_twips()}, picture.name);
}

void RecordingSurface::NewPage()
{
    ++pages_ended_;
    record("NewPage", {});
}

void RecordingSurface::EndDoc()
{
    ++documents_ended_;
    record("EndDoc", {});
}

std::vector<SurfaceCall> RecordingSurface::calls_of(std::string_view op) const
{
    std::vector<SurfaceCall> out;
    for (const auto& c : calls_)
        if (c.op == op) out.push_back(c);
    return out;
}

std::vector<std::string> RecordingSurface::printed() const
{
    std::vector<std::string> out;
    for (const auto& c : calls_)
        if (c.op == "Print") out.push_back(c.text);
    return out;
}

}  // namespace nimbara::printing
