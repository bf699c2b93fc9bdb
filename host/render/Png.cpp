#include "render/Png.h"

#include <cstdlib>

namespace kxhost {

long differingPixels(cairo_surface_t* a, cairo_surface_t* b, int tolerance) {
    if (!a || !b || cairo_surface_status(a) != CAIRO_STATUS_SUCCESS || cairo_surface_status(b) != CAIRO_STATUS_SUCCESS)
        return -1;
    const int w = cairo_image_surface_get_width(a), h = cairo_image_surface_get_height(a);
    if (w != cairo_image_surface_get_width(b) || h != cairo_image_surface_get_height(b))
        return -1;
    // Both as ARGB32 (a PNG without alpha loads as RGB24, whose top byte means nothing).
    auto argb = [](cairo_surface_t* s) {
        cairo_surface_t* c = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, cairo_image_surface_get_width(s),
                                                        cairo_image_surface_get_height(s));
        cairo_t* cr = cairo_create(c);
        cairo_set_source_surface(cr, s, 0, 0);
        cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
        cairo_paint(cr);
        cairo_destroy(cr);
        cairo_surface_flush(c);
        return c;
    };
    cairo_surface_t* ca = argb(a);
    cairo_surface_t* cb = argb(b);
    long differing = 0;
    const int sa = cairo_image_surface_get_stride(ca), sb = cairo_image_surface_get_stride(cb);
    for (int y = 0; y < h; ++y) {
        const unsigned char* ra = cairo_image_surface_get_data(ca) + static_cast<size_t>(y) * sa;
        const unsigned char* rb = cairo_image_surface_get_data(cb) + static_cast<size_t>(y) * sb;
        for (int x = 0; x < w * 4; x += 4) {
            for (int c = 0; c < 4; ++c) {
                if (std::abs(ra[x + c] - rb[x + c]) > tolerance) {
                    ++differing;
                    break;
                }
            }
        }
    }
    cairo_surface_destroy(ca);
    cairo_surface_destroy(cb);
    return differing;
}

}  // namespace kxhost
