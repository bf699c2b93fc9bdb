#include "widgets/ImageControl.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "ModuleSupport.h"
#include "MpFactory.h"

using GmpiDrawing_API::MP1_POINT;
using Response = ImageMetadata::MouseResponse;

namespace {

constexpr float kPi = std::numbers::pi_v<float>;

// The drag constants are tuning that users' hands are used to; they must not drift.
constexpr float kDragPerPixel = 0.005f;
constexpr float kFineDragPerPixel = 0.001f;
constexpr float kRotaryScale = 0.01f;
constexpr float kRotaryGain = 20.0f;
constexpr float kFineFactor = 0.1f;
constexpr float kWeightDecay = 0.9f;
constexpr float kWeightStep = 0.1f;
// Within this many pixels of the vertical line through the centre a drag leans to the vertical reading.
constexpr float kCentreBand = 10.0f;

bool isFinite(MP1_POINT p) { return std::isfinite(p.x) && std::isfinite(p.y); }

}  // namespace

KX_Image::KX_Image() {
    initializePin(pinPosition, &ImageBase::calcDrawAt);
    initializeImagePins();
    initializePin(pinHold);
    initializePin(pinPixelThreshold);
    initializePin(pinCentreX, &RotaryImageBase::onSetCenter);
    initializePin(pinCentreY, &RotaryImageBase::onSetCenter);
    initializePin(pinShowCentre, &RotaryImageBase::onSetCenter);
    initializePin(pinFrameCount);
    initializePin(pinPixelPulse);
    initializePin(pinPointerX);
    initializePin(pinPointerY);
}

int32_t KX_Image::getMouseResponse() { return metadata_ ? metadata_->mouseResponse : Response::Vertical; }

int32_t KX_Image::hitTest(MP1_POINT point) {
    const BitmapHit found = bitmapHitTest(point);
    if (found.pixelRead) {
        pinPointerX = point.x;
        pinPointerY = point.y;
        // The pixel is compared as an unsigned number, so a negative threshold fires on every pixel.
        if (int64_t{found.pixel} >= int64_t{pinPixelThreshold.getValue()}) {
            pinPixelPulse = true;
            pinPixelPulse = false;
        }
    }
    return found.hit ? gmpi::MP_OK : gmpi::MP_FAIL;
}

int32_t KX_Image::onPointerDown(int32_t flags, MP1_POINT point) {
    if (hitTest(point) != gmpi::MP_OK)
        return gmpi::MP_FAIL;
    // Other buttons are taken (nothing beneath gets them) but do nothing.
    if (!(flags & gmpi_gui_api::GG_POINTER_FLAG_FIRSTBUTTON))
        return gmpi::MP_OK;
    dragStart_ = point;
    switch (getMouseResponse()) {
        case Response::NoResponse:
            return gmpi::MP_OK;
        case Response::Click:
            setAnimationPos(pinPosition == 0.0f ? 1.0f : 0.0f);
            calcDrawAt();
            break;
        case Response::Step:
            stepFrame();
            break;
        default:
            rotaryWeight_ = 0;
    }
    if (bitmap_)
        pinMouseDown = true;
    setCapture();
    return gmpi::MP_OK;
}

void KX_Image::stepFrame() {
    // A strip of one frame has nothing to step to.
    const int32_t last = getLastFrame();
    if (last <= 0)
        return;
    const int32_t shown = getDrawAt();
    // Frames that look alike (the same draw-at) are passed over, so a step always shows a new frame.
    // The host's echo of the position may already have moved draw-at: compare with what was shown.
    for (int32_t i = 0; i <= last && getDrawAt() == shown; ++i) {
        const int32_t frame = kx::truncToInt32(kx::clampUnit(pinPosition) * static_cast<float>(last) + 0.5f);
        const int32_t next = frame < last ? frame + 1 : 0;
        setAnimationPos(static_cast<float>(next) / static_cast<float>(last));
        calcDrawAt();
    }
}

float KX_Image::rotaryDelta(MP1_POINT point, float dy) {
    const GmpiDrawing::Size size = layoutSize();
    const GmpiDrawing::Point c = rotaryCentre();
    float d = std::atan2(point.y - c.y, point.x - c.x) - std::atan2(dragStart_.y - c.y, dragStart_.x - c.x);
    if (d < -kPi)
        d += 2 * kPi;
    if (d > kPi)
        d -= 2 * kPi;
    const float qx = std::fabs(point.x - c.x), qy = std::fabs(point.y - c.y);
    // Far from the centre an angle is worth more; a layout without size counts as far.
    const float reach =
        size.width + size.height > 0 ? std::min(1.0f, 2 * (qx + qy) / (size.width + size.height)) : 1.0f;
    const float rot = reach * kRotaryGain * d;
    const float lin = std::max(0.0f, 1 - std::min(std::trunc(qx), kCentreBand) / kCentreBand) * dy;
    // The weight follows whichever reading the recent moves favoured, so a circular drag turns the knob
    // and a drag straight up or down near the centre line acts as a plain vertical drag.
    rotaryWeight_ = rotaryWeight_ * kWeightDecay + (std::fabs(lin) < std::fabs(rot) ? kWeightStep : -kWeightStep);
    return rotaryWeight_ > 0 ? rot : -dy;
}

int32_t KX_Image::onPointerMove(int32_t flags, MP1_POINT point) {
    if (!getCapture())
        return gmpi::MP_FAIL;
    // A point that is not a number (or infinitely far) cannot be measured from; the next real one is.
    if (!isFinite(point))
        return gmpi::MP_OK;
    const float dx = point.x - dragStart_.x, dy = point.y - dragStart_.y;
    const bool fine = (flags & gmpi_gui_api::GG_POINTER_KEY_CONTROL) != 0;
    const float p = pinPosition;
    float next = p;
    switch (const int32_t r = getMouseResponse()) {
        case Response::Click:
        case Response::Step:
            break;
        case Response::Rotary:
            next = p + rotaryDelta(point, dy) * (fine ? kFineFactor : 1.0f) * kRotaryScale;
            break;
        default: {
            const float k = fine ? kFineDragPerPixel : kDragPerPixel;
            next = r == Response::Vertical ? p - k * dy : p + k * dx;  // moving up raises the value
        }
    }
    setAnimationPos(kx::clampUnit(next));
    dragStart_ = point;
    calcDrawAt();
    return gmpi::MP_OK;
}

int32_t KX_Image::onPointerUp(int32_t flags, MP1_POINT point) {
    if (ImageBase::onPointerUp(flags, point) != gmpi::MP_OK)
        return gmpi::MP_FAIL;
    // A momentary button springs back; with Hold it stays where the press put it.
    if (getMouseResponse() == Response::Click && !pinHold) {
        setAnimationPos(0.0f);
        calcDrawAt();
    }
    return gmpi::MP_OK;
}

KX_ImgM2C::KX_ImgM2C() {
    initializePin(out_);
    initializePin(in_, &KX_ImgM2C::onSetSel);
}

void KX_ImgM2C::onSetSel() {
    const int selection = in_.getValue();
    if (selection == -1 || selection == out_)
        return;
    out_ = selection;
}

namespace {
const bool registered =
    gmpi::Register<KX_Image>::withId(L"KX_Image") && gmpi::Register<KX_ImgM2C>::withId(L"KX_ImgM2C");
}
