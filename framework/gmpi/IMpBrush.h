// Brushes (solid, linear and radial gradient) and the gradient-stop collections gradients are made from.
// All are made by a device context and may be used only with device contexts of the same factory.
#pragma once

#include "IMpResource.h"
#include "MpDrawingTypes.h"

namespace GmpiDrawing_API {

// {99C9EF09-B267-4A8D-A5AF-7AA3F72D0D58}
inline constexpr gmpi::MpGuid SE_IID_BRUSH_MPGUI = {
    0x99C9EF09, 0xB267, 0x4A8D, {0xA5, 0xAF, 0x7A, 0xA3, 0xF7, 0x2D, 0x0D, 0x58}};
// {62E2FC75-DA8F-4E9E-884E-C454C6BF1E22}
inline constexpr gmpi::MpGuid SE_IID_SOLIDCOLORBRUSH_MPGUI = {
    0x62E2FC75, 0xDA8F, 0x4E9E, {0x88, 0x4E, 0xC4, 0x54, 0xC6, 0xBF, 0x1E, 0x22}};
// {67081078-F29F-4976-A9C2-5839DE7B62CC}
inline constexpr gmpi::MpGuid SE_IID_GRADIENTSTOPCOLLECTION_MPGUI = {
    0x67081078, 0xF29F, 0x4976, {0xA9, 0xC2, 0x58, 0x39, 0xDE, 0x7B, 0x62, 0xCC}};
// {AF371C8C-5FA2-4DC7-A272-CF20FD0A2A78}
inline constexpr gmpi::MpGuid SE_IID_LINEARGRADIENTBRUSH_MPGUI = {
    0xAF371C8C, 0x5FA2, 0x4DC7, {0xA2, 0x72, 0xCF, 0x20, 0xFD, 0x0A, 0x2A, 0x78}};
// {FCE667AC-1D58-46A4-9F2C-1EDAA46692EC}
inline constexpr gmpi::MpGuid SE_IID_RADIALGRADIENTBRUSH_MPGUI = {
    0xFCE667AC, 0x1D58, 0x46A4, {0x9F, 0x2C, 0x1E, 0xDA, 0xA4, 0x66, 0x92, 0xEC}};

// No slots of its own: the face every brush answers, accepted by the drawing operations.
class IMpBrush : public IMpResource {
protected:
    ~IMpBrush() = default;
};

// Slots 4 to 5 are frozen in this order.
class IMpSolidColorBrush : public IMpBrush {
public:
    // [gui thread] Sets the colour used from the next drawing operation on. No result.
    virtual void SetColor(const MP1_COLOR* color) = 0;
    // [gui thread] Returns the current colour by value.
    virtual MP1_COLOR GetColor() = 0;

protected:
    ~IMpSolidColorBrush() = default;
};

// An immutable list of gradient stops; no slots of its own beyond the resource's.
class IMpGradientStopCollection : public IMpResource {
protected:
    ~IMpGradientStopCollection() = default;
};

// Slots 4 to 5 are frozen in this order.
class IMpLinearGradientBrush : public IMpBrush {
public:
    // [gui thread] Moves the point where the gradient's position 0 lies. No result.
    virtual void SetStartPoint(MP1_POINT startPoint) = 0;
    // [gui thread] Moves the point where the gradient's position 1 lies. No result.
    virtual void SetEndPoint(MP1_POINT endPoint) = 0;

protected:
    ~IMpLinearGradientBrush() = default;
};

// Slots 4 to 7 are frozen in this order.
class IMpRadialGradientBrush : public IMpBrush {
public:
    // [gui thread] Moves the centre of the outer ellipse (position 1 lies on its rim). No result.
    virtual void SetCenter(MP1_POINT center) = 0;
    // [gui thread] Moves the focus (position 0), relative to the centre. No result.
    virtual void SetGradientOriginOffset(MP1_POINT gradientOriginOffset) = 0;
    // [gui thread] Sets the horizontal radius. No result.
    virtual void SetRadiusX(float radiusX) = 0;
    // [gui thread] Sets the vertical radius. No result.
    virtual void SetRadiusY(float radiusY) = 0;

protected:
    ~IMpRadialGradientBrush() = default;
};

}  // namespace GmpiDrawing_API
