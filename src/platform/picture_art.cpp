#include "platform/picture_art.hpp"

#include <numbers>

namespace nimbara {

void ArtPath::move_to(double x, double y) { steps.push_back(Step::Move), points.push_back({x, y}); }
void ArtPath::line_to(double x, double y) { steps.push_back(Step::Line), points.push_back({x, y}); }

void ArtPath::curve_to(ArtPoint c1, ArtPoint c2, ArtPoint end)
{
    steps.push_back(Step::Curve);
    points.insert(points.end(), {c1, c2, end});
}

void ArtPath::close() { steps.push_back(Step::Close); }

void ArtPath::rectangle(double x, double y, double w, double h)
{
    move_to(x, y);
    line_to(x + w, y);
    line_to(x + w, y + h);
    line_to(x, y + h);
    close();
}

void ArtPath::circle(double cx, double cy, double r)
{
    // The control distance that makes a cubic curve the closest to a quarter circle.
    const double k = r * 4 * (std::numbers::sqrt2 - 1) / 3;
    move_to(cx + r, cy);
    curve_to({cx + r, cy + k}, {cx + k, cy + r}, {cx, cy + r});
    curve_to({cx - k, cy + r}, {cx - r, cy + k}, {cx - r, cy});
    curve_to({cx - r, cy - k}, {cx - k, cy - r}, {cx, cy - r});
    curve_to({cx + k, cy - r}, {cx + r, cy - k}, {cx + r, cy});
    close();
}

}  // namespace nimbara
