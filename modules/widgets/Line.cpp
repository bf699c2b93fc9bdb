#include "widgets/Line.h"

#include <algorithm>
#include <cmath>

#include "MpFactory.h"

using GmpiDrawing::Color;

namespace {

Color defaultLineColour() { return Color::FromBytes(255, 128, 0); }
const Color kNoBackground{0, 0, 0, 0};

}  // namespace

KX_Line::KX_Line() : lineColour_(defaultLineColour()), background_(kNoBackground) {
    initializePin(vertical_, &KX_Line::onSetVert);
    initializePin(positionPin_, &KX_Line::onSetPosition);
    initializePin(thicknessPin_, &KX_Line::onSetThickness);
    initializePin(lineColourPin_, &KX_Line::onSetFG_ARGB);
    initializePin(backgroundPin_, &KX_Line::onSetBG_ARGB);
    initializePin(pointerDown_);
}

void KX_Line::onSetVert() { invalidateRect(); }

void KX_Line::onSetPosition() {
    // Written so that NaN lands on 0.
    const float p = positionPin_ > 0.0f ? std::min(positionPin_.getValue(), 1.0f) : 0.0f;
    if (p != position_) {
        position_ = p;
        invalidateRect();
    }
}

void KX_Line::onSetThickness() {
    const float t = static_cast<float>(std::max(1, thicknessPin_.getValue()));
    if (t != thickness_) {
        thickness_ = t;
        invalidateRect();
    }
}

void KX_Line::onSetFG_ARGB() {
    const std::wstring& text = lineColourPin_.getValue();
    lineColour_ = Color::FromArgbText(text, defaultLineColour());
    invalidateRect();
}

void KX_Line::onSetBG_ARGB() {
    const std::wstring& text = backgroundPin_.getValue();
    background_ = Color::FromArgbText(text, kNoBackground);
    invalidateRect();
}

float KX_Line::drawnCentre() const {
    const float across = vertical_ ? getRect().right - getRect().left : getRect().bottom - getRect().top;
    // The pixel the position falls on, counting the area's last pixel as position 1.
    const float pixel = std::floor((across - 1) * position_ + 0.5f);
    const bool odd = std::fmod(thickness_, 2.0f) == 1.0f;
    return odd ? pixel + 0.5f : pixel + 1.0f;
}

int32_t KX_Line::OnRender(GmpiDrawing_API::IMpDeviceContext* drawingContext) {
    GmpiDrawing::Graphics g(drawingContext);
    const float w = getRect().right - getRect().left, h = getRect().bottom - getRect().top;
    if (!g || !(w > 0 && h > 0 && std::isfinite(w) && std::isfinite(h)))
        return gmpi::MP_OK;
    if (background_.a > 0)
        g.FillRectangle(GmpiDrawing::Rect(0, 0, w, h), g.CreateSolidColorBrush(background_));
    // The whole length of the area: a line one pixel long still shows.
    const float c = drawnCentre();
    auto brush = g.CreateSolidColorBrush(lineColour_);
    if (vertical_)
        g.DrawLine({c, 0}, {c, h}, brush, thickness_);
    else
        g.DrawLine({0, c}, {w, c}, brush, thickness_);
    return gmpi::MP_OK;
}

bool KX_Line::onLine(GmpiDrawing_API::MP1_POINT point) const {
    const float across = vertical_ ? getRect().right - getRect().left : getRect().bottom - getRect().top;
    const float q = vertical_ ? point.x : point.y;
    // Around position x the whole size, not the size less one that drawing uses: a line at 1 is found
    // half a pixel beyond the last pixel it lights.
    const float low = position_ * across - 0.5f * thickness_;
    return low <= q && q <= low + thickness_;
}

int32_t KX_Line::hitTest(GmpiDrawing_API::MP1_POINT point) { return onLine(point) ? gmpi::MP_OK : gmpi::MP_FAIL; }

int32_t KX_Line::onPointerDown(int32_t, GmpiDrawing_API::MP1_POINT point) {
    if (!onLine(point))
        return gmpi::MP_OK;
    pointerDown_ = true;
    setCapture();
    return 1;
}

int32_t KX_Line::onPointerUp(int32_t, GmpiDrawing_API::MP1_POINT) {
    if (getCapture())
        releaseCapture();
    pointerDown_ = false;
    return gmpi::MP_OK;
}

namespace {
const bool registered = gmpi::Register<KX_Line>::withId(L"KX_Line");
}
