// Thin value wrappers over the host's drawing interfaces. Geometry and colour wrappers add arithmetic;
// object wrappers hold one counted reference each (copying adds one, destruction releases it) and a
// default-constructed wrapper holds null and tests false. Operations on a null wrapper do nothing and
// return empty results, so a module drawing before its host is ready draws nothing rather than crashing.
#pragma once

#include <cstdint>
#include <cwchar>
#include <string>
#include <string_view>
#include <vector>

#include "ColorTables.h"
#include "MpCountedPtr.h"
#include "gmpi/IMpBitmap.h"
#include "gmpi/IMpBrush.h"
#include "gmpi/IMpDeviceContext.h"
#include "gmpi/IMpDrawingFactory.h"
#include "gmpi/IMpPathGeometry.h"
#include "gmpi/IMpTextFormat.h"
#include "gmpi/MpDrawingTypes.h"

namespace GmpiDrawing {

using GmpiDrawing_API::MP1_COLOR;
using GmpiDrawing_API::MP1_POINT;
using GmpiDrawing_API::MP1_RECT;
using GmpiDrawing_API::MP1_SIZE;
using GmpiDrawing_API::MP1_SIZE_U;

template <class T>
struct SizeBase {
    T width{};
    T height{};

    constexpr SizeBase() = default;
    constexpr SizeBase(T w, T h) : width(w), height(h) {}
    constexpr SizeBase(MP1_SIZE s) : width(static_cast<T>(s.width)), height(static_cast<T>(s.height)) {}
    constexpr SizeBase(MP1_SIZE_U s) : width(static_cast<T>(s.width)), height(static_cast<T>(s.height)) {}
    constexpr operator MP1_SIZE() const { return {static_cast<float>(width), static_cast<float>(height)}; }
    constexpr bool operator==(const SizeBase&) const = default;
};
using Size = SizeBase<float>;
using SizeU = SizeBase<uint32_t>;

template <class T>
struct PointBase {
    T x{};
    T y{};

    constexpr PointBase() = default;
    constexpr PointBase(T px, T py) : x(px), y(py) {}
    constexpr PointBase(MP1_POINT p) : x(static_cast<T>(p.x)), y(static_cast<T>(p.y)) {}
    constexpr operator MP1_POINT() const { return {static_cast<float>(x), static_cast<float>(y)}; }
    constexpr bool operator==(const PointBase&) const = default;

    constexpr PointBase operator+(PointBase o) const { return {x + o.x, y + o.y}; }
    constexpr PointBase operator-(PointBase o) const { return {x - o.x, y - o.y}; }
    constexpr PointBase operator+(SizeBase<T> s) const { return {x + s.width, y + s.height}; }
    constexpr PointBase operator-(SizeBase<T> s) const { return {x - s.width, y - s.height}; }
};
using Point = PointBase<float>;

template <class T>
struct RectBase {
    T left{};
    T top{};
    T right{};
    T bottom{};

    constexpr RectBase() = default;
    constexpr RectBase(T l, T t, T r, T b) : left(l), top(t), right(r), bottom(b) {}
    constexpr RectBase(MP1_RECT r)
        : left(static_cast<T>(r.left)),
          top(static_cast<T>(r.top)),
          right(static_cast<T>(r.right)),
          bottom(static_cast<T>(r.bottom)) {}
    constexpr RectBase(PointBase<T> topLeft, SizeBase<T> size)
        : left(topLeft.x), top(topLeft.y), right(topLeft.x + size.width), bottom(topLeft.y + size.height) {}
    constexpr operator MP1_RECT() const {
        return {static_cast<float>(left), static_cast<float>(top), static_cast<float>(right),
                static_cast<float>(bottom)};
    }
    constexpr bool operator==(const RectBase&) const = default;

    constexpr T getWidth() const { return right - left; }
    constexpr T getHeight() const { return bottom - top; }
    constexpr SizeBase<T> getSize() const { return {getWidth(), getHeight()}; }
    constexpr PointBase<T> getCenter() const { return {(left + right) / 2, (top + bottom) / 2}; }
    constexpr PointBase<T> getTopLeft() const { return {left, top}; }
    constexpr bool ContainsPoint(PointBase<T> p) const {
        return left <= p.x && p.x < right && top <= p.y && p.y < bottom;
    }

    constexpr void Offset(T dx, T dy) {
        left += dx;
        right += dx;
        top += dy;
        bottom += dy;
    }
    constexpr void Offset(SizeBase<T> s) { Offset(s.width, s.height); }
    // Moves every edge inwards (negative: outwards).
    constexpr void Deflate(T dx, T dy) {
        left += dx;
        right -= dx;
        top += dy;
        bottom -= dy;
    }
    constexpr void Inflate(T dx, T dy) { Deflate(-dx, -dy); }
};
using Rect = RectBase<float>;

struct Matrix3x2 : GmpiDrawing_API::MP1_MATRIX_3X2 {
    constexpr Matrix3x2() : MP1_MATRIX_3X2{1, 0, 0, 1, 0, 0} {}
    constexpr Matrix3x2(const MP1_MATRIX_3X2& m) : MP1_MATRIX_3X2(m) {}
    constexpr Matrix3x2(float m11, float m12, float m21, float m22, float m31, float m32)
        : MP1_MATRIX_3X2{m11, m12, m21, m22, m31, m32} {}

    static constexpr Matrix3x2 Identity() { return {}; }
    static constexpr Matrix3x2 Translation(float dx, float dy) { return {1, 0, 0, 1, dx, dy}; }
    static constexpr Matrix3x2 Scale(float sx, float sy) { return {sx, 0, 0, sy, 0, 0}; }
    // This transform followed by other.
    constexpr Matrix3x2 operator*(const Matrix3x2& o) const {
        return {_11 * o._11 + _12 * o._21, _11 * o._12 + _12 * o._22,         _21 * o._11 + _22 * o._21,
                _21 * o._12 + _22 * o._22, _31 * o._11 + _32 * o._21 + o._31, _31 * o._12 + _32 * o._22 + o._32};
    }
    constexpr Point TransformPoint(Point p) const { return {p.x * _11 + p.y * _21 + _31, p.x * _12 + p.y * _22 + _32}; }
};

// A linear-light colour. Colours given as 8-bit sRGB go through the sRGB table; alpha is linear.
class Color : public MP1_COLOR {
public:
    constexpr Color() : MP1_COLOR{0, 0, 0, 0} {}
    constexpr Color(const MP1_COLOR& c) : MP1_COLOR(c) {}
    constexpr Color(float r, float g, float b, float a = 1.0f) : MP1_COLOR{r, g, b, a} {}

    // From 8-bit sRGB components; alpha = byte x 0.003921569.
    static Color FromBytes(uint8_t r, uint8_t g, uint8_t b, uint8_t a = 255) {
        return {se_sdk::srgbToLinear(r), se_sdk::srgbToLinear(g), se_sdk::srgbToLinear(b), a * 0.003921569f};
    }
    // From 0xAARRGGBB as colour pins carry it.
    static Color FromArgb(uint32_t argb) {
        return FromBytes(static_cast<uint8_t>(argb >> 16), static_cast<uint8_t>(argb >> 8), static_cast<uint8_t>(argb),
                         static_cast<uint8_t>(argb >> 24));
    }
    // From 0xRRGGBB, opaque.
    static Color FromRgb(uint32_t rgb) { return FromArgb(0xFF000000u | rgb); }
    // From the hexadecimal AARRGGBB text a colour pin carries, read as the C library's wcstoul reads base
    // 16 (leading space, a sign and "0x" allowed; reading stops at the first other character), so text
    // that is not hexadecimal gives transparent black.
    static Color FromArgbText(const std::wstring& text);
    // A colour pin's colour: empty text stands for the widget's own default, whenEmpty.
    static Color FromArgbText(const std::wstring& text, const Color& whenEmpty) {
        return text.empty() ? whenEmpty : FromArgbText(text);
    }
};

// A gradient of two or more stops.
using GradientStops = std::vector<GmpiDrawing_API::MP1_GRADIENT_STOP>;

// Base of the object wrappers: one counted reference to a host object of interface I.
template <class I>
class ObjectWrapper {
public:
    ObjectWrapper() = default;
    // Shares a borrowed pointer (adds a reference).
    explicit ObjectWrapper(I* borrowed) : p_(borrowed) {}

    I* Get() const { return p_.get(); }
    bool isNull() const { return !p_; }
    explicit operator bool() const { return static_cast<bool>(p_); }
    // The address an out-parameter fills with an owned reference (what was held is released first).
    I** GetAddressOf() { return p_.put(); }

protected:
    gmpi_sdk::mp_shared_ptr<I> p_;
};

class BitmapPixels : public ObjectWrapper<GmpiDrawing_API::IMpBitmapPixels> {
public:
    using ObjectWrapper::ObjectWrapper;

    uint8_t* getAddress() const { return p_ ? p_->getAddress() : nullptr; }
    int32_t getBytesPerRow() const { return p_ ? p_->getBytesPerRow() : 0; }
};

class Factory;

class Bitmap : public ObjectWrapper<GmpiDrawing_API::IMpBitmap> {
public:
    using ObjectWrapper::ObjectWrapper;

    SizeU GetSize() const {
        MP1_SIZE_U s{0, 0};
        if (p_)
            p_->GetSize(&s);
        return s;
    }
    Size GetSizeF() const { return p_ ? Size(p_->GetSizeF()) : Size(); }
    // Locks the pixels (MP1_BITMAP_LOCK_FLAGS) until the returned wrapper goes.
    BitmapPixels lockPixels(int32_t flags = GmpiDrawing_API::MP1_BITMAP_LOCK_READ) const {
        BitmapPixels pixels;
        if (p_)
            p_->lockPixels(pixels.GetAddressOf(), flags);
        return pixels;
    }
    // The 32-bit ARGB pixel at (x, y); 0 (transparent) outside the bitmap or when it cannot be locked.
    uint32_t getPixel(int32_t x, int32_t y) const;
    Factory GetFactory() const;
};

class TextFormat : public ObjectWrapper<GmpiDrawing_API::IMpTextFormat> {
public:
    using ObjectWrapper::ObjectWrapper;

    int32_t SetTextAlignment(int32_t a) { return p_ ? p_->SetTextAlignment(a) : gmpi::MP_FAIL; }
    int32_t SetParagraphAlignment(int32_t a) { return p_ ? p_->SetParagraphAlignment(a) : gmpi::MP_FAIL; }
    int32_t SetWordWrapping(int32_t w) { return p_ ? p_->SetWordWrapping(w) : gmpi::MP_FAIL; }
    int32_t SetLineSpacing(float spacing, float baseline) {
        return p_ ? p_->SetLineSpacing(spacing, baseline) : gmpi::MP_FAIL;
    }
    GmpiDrawing_API::MP1_FONT_METRICS GetFontMetrics() const {
        GmpiDrawing_API::MP1_FONT_METRICS m{};
        if (p_)
            p_->GetFontMetrics(&m);
        return m;
    }
    Size GetTextExtentU(std::string_view utf8) const {
        MP1_SIZE s{0, 0};
        if (p_)
            p_->GetTextExtentU(utf8.data(), static_cast<int32_t>(utf8.size()), &s);
        return s;
    }
};

class GeometrySink : public ObjectWrapper<GmpiDrawing_API::IMpGeometrySink> {
public:
    using ObjectWrapper::ObjectWrapper;

    void BeginFigure(Point start, int32_t figureBegin = GmpiDrawing_API::MP1_FIGURE_BEGIN_FILLED) {
        if (p_)
            p_->BeginFigure(start, figureBegin);
    }
    void EndFigure(int32_t figureEnd = GmpiDrawing_API::MP1_FIGURE_END_CLOSED) {
        if (p_)
            p_->EndFigure(figureEnd);
    }
    void AddLine(Point p) {
        if (p_)
            p_->AddLine(p);
    }
    void AddBezier(const GmpiDrawing_API::MP1_BEZIER_SEGMENT& b) {
        if (p_)
            p_->AddBezier(&b);
    }
    void AddArc(const GmpiDrawing_API::MP1_ARC_SEGMENT& a) {
        if (p_)
            p_->AddArc(&a);
    }
    void SetFillMode(int32_t mode) {
        if (p_)
            p_->SetFillMode(mode);
    }
    int32_t Close() { return p_ ? p_->Close() : gmpi::MP_FAIL; }
};

class PathGeometry : public ObjectWrapper<GmpiDrawing_API::IMpPathGeometry> {
public:
    using ObjectWrapper::ObjectWrapper;

    GeometrySink Open() {
        GeometrySink sink;
        if (p_)
            p_->Open(sink.GetAddressOf());
        return sink;
    }
};

// The family names tried in order when a text format is made.
using FontStack = std::vector<std::string>;

class Factory : public ObjectWrapper<GmpiDrawing_API::IMpFactory> {
public:
    using ObjectWrapper::ObjectWrapper;

    TextFormat CreateTextFormat(float fontSize, const char* family = "Arial",
                                int32_t weight = GmpiDrawing_API::MP1_FONT_WEIGHT_NORMAL,
                                int32_t style = GmpiDrawing_API::MP1_FONT_STYLE_NORMAL,
                                int32_t stretch = GmpiDrawing_API::MP1_FONT_STRETCH_NORMAL) const;
    // The first family of the stack the system has; the factory's second version does the fall-back,
    // a first-version factory gets the stack's first family only.
    TextFormat CreateTextFormat2(float fontSize, const FontStack& families,
                                 int32_t weight = GmpiDrawing_API::MP1_FONT_WEIGHT_NORMAL,
                                 int32_t style = GmpiDrawing_API::MP1_FONT_STYLE_NORMAL,
                                 int32_t stretch = GmpiDrawing_API::MP1_FONT_STRETCH_NORMAL) const;
    Bitmap LoadImageU(const std::string& utf8Path) const;
    // The mask's brightness becomes the bitmap's alpha; a first-version factory ignores the mask.
    Bitmap LoadImageWithMaskU(const std::string& utf8Path, const std::string& utf8MaskPath) const;
    Bitmap CreateImage(int32_t width, int32_t height) const;
    PathGeometry CreatePathGeometry() const;
};

class Brush : public ObjectWrapper<GmpiDrawing_API::IMpBrush> {
public:
    using ObjectWrapper::ObjectWrapper;
};

// Wrappers of the brush kinds hold the kind's own interface and also serve as a plain Brush.
template <class I>
class BrushOf : public Brush {
public:
    BrushOf() = default;
    I* GetKind() const { return static_cast<I*>(Get()); }
    // An owned reference from the device context's create call.
    static BrushOf adopt(I* owned) {
        BrushOf b;
        *b.GetAddressOf() = owned;
        return b;
    }
};

class SolidColorBrush : public BrushOf<GmpiDrawing_API::IMpSolidColorBrush> {
public:
    SolidColorBrush() = default;
    SolidColorBrush(BrushOf b) : BrushOf(std::move(b)) {}
    void SetColor(const Color& c) {
        if (Get())
            GetKind()->SetColor(&c);
    }
    Color GetColor() const { return Get() ? Color(GetKind()->GetColor()) : Color(); }
};

class LinearGradientBrush : public BrushOf<GmpiDrawing_API::IMpLinearGradientBrush> {
public:
    LinearGradientBrush() = default;
    LinearGradientBrush(BrushOf b) : BrushOf(std::move(b)) {}
    void SetStartPoint(Point p) {
        if (Get())
            GetKind()->SetStartPoint(p);
    }
    void SetEndPoint(Point p) {
        if (Get())
            GetKind()->SetEndPoint(p);
    }
};

class RadialGradientBrush : public BrushOf<GmpiDrawing_API::IMpRadialGradientBrush> {
public:
    RadialGradientBrush() = default;
    RadialGradientBrush(BrushOf b) : BrushOf(std::move(b)) {}
    void SetCenter(Point p) {
        if (Get())
            GetKind()->SetCenter(p);
    }
    void SetRadiusX(float r) {
        if (Get())
            GetKind()->SetRadiusX(r);
    }
    void SetRadiusY(float r) {
        if (Get())
            GetKind()->SetRadiusY(r);
    }
};

class GradientStopCollection : public ObjectWrapper<GmpiDrawing_API::IMpGradientStopCollection> {
public:
    using ObjectWrapper::ObjectWrapper;
};

class BitmapRenderTarget;

// The drawing operations of a device context.
class Graphics_base {
public:
    Graphics_base() = default;
    explicit Graphics_base(GmpiDrawing_API::IMpDeviceContext* borrowed) : context_(borrowed) {}

    GmpiDrawing_API::IMpDeviceContext* Get() const { return context_.get(); }
    explicit operator bool() const { return static_cast<bool>(context_); }

    Factory GetFactory() const;

    SolidColorBrush CreateSolidColorBrush(const Color& color);
    GradientStopCollection CreateGradientStopCollection(const GradientStops& stops);
    LinearGradientBrush CreateLinearGradientBrush(const GradientStopCollection& stops, Point start, Point end);
    // Two stops: c1 at 0.0 and c2 at 1.0; from start to end; opacity 1.0, identity transform.
    LinearGradientBrush CreateLinearGradientBrush(Color c1, Color c2, Point start, Point end);
    RadialGradientBrush CreateRadialGradientBrush(const GradientStopCollection& stops, Point center,
                                                  Point gradientOriginOffset, float radiusX, float radiusY);
    // Two stops: c1 at the centre (0.0) and c2 at the rim (1.0); origin offset (0, 0), both radii
    // equal; opacity 1.0, identity transform.
    RadialGradientBrush CreateRadialGradientBrush(MP1_POINT center, float radius, MP1_COLOR c1, MP1_COLOR c2);
    BitmapRenderTarget CreateCompatibleRenderTarget(Size desiredSize);

    void DrawRectangle(const Rect& r, const Brush& b, float strokeWidth = 1.0f);
    void FillRectangle(const Rect& r, const Brush& b);
    void DrawRoundedRectangle(const Rect& r, float radius, const Brush& b, float strokeWidth = 1.0f);
    void FillRoundedRectangle(const Rect& r, float radius, const Brush& b);
    void DrawEllipse(Point center, float radiusX, float radiusY, const Brush& b, float strokeWidth = 1.0f);
    void FillEllipse(Point center, float radiusX, float radiusY, const Brush& b);
    void DrawLine(Point p0, Point p1, const Brush& b, float strokeWidth = 1.0f);
    void DrawGeometry(const PathGeometry& g, const Brush& b, float strokeWidth = 1.0f);
    void FillGeometry(const PathGeometry& g, const Brush& b);
    void DrawTextU(std::string_view utf8, const TextFormat& format, const Rect& layoutRect, const Brush& b,
                   int32_t options = GmpiDrawing_API::MP1_DRAW_TEXT_OPTIONS_NONE);
    void DrawBitmap(const Bitmap& bitmap, const Rect& destination, const Rect& source, float opacity = 1.0f,
                    int32_t interpolationMode = GmpiDrawing_API::MP1_BITMAP_INTERPOLATION_MODE_LINEAR);
    // The whole bitmap, unscaled, with its top-left corner at the point.
    void DrawBitmap(const Bitmap& bitmap, Point destination);

    void SetTransform(const Matrix3x2& m);
    Matrix3x2 GetTransform() const;
    void PushAxisAlignedClip(const Rect& r);
    void PopAxisAlignedClip();
    Rect GetAxisAlignedClip() const;
    void Clear(const Color& c);
    void BeginDraw();
    int32_t EndDraw();

protected:
    gmpi_sdk::mp_shared_ptr<GmpiDrawing_API::IMpDeviceContext> context_;
};

// The device context a module's OnRender receives.
class Graphics : public Graphics_base {
public:
    Graphics() = default;
    explicit Graphics(GmpiDrawing_API::IMpDeviceContext* borrowed) : Graphics_base(borrowed) {}
    // Asks any drawing object for its device-context face.
    explicit Graphics(gmpi::IMpUnknown* object);
};

// An off-screen target; what is drawn becomes a bitmap.
class BitmapRenderTarget : public Graphics_base {
public:
    BitmapRenderTarget() = default;
    static BitmapRenderTarget adopt(GmpiDrawing_API::IMpBitmapRenderTarget* owned);
    Bitmap GetBitmap() const;

private:
    gmpi_sdk::mp_shared_ptr<GmpiDrawing_API::IMpBitmapRenderTarget> target_;
};

}  // namespace GmpiDrawing
