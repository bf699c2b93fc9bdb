// KX_BetterJoystickImg (also "KX_BetterJoystickImgC", whose description starts it circular): an XY pad
// with a skinned handle. The handle moves over the module's area and the patch sees where as X and Y,
// 0..1, Y growing upwards. A press puts the handle under the pointer, or, in relative mode, grabs the
// handle and drags it by the pointer's travel; a double click or, with the spring on, a release sends
// it back to its centre; circular mode keeps it inside the disc inscribed in the area.
#pragma once

#include <cstdint>

#include "ImageBase.h"
#include "SteadyClock.h"
#include "widgets/PadTravel.h"

namespace kx::joystick {
enum Pin : int {
    X,  // 0..1, 0 at the left (read and written)
    Y,  // 0..1, 0 at the bottom (read and written)
    Filename,
    Position,  // frame of the handle's strip
    Hint,
    MenuItems,
    MenuSelection,
    MouseDown,
    Spring,   // a release sends X and Y to the centre
    CentreX,  // where the spring and a double click send the handle
    CentreY,
    Circular,
    Relative,        // a press must hit the handle; drags move it by the pointer's travel
    AlphaThreshold,  // the alpha (0..255) a handle pixel needs for a relative press to hit it
    Background,      // hexadecimal AARRGGBB; empty: none
    Guide,           // a cross through the handle's centre, hexadecimal AARRGGBB; empty: none
    PinCount
};
}  // namespace kx::joystick

class KX_BetterJoystickImg : public ImageBase {
public:
    // A second press at most this long after the previous one is a double click.
    static constexpr std::int64_t kDoubleClickNs = 400'000'000;

    KX_BetterJoystickImg();

    // Absolute mode: anywhere. Relative mode: on a pixel of the handle's frame whose alpha reaches the
    // threshold.
    int32_t hitTest(GmpiDrawing_API::MP1_POINT point) override;
    int32_t onPointerDown(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    int32_t onPointerMove(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    int32_t onPointerUp(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    // Background, guide, then the handle's frame, all where X and Y say.
    int32_t OnRender(GmpiDrawing_API::IMpDeviceContext* drawingContext) override;

    float getAnimationPos() override { return pinPosition; }
    void setAnimationPos(float position) override { pinPosition = position; }
    // Takes the handle's size (frame plus padding): the margin its centre keeps from the edges.
    void onLoaded() override;
    std::wstring getHint() override { return pinHint.getValue(); }

    void onSetXY();
    void onSetColours();

    // The clock double clicks are timed with (the steady clock unless a test sets its own).
    void setClock(kx::Clock clock) { clock_ = std::move(clock); }
    // Where the handle (frame plus padding) is drawn, in the module's own coordinates: on whole pixels,
    // so the strip's artwork stays crisp.
    GmpiDrawing::Rect handleBox() const;

private:
    kx::PadTravel travel() const;
    bool onHandle(GmpiDrawing_API::MP1_POINT point) const;
    // X and Y as drawn: each clamped to 0..1.
    GmpiDrawing::Point shownPosition() const;
    // Keeps a position where the pins allow it (inside the disc when circular, then within 0..1) and
    // sends what changed.
    void moveTo(GmpiDrawing::Point position);
    // Repaints when what is drawn moved.
    void follow();

    MpGuiPin<float> pinX;
    MpGuiPin<float> pinY;
    MpGuiPin<float> pinPosition;
    MpGuiPin<bool> pinSpring;
    MpGuiPin<float> pinCentreX;
    MpGuiPin<float> pinCentreY;
    MpGuiPin<bool> pinCircular;
    MpGuiPin<bool> pinRelative;
    MpGuiPin<int> pinAlphaThreshold;
    StringGuiPin pinBackground;
    StringGuiPin pinGuide;

    GmpiDrawing::Size handleSize_{};
    GmpiDrawing::Point shown_{-1, -1};
    GmpiDrawing::Color background_{0, 0, 0, 0};
    GmpiDrawing::Color guide_{0, 0, 0, 0};

    kx::PadDrag drag_;
    kx::Clock clock_;
    std::int64_t lastPressNs_ = 0;
    // A press since which a second one would be a double click.
    bool pressed_ = false;
    // A press that reset the handle: its drag leaves the handle at the centre until the release.
    bool resetting_ = false;
};
