#include "widgets/Joystick.h"

#include <climits>
#include <cmath>
#include <cstdint>

#include "ModuleSupport.h"
#include "MpFactory.h"

using GmpiDrawing::Color;
using GmpiDrawing::Point;
using GmpiDrawing::Rect;
using GmpiDrawing_API::MP1_POINT;

namespace {

const Color kNone{0, 0, 0, 0};

}  // namespace

KX_BetterJoystickImg::KX_BetterJoystickImg() : clock_(&kx::steadyNowNs) {
    initializePin(pinX, &KX_BetterJoystickImg::onSetXY);
    initializePin(pinY, &KX_BetterJoystickImg::onSetXY);
    initializePin(pinFilename, &ImageBase::onSetFilename);
    initializePin(pinPosition, &ImageBase::calcDrawAt);
    initializePin(pinHint);
    initializePin(pinMenuItems);
    initializePin(pinMenuSelection);
    initializePin(pinMouseDown);
    initializePin(pinSpring);
    initializePin(pinCentreX);
    initializePin(pinCentreY);
    initializePin(pinCircular);
    initializePin(pinRelative);
    initializePin(pinAlphaThreshold);
    initializePin(pinBackground, &KX_BetterJoystickImg::onSetColours);
    initializePin(pinGuide, &KX_BetterJoystickImg::onSetColours);
}

void KX_BetterJoystickImg::onLoaded() {
    handleSize_ = getMetadata() ? GmpiDrawing::Size(desiredSize()) : GmpiDrawing::Size();
}

void KX_BetterJoystickImg::onSetXY() { follow(); }

void KX_BetterJoystickImg::onSetColours() {
    background_ = Color::FromArgbText(pinBackground.getValue(), kNone);
    guide_ = Color::FromArgbText(pinGuide.getValue(), kNone);
    invalidateRect();
}

kx::PadTravel KX_BetterJoystickImg::travel() const {
    const GmpiDrawing::Size size = layoutSize();
    return kx::PadTravel::of(size.width, size.height, handleSize_.width, handleSize_.height);
}

Point KX_BetterJoystickImg::shownPosition() const { return {kx::clampUnit(pinX), kx::clampUnit(pinY)}; }

Rect KX_BetterJoystickImg::handleBox() const {
    const Point c = travel().centreAt(shownPosition());
    const float left = std::round(c.x - handleSize_.width / 2), top = std::round(c.y - handleSize_.height / 2);
    return {left, top, left + handleSize_.width, top + handleSize_.height};
}

void KX_BetterJoystickImg::follow() {
    const Point p = shownPosition();
    if (p == shown_)
        return;
    shown_ = p;
    invalidateRect();
}

void KX_BetterJoystickImg::moveTo(Point position) {
    float x = position.x, y = position.y;
    if (pinCircular) {
        // Onto the rim along the line to the centre, in the square -1..1 the disc is inscribed in.
        const float nx = 2 * x - 1, ny = 2 * y - 1;
        const float r = std::hypot(nx, ny);
        if (r > 1 && std::isfinite(r)) {
            x = (nx / r + 1) / 2;
            y = (ny / r + 1) / 2;
        }
    }
    pinX = kx::clampUnit(x);
    pinY = kx::clampUnit(y);
    follow();
}

bool KX_BetterJoystickImg::onHandle(MP1_POINT point) const {
    const ImageMetadata* m = getMetadata();
    if (!bitmap_ || !m)
        return false;
    const Rect box = handleBox();
    const float fx = point.x - (box.left + m->paddingLeft), fy = point.y - (box.top + m->paddingTop);
    // Written so that a NaN point misses.
    if (!(fx >= 0 && fx < static_cast<float>(m->frameWidth) && fy >= 0 && fy < static_cast<float>(m->frameHeight)))
        return false;
    const int64_t row = int64_t{getDrawAt()} + static_cast<int64_t>(fy);
    if (row > INT32_MAX)
        return false;
    const uint32_t alpha = bitmap_.getPixel(static_cast<int32_t>(fx), static_cast<int32_t>(row)) >> 24;
    return int64_t{alpha} >= int64_t{pinAlphaThreshold.getValue()};
}

int32_t KX_BetterJoystickImg::hitTest(MP1_POINT point) {
    return !pinRelative || onHandle(point) ? gmpi::MP_OK : gmpi::MP_FAIL;
}

int32_t KX_BetterJoystickImg::onPointerDown(int32_t flags, MP1_POINT point) {
    if (hitTest(point) != gmpi::MP_OK)
        return gmpi::MP_FAIL;
    // Other buttons are taken (nothing beneath gets them) but do nothing.
    if (!(flags & gmpi_gui_api::GG_POINTER_FLAG_FIRSTBUTTON))
        return gmpi::MP_OK;
    const std::int64_t now = clock_();
    const bool second = pressed_ && now >= lastPressNs_ && now - lastPressNs_ <= kDoubleClickNs;
    // A double click uses up its two presses: the next press starts a new pair.
    pressed_ = !second;
    lastPressNs_ = now;
    resetting_ = second;
    setCapture();
    pinMouseDown = true;
    const Point under = drag_.press(travel(), shownPosition(), point);
    if (second)
        moveTo({pinCentreX, pinCentreY});
    else if (!pinRelative)
        moveTo(under);
    return gmpi::MP_OK;
}

int32_t KX_BetterJoystickImg::onPointerMove(int32_t flags, MP1_POINT point) {
    if (!getCapture())
        return gmpi::MP_FAIL;
    // Jitter between the two presses of a double click and the release must not undo the reset.
    if (!resetting_)
        moveTo(drag_.move(travel(), shownPosition(), point, flags, pinRelative));
    return gmpi::MP_OK;
}

int32_t KX_BetterJoystickImg::onPointerUp(int32_t flags, MP1_POINT point) {
    if (ImageBase::onPointerUp(flags, point) != gmpi::MP_OK)
        return gmpi::MP_FAIL;
    resetting_ = false;
    if (pinSpring)
        moveTo({pinCentreX, pinCentreY});
    return gmpi::MP_OK;
}

int32_t KX_BetterJoystickImg::OnRender(GmpiDrawing_API::IMpDeviceContext* drawingContext) {
    GmpiDrawing::Graphics g(drawingContext);
    const GmpiDrawing::Size size = layoutSize();
    if (!g || !(size.width > 0 && size.height > 0 && std::isfinite(size.width) && std::isfinite(size.height)))
        return gmpi::MP_OK;
    if (background_.a > 0)
        g.FillRectangle(Rect(0, 0, size.width, size.height), g.CreateSolidColorBrush(background_));

    const Rect box = handleBox();
    if (guide_.a > 0) {
        // Through the middle of the pixel the handle's centre falls on, so each line lights one pixel.
        const float gx = std::floor(box.left + handleSize_.width / 2) + 0.5f;
        const float gy = std::floor(box.top + handleSize_.height / 2) + 0.5f;
        auto brush = g.CreateSolidColorBrush(guide_);
        g.DrawLine({gx, 0}, {gx, size.height}, brush, 1.0f);
        g.DrawLine({0, gy}, {size.width, gy}, brush, 1.0f);
    }

    const ImageMetadata* m = getMetadata();
    if (bitmap_ && m) {
        const float fw = static_cast<float>(m->frameWidth), fh = static_cast<float>(m->frameHeight);
        const float left = box.left + m->paddingLeft, top = box.top + m->paddingTop;
        const float at = static_cast<float>(getDrawAt());
        g.DrawBitmap(bitmap_, Rect(left, top, left + fw, top + fh), Rect(0, at, fw, at + fh));
    }
    return gmpi::MP_OK;
}

namespace {
const bool registered = gmpi::Register<KX_BetterJoystickImg>::withId(L"KX_BetterJoystickImg") &&
                        gmpi::Register<KX_BetterJoystickImg>::withId(L"KX_BetterJoystickImgC");
}
