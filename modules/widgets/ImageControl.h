// KX_Image: the skinned control every skin is built from. It shows the frame of a film strip that its
// position (0..1) picks, and lets the user change the position the way the strip's metadata asks: a
// vertical or horizontal drag (sliders, knobs), a drag round a centre (rotary knobs), a click (buttons,
// latching switches with Hold on) or a step to the next frame (selectors). It also reports where the
// pointer is over its pixels and pulses when that pixel reaches a threshold.
//
// KX_ImgM2C: passes a menu selection on, dropping "no selection" (-1) and repeats.
#pragma once

#include "MpGuiBase2.h"
#include "widgets/RotaryImageBase.h"

namespace kx::image {
enum Pin : int {
    Position,
    Filename,
    Hint,
    MenuItems,
    MenuSelection,
    MouseDown,
    Hold,            // a click control latches instead of springing back on release
    PixelThreshold,  // the pixel value (0xAARRGGBB, compared as a number) that fires the pulse
    CentreX,
    CentreY,
    ShowCentre,
    FrameCount,
    PixelPulse,
    PointerX,
    PointerY,
    PinCount
};
}  // namespace kx::image

namespace kx::imgm2c {
enum Pin : int { Out, In, PinCount };
}

class KX_Image : public RotaryImageBase {
public:
    KX_Image();

    // A hit needs a visible pixel of the current frame. Reading that pixel also reports the pointer
    // position and, when the pixel reaches the threshold, pulses the pixel-pulse pin.
    int32_t hitTest(GmpiDrawing_API::MP1_POINT point) override;
    int32_t onPointerDown(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    int32_t onPointerMove(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    int32_t onPointerUp(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;

    float getAnimationPos() override { return pinPosition; }
    // Sends the position when it differs (a NaN always does).
    void setAnimationPos(float position) override { pinPosition = position; }
    void onLoaded() override { pinFrameCount = frameCount(); }
    std::wstring getHint() override { return pinHint.getValue(); }
    // The metadata's response; a vertical drag (0) without an image.
    int32_t getMouseResponse() override;

private:
    // The next frame, wrapping round after the last.
    void stepFrame();
    // How far a rotary drag moves the position (before the 0.01 scale) for the pointer at point.
    float rotaryDelta(GmpiDrawing_API::MP1_POINT point, float dy);

    MpGuiPin<float> pinPosition;
    MpGuiPin<int> pinPixelThreshold;
    MpGuiPin<int> pinFrameCount;
    MpGuiPin<bool> pinPixelPulse;
    MpGuiPin<float> pinPointerX;
    MpGuiPin<float> pinPointerY;

    // Each move is measured from the previous one.
    GmpiDrawing_API::MP1_POINT dragStart_{0, 0};
    // Above 0 a rotary drag follows the angle round the centre; at or below 0 it is a vertical drag.
    float rotaryWeight_ = 0;
};

class KX_ImgM2C : public SeGuiInvisibleBase {
public:
    KX_ImgM2C();
    void onSetSel();

private:
    MpGuiPin<int> out_;
    MpGuiPin<int> in_;
};
