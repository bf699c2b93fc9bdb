// The device context and the brushes it makes.
#include <algorithm>
#include <cmath>

#include "render/Drawing.h"

namespace kxhost::draw {

namespace {

void setColor(cairo_pattern_t* p, double offset, const MP1_COLOR& c, float opacity) {
    cairo_pattern_add_color_stop_rgba(p, offset, toSrgb(c.r), toSrgb(c.g), toSrgb(c.b),
                                      std::clamp(static_cast<double>(c.a) * opacity, 0.0, 1.0));
}

cairo_matrix_t toCairo(const MP1_MATRIX_3X2& m) {
    cairo_matrix_t c;
    cairo_matrix_init(&c, m._11, m._12, m._21, m._22, m._31, m._32);
    return c;
}

// The pattern matrix maps user space to pattern space: the inverse of the brush's transform (an
// uninvertible transform is treated as the identity).
void applyBrushTransform(cairo_pattern_t* p, const MP1_BRUSH_PROPERTIES* props, const cairo_matrix_t* extra = nullptr) {
    cairo_matrix_t inverse;
    cairo_matrix_init_identity(&inverse);
    if (props) {
        inverse = toCairo(props->transform);
        if (cairo_matrix_invert(&inverse) != CAIRO_STATUS_SUCCESS)
            cairo_matrix_init_identity(&inverse);
    }
    if (extra)
        cairo_matrix_multiply(&inverse, &inverse, extra);
    cairo_pattern_set_matrix(p, &inverse);
}

class SolidBrush final : public Object<IMpSolidColorBrush>, public Brush {
public:
    SolidBrush(IMpFactory* f, const MP1_COLOR& c)
        : Object({SE_IID_SOLIDCOLORBRUSH_MPGUI, SE_IID_BRUSH_MPGUI, SE_IID_RESOURCE_MPGUI}), factory_(f) {
        SetColor(&c);
    }
    ~SolidBrush() override { cairo_pattern_destroy(pattern_); }
    int32_t getFactory(IMpFactory** f) override { return f ? (*f = factory_, gmpi::MP_OK) : gmpi::MP_FAIL; }
    void SetColor(const MP1_COLOR* c) override {
        if (!c)
            return;
        color_ = *c;
        if (pattern_)
            cairo_pattern_destroy(pattern_);
        pattern_ = cairo_pattern_create_rgba(toSrgb(c->r), toSrgb(c->g), toSrgb(c->b), std::clamp(c->a, 0.0f, 1.0f));
    }
    MP1_COLOR GetColor() override { return color_; }
    cairo_pattern_t* pattern() override { return pattern_; }

private:
    IMpFactory* factory_;
    MP1_COLOR color_{};
    cairo_pattern_t* pattern_ = nullptr;
};

class Stops final : public Object<IMpGradientStopCollection> {
public:
    Stops(IMpFactory* f, const MP1_GRADIENT_STOP* s, uint32_t n)
        : Object({SE_IID_GRADIENTSTOPCOLLECTION_MPGUI, SE_IID_RESOURCE_MPGUI}), factory_(f), stops(s, s + n) {}
    int32_t getFactory(IMpFactory** f) override { return f ? (*f = factory_, gmpi::MP_OK) : gmpi::MP_FAIL; }

private:
    IMpFactory* factory_;

public:
    std::vector<MP1_GRADIENT_STOP> stops;
};

// Shared by both gradient kinds: the stops and brush properties, and a pattern rebuilt on change.
class GradientBase : public Brush {
public:
    GradientBase(const Stops& stops, const MP1_BRUSH_PROPERTIES* props)
        : stops_(stops.stops), props_(props ? *props : MP1_BRUSH_PROPERTIES{1.0f, {1, 0, 0, 1, 0, 0}}) {}
    ~GradientBase() override {
        if (pattern_)
            cairo_pattern_destroy(pattern_);
    }
    cairo_pattern_t* pattern() override {
        if (!pattern_) {
            pattern_ = build();
            for (const auto& s : stops_)
                setColor(pattern_, std::clamp(s.position, 0.0f, 1.0f), s.color, props_.opacity);
        }
        return pattern_;
    }

protected:
    virtual cairo_pattern_t* build() = 0;
    void changed() {
        if (pattern_)
            cairo_pattern_destroy(pattern_);
        pattern_ = nullptr;
    }
    std::vector<MP1_GRADIENT_STOP> stops_;
    MP1_BRUSH_PROPERTIES props_;

private:
    cairo_pattern_t* pattern_ = nullptr;
};

class LinearBrush final : public Object<IMpLinearGradientBrush>, public GradientBase {
public:
    LinearBrush(IMpFactory* f, const MP1_LINEAR_GRADIENT_BRUSH_PROPERTIES& p, const MP1_BRUSH_PROPERTIES* b,
                const Stops& s)
        : Object({SE_IID_LINEARGRADIENTBRUSH_MPGUI, SE_IID_BRUSH_MPGUI, SE_IID_RESOURCE_MPGUI}),
          GradientBase(s, b),
          factory_(f),
          shape_(p) {}
    int32_t getFactory(IMpFactory** f) override { return f ? (*f = factory_, gmpi::MP_OK) : gmpi::MP_FAIL; }
    void SetStartPoint(MP1_POINT p) override { shape_.startPoint = p, changed(); }
    void SetEndPoint(MP1_POINT p) override { shape_.endPoint = p, changed(); }

private:
    cairo_pattern_t* build() override {
        cairo_pattern_t* p =
            cairo_pattern_create_linear(shape_.startPoint.x, shape_.startPoint.y, shape_.endPoint.x, shape_.endPoint.y);
        applyBrushTransform(p, &props_);
        cairo_pattern_set_extend(p, CAIRO_EXTEND_PAD);
        return p;
    }
    IMpFactory* factory_;
    MP1_LINEAR_GRADIENT_BRUSH_PROPERTIES shape_;
};

class RadialBrush final : public Object<IMpRadialGradientBrush>, public GradientBase {
public:
    RadialBrush(IMpFactory* f, const MP1_RADIAL_GRADIENT_BRUSH_PROPERTIES& p, const MP1_BRUSH_PROPERTIES* b,
                const Stops& s)
        : Object({SE_IID_RADIALGRADIENTBRUSH_MPGUI, SE_IID_BRUSH_MPGUI, SE_IID_RESOURCE_MPGUI}),
          GradientBase(s, b),
          factory_(f),
          shape_(p) {}
    int32_t getFactory(IMpFactory** f) override { return f ? (*f = factory_, gmpi::MP_OK) : gmpi::MP_FAIL; }
    void SetCenter(MP1_POINT p) override { shape_.center = p, changed(); }
    void SetGradientOriginOffset(MP1_POINT p) override { shape_.gradientOriginOffset = p, changed(); }
    void SetRadiusX(float r) override { shape_.radiusX = r, changed(); }
    void SetRadiusY(float r) override { shape_.radiusY = r, changed(); }

private:
    cairo_pattern_t* build() override {
        const double cx = shape_.center.x, cy = shape_.center.y;
        const double rx = std::max(std::fabs(shape_.radiusX), 1e-3f), ry = std::max(std::fabs(shape_.radiusY), 1e-3f);
        cairo_pattern_t* p = cairo_pattern_create_radial(cx + shape_.gradientOriginOffset.x,
                                                         cy + shape_.gradientOriginOffset.y, 0, cx, cy, rx);
        // An ellipse is a circle of radius rx in a space squeezed vertically by rx / ry about the centre.
        cairo_matrix_t squeeze;
        cairo_matrix_init(&squeeze, 1, 0, 0, rx / ry, 0, cy - cy * rx / ry);
        applyBrushTransform(p, &props_, &squeeze);
        cairo_pattern_set_extend(p, CAIRO_EXTEND_PAD);
        return p;
    }
    IMpFactory* factory_;
    MP1_RADIAL_GRADIENT_BRUSH_PROPERTIES shape_;
};

template <class T>
bool finite(const T& v) {
    return std::isfinite(v);
}

}  // namespace

DeviceContext::DeviceContext(IMpFactory* factory, cairo_t* cr)
    : Object({SE_IID_DEVICECONTEXT_MPGUI, SE_IID_BITMAP_RENDERTARGET_MPGUI}),
      factory_(factory),
      cr_(cairo_reference(cr)) {
    cairo_get_matrix(cr_, &base_);
    cairo_save(cr_);
}

DeviceContext::DeviceContext(IMpFactory* factory, int32_t width, int32_t height)
    : Object({SE_IID_DEVICECONTEXT_MPGUI, SE_IID_BITMAP_RENDERTARGET_MPGUI}), factory_(factory) {
    ownSurface_ = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, std::max(width, 1), std::max(height, 1));
    cr_ = cairo_create(ownSurface_);
    cairo_get_matrix(cr_, &base_);
    cairo_save(cr_);
}

DeviceContext::~DeviceContext() {
    while (clipDepth_ > 0)
        PopAxisAlignedClip();
    cairo_restore(cr_);
    cairo_destroy(cr_);
    if (ownSurface_)
        cairo_surface_destroy(ownSurface_);
}

void DeviceContext::GetFactory(IMpFactory** returnFactory) {
    if (returnFactory)
        *returnFactory = factory_;
}

bool DeviceContext::setSource(IMpBrush* brush) {
    Brush* b = impl<Brush>(brush);
    if (!b) {
        cairo_new_path(cr_);
        return false;
    }
    cairo_set_source(cr_, b->pattern());
    return true;
}

void DeviceContext::fill(IMpBrush* brush) {
    if (setSource(brush))
        cairo_fill(cr_);
}

void DeviceContext::stroke(IMpBrush* brush, float width) {
    if (!setSource(brush))
        return;
    cairo_set_line_width(cr_, finite(width) && width > 0 ? width : 1.0);
    cairo_set_line_cap(cr_, CAIRO_LINE_CAP_BUTT);
    cairo_stroke(cr_);
}

void DeviceContext::DrawRectangle(const MP1_RECT* r, IMpBrush* brush, float strokeWidth) {
    if (!r)
        return;
    cairo_rectangle(cr_, r->left, r->top, r->right - r->left, r->bottom - r->top);
    stroke(brush, strokeWidth);
}

void DeviceContext::FillRectangle(const MP1_RECT* r, IMpBrush* brush) {
    if (!r)
        return;
    cairo_rectangle(cr_, r->left, r->top, r->right - r->left, r->bottom - r->top);
    fill(brush);
}

void DeviceContext::roundedRectPath(const MP1_ROUNDED_RECT& rr) {
    const MP1_RECT& r = rr.rect;
    const double w = r.right - r.left, h = r.bottom - r.top;
    const double rx = std::clamp(static_cast<double>(rr.radiusX), 0.0, std::fabs(w) / 2);
    const double ry = std::clamp(static_cast<double>(rr.radiusY), 0.0, std::fabs(h) / 2);
    if (rx <= 0 || ry <= 0) {
        cairo_rectangle(cr_, r.left, r.top, w, h);
        return;
    }
    auto corner = [&](double cx, double cy, double a0) {
        cairo_save(cr_);
        cairo_translate(cr_, cx, cy);
        cairo_scale(cr_, rx, ry);
        unitArc(cr_, a0, a0 + M_PI / 2);
        cairo_restore(cr_);
    };
    cairo_new_sub_path(cr_);
    corner(r.right - rx, r.top + ry, -M_PI / 2);
    corner(r.right - rx, r.bottom - ry, 0);
    corner(r.left + rx, r.bottom - ry, M_PI / 2);
    corner(r.left + rx, r.top + ry, M_PI);
    cairo_close_path(cr_);
}

void DeviceContext::DrawRoundedRectangle(const MP1_ROUNDED_RECT* r, IMpBrush* brush, float strokeWidth) {
    if (!r)
        return;
    roundedRectPath(*r);
    stroke(brush, strokeWidth);
}

void DeviceContext::FillRoundedRectangle(const MP1_ROUNDED_RECT* r, IMpBrush* brush) {
    if (!r)
        return;
    roundedRectPath(*r);
    fill(brush);
}

namespace {
void ellipsePath(cairo_t* cr, const MP1_ELLIPSE& e) {
    const double rx = std::fabs(e.radiusX), ry = std::fabs(e.radiusY);
    cairo_new_sub_path(cr);
    if (rx <= 0 || ry <= 0 || !std::isfinite(rx) || !std::isfinite(ry))
        return;
    cairo_save(cr);
    cairo_translate(cr, e.point.x, e.point.y);
    cairo_scale(cr, rx, ry);
    unitArc(cr, 0, 2 * M_PI);
    cairo_restore(cr);
    cairo_close_path(cr);
}
}  // namespace

void DeviceContext::DrawEllipse(const MP1_ELLIPSE* e, IMpBrush* brush, float strokeWidth) {
    if (!e)
        return;
    ellipsePath(cr_, *e);
    stroke(brush, strokeWidth);
}

void DeviceContext::FillEllipse(const MP1_ELLIPSE* e, IMpBrush* brush) {
    if (!e)
        return;
    ellipsePath(cr_, *e);
    fill(brush);
}

void DeviceContext::DrawLine(MP1_POINT p0, MP1_POINT p1, IMpBrush* brush, float strokeWidth) {
    cairo_move_to(cr_, p0.x, p0.y);
    cairo_line_to(cr_, p1.x, p1.y);
    stroke(brush, strokeWidth);
}

void DeviceContext::DrawGeometry(IMpPathGeometry* geometry, IMpBrush* brush, float strokeWidth) {
    if (PathGeometry* g = impl<PathGeometry>(geometry)) {
        g->apply(cr_);
        stroke(brush, strokeWidth);
    }
}

void DeviceContext::FillGeometry(IMpPathGeometry* geometry, IMpBrush* brush) {
    if (PathGeometry* g = impl<PathGeometry>(geometry)) {
        g->apply(cr_);
        fill(brush);
    }
}

void DeviceContext::DrawTextU(const char* utf8String, int32_t stringLength, IMpTextFormat* textFormat,
                              const MP1_RECT* layoutRect, IMpBrush* brush, int32_t options) {
    TextFormat* format = impl<TextFormat>(textFormat);
    if (!utf8String || !format || !layoutRect || !setSource(brush))
        return;
    const bool clip = (options & MP1_DRAW_TEXT_OPTIONS_CLIP) != 0;
    cairo_save(cr_);
    if (clip) {
        const MP1_RECT& r = *layoutRect;
        cairo_rectangle(cr_, r.left, r.top, r.right - r.left, r.bottom - r.top);
        cairo_clip(cr_);
    }
    format->draw(cr_, utf8String, stringLength, *layoutRect);
    cairo_restore(cr_);
}

void DeviceContext::DrawBitmap(IMpBitmap* bitmap, const MP1_RECT* dest, float opacity, int32_t interpolationMode,
                               const MP1_RECT* source) {
    Bitmap* b = impl<Bitmap>(bitmap);
    if (!b)
        return;
    const MP1_SIZE size = b->GetSizeF();
    MP1_RECT src = source ? *source : MP1_RECT{0, 0, size.width, size.height};
    // Only the part of the source inside the bitmap is drawn; a strip's neighbouring frames never bleed
    // in, because the source is cut out as a surface of its own.
    src.left = std::max(src.left, 0.0f);
    src.top = std::max(src.top, 0.0f);
    src.right = std::min(src.right, size.width);
    src.bottom = std::min(src.bottom, size.height);
    const double sw = src.right - src.left, sh = src.bottom - src.top;
    if (!(sw > 0 && sh > 0))
        return;
    const MP1_RECT d = dest ? *dest : MP1_RECT{0, 0, static_cast<float>(sw), static_cast<float>(sh)};
    const double dw = d.right - d.left, dh = d.bottom - d.top;
    if (!(std::fabs(dw) > 0 && std::fabs(dh) > 0) || !std::isfinite(dw) || !std::isfinite(dh))
        return;
    cairo_surface_t* part = cairo_surface_create_for_rectangle(b->surface(), src.left, src.top, sw, sh);
    cairo_save(cr_);
    cairo_translate(cr_, d.left, d.top);
    cairo_scale(cr_, dw / sw, dh / sh);
    cairo_set_source_surface(cr_, part, 0, 0);
    cairo_pattern_set_filter(cairo_get_source(cr_), interpolationMode == MP1_BITMAP_INTERPOLATION_MODE_NEAREST_NEIGHBOR
                                                        ? CAIRO_FILTER_NEAREST
                                                        : CAIRO_FILTER_BILINEAR);
    cairo_pattern_set_extend(cairo_get_source(cr_), CAIRO_EXTEND_PAD);
    cairo_rectangle(cr_, 0, 0, sw, sh);
    cairo_clip(cr_);
    cairo_paint_with_alpha(cr_, std::clamp(static_cast<double>(opacity), 0.0, 1.0));
    cairo_restore(cr_);
    cairo_surface_destroy(part);
}

void DeviceContext::SetTransform(const MP1_MATRIX_3X2* transform) {
    if (!transform)
        return;
    cairo_matrix_t m = toCairo(*transform);
    cairo_matrix_t inverse = m;
    if (cairo_matrix_invert(&inverse) != CAIRO_STATUS_SUCCESS)
        return;  // Cairo cannot draw through a degenerate transform; the previous one stays
    transform_ = *transform;
    cairo_matrix_multiply(&m, &m, &base_);
    cairo_set_matrix(cr_, &m);
}

void DeviceContext::GetTransform(MP1_MATRIX_3X2* returnTransform) {
    if (returnTransform)
        *returnTransform = transform_;
}

int32_t DeviceContext::CreateSolidColorBrush(const MP1_COLOR* color, IMpSolidColorBrush** out) {
    if (!out)
        return gmpi::MP_FAIL;
    *out = color ? new SolidBrush(factory_, *color) : nullptr;
    return *out ? gmpi::MP_OK : gmpi::MP_FAIL;
}

int32_t DeviceContext::CreateGradientStopCollection(const MP1_GRADIENT_STOP* stops, uint32_t count,
                                                    IMpGradientStopCollection** out) {
    if (!out)
        return gmpi::MP_FAIL;
    *out = nullptr;
    if (!stops || count == 0 || count > 4096)
        return gmpi::MP_FAIL;
    *out = new Stops(factory_, stops, count);
    return gmpi::MP_OK;
}

namespace {

// A gradient brush of the host's own stops; the shape comes from the module.
template <class GradientBrush, class Shape, class Face>
int32_t createGradient(IMpFactory* factory, const Shape* shape, const MP1_BRUSH_PROPERTIES* brushProps,
                       IMpGradientStopCollection* collection, Face** out) {
    if (!out)
        return gmpi::MP_FAIL;
    *out = nullptr;
    Stops* stops = impl<Stops>(collection);
    if (!shape || !stops)
        return gmpi::MP_FAIL;
    *out = new GradientBrush(factory, *shape, brushProps, *stops);
    return gmpi::MP_OK;
}

}  // namespace

int32_t DeviceContext::CreateLinearGradientBrush(const MP1_LINEAR_GRADIENT_BRUSH_PROPERTIES* props,
                                                 const MP1_BRUSH_PROPERTIES* brushProps,
                                                 IMpGradientStopCollection* collection, IMpLinearGradientBrush** out) {
    return createGradient<LinearBrush>(factory_, props, brushProps, collection, out);
}

int32_t DeviceContext::CreateRadialGradientBrush(const MP1_RADIAL_GRADIENT_BRUSH_PROPERTIES* props,
                                                 const MP1_BRUSH_PROPERTIES* brushProps,
                                                 IMpGradientStopCollection* collection, IMpRadialGradientBrush** out) {
    return createGradient<RadialBrush>(factory_, props, brushProps, collection, out);
}

int32_t DeviceContext::CreateCompatibleRenderTarget(const MP1_SIZE* desiredSize, IMpBitmapRenderTarget** out) {
    if (!out)
        return gmpi::MP_FAIL;
    *out = nullptr;
    if (!desiredSize || !(desiredSize->width >= 1 && desiredSize->width <= 16384) ||
        !(desiredSize->height >= 1 && desiredSize->height <= 16384))
        return gmpi::MP_FAIL;
    *out = new DeviceContext(factory_, static_cast<int32_t>(std::ceil(desiredSize->width)),
                             static_cast<int32_t>(std::ceil(desiredSize->height)));
    return gmpi::MP_OK;
}

void DeviceContext::PushAxisAlignedClip(const MP1_RECT* r) {
    if (!r)
        return;
    cairo_save(cr_);
    cairo_rectangle(cr_, r->left, r->top, r->right - r->left, r->bottom - r->top);
    cairo_clip(cr_);
    ++clipDepth_;
}

void DeviceContext::PopAxisAlignedClip() {
    if (clipDepth_ == 0)
        return;
    // Restoring would also bring back the transform of the push: keep the current one.
    cairo_matrix_t now;
    cairo_get_matrix(cr_, &now);
    cairo_restore(cr_);
    cairo_set_matrix(cr_, &now);
    --clipDepth_;
}

void DeviceContext::GetAxisAlignedClip(MP1_RECT* r) {
    if (!r)
        return;
    double x1, y1, x2, y2;
    cairo_clip_extents(cr_, &x1, &y1, &x2, &y2);
    *r = {static_cast<float>(x1), static_cast<float>(y1), static_cast<float>(x2), static_cast<float>(y2)};
}

void DeviceContext::Clear(const MP1_COLOR* c) {
    if (!c)
        return;
    cairo_save(cr_);
    cairo_set_operator(cr_, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_rgba(cr_, toSrgb(c->r), toSrgb(c->g), toSrgb(c->b), std::clamp(c->a, 0.0f, 1.0f));
    cairo_paint(cr_);
    cairo_restore(cr_);
}

int32_t DeviceContext::EndDraw() {
    while (clipDepth_ > 0)
        PopAxisAlignedClip();
    cairo_surface_flush(cairo_get_target(cr_));
    return gmpi::MP_OK;
}

int32_t DeviceContext::GetBitmap(IMpBitmap** returnBitmap) {
    if (!returnBitmap)
        return gmpi::MP_FAIL;
    *returnBitmap = nullptr;
    if (!ownSurface_)
        return gmpi::MP_FAIL;
    cairo_surface_flush(ownSurface_);
    const int w = cairo_image_surface_get_width(ownSurface_), h = cairo_image_surface_get_height(ownSurface_);
    cairo_surface_t* copy = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, w, h);
    cairo_t* cr = cairo_create(copy);
    cairo_set_source_surface(cr, ownSurface_, 0, 0);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_paint(cr);
    cairo_destroy(cr);
    *returnBitmap = new Bitmap(factory_, copy);
    return gmpi::MP_OK;
}

}  // namespace kxhost::draw
