// Drawing objects and the drawing factory.
#include "render/Drawing.h"

#include <pango/pangocairo.h>
#include <stb/stb_image.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>

namespace kxhost::draw {

double toSrgb(float linear) {
    const double c = std::clamp(static_cast<double>(linear), 0.0, 1.0);
    return c <= 0.0031308 ? 12.92 * c : 1.055 * std::pow(c, 1.0 / 2.4) - 0.055;
}

// ---- Bitmap

namespace {

class Pixels final : public Object<IMpBitmapPixels> {
public:
    Pixels(Bitmap* bitmap, int32_t flags) : Object({SE_IID_BITMAP_PIXELS_MPGUI}), bitmap_(bitmap), flags_(flags) {
        bitmap_->addRef();
        cairo_surface_flush(bitmap_->surface());
    }
    ~Pixels() override {
        if (flags_ & MP1_BITMAP_LOCK_WRITE)
            cairo_surface_mark_dirty(bitmap_->surface());
        bitmap_->release();
    }
    uint8_t* getAddress() override { return cairo_image_surface_get_data(bitmap_->surface()); }
    int32_t getBytesPerRow() override { return cairo_image_surface_get_stride(bitmap_->surface()); }
    int32_t getPixelFormat() override { return MP1_PIXEL_FORMAT_ARGB32_PREMULTIPLIED; }

private:
    Bitmap* bitmap_;
    int32_t flags_;
};

}  // namespace

Bitmap::Bitmap(IMpFactory* factory, cairo_surface_t* surface)
    : Object({SE_IID_BITMAP_MPGUI, SE_IID_RESOURCE_MPGUI}), factory_(factory), surface_(surface) {}

Bitmap::~Bitmap() { cairo_surface_destroy(surface_); }

int32_t Bitmap::getFactory(IMpFactory** returnFactory) {
    if (returnFactory)
        *returnFactory = factory_;
    return gmpi::MP_OK;
}

MP1_SIZE Bitmap::GetSizeF() {
    return {static_cast<float>(cairo_image_surface_get_width(surface_)),
            static_cast<float>(cairo_image_surface_get_height(surface_))};
}

int32_t Bitmap::GetSize(MP1_SIZE_U* returnSize) {
    if (!returnSize)
        return gmpi::MP_FAIL;
    *returnSize = {static_cast<uint32_t>(cairo_image_surface_get_width(surface_)),
                   static_cast<uint32_t>(cairo_image_surface_get_height(surface_))};
    return gmpi::MP_OK;
}

int32_t Bitmap::lockPixels(IMpBitmapPixels** returnPixels, int32_t flags) {
    if (!returnPixels)
        return gmpi::MP_FAIL;
    *returnPixels = new Pixels(this, flags);
    return gmpi::MP_OK;
}

// ---- TextFormat

namespace {

// One Pango context for measuring, with the same font options drawing uses, so measured and drawn text
// agree; no hinting, so output does not depend on the display.
cairo_font_options_t* fontOptions() {
    static cairo_font_options_t* options = [] {
        cairo_font_options_t* o = cairo_font_options_create();
        cairo_font_options_set_antialias(o, CAIRO_ANTIALIAS_GRAY);
        cairo_font_options_set_hint_style(o, CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_hint_metrics(o, CAIRO_HINT_METRICS_OFF);
        return o;
    }();
    return options;
}

PangoContext* measuringContext() {
    static PangoContext* context = [] {
        PangoContext* c = pango_font_map_create_context(pango_cairo_font_map_get_default());
        pango_cairo_context_set_font_options(c, fontOptions());
        return c;
    }();
    return context;
}

PangoWeight pangoWeight(int32_t w) { return static_cast<PangoWeight>(std::clamp(w, 100, 1000)); }

}  // namespace

TextFormat::TextFormat(const std::string& families, int32_t weight, int32_t style, int32_t stretch, float size)
    : Object({SE_IID_TEXTFORMAT_MPGUI}), font_(pango_font_description_new()) {
    pango_font_description_set_family(font_, families.c_str());
    pango_font_description_set_weight(font_, pangoWeight(weight));
    pango_font_description_set_style(font_, style == MP1_FONT_STYLE_ITALIC    ? PANGO_STYLE_ITALIC
                                            : style == MP1_FONT_STYLE_OBLIQUE ? PANGO_STYLE_OBLIQUE
                                                                              : PANGO_STYLE_NORMAL);
    pango_font_description_set_stretch(font_, static_cast<PangoStretch>(std::clamp(stretch - 1, 0, 8)));
    const double px = std::isfinite(size) && size > 0.5f ? size : 0.5;
    pango_font_description_set_absolute_size(font_, std::min(px, 2000.0) * PANGO_SCALE);
}

TextFormat::~TextFormat() { pango_font_description_free(font_); }

int32_t TextFormat::SetTextAlignment(int32_t a) {
    if (a < MP1_TEXT_ALIGNMENT_LEADING || a > MP1_TEXT_ALIGNMENT_CENTER)
        return gmpi::MP_FAIL;
    textAlignment_ = a;
    return gmpi::MP_OK;
}

int32_t TextFormat::SetParagraphAlignment(int32_t a) {
    if (a < MP1_PARAGRAPH_ALIGNMENT_NEAR || a > MP1_PARAGRAPH_ALIGNMENT_CENTER)
        return gmpi::MP_FAIL;
    paragraphAlignment_ = a;
    return gmpi::MP_OK;
}

int32_t TextFormat::SetWordWrapping(int32_t w) {
    if (w != MP1_WORD_WRAPPING_WRAP && w != MP1_WORD_WRAPPING_NO_WRAP)
        return gmpi::MP_FAIL;
    wordWrapping_ = w;
    return gmpi::MP_OK;
}

int32_t TextFormat::SetLineSpacing(float lineSpacing, float) {
    lineSpacing_ = lineSpacing;
    return gmpi::MP_OK;
}

PangoLayout* TextFormat::layout(PangoContext* context, const char* text, int32_t length, double width) const {
    PangoLayout* l = pango_layout_new(context);
    pango_layout_set_font_description(l, font_);
    // Invalid UTF-8 is Pango's to refuse; hand it only what the length allows.
    const int32_t n = length < 0 ? static_cast<int32_t>(std::strlen(text)) : length;
    pango_layout_set_text(l, text, n);
    if (wordWrapping_ == MP1_WORD_WRAPPING_WRAP && width > 0) {
        // A width beyond what Pango's units hold wraps nothing: the same as no width.
        const double scaled = width * PANGO_SCALE;
        pango_layout_set_width(l, scaled < static_cast<double>(INT_MAX) ? static_cast<int>(scaled) : -1);
        pango_layout_set_wrap(l, PANGO_WRAP_WORD_CHAR);
        pango_layout_set_alignment(l, textAlignment_ == MP1_TEXT_ALIGNMENT_CENTER     ? PANGO_ALIGN_CENTER
                                      : textAlignment_ == MP1_TEXT_ALIGNMENT_TRAILING ? PANGO_ALIGN_RIGHT
                                                                                      : PANGO_ALIGN_LEFT);
    }
    if (lineSpacing_ > 0) {
        // Pango takes the pitch as a factor of the font's own line height.
        PangoFontMetrics* metrics = pango_context_get_metrics(context, font_, nullptr);
        const int natural = pango_font_metrics_get_height(metrics);
        if (natural > 0)
            pango_layout_set_line_spacing(l, lineSpacing_ * PANGO_SCALE / static_cast<float>(natural));
        pango_font_metrics_unref(metrics);
    }
    return l;
}

int32_t TextFormat::GetTextExtentU(const char* utf8String, int32_t stringLength, MP1_SIZE* returnSize) {
    if (!returnSize)
        return gmpi::MP_FAIL;
    *returnSize = {0, 0};
    if (!utf8String)
        return gmpi::MP_OK;
    PangoLayout* l = layout(measuringContext(), utf8String, stringLength, -1);
    PangoRectangle logical;
    pango_layout_get_extents(l, nullptr, &logical);
    *returnSize = {static_cast<float>(logical.width) / PANGO_SCALE, static_cast<float>(logical.height) / PANGO_SCALE};
    g_object_unref(l);
    return gmpi::MP_OK;
}

int32_t TextFormat::GetFontMetrics(MP1_FONT_METRICS* m) {
    if (!m)
        return gmpi::MP_FAIL;
    PangoFontMetrics* metrics = pango_context_get_metrics(measuringContext(), font_, nullptr);
    const float scale = 1.0f / PANGO_SCALE;
    m->ascent = pango_font_metrics_get_ascent(metrics) * scale;
    m->descent = pango_font_metrics_get_descent(metrics) * scale;
    m->lineGap = std::max(0.0f, pango_font_metrics_get_height(metrics) * scale - m->ascent - m->descent);
    m->capHeight = m->ascent * 0.7f;
    m->xHeight = m->ascent * 0.5f;
    m->underlinePosition = -pango_font_metrics_get_underline_position(metrics) * scale;
    m->underlineThickness = pango_font_metrics_get_underline_thickness(metrics) * scale;
    m->strikethroughPosition = pango_font_metrics_get_strikethrough_position(metrics) * scale;
    m->strikethroughThickness = pango_font_metrics_get_strikethrough_thickness(metrics) * scale;
    pango_font_metrics_unref(metrics);
    return gmpi::MP_OK;
}

void unitArc(cairo_t* cr, double a1, double a2, bool negative) {
    // Cairo's fixed-point coordinates end near 2^23 device units: beyond this radius a shape cannot be
    // drawn as it is anyway, only quickly.
    constexpr double kMostDeviceRadius = 1 << 22;
    double ux = 1, uy = 0, vx = 0, vy = 1;
    cairo_user_to_device_distance(cr, &ux, &uy);
    cairo_user_to_device_distance(cr, &vx, &vy);
    if (std::max(std::hypot(ux, uy), std::hypot(vx, vy)) <= kMostDeviceRadius) {
        (negative ? cairo_arc_negative : cairo_arc)(cr, 0, 0, 1, a1, a2);
        return;
    }
    if (!std::isfinite(a1) || !std::isfinite(a2))
        return;
    double sweep = a2 - a1;
    if (!negative && sweep < 0)
        sweep = std::fmod(sweep, 2 * M_PI) + 2 * M_PI;
    if (negative && sweep > 0)
        sweep = std::fmod(sweep, 2 * M_PI) - 2 * M_PI;
    sweep = std::clamp(sweep, -2 * M_PI, 2 * M_PI);
    const int pieces = std::max(1, static_cast<int>(std::ceil(std::fabs(sweep) / (M_PI / 2))));
    const double step = sweep / pieces, k = 4.0 / 3.0 * std::tan(step / 4);
    cairo_line_to(cr, std::cos(a1), std::sin(a1));  // a move when there is no current point
    for (int i = 0; i < pieces; ++i) {
        const double t0 = a1 + i * step, t1 = t0 + step;
        const double c0 = std::cos(t0), s0 = std::sin(t0), c1 = std::cos(t1), s1 = std::sin(t1);
        cairo_curve_to(cr, c0 - k * s0, s0 + k * c0, c1 + k * s1, s1 - k * c1, c1, s1);
    }
}

void TextFormat::draw(cairo_t* cr, const char* text, int32_t length, const MP1_RECT& rect) {
    PangoContext* context = pango_cairo_create_context(cr);
    pango_cairo_context_set_font_options(context, fontOptions());
    const double width = rect.right - rect.left, height = rect.bottom - rect.top;
    PangoLayout* l = layout(context, text, length, width);
    PangoRectangle logical;
    pango_layout_get_extents(l, nullptr, &logical);
    const double w = static_cast<double>(logical.width) / PANGO_SCALE;
    const double h = static_cast<double>(logical.height) / PANGO_SCALE;
    double x = rect.left, y = rect.top;
    if (pango_layout_get_width(l) < 0) {  // unwrapped: the host places the line itself
        if (textAlignment_ == MP1_TEXT_ALIGNMENT_CENTER)
            x += (width - w) / 2;
        else if (textAlignment_ == MP1_TEXT_ALIGNMENT_TRAILING)
            x += width - w;
    }
    if (paragraphAlignment_ == MP1_PARAGRAPH_ALIGNMENT_CENTER)
        y += (height - h) / 2;
    else if (paragraphAlignment_ == MP1_PARAGRAPH_ALIGNMENT_FAR)
        y += height - h;
    cairo_move_to(cr, x, y);
    pango_cairo_show_layout(cr, l);
    cairo_new_path(cr);
    g_object_unref(l);
    g_object_unref(context);
}

// ---- PathGeometry

namespace {

class GeometrySink final : public Object<IMpGeometrySink> {
public:
    explicit GeometrySink(PathGeometry* path) : Object({SE_IID_GEOMETRYSINK_MPGUI}), path_(path) { path_->addRef(); }
    ~GeometrySink() override { path_->release(); }

    void BeginFigure(MP1_POINT p, int32_t) override { add({PathGeometry::Command::Move, {p, {}, {}}, {}}); }
    void EndFigure(int32_t end) override {
        if (end == MP1_FIGURE_END_CLOSED)
            add({PathGeometry::Command::Close, {}, {}});
    }
    void AddLine(MP1_POINT p) override { add({PathGeometry::Command::Line, {p, {}, {}}, {}}); }
    void AddLines(const MP1_POINT* points, uint32_t count) override {
        for (uint32_t i = 0; points && i < count; ++i)
            AddLine(points[i]);
    }
    void AddBezier(const MP1_BEZIER_SEGMENT* b) override {
        if (b)
            add({PathGeometry::Command::Curve, {b->point1, b->point2, b->point3}, {}});
    }
    void AddQuadraticBezier(const MP1_QUADRATIC_BEZIER_SEGMENT* q) override {
        if (!q || path_->commands.empty())
            return;
        // Raised to a cubic from the current point.
        const MP1_POINT p0 = current();
        const MP1_POINT c1{p0.x + 2.0f / 3 * (q->point1.x - p0.x), p0.y + 2.0f / 3 * (q->point1.y - p0.y)};
        const MP1_POINT c2{q->point2.x + 2.0f / 3 * (q->point1.x - q->point2.x),
                           q->point2.y + 2.0f / 3 * (q->point1.y - q->point2.y)};
        add({PathGeometry::Command::Curve, {c1, c2, q->point2}, {}});
    }
    void AddArc(const MP1_ARC_SEGMENT* a) override {
        if (a)
            add({PathGeometry::Command::Arc, {current(), a->point, {}}, *a});
    }
    void SetFillMode(int32_t mode) override {
        if (!path_->closed)
            path_->fillMode = mode;
    }
    int32_t Close() override {
        path_->closed = true;
        return gmpi::MP_OK;
    }

private:
    void add(const PathGeometry::Command& c) {
        if (!path_->closed)
            path_->commands.push_back(c);
    }
    // The end point of the last segment (where the next one starts).
    MP1_POINT current() const {
        for (auto it = path_->commands.rbegin(); it != path_->commands.rend(); ++it) {
            switch (it->kind) {
                case PathGeometry::Command::Move:
                case PathGeometry::Command::Line:
                    return it->p[0];
                case PathGeometry::Command::Curve:
                    return it->p[2];
                case PathGeometry::Command::Arc:
                    return it->arc.point;
                case PathGeometry::Command::Close:
                    break;
            }
        }
        return {0, 0};
    }
    PathGeometry* path_;
};

// An endpoint-parameterised elliptical arc from p0 to arc.point, added to cr's path.
void addArc(cairo_t* cr, MP1_POINT p0, const MP1_ARC_SEGMENT& arc) {
    double rx = std::fabs(arc.size.width), ry = std::fabs(arc.size.height);
    const double x1 = p0.x, y1 = p0.y, x2 = arc.point.x, y2 = arc.point.y;
    if (rx < 1e-9 || ry < 1e-9 || (x1 == x2 && y1 == y2)) {
        cairo_line_to(cr, x2, y2);
        return;
    }
    const double phi = arc.rotationAngle * M_PI / 180.0, c = std::cos(phi), s = std::sin(phi);
    const double dx = (x1 - x2) / 2, dy = (y1 - y2) / 2;
    const double x1p = c * dx + s * dy, y1p = -s * dx + c * dy;
    const double lambda = (x1p * x1p) / (rx * rx) + (y1p * y1p) / (ry * ry);
    if (lambda > 1) {
        rx *= std::sqrt(lambda);
        ry *= std::sqrt(lambda);
    }
    const double num = rx * rx * ry * ry - rx * rx * y1p * y1p - ry * ry * x1p * x1p;
    const double den = rx * rx * y1p * y1p + ry * ry * x1p * x1p;
    double k = den > 0 ? std::sqrt(std::max(0.0, num / den)) : 0;
    const bool large = arc.arcSize == MP1_ARC_SIZE_LARGE, sweep = arc.sweepDirection == MP1_SWEEP_DIRECTION_CLOCKWISE;
    if (large == sweep)
        k = -k;
    const double cxp = k * rx * y1p / ry, cyp = -k * ry * x1p / rx;
    const double cx = c * cxp - s * cyp + (x1 + x2) / 2, cy = s * cxp + c * cyp + (y1 + y2) / 2;
    const double a1 = std::atan2((y1p - cyp) / ry, (x1p - cxp) / rx);
    double a2 = std::atan2((-y1p - cyp) / ry, (-x1p - cxp) / rx);
    // Screen coordinates grow downwards: clockwise is the increasing angle.
    if (sweep && a2 < a1)
        a2 += 2 * M_PI;
    if (!sweep && a2 > a1)
        a2 -= 2 * M_PI;
    cairo_save(cr);
    cairo_translate(cr, cx, cy);
    cairo_rotate(cr, phi);
    cairo_scale(cr, rx, ry);
    unitArc(cr, a1, a2, !sweep);
    cairo_restore(cr);
}

}  // namespace

PathGeometry::PathGeometry(IMpFactory* factory)
    : Object({SE_IID_PATHGEOMETRY_MPGUI, SE_IID_RESOURCE_MPGUI}), factory_(factory) {}

int32_t PathGeometry::getFactory(IMpFactory** returnFactory) {
    if (returnFactory)
        *returnFactory = factory_;
    return gmpi::MP_OK;
}

int32_t PathGeometry::Open(IMpGeometrySink** returnGeometrySink) {
    if (!returnGeometrySink)
        return gmpi::MP_FAIL;
    *returnGeometrySink = nullptr;
    if (opened)
        return gmpi::MP_FAIL;
    opened = true;
    *returnGeometrySink = new GeometrySink(this);
    return gmpi::MP_OK;
}

void PathGeometry::apply(cairo_t* cr) const {
    cairo_new_path(cr);
    for (const auto& c : commands) {
        switch (c.kind) {
            case Command::Move:
                cairo_move_to(cr, c.p[0].x, c.p[0].y);
                break;
            case Command::Line:
                cairo_line_to(cr, c.p[0].x, c.p[0].y);
                break;
            case Command::Curve:
                cairo_curve_to(cr, c.p[0].x, c.p[0].y, c.p[1].x, c.p[1].y, c.p[2].x, c.p[2].y);
                break;
            case Command::Arc:
                addArc(cr, c.p[0], c.arc);
                break;
            case Command::Close:
                cairo_close_path(cr);
                break;
        }
    }
    cairo_set_fill_rule(cr, fillMode == MP1_FILL_MODE_WINDING ? CAIRO_FILL_RULE_WINDING : CAIRO_FILL_RULE_EVEN_ODD);
}

// ---- Factory

namespace {

// Decodes an image file into RGBA bytes; null when it is missing or not an image stb can read.
struct Decoded {
    int width = 0, height = 0;
    unsigned char* rgba = nullptr;
    ~Decoded() { stbi_image_free(rgba); }
};

bool decode(const char* path, Decoded& out) {
    int channels = 0;
    out.rgba = path ? stbi_load(path, &out.width, &out.height, &channels, 4) : nullptr;
    return out.rgba && out.width > 0 && out.height > 0;
}

// RGBA (straight alpha) to a premultiplied ARGB32 surface; with a mask of the same size, the mask's
// brightness is the alpha instead.
cairo_surface_t* toSurface(const Decoded& image, const Decoded* mask) {
    cairo_surface_t* s = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, image.width, image.height);
    if (cairo_surface_status(s) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(s);
        return nullptr;
    }
    cairo_surface_flush(s);
    unsigned char* data = cairo_image_surface_get_data(s);
    const int stride = cairo_image_surface_get_stride(s);
    for (int y = 0; y < image.height; ++y) {
        auto* row = reinterpret_cast<uint32_t*>(data + static_cast<size_t>(y) * stride);
        for (int x = 0; x < image.width; ++x) {
            const unsigned char* p = image.rgba + (static_cast<size_t>(y) * image.width + x) * 4;
            uint32_t a = p[3];
            if (mask && x < mask->width && y < mask->height) {
                const unsigned char* m = mask->rgba + (static_cast<size_t>(y) * mask->width + x) * 4;
                a = (static_cast<uint32_t>(m[0]) + m[1] + m[2]) / 3;
            }
            const uint32_t r = (p[0] * a + 127) / 255, g = (p[1] * a + 127) / 255, b = (p[2] * a + 127) / 255;
            row[x] = (a << 24) | (r << 16) | (g << 8) | b;
        }
    }
    cairo_surface_mark_dirty(s);
    return s;
}

}  // namespace

int32_t Factory::queryInterface(const gmpi::MpGuid& iid, void** returnInterface) {
    if (!returnInterface)
        return gmpi::MP_NOSUPPORT;
    *returnInterface = nullptr;
    if (gmpi::isUnknownIid(iid) || iid == SE_IID_FACTORY_MPGUI || iid == SE_IID_FACTORY2_MPGUI) {
        *returnInterface = static_cast<IMpFactory2*>(this);
        return gmpi::MP_OK;
    }
    return gmpi::MP_NOSUPPORT;
}

int32_t Factory::CreatePathGeometry(IMpPathGeometry** returnPathGeometry) {
    if (!returnPathGeometry)
        return gmpi::MP_FAIL;
    *returnPathGeometry = new PathGeometry(this);
    return gmpi::MP_OK;
}

int32_t Factory::CreateTextFormat(const char* fontFamilyName, int32_t fontWeight, int32_t fontStyle,
                                  int32_t fontStretch, float fontSize, IMpTextFormat** returnTextFormat) {
    return CreateTextFormat2(&fontFamilyName, fontFamilyName ? 1 : 0, fontWeight, fontStyle, fontStretch, fontSize,
                             returnTextFormat);
}

int32_t Factory::CreateTextFormat2(const char* const* fontFamilyNames, int32_t familyCount, int32_t fontWeight,
                                   int32_t fontStyle, int32_t fontStretch, float fontSize,
                                   IMpTextFormat** returnTextFormat) {
    if (!returnTextFormat)
        return gmpi::MP_FAIL;
    // Pango takes a comma-separated family list and falls back through it, then to its default face.
    std::string families;
    for (int32_t i = 0; fontFamilyNames && i < familyCount; ++i) {
        if (!fontFamilyNames[i] || !*fontFamilyNames[i])
            continue;
        if (!families.empty())
            families += ',';
        families += fontFamilyNames[i];
    }
    if (families.empty())
        families = "sans-serif";
    *returnTextFormat = new TextFormat(families, fontWeight, fontStyle, fontStretch, fontSize);
    return gmpi::MP_OK;
}

int32_t Factory::CreateImage(int32_t width, int32_t height, IMpBitmap** returnBitmap) {
    if (!returnBitmap)
        return gmpi::MP_FAIL;
    *returnBitmap = nullptr;
    if (width <= 0 || height <= 0 || width > 32767 || height > 32767)
        return gmpi::MP_FAIL;
    cairo_surface_t* s = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    if (cairo_surface_status(s) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(s);
        return gmpi::MP_FAIL;
    }
    *returnBitmap = new Bitmap(this, s);
    return gmpi::MP_OK;
}

int32_t Factory::LoadImageU(const char* utf8Uri, IMpBitmap** returnBitmap) {
    return LoadImageWithMaskU(utf8Uri, nullptr, returnBitmap);
}

int32_t Factory::LoadImageWithMaskU(const char* utf8Uri, const char* utf8MaskUri, IMpBitmap** returnBitmap) {
    if (!returnBitmap)
        return gmpi::MP_FAIL;
    *returnBitmap = nullptr;
    if (!utf8Uri)
        return gmpi::MP_FAIL;
    loads.push_back(utf8Uri);
    Decoded image, mask;
    if (!decode(utf8Uri, image))
        return gmpi::MP_FAIL;
    const bool masked = utf8MaskUri && decode(utf8MaskUri, mask);
    cairo_surface_t* s = toSurface(image, masked ? &mask : nullptr);
    if (!s)
        return gmpi::MP_FAIL;
    *returnBitmap = new Bitmap(this, s);
    return gmpi::MP_OK;
}

}  // namespace kxhost::draw
