// Invisible pointer areas for panels. KX_MouseBox holds the pointer while a button is down and reports
// where it is (pixels, fractions of the area, the angle around the centre) and how far it moved since the
// press, with a tool tip and a context menu from pins. KX_HoverBox reports where the pointer hovers and
// pulses on every movement, while every click passes through to what lies beneath it.
#pragma once

#include "MpGuiGfxBase.h"
#include "PinMenu.h"

namespace kx::mousebox {
enum Pin : int {
    Flip,  // bit 1 flips the vertical axis, bit 2 the horizontal one
    ToolTip,
    MenuItems,   // context-menu entries, an enumeration list
    MenuChoice,  // the chosen entry's value, then -1
    PointerDown,
    Width,  // the area's size, whole units
    Height,
    X,  // pixels from the left (or the right when flipped)
    Y,
    FractionX,  // x / width
    FractionY,
    Angle,  // around the centre, 0..1
    MoveX,  // since the press, pixels
    MoveY,
    MoveFractionX,  // since the press, fractions
    MoveFractionY,
    AngleChange,  // since the press, -0.5..0.5 (across the seam the short way round)
    PinCount
};
enum FlipBits : int { FlipVertical = 1, FlipHorizontal = 2 };
}  // namespace kx::mousebox

namespace kx::hoverbox {
enum Pin : int {
    Normalised,  // true: 0..1 across the area; false: units from its corner
    X,
    Y,
    Moved,  // a pulse on every movement
    Width,
    Height,
    PinCount
};
}  // namespace kx::hoverbox

class KX_MouseBox : public PinMenuGfxBase {
public:
    KX_MouseBox();

    // Also reports the area's size.
    int32_t arrange(GmpiDrawing_API::MP1_RECT finalRect) override;
    // Any button takes the pointer and starts a movement.
    int32_t onPointerDown(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    // -1 unless this module holds the pointer: nothing is reported while no button is down.
    int32_t onPointerMove(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    int32_t onPointerUp(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;

private:
    // Flips the point as the flip pin asks, then derives the fractions and the angle.
    void map(GmpiDrawing_API::MP1_POINT point);
    // Sends the position; every movement goes through 0 on its way to a new value, so a receiver that
    // acts on changes sees each movement start afresh.
    void updatePins();

    MpGuiPin<int> flip_;
    MpGuiPin<bool> pointerDown_;
    MpGuiPin<int> widthPin_, heightPin_;
    MpGuiPin<int> xPin_, yPin_;
    MpGuiPin<float> fractionXPin_, fractionYPin_, anglePin_;
    MpGuiPin<int> moveXPin_, moveYPin_;
    MpGuiPin<float> moveFractionXPin_, moveFractionYPin_, angleChangePin_;

    float width_ = 0, height_ = 0;
    float x_ = 0, y_ = 0, fractionX_ = 0, fractionY_ = 0, angle_ = 0;
    float startX_ = 0, startY_ = 0, startFractionX_ = 0, startFractionY_ = 0, startAngle_ = 0;
};

class KX_HoverBox : public gmpi_gui::MpGuiGfxBase {
public:
    KX_HoverBox();

    // Reports the size and keeps the scales; the area draws nothing, so nothing is stored or repainted.
    int32_t arrange(GmpiDrawing_API::MP1_RECT finalRect) override;
    // Reports the point and pulses, and answers -1: presses and releases go to what lies beneath.
    int32_t hitTest(GmpiDrawing_API::MP1_POINT point) override;

private:
    MpGuiPin<bool> normalised_;
    MpGuiPin<float> xPin_, yPin_;
    MpGuiPin<bool> moved_;
    MpGuiPin<int> widthPin_, heightPin_;

    float xScale_ = 0, yScale_ = 0;
};
