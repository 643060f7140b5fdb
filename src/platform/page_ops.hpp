#pragma once
// A page as the surface records it: the drawing calls in twips, in order, kept so that the same page
// can be written to a PDF and rendered for previews.
#include <array>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "nimbara/PageSurface.hpp"
#include "platform/picture_art.hpp"
#include "platform/standard_faces.hpp"

namespace nimbara {

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
// A text with its top-left at (x, y), in the font as it was asked for and as a standard face.
struct TextOp {
    double x, y;
    Colour colour;
    std::string font_name;
    bool bold;
    double points;
    Face face;
    std::string text;      // UTF-8
    std::string win_ansi;  // the same text in the standard faces' encoding
};
// A picture at its natural size: its drawing, or the raster a host handed in.
struct PictureOp {
    double x, y;
    std::shared_ptr<const PictureArt> art;
    std::shared_ptr<const Picture> raster;
};
// A stencil of modules stretched to the module's size without smoothing.
struct ModulesOp {
    double x, y, module_width, module_height;
    std::shared_ptr<const ModuleMatrix> modules;
};
using Op = std::variant<RectOp, EllipseOp, TextOp, PictureOp, ModulesOp>;

struct Page {
    double width = 0, height = 0;  // twips
    std::vector<Op> ops;
};

inline constexpr double kTwipsPerPoint = 20.0;
inline constexpr double kTwipsPerInch = 1440.0;
// A printer's device line: one dot at 600 dpi. Previews use one pixel of their own resolution.
inline constexpr double kPrinterLineTwips = kTwipsPerInch / 600.0;
// The hatches of the fill styles are drawn at the screen pitch of 8 pixels at 96 dpi.
inline constexpr double kHatchPitchTwips = 8 * 15.0;
// A picture's natural pixel is 15 twips (96 to the inch).
inline constexpr double kTwipsPerPicturePixel = 15.0;

// A solid box outlined in its own colour: a run of them draws the same as one path filled and
// stroked once, which keeps a PDF's content (and the time to write it) small.
inline const RectOp* plain_box(const Op& op)
{
    const auto* r = std::get_if<RectOp>(&op);
    return r && r->fill.style == 0 && r->fill.colour == r->outline ? r : nullptr;
}

// The colour's red, green and blue from 0 to 1 (colours are 0x00BBGGRR).
inline std::array<double, 3> rgb_of(Colour c)
{
    return {(c & 0xFF) / 255.0, ((c >> 8) & 0xFF) / 255.0, ((c >> 16) & 0xFF) / 255.0};
}

// Which lines a hatch style draws.
struct Hatch {
    bool horizontal, vertical, up, down;
};
inline Hatch hatch_of(int style)
{
    return {style == 2 || style == 6, style == 3 || style == 6, style == 4 || style == 7, style == 5 || style == 7};
}

// A document written page by page: a PDF with the standard faces, or one by cairo with embedded faces.
class PageWriter {
public:
    // Receives the document's bytes in order.
    using Output = std::function<void(std::string_view)>;
    virtual ~PageWriter() = default;

    virtual void add_page(const Page& page) = 0;
    // Completes the document; throws with the reason when it could not be made.
    virtual void finish() = 0;
};

// The outline of a circle's part as the printer draws it: an arc from -|start| to -|end| radians,
// the way of falling angles, a whole ellipse when they are equal; a negative angle also draws its
// radius.
ArtPath ellipse_path(const EllipseOp& e);

}  // namespace nimbara
