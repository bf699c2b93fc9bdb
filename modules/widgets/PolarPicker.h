// KX_PolarPickerImg: picks a point in a disc by angle and distance from the centre, as a colour wheel
// picks hue and saturation. It paints a round two-colour gradient and, on it, a skinned handle at the
// picked point; pressing or dragging anywhere in the area moves the point to the pointer.
#pragma once

#include "ImageBase.h"

namespace kx::polar {
enum Pin : int {
    Position,  // frame of the handle's strip
    Filename,
    Hint,
    MenuItems,
    MenuSelection,
    MouseDown,
    FrameCount,
    Angle,     // share of a full turn, 0 pointing right, counter-clockwise
    Distance,  // from the centre, 0..1
    InnerColour,
    OuterColour,
    BackgroundShrink,
    BackgroundX,
    BackgroundY,
    PinCount
};
}  // namespace kx::polar

class KX_PolarPickerImg : public ImageBase {
public:
    KX_PolarPickerImg();

    int32_t OnRender(GmpiDrawing_API::IMpDeviceContext* drawingContext) override;
    int32_t onPointerDown(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    int32_t onPointerMove(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    int32_t onPointerUp(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;

    float getAnimationPos() override { return pinPosition; }
    void setAnimationPos(float position) override { pinPosition = position; }
    // Counts the handle's frames and takes its size (frame plus padding) as the margin it keeps.
    void onLoaded() override;
    std::wstring getHint() override { return pinHint.getValue(); }

    void onSetAngle();
    void onSetDist();
    void onSetColors();
    void onSetBGShrink();
    void onSetBGXOff();
    void onSetBGYOff();

    // Where the handle was last drawn (its top-left corner).
    GmpiDrawing::Point handlePosition() const { return handlePosition_; }

private:
    // Moves the picked point to the pointer: sends the angle and distance pins. What is drawn follows
    // when the host hands them back, so the picture is a function of the pins alone.
    void pick(GmpiDrawing_API::MP1_POINT point);

    MpGuiPin<float> pinPosition;
    MpGuiPin<int> pinFrameCount;
    MpGuiPin<float> pinAngle;
    MpGuiPin<float> pinDistance;
    StringGuiPin pinInnerColour;
    StringGuiPin pinOuterColour;
    MpGuiPin<float> pinBackgroundShrink;
    MpGuiPin<int> pinBackgroundX;
    MpGuiPin<int> pinBackgroundY;

    GmpiDrawing::Size handleSize_{};
    GmpiDrawing::Point handlePosition_{};
    float angle_ = 0;
    float distance_ = 0;
    float shrink_ = 0;
    float offsetX_ = 0;
    float offsetY_ = 0;
    const GmpiDrawing::Color defaultInner_ = GmpiDrawing::Color::FromBytes(0, 32, 64);
    const GmpiDrawing::Color defaultOuter_ = GmpiDrawing::Color::FromBytes(64, 128, 192);
    GmpiDrawing::Color inner_ = defaultInner_;
    GmpiDrawing::Color outer_ = defaultOuter_;
};
