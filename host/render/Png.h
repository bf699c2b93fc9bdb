// Renderings compared with reference images (PNG files read through Cairo), with a tolerance.
#pragma once

#include <cairo.h>

namespace kxhost {

// Counts the pixels of two images whose colour or alpha differs by more than tolerance in any channel.
// -1 when either is missing or unreadable or the sizes differ.
long differingPixels(cairo_surface_t* a, cairo_surface_t* b, int tolerance);

}  // namespace kxhost
