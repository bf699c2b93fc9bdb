// KX_JogShuttleImg: a skinned jog wheel. Dragging round its centre turns it without end; every turn
// changes a value by a set share of its range (the value stops at the range's ends unless Unlimited is
// on), and the film strip shows the wheel's angle, wrapping round once per turn. While it turns, the
// size of each step goes out in turns, for modules that want the motion rather than the value.
#pragma once

#include "widgets/RotaryImageBase.h"

namespace kx::jog {
enum Pin : int {
    Filename,
    Hint,
    MenuItems,
    MenuSelection,
    MouseDown,
    Hold,  // kept for the layout all image widgets share; a wheel has no click to latch
    Value,
    Minimum,
    Maximum,
    Turns,  // full turns of the wheel that span the range
    Unlimited,
    AlphaThreshold,  // pixels less opaque than this let the pointer through
    CentreX,
    CentreY,
    ShowCentre,
    FrameCount,
    TurnStep,
    PinCount
};
}  // namespace kx::jog

class KX_JogShuttleImg : public RotaryImageBase {
public:
    KX_JogShuttleImg();

    // A hit needs a pixel of the current frame whose alpha reaches the alpha threshold.
    int32_t hitTest(GmpiDrawing_API::MP1_POINT point) override;
    int32_t onPointerDown(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    int32_t onPointerMove(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    int32_t onPointerUp(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;

    // The wheel's angle as a share of a turn, derived from the value: the value is the state.
    float getAnimationPos() override { return position_; }
    void setAnimationPos(float) override {}
    void onLoaded() override { pinFrameCount = frameCount(); }
    std::wstring getHint() override { return pinHint.getValue(); }
    int32_t getMouseResponse() override { return ImageMetadata::Rotary; }

    void onSetValue();
    void onSetMinMax();
    void onSetTurns();
    void onSetUnlimited();

private:
    // Keeps a value in the range unless unlimited.
    float clamp(float v) const;
    // Derives the wheel's angle from the value and shows the frame for it.
    void updateJog();
    // The pointer's angle round the centre, 0..2 pi.
    float pointerAngle(GmpiDrawing_API::MP1_POINT point) const;

    MpGuiPin<float> pinValue;
    MpGuiPin<float> pinMinimum;
    MpGuiPin<float> pinMaximum;
    MpGuiPin<float> pinTurns;
    MpGuiPin<bool> pinUnlimited;
    MpGuiPin<int> pinAlphaThreshold;
    MpGuiPin<int> pinFrameCount;
    MpGuiPin<float> pinTurnStep;

    // What the wheel works with, taken from the pins by their handlers.
    float position_ = 0;
    float value_ = 0;
    float minimum_ = 0;
    float maximum_ = 1;
    float turns_ = 1;
    bool unlimited_ = false;
    // Each move turns the wheel by the angle swept since the previous one.
    float lastAngle_ = 0;
};
