#include "widgets/PolarPicker.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "ModuleSupport.h"
#include "MpFactory.h"

using GmpiDrawing_API::MP1_POINT;

namespace {

constexpr float kTwoPi = 2 * std::numbers::pi_v<float>;
constexpr float kTurnsPerRadian = 0.15915494f;  // 1 / (2 pi)

}  // namespace

KX_PolarPickerImg::KX_PolarPickerImg() {
    initializePin(pinPosition, &ImageBase::calcDrawAt);
    initializeImagePins();
    initializePin(pinFrameCount);
    initializePin(pinAngle, &KX_PolarPickerImg::onSetAngle);
    initializePin(pinDistance, &KX_PolarPickerImg::onSetDist);
    initializePin(pinInnerColour, &KX_PolarPickerImg::onSetColors);
    initializePin(pinOuterColour, &KX_PolarPickerImg::onSetColors);
    initializePin(pinBackgroundShrink, &KX_PolarPickerImg::onSetBGShrink);
    initializePin(pinBackgroundX, &KX_PolarPickerImg::onSetBGXOff);
    initializePin(pinBackgroundY, &KX_PolarPickerImg::onSetBGYOff);
}

void KX_PolarPickerImg::onLoaded() {
    pinFrameCount = frameCount();
    handleSize_ = getMetadata() ? GmpiDrawing::Size(desiredSize()) : GmpiDrawing::Size();
}

void KX_PolarPickerImg::onSetAngle() {
    angle_ = kx::clampUnit(pinAngle);
    reDraw();
}

void KX_PolarPickerImg::onSetDist() {
    distance_ = kx::clampUnit(pinDistance);
    reDraw();
}

void KX_PolarPickerImg::onSetColors() {
    // An empty text is the slot's own default: the blue gradient of a fresh picker.
    const std::wstring& inner = pinInnerColour.getValue();
    const std::wstring& outer = pinOuterColour.getValue();
    inner_ = GmpiDrawing::Color::FromArgbText(inner, defaultInner_);
    outer_ = GmpiDrawing::Color::FromArgbText(outer, defaultOuter_);
    reDraw();
}

void KX_PolarPickerImg::onSetBGShrink() {
    shrink_ = std::max(0.0f, pinBackgroundShrink.getValue());  // NaN gives 0 too
    reDraw();
}

void KX_PolarPickerImg::onSetBGXOff() {
    offsetX_ = static_cast<float>(pinBackgroundX.getValue());
    reDraw();
}

void KX_PolarPickerImg::onSetBGYOff() {
    offsetY_ = static_cast<float>(pinBackgroundY.getValue());
    reDraw();
}

void KX_PolarPickerImg::pick(MP1_POINT point) {
    const GmpiDrawing::Size size = layoutSize();
    const float iw = handleSize_.width, ih = handleSize_.height;
    // -1..1 across the area the handle's centre can reach, y growing upwards.
    const float nx = 2 * (point.x - iw / 2) / (size.width - iw) - 1;
    const float ny = 2 * (1 - (point.y - ih / 2) / (size.height - ih)) - 1;
    // A NaN point, or an area no larger than the handle, picks nothing.
    if (!std::isfinite(nx) || !std::isfinite(ny))
        return;
    const float distance = std::min(1.0f, std::hypot(nx, ny));
    float angle = 0;
    if (distance != 0) {
        angle = std::atan2(ny, nx);
        if (angle < 0)
            angle += kTwoPi;
        angle *= kTurnsPerRadian;
    }
    pinAngle = angle;
    pinDistance = distance;
}

int32_t KX_PolarPickerImg::onPointerDown(int32_t flags, MP1_POINT point) {
    if (!(flags & gmpi_gui_api::GG_POINTER_FLAG_FIRSTBUTTON) || !bitmap_)
        return gmpi::MP_OK;
    setCapture();
    pinMouseDown = true;
    pick(point);
    return gmpi::MP_OK;
}

int32_t KX_PolarPickerImg::onPointerMove(int32_t, MP1_POINT point) {
    if (!getCapture())
        return gmpi::MP_FAIL;
    pick(point);
    return gmpi::MP_OK;
}

int32_t KX_PolarPickerImg::onPointerUp(int32_t flags, MP1_POINT point) {
    pinMouseDown = false;
    return ImageBase::onPointerUp(flags, point);
}

int32_t KX_PolarPickerImg::OnRender(GmpiDrawing_API::IMpDeviceContext* drawingContext) {
    GmpiDrawing::Graphics g(drawingContext);
    const GmpiDrawing::Size size = layoutSize();

    const float rx = size.width / 2 - shrink_, ry = size.height / 2 - shrink_;
    // Fully transparent colours hide the background; so does shrinking it to nothing.
    if ((inner_.a > 0 || outer_.a > 0) && rx > 0 && ry > 0) {
        const GmpiDrawing::Point centre(size.width / 2 + offsetX_, size.height / 2 + offsetY_);
        const auto stops = g.CreateGradientStopCollection({{0.0f, inner_}, {1.0f, outer_}});
        GmpiDrawing::Brush brush = g.CreateRadialGradientBrush(stops, centre, {0, 0}, rx, ry);
        if (!brush)
            brush = g.CreateSolidColorBrush(inner_);
        g.FillEllipse(centre, rx, ry, brush);
    }

    const ImageMetadata* m = getMetadata();
    if (bitmap_ && m) {
        const float a = angle_ * kTwoPi;
        handlePosition_ = {(size.width - handleSize_.width) * (1 + distance_ * std::cos(a)) / 2,
                           (size.height - handleSize_.height) * (1 - distance_ * std::sin(a)) / 2};
        const float fw = static_cast<float>(m->frameWidth), fh = static_cast<float>(m->frameHeight);
        const float at = static_cast<float>(getDrawAt());
        g.DrawBitmap(
            bitmap_,
            GmpiDrawing::Rect(handlePosition_.x, handlePosition_.y, handlePosition_.x + fw, handlePosition_.y + fh),
            GmpiDrawing::Rect(0, at, fw, at + fh), 1.0f, GmpiDrawing_API::MP1_BITMAP_INTERPOLATION_MODE_LINEAR);
    }
    return gmpi::MP_OK;
}

namespace {
const bool registered = gmpi::Register<KX_PolarPickerImg>::withId(L"KX_PolarPickerImg");
}
