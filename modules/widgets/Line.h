// KX_Line: one straight line across its area, horizontal or vertical, at a position given as a fraction
// of the area, on an optional background; it reports a press on the line. A cursor or marker over a
// display, moved by a value.
#pragma once

#include "GmpiDrawing.h"
#include "MpGuiGfxBase.h"

namespace kx::line {
enum Pin : int {
    Vertical,     // true: a vertical line moving left-right; false: a horizontal one moving up-down
    Position,     // 0..1 across the area (clamped)
    Thickness,    // units, at least 1
    LineColour,   // hexadecimal AARRGGBB; empty: opaque orange
    Background,   // hexadecimal AARRGGBB; empty: nothing behind the line
    PointerDown,  // true while a press on the line lasts
    PinCount
};
}  // namespace kx::line

class KX_Line : public gmpi_gui::MpGuiGfxBase {
public:
    KX_Line();

    int32_t OnRender(GmpiDrawing_API::IMpDeviceContext* drawingContext) override;
    // 0 within the band of the line's thickness around position x size, -1 elsewhere.
    int32_t hitTest(GmpiDrawing_API::MP1_POINT point) override;
    // A press on the line takes the pointer and answers 1; elsewhere it answers 0 and does nothing.
    int32_t onPointerDown(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    int32_t onPointerUp(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;

    void onSetVert();
    void onSetPosition();
    void onSetThickness();
    void onSetFG_ARGB();
    void onSetBG_ARGB();

    // The line's centre across the area as drawn: on a pixel centre for odd thicknesses, on a pixel
    // edge for even ones, so that its edges are crisp.
    float drawnCentre() const;

private:
    bool onLine(GmpiDrawing_API::MP1_POINT point) const;

    MpGuiPin<bool> vertical_;
    MpGuiPin<float> positionPin_;
    MpGuiPin<int> thicknessPin_;
    StringGuiPin lineColourPin_;
    StringGuiPin backgroundPin_;
    MpGuiPin<bool> pointerDown_;

    float position_ = 0.0f;
    float thickness_ = 1.0f;
    GmpiDrawing::Color lineColour_;
    GmpiDrawing::Color background_;
};
