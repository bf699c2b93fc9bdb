// The device context a graphic module draws into during OnRender, and the off-screen render target
// made from it for cached drawings. Coordinates are the module's own: (0, 0) is its top-left corner.
#pragma once

#include "IMpBitmap.h"
#include "IMpBrush.h"
#include "IMpDrawingFactory.h"
#include "IMpPathGeometry.h"
#include "IMpTextFormat.h"
#include "IMpUnknown.h"
#include "MpDrawingTypes.h"

namespace GmpiDrawing_API {

// {A1D9751D-0C43-4F57-8958-E0BCE359B2FD}
inline constexpr gmpi::MpGuid SE_IID_DEVICECONTEXT_MPGUI = {
    0xA1D9751D, 0x0C43, 0x4F57, {0x89, 0x58, 0xE0, 0xBC, 0xE3, 0x59, 0xB2, 0xFD}};
// {AFC7C005-B7CB-4CC7-B4DB-04879768E4A0}
inline constexpr gmpi::MpGuid SE_IID_BITMAP_RENDERTARGET_MPGUI = {
    0xAFC7C005, 0xB7CB, 0x4CC7, {0xB4, 0xDB, 0x04, 0x87, 0x97, 0x68, 0xE4, 0xA0}};

class IMpBitmapRenderTarget;

// Slots 3 to 27 are frozen in this order. Brushes, bitmaps and geometries must come from this context's
// factory; a null or foreign object makes the operation draw nothing. Objects handed out are owned by the
// caller (one reference).
class IMpDeviceContext : public gmpi::IMpUnknown {
public:
    // [gui thread] Stores the drawing factory (not counted). No result.
    virtual void GetFactory(IMpFactory** returnFactory) = 0;

    // [gui thread] Strokes a rectangle's outline. No result.
    virtual void DrawRectangle(const MP1_RECT* rect, IMpBrush* brush, float strokeWidth) = 0;
    // [gui thread] Fills a rectangle. No result.
    virtual void FillRectangle(const MP1_RECT* rect, IMpBrush* brush) = 0;
    // [gui thread] Strokes a rounded rectangle's outline. No result.
    virtual void DrawRoundedRectangle(const MP1_ROUNDED_RECT* roundedRect, IMpBrush* brush, float strokeWidth) = 0;
    // [gui thread] Fills a rounded rectangle. No result.
    virtual void FillRoundedRectangle(const MP1_ROUNDED_RECT* roundedRect, IMpBrush* brush) = 0;
    // [gui thread] Strokes an ellipse's outline. No result.
    virtual void DrawEllipse(const MP1_ELLIPSE* ellipse, IMpBrush* brush, float strokeWidth) = 0;
    // [gui thread] Fills an ellipse. No result.
    virtual void FillEllipse(const MP1_ELLIPSE* ellipse, IMpBrush* brush) = 0;
    // [gui thread] Strokes a straight line with butt ends. No result.
    virtual void DrawLine(MP1_POINT point0, MP1_POINT point1, IMpBrush* brush, float strokeWidth) = 0;
    // [gui thread] Strokes a closed path geometry's figures. No result.
    virtual void DrawGeometry(IMpPathGeometry* geometry, IMpBrush* brush, float strokeWidth) = 0;
    // [gui thread] Fills a closed path geometry's figures. No result.
    virtual void FillGeometry(IMpPathGeometry* geometry, IMpBrush* brush) = 0;
    // [gui thread] Draws length bytes of UTF-8 text (length < 0: up to a zero byte) in the layout
    // rectangle with a text format and brush; options is a set of MP1_DRAW_TEXT_OPTIONS. No result.
    virtual void DrawTextU(const char* utf8String, int32_t stringLength, IMpTextFormat* textFormat,
                           const MP1_RECT* layoutRect, IMpBrush* brush, int32_t options) = 0;
    // [gui thread] Draws the source rectangle of a bitmap (null: all of it) scaled into the destination
    // rectangle (null: at the origin, unscaled) with an opacity 0..1 and an
    // MP1_BITMAP_INTERPOLATION_MODE. No result.
    virtual void DrawBitmap(IMpBitmap* bitmap, const MP1_RECT* destinationRectangle, float opacity,
                            int32_t interpolationMode, const MP1_RECT* sourceRectangle) = 0;
    // [gui thread] Replaces the transform applied to every later drawing (the module's offset is kept
    // underneath it). No result.
    virtual void SetTransform(const MP1_MATRIX_3X2* transform) = 0;
    // [gui thread] Stores the transform set last (identity at the start of OnRender). No result.
    virtual void GetTransform(MP1_MATRIX_3X2* returnTransform) = 0;

    // [gui thread] Makes a solid brush. Returns 0, or -1 with null.
    virtual int32_t CreateSolidColorBrush(const MP1_COLOR* color, IMpSolidColorBrush** returnSolidColorBrush) = 0;
    // [gui thread] Makes a collection of count stops (copied; count >= 1). Returns 0, or -1 with null.
    virtual int32_t CreateGradientStopCollection(const MP1_GRADIENT_STOP* gradientStops, uint32_t gradientStopsCount,
                                                 IMpGradientStopCollection** returnGradientStopCollection) = 0;
    // [gui thread] Makes a linear gradient brush (brushProperties null: opacity 1, identity). Returns 0,
    // or -1 with null.
    virtual int32_t CreateLinearGradientBrush(const MP1_LINEAR_GRADIENT_BRUSH_PROPERTIES* linearGradientBrushProperties,
                                              const MP1_BRUSH_PROPERTIES* brushProperties,
                                              IMpGradientStopCollection* gradientStopCollection,
                                              IMpLinearGradientBrush** returnLinearGradientBrush) = 0;
    // [gui thread] Makes a radial gradient brush (brushProperties null: opacity 1, identity). Returns 0,
    // or -1 with null.
    virtual int32_t CreateRadialGradientBrush(const MP1_RADIAL_GRADIENT_BRUSH_PROPERTIES* radialGradientBrushProperties,
                                              const MP1_BRUSH_PROPERTIES* brushProperties,
                                              IMpGradientStopCollection* gradientStopCollection,
                                              IMpRadialGradientBrush** returnRadialGradientBrush) = 0;
    // [gui thread] Makes an off-screen target of the given size in drawing units whose drawing becomes a
    // bitmap of this factory. Returns 0, or -1 with null.
    virtual int32_t CreateCompatibleRenderTarget(const MP1_SIZE* desiredSize,
                                                 IMpBitmapRenderTarget** returnBitmapRenderTarget) = 0;

    // [gui thread] Intersects the clip with an axis-aligned rectangle (in current coordinates) until the
    // matching PopAxisAlignedClip. No result.
    virtual void PushAxisAlignedClip(const MP1_RECT* clipRect) = 0;
    // [gui thread] Restores the clip of before the last push; an unmatched pop is ignored. No result.
    virtual void PopAxisAlignedClip() = 0;
    // [gui thread] Stores the current clip's bounds in current coordinates. No result.
    virtual void GetAxisAlignedClip(MP1_RECT* returnClipRect) = 0;

    // [gui thread] Fills the whole target with a colour, ignoring the clip's shape but not its bounds.
    virtual void Clear(const MP1_COLOR* clearColor) = 0;
    // [gui thread] Starts drawing on a render target (the host brackets OnRender itself). No result.
    virtual void BeginDraw() = 0;
    // [gui thread] Ends drawing; pops clips left pushed. Returns 0.
    virtual int32_t EndDraw() = 0;

protected:
    ~IMpDeviceContext() = default;
};

// Slot 28 is frozen.
class IMpBitmapRenderTarget : public IMpDeviceContext {
public:
    // [gui thread] Gives the drawing made so far as a bitmap (a copy; the caller owns it). Call after
    // EndDraw. Returns 0, or -1 with null.
    virtual int32_t GetBitmap(IMpBitmap** returnBitmap) = 0;

protected:
    ~IMpBitmapRenderTarget() = default;
};

}  // namespace GmpiDrawing_API
