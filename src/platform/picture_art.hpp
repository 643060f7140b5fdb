#pragma once
// The drawing of a picture as a short list of filled or stroked paths and texts in natural pixels:
// made once, written into every PDF as vectors, and rasterised by cairo for previews at whatever
// resolution they ask for.
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "platform/standard_faces.hpp"

namespace nimbara {

struct ArtPoint {
    double x, y;
};

// Moves, lines and cubic curves; a curve takes three points.
struct ArtPath {
    enum class Step : std::uint8_t { Move, Line, Curve, Close };
    std::vector<Step> steps;
    std::vector<ArtPoint> points;

    void move_to(double x, double y);
    void line_to(double x, double y);
    void curve_to(ArtPoint c1, ArtPoint c2, ArtPoint end);
    void close();
    void rectangle(double x, double y, double w, double h);
    // A whole circle as four quarter curves.
    void circle(double cx, double cy, double r);
};

// A path filled in one colour, or stroked when `line_width` is above 0, solid or dashed.
struct ArtShape {
    ArtPath path;
    std::uint32_t rgb = 0;  // 0xRRGGBB
    double line_width = 0;
    std::vector<double> dashes;
};

// A line of text in one of the standard faces, its baseline starting at the origin, turned a
// quarter left to read upwards when `upwards`.
struct ArtText {
    std::string text;  // UTF-8
    Face face;
    double size;  // pixels
    ArtPoint origin;
    bool upwards = false;
    std::uint32_t rgb = 0;
};

using ArtItem = std::variant<ArtShape, ArtText>;

struct PictureArt {
    double width = 0, height = 0;  // natural pixels
    std::uint32_t ground = 0xFFFFFF;
    std::vector<ArtItem> items;
};

}  // namespace nimbara
