#include "platform/page_ops.hpp"

#include <cmath>
#include <numbers>

namespace nimbara {

ArtPath ellipse_path(const EllipseOp& e)
{
    constexpr double kTurn = 2 * std::numbers::pi;
    const auto at = [&](double t) { return ArtPoint{e.x + e.rx * std::cos(t), e.y + e.ry * std::sin(t)}; };
    ArtPath path;
    double from = 0, to = -kTurn;
    if (e.start != e.end) {
        from = -std::abs(e.start), to = -std::abs(e.end);
        while (to > from) to -= kTurn;
    }
    const bool wedge = e.start != e.end && e.start < 0;
    if (wedge) path.move_to(e.x, e.y);
    const ArtPoint first = at(from);
    wedge ? path.line_to(first.x, first.y) : path.move_to(first.x, first.y);
    // Pieces of at most a quarter turn, each a cubic curve whose handles are tangent at its ends.
    const int pieces = std::max(1, static_cast<int>(std::ceil((from - to) / (kTurn / 4) - 1e-9)));
    const double step = (to - from) / pieces, k = 4.0 / 3.0 * std::tan(step / 4);
    for (int i = 0; i < pieces; ++i) {
        const double t0 = from + i * step, t1 = t0 + step;
        const ArtPoint p0 = at(t0), p1 = at(t1);
        path.curve_to({p0.x - k * e.rx * std::sin(t0), p0.y + k * e.ry * std::cos(t0)},
                      {p1.x + k * e.rx * std::sin(t1), p1.y - k * e.ry * std::cos(t1)}, p1);
    }
    if (e.start != e.end && e.end < 0) path.line_to(e.x, e.y);
    if (e.start == e.end || wedge) path.close();
    return path;
}

}  // namespace nimbara
