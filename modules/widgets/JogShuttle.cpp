#include "widgets/JogShuttle.h"

#include <cmath>
#include <numbers>

#include "ModuleSupport.h"
#include "MpFactory.h"

using GmpiDrawing_API::MP1_POINT;

namespace {

constexpr float kPi = std::numbers::pi_v<float>;
constexpr float kTurnsPerRadian = 0.15915494f;  // 1 / (2 pi)

}  // namespace

KX_JogShuttleImg::KX_JogShuttleImg() {
    initializeImagePins();
    initializePin(pinHold);
    initializePin(pinValue, &KX_JogShuttleImg::onSetValue);
    initializePin(pinMinimum, &KX_JogShuttleImg::onSetMinMax);
    initializePin(pinMaximum, &KX_JogShuttleImg::onSetMinMax);
    initializePin(pinTurns, &KX_JogShuttleImg::onSetTurns);
    initializePin(pinUnlimited, &KX_JogShuttleImg::onSetUnlimited);
    initializePin(pinAlphaThreshold);
    initializePin(pinCentreX, &RotaryImageBase::onSetCenter);
    initializePin(pinCentreY, &RotaryImageBase::onSetCenter);
    initializePin(pinShowCentre, &RotaryImageBase::onSetCenter);
    initializePin(pinFrameCount);
    initializePin(pinTurnStep);
}

float KX_JogShuttleImg::clamp(float v) const {
    if (unlimited_)
        return v;
    if (v > maximum_)
        return maximum_;
    if (v < minimum_)
        return minimum_;
    return v;
}

void KX_JogShuttleImg::updateJog() {
    // One turn of the wheel is one pass through the strip, whatever the value's range.
    const float p = (value_ - minimum_) * turns_ / (maximum_ - minimum_);
    float angle = p - std::trunc(p);
    if (angle < 0)
        angle += 1.0f;
    // An empty range or an infinite value has no angle: the wheel rests at its first frame.
    position_ = std::isfinite(angle) ? angle : 0.0f;
    calcDrawAt();
}

void KX_JogShuttleImg::onSetValue() {
    const float v = clamp(pinValue);
    if (v == value_)
        return;
    value_ = v;
    updateJog();
}

void KX_JogShuttleImg::onSetMinMax() {
    minimum_ = pinMinimum;
    maximum_ = pinMaximum;
    value_ = clamp(pinValue);
    // The angle depends on the range too, so it is derived again even when the value stayed.
    updateJog();
}

void KX_JogShuttleImg::onSetTurns() {
    turns_ = pinTurns;
    updateJog();
}

// Takes effect with the next value: a value outside the range stays until something changes it.
void KX_JogShuttleImg::onSetUnlimited() { unlimited_ = pinUnlimited; }

int32_t KX_JogShuttleImg::hitTest(MP1_POINT point) {
    const ImageMetadata* m = getMetadata();
    if (!m || !bitmap_)
        return gmpi::MP_FAIL;
    const int64_t at = getDrawAt();
    const int64_t bx = kx::truncToInt32(point.x - m->paddingLeft);
    if (bx < 0 || bx > m->frameWidth)
        return gmpi::MP_FAIL;
    const int64_t by = kx::truncToInt32(point.y + static_cast<float>(at) - m->paddingTop);
    if (by < at || by > at + m->frameHeight)
        return gmpi::MP_FAIL;
    const int32_t alpha =
        static_cast<int32_t>(bitmap_.getPixel(static_cast<int32_t>(bx), static_cast<int32_t>(by)) >> 24);
    return alpha < pinAlphaThreshold ? gmpi::MP_FAIL : gmpi::MP_OK;
}

float KX_JogShuttleImg::pointerAngle(MP1_POINT point) const {
    const GmpiDrawing::Point c = rotaryCentre();
    return std::atan2(point.y - c.y, point.x - c.x) + kPi;
}

int32_t KX_JogShuttleImg::onPointerDown(int32_t flags, MP1_POINT point) {
    if (!bitmapHitTestLocal(point))
        return gmpi::MP_FAIL;
    if (!(flags & gmpi_gui_api::GG_POINTER_FLAG_FIRSTBUTTON))
        return gmpi::MP_OK;
    lastAngle_ = pointerAngle(point);
    if (bitmap_)
        pinMouseDown = true;
    setCapture();
    return gmpi::MP_OK;
}

int32_t KX_JogShuttleImg::onPointerMove(int32_t, MP1_POINT point) {
    if (!getCapture())
        return gmpi::MP_FAIL;
    // A point that is not a number has no angle; keeping the last one lets the next real point go on.
    const float a = pointerAngle(point);
    if (!std::isfinite(a))
        return gmpi::MP_OK;
    float d = a - lastAngle_;
    lastAngle_ = a;
    // Crossing the seam at the left is a small turn, never a whole one.
    if (d > kPi)
        d -= 2 * kPi;
    else if (d < -kPi)
        d += 2 * kPi;
    const float step = d * kTurnsPerRadian;
    const float next = clamp(value_ + step * (maximum_ - minimum_) / turns_);
    if (next == value_ || std::isnan(next))
        return gmpi::MP_OK;
    // Stored first: the host's echo of the value pin then finds nothing new.
    value_ = next;
    pinValue = next;
    updateJog();
    // Back to 0 before each step, so two equal steps in a row still reach the host as two changes.
    pinTurnStep = 0.0f;
    pinTurnStep = step;
    return gmpi::MP_OK;
}

int32_t KX_JogShuttleImg::onPointerUp(int32_t, MP1_POINT) {
    if (!getCapture())
        return gmpi::MP_FAIL;
    releaseCapture();
    pinTurnStep = 0.0f;
    pinMouseDown = false;
    return gmpi::MP_OK;
}

namespace {
const bool registered = gmpi::Register<KX_JogShuttleImg>::withId(L"KX_JogShuttleImg");
}
