#pragma once
// The printer object: exactly the operations the printing logic uses, in twips, with the state
// (position, font, fill) that the logic relies on between calls. A host may hand its own.
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>
#include "nimbara/export.hpp"

namespace nimbara {

// A resolution-free drawing of a picture, made and read by the platform layer only.
struct PictureArt;

// A picture asset: natural size in pixels (a pixel is 15 twips) and its raster, drawn at
// `oversample` times that size so it stays crisp when placed at its natural size. Pictures drawn by
// our own code also carry their drawing, which a vector surface prefers to the raster.
struct Picture {
    std::string name;     // the name of the control that held it, e.g. "Pic_Barra_A1"
    int width_px = 0;
    int height_px = 0;
    int oversample = 1;
    std::vector<std::uint32_t> argb;  // (width_px * oversample) x (height_px * oversample), row-major, 0xAARRGGBB
    std::shared_ptr<const PictureArt> art;  // may be empty

    double width_twips() const { return width_px * 15.0; }
    double height_twips() const { return height_px * 15.0; }
};

// A two-dimensional barcode's modules: rows x columns cells, row-major, 1 for a dark one.
struct ModuleMatrix {
    int rows = 0;
    int columns = 0;
    std::vector<std::uint8_t> dark;

    bool is_dark(int row, int column) const { return dark[static_cast<std::size_t>(row) * columns + column] != 0; }
};

// Colours are 24-bit values in the Windows byte order (0x00BBGGRR).
// The printer object's codes, by name.
namespace printer {
inline constexpr int kScaleTwips = 1;
inline constexpr int kPortrait = 1;
inline constexpr int kLandscape = 2;
inline constexpr int kPaperA4 = 9;
inline constexpr int kFillSolid = 0;
inline constexpr int kFillTransparent = 1;
inline constexpr int kFillHorizontalLine = 2;
inline constexpr int kFillVerticalLine = 3;
inline constexpr int kFillUpwardDiagonal = 4;
inline constexpr int kFillDownwardDiagonal = 5;
inline constexpr int kFillCross = 6;
inline constexpr int kFillDiagonalCross = 7;
inline constexpr int kDrawMaskPen = 9;
inline constexpr int kDrawCopyPen = 13;
inline constexpr int kLineBox = 20;  // Line draws the rectangle of its two corners
}  // namespace printer

using Colour = std::int32_t;
inline constexpr Colour kBlack = 0;
inline constexpr Colour kPanelGrey = 14013909;  // 0xD5D5D5

// Surface operations report a failure by throwing std::exception; the printing routines catch it,
// log it and go on, so a page with faults still comes out.
class NIMBARA_API PageSurface {
public:
    virtual ~PageSurface() = default;

    virtual void setScaleMode(int mode) = 0;         // always 1, twips
    virtual void setOrientation(int orientation) = 0;  // 2: landscape
    virtual void setPaperSize(int size) = 0;         // 9: A4
    virtual void setTrackDefault(bool track) = 0;

    virtual void setFontName(std::string_view name) = 0;
    virtual void setFontSize(double points) = 0;
    virtual void setFontBold(bool bold) = 0;
    virtual void setForeColor(Colour colour) = 0;
    virtual void setFillColor(Colour colour) = 0;
    virtual void setFillStyle(int style) = 0;
    virtual void setDrawMode(int mode) = 0;

    virtual void setCurrentX(double twips) = 0;
    virtual void setCurrentY(double twips) = 0;
    virtual double CurrentX() const = 0;
    virtual double CurrentY() const = 0;

    // Writes the text with its top-left at the current position, then moves down one line of the
    // current font and back to the left edge.
    virtual void Print(std::string_view text) = 0;
    virtual double TextWidth(std::string_view text) = 0;
    // Flags 20: a rectangle between the corners, outlined in the fore colour and filled with the
    // current fill colour and style.
    virtual void Line(int flags, double x1, double y1, double x2, double y2, Colour colour) = 0;
    virtual void Circle(int flags, double x, double y, double radius, Colour colour, double start, double end,
                        double aspect) = 0;
    // Draws the picture at its natural size with its top-left at (x, y).
    virtual void PaintPicture(const Picture& picture, double x, double y) = 0;
    virtual void NewPage() = 0;
    virtual void EndDoc() = 0;
    // The texts of the last finished job that needed faces beyond the standard ones (a surface that
    // chooses its faces by the text tells them, so that the print log can); empty by default.
    virtual std::vector<std::string> EmbeddedFacesAskedBy() const { return {}; }

    // Draws the dark modules black, each module_width x module_height twips, from the top-left (x, y).
    // By default as boxes (Line, flags 20, in the current fill and fore colour), one per run of dark
    // modules, runs that stand in the same place in consecutive rows joined; a surface that can
    // place a stencil does it at once.
    virtual void PaintModules(const ModuleMatrix& modules, double x, double y, double module_width,
                              double module_height);
};

}  // namespace nimbara
