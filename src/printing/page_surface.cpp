// What every page surface can do with the operations it has, unless it does it better itself.
#include <vector>

#include "nimbara/PageSurface.hpp"

namespace nimbara {
namespace {

// A run of dark modules [first, last) that goes down from row `top`.
struct Bar {
    int first, last, top;
};

}  // namespace

void PageSurface::PaintModules(const ModuleMatrix& m, double x, double y, double module_width, double module_height)
{
    const auto box = [&](const Bar& b, int bottom) {
        Line(printer::kLineBox, x + b.first * module_width, y + b.top * module_height, x + b.last * module_width,
             y + bottom * module_height, kBlack);
    };
    std::vector<Bar> open, next;
    for (int r = 0; r < m.rows; ++r) {
        next.clear();
        std::size_t k = 0;
        for (int c = 0; c < m.columns;) {
            if (!m.is_dark(r, c)) {
                ++c;
                continue;
            }
            const int first = c;
            while (c < m.columns && m.is_dark(r, c)) ++c;
            // Both lists run left to right, so the bars of the row above are met in order.
            while (k < open.size() && open[k].first < first) box(open[k++], r);
            if (k < open.size() && open[k].first == first && open[k].last == c)
                next.push_back(open[k++]);
            else
                next.push_back({first, c, r});
        }
        while (k < open.size()) box(open[k++], r);
        open.swap(next);
    }
    for (const auto& b : open) box(b, m.rows);
}

}  // namespace nimbara
