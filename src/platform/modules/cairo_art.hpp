#pragma once
// The pictures' drawings (picture_art.hpp) drawn with cairo, their texts with pango.
#include <cairo.h>

#include "platform/picture_art.hpp"

namespace nimbara {

// Appends the path to cairo's current path.
void trace_path(cairo_t* cr, const ArtPath& path);

// Draws the picture with its top-left at the origin of `cr`, one unit a natural pixel.
void draw_art(cairo_t* cr, const PictureArt& art);

}  // namespace nimbara
