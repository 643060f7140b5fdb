#pragma once
// The drawing of a picture as cairo keeps it: a recording in natural pixels, replayed as vectors
// into a PDF and rasterised at whatever resolution a preview asks for.
#include <cairo.h>

#include <memory>

namespace nimbara {

struct PictureArt {
    std::shared_ptr<cairo_surface_t> recording;
};

}  // namespace nimbara
