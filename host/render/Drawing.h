// The host's drawing side: the drawing factory (text formats through Pango, images through stb_image,
// path geometries), bitmaps on Cairo image surfaces, brushes as Cairo patterns, and the device context
// that draws into a Cairo surface. Modules reach all of it only through the gmpi drawing interfaces.
#pragma once

#include <cairo.h>
#include <pango/pango.h>

#include <cstdint>
#include <string>
#include <vector>

#include "gmpi/IMpDeviceContext.h"
#include "render/RefCounted.h"

namespace kxhost::draw {

using namespace GmpiDrawing_API;

// Answered only by the host's own drawing objects, with their Impl face: how the device context tells
// its objects from foreign ones.
// {01BA6546-B490-4786-9EB5-C6DB895DB9AB}
inline constexpr gmpi::MpGuid IID_HOST_DRAWING_IMPL = {
    0x01BA6546, 0xB490, 0x4786, {0x9E, 0xB5, 0xC6, 0xDB, 0x89, 0x5D, 0xB9, 0xAB}};

class Impl {
public:
    virtual ~Impl() = default;
};

// A drawing object with the interface chain I (and the identifiers in iids); it also answers its Impl face.
template <class I>
class Object : public RefCounted<I>, public Impl {
public:
    explicit Object(std::vector<gmpi::MpGuid> iids = {}) : RefCounted<I>(std::move(iids)) {}

protected:
    void* face(const gmpi::MpGuid& iid) override {
        if (iid == IID_HOST_DRAWING_IMPL)
            return static_cast<Impl*>(this);
        return RefCounted<I>::face(iid);
    }
};

// The host's implementation behind an interface pointer, or null for a foreign (or null) object.
template <class T>
T* impl(gmpi::IMpUnknown* object) {
    void* found = nullptr;
    if (!object || object->queryInterface(IID_HOST_DRAWING_IMPL, &found) != gmpi::MP_OK || !found)
        return nullptr;
    object->release();  // the caller's own reference keeps it alive
    return dynamic_cast<T*>(static_cast<Impl*>(found));
}

// Linear-light component to the sRGB value Cairo works in.
double toSrgb(float linear);

class Bitmap final : public Object<IMpBitmap> {
public:
    // Takes over the surface (an ARGB32 image surface).
    Bitmap(IMpFactory* factory, cairo_surface_t* surface);
    ~Bitmap() override;
    int32_t getFactory(IMpFactory** returnFactory) override;
    MP1_SIZE GetSizeF() override;
    int32_t GetSize(MP1_SIZE_U* returnSize) override;
    int32_t lockPixels(IMpBitmapPixels** returnPixels, int32_t flags) override;

    cairo_surface_t* surface() const { return surface_; }

private:
    IMpFactory* factory_;
    cairo_surface_t* surface_;
};

class Brush {
public:
    virtual ~Brush() = default;
    // The pattern to paint with (owned by the brush).
    virtual cairo_pattern_t* pattern() = 0;
};

class TextFormat final : public Object<IMpTextFormat> {
public:
    TextFormat(const std::string& families, int32_t weight, int32_t style, int32_t stretch, float size);
    ~TextFormat() override;
    int32_t SetTextAlignment(int32_t textAlignment) override;
    int32_t SetParagraphAlignment(int32_t paragraphAlignment) override;
    int32_t SetWordWrapping(int32_t wordWrapping) override;
    int32_t GetTextExtentU(const char* utf8String, int32_t stringLength, MP1_SIZE* returnSize) override;
    int32_t GetFontMetrics(MP1_FONT_METRICS* returnFontMetrics) override;
    int32_t SetLineSpacing(float lineSpacing, float baseline) override;

    // Lays the text out in the rectangle and draws it with the current source of cr.
    void draw(cairo_t* cr, const char* text, int32_t length, const MP1_RECT& rect);

private:
    PangoLayout* layout(PangoContext* context, const char* text, int32_t length, double width) const;

    PangoFontDescription* font_;
    int32_t textAlignment_ = MP1_TEXT_ALIGNMENT_LEADING;
    int32_t paragraphAlignment_ = MP1_PARAGRAPH_ALIGNMENT_NEAR;
    int32_t wordWrapping_ = MP1_WORD_WRAPPING_WRAP;
    float lineSpacing_ = -1.0f;
};

class PathGeometry final : public Object<IMpPathGeometry> {
public:
    explicit PathGeometry(IMpFactory* factory);
    int32_t getFactory(IMpFactory** returnFactory) override;
    int32_t Open(IMpGeometrySink** returnGeometrySink) override;

    // Replaces cr's path with the geometry's figures and sets its fill rule.
    void apply(cairo_t* cr) const;

    struct Command {
        enum Kind { Move, Line, Curve, Arc, Close } kind;
        MP1_POINT p[3];
        MP1_ARC_SEGMENT arc;
    };
    std::vector<Command> commands;
    int32_t fillMode = MP1_FILL_MODE_ALTERNATE;
    bool opened = false;
    bool closed = false;

private:
    IMpFactory* factory_;
};

// Adds the arc of the unit circle from angle a1 to a2 (radians; increasing angles when not negative,
// as cairo_arc and cairo_arc_negative) in the current user space. Beyond the range of Cairo's
// fixed-point coordinates (a module may ask for any radius) an arc cannot be drawn as it is, and Cairo's
// own arcs there cost unbounded time; such arcs become four cubic curves to the turn, at most one turn.
void unitArc(cairo_t* cr, double a1, double a2, bool negative = false);

// The drawing factory of one host window (here: one session). Not counted: it outlives every module.
class Factory final : public IMpFactory2 {
public:
    int32_t queryInterface(const gmpi::MpGuid& iid, void** returnInterface) override;
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }
    int32_t CreatePathGeometry(IMpPathGeometry** returnPathGeometry) override;
    int32_t CreateTextFormat(const char* fontFamilyName, int32_t fontWeight, int32_t fontStyle, int32_t fontStretch,
                             float fontSize, IMpTextFormat** returnTextFormat) override;
    int32_t CreateImage(int32_t width, int32_t height, IMpBitmap** returnBitmap) override;
    int32_t LoadImageU(const char* utf8Uri, IMpBitmap** returnBitmap) override;
    int32_t CreateTextFormat2(const char* const* fontFamilyNames, int32_t familyCount, int32_t fontWeight,
                              int32_t fontStyle, int32_t fontStretch, float fontSize,
                              IMpTextFormat** returnTextFormat) override;
    int32_t LoadImageWithMaskU(const char* utf8Uri, const char* utf8MaskUri, IMpBitmap** returnBitmap) override;

    // Every image path loaded, in order (for traces and tests).
    std::vector<std::string> loads;
};

// A device context over a Cairo context. Drawing starts with the base transform (the module's place in
// the panel) and the base clip; SetTransform composes with the base.
class DeviceContext final : public Object<IMpBitmapRenderTarget> {
public:
    // Draws through cr (referenced, not taken over).
    DeviceContext(IMpFactory* factory, cairo_t* cr);
    // An off-screen target of its own of width x height pixels.
    DeviceContext(IMpFactory* factory, int32_t width, int32_t height);
    ~DeviceContext() override;

    void GetFactory(IMpFactory** returnFactory) override;
    void DrawRectangle(const MP1_RECT* rect, IMpBrush* brush, float strokeWidth) override;
    void FillRectangle(const MP1_RECT* rect, IMpBrush* brush) override;
    void DrawRoundedRectangle(const MP1_ROUNDED_RECT* roundedRect, IMpBrush* brush, float strokeWidth) override;
    void FillRoundedRectangle(const MP1_ROUNDED_RECT* roundedRect, IMpBrush* brush) override;
    void DrawEllipse(const MP1_ELLIPSE* ellipse, IMpBrush* brush, float strokeWidth) override;
    void FillEllipse(const MP1_ELLIPSE* ellipse, IMpBrush* brush) override;
    void DrawLine(MP1_POINT point0, MP1_POINT point1, IMpBrush* brush, float strokeWidth) override;
    void DrawGeometry(IMpPathGeometry* geometry, IMpBrush* brush, float strokeWidth) override;
    void FillGeometry(IMpPathGeometry* geometry, IMpBrush* brush) override;
    void DrawTextU(const char* utf8String, int32_t stringLength, IMpTextFormat* textFormat, const MP1_RECT* layoutRect,
                   IMpBrush* brush, int32_t options) override;
    void DrawBitmap(IMpBitmap* bitmap, const MP1_RECT* destinationRectangle, float opacity, int32_t interpolationMode,
                    const MP1_RECT* sourceRectangle) override;
    void SetTransform(const MP1_MATRIX_3X2* transform) override;
    void GetTransform(MP1_MATRIX_3X2* returnTransform) override;
    int32_t CreateSolidColorBrush(const MP1_COLOR* color, IMpSolidColorBrush** returnSolidColorBrush) override;
    int32_t CreateGradientStopCollection(const MP1_GRADIENT_STOP* gradientStops, uint32_t gradientStopsCount,
                                         IMpGradientStopCollection** returnGradientStopCollection) override;
    int32_t CreateLinearGradientBrush(const MP1_LINEAR_GRADIENT_BRUSH_PROPERTIES* linearGradientBrushProperties,
                                      const MP1_BRUSH_PROPERTIES* brushProperties,
                                      IMpGradientStopCollection* gradientStopCollection,
                                      IMpLinearGradientBrush** returnLinearGradientBrush) override;
    int32_t CreateRadialGradientBrush(const MP1_RADIAL_GRADIENT_BRUSH_PROPERTIES* radialGradientBrushProperties,
                                      const MP1_BRUSH_PROPERTIES* brushProperties,
                                      IMpGradientStopCollection* gradientStopCollection,
                                      IMpRadialGradientBrush** returnRadialGradientBrush) override;
    int32_t CreateCompatibleRenderTarget(const MP1_SIZE* desiredSize,
                                         IMpBitmapRenderTarget** returnBitmapRenderTarget) override;
    void PushAxisAlignedClip(const MP1_RECT* clipRect) override;
    void PopAxisAlignedClip() override;
    void GetAxisAlignedClip(MP1_RECT* returnClipRect) override;
    void Clear(const MP1_COLOR* clearColor) override;
    void BeginDraw() override {}
    int32_t EndDraw() override;
    int32_t GetBitmap(IMpBitmap** returnBitmap) override;

private:
    // Paints the current path with the brush; false (and the path dropped) for a foreign brush.
    bool setSource(IMpBrush* brush);
    void fill(IMpBrush* brush);
    void stroke(IMpBrush* brush, float width);
    void roundedRectPath(const MP1_ROUNDED_RECT& r);

    IMpFactory* factory_;
    cairo_t* cr_;
    cairo_surface_t* ownSurface_ = nullptr;  // an off-screen target's surface
    cairo_matrix_t base_;
    MP1_MATRIX_3X2 transform_{1, 0, 0, 1, 0, 0};
    int clipDepth_ = 0;
};

}  // namespace kxhost::draw
