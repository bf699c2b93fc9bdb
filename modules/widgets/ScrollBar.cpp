#include "widgets/ScrollBar.h"

#include <algorithm>
#include <cmath>

#include "ModuleSupport.h"
#include "MpFactory.h"

using GmpiDrawing::Color;
using GmpiDrawing::Point;
using GmpiDrawing::Rect;

namespace {

// Dark-panel defaults: a recessed track, a mid-grey thumb, a cool grey edge whose shades draw the groove
// and the grip.
Color defaultColour(int which) {
    static const uint32_t argb[] = {0xFF25272C, 0xFF5B6270, 0xFF8C96A8};
    return Color::FromArgb(argb[which]);
}

float snap(float v) { return std::floor(v + 0.5f); }

// A rectangle given along and across the bar, placed as the bar lies.
Rect oriented(bool vertical, float along0, float across0, float along1, float across1) {
    return vertical ? Rect(across0, along0, across1, along1) : Rect(along0, across0, along1, across1);
}

Point oriented(bool vertical, float along, float across) {
    return vertical ? Point(across, along) : Point(along, across);
}

Color mix(const Color& a, const Color& b, float t) {
    return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t, a.a + (b.a - a.a) * t};
}

}  // namespace

KX_ScrollBar::KX_ScrollBar() {
    initializePin(positionPin_, &KX_ScrollBar::onSetOffset);
    initializePin(visiblePin_, &KX_ScrollBar::onSetVisible);
    initializePin(totalPin_, &KX_ScrollBar::onSetTotal);
    initializePin(thumbHeld_);
    initializePin(stepBack_, &KX_ScrollBar::onSetDec);
    initializePin(stepForward_, &KX_ScrollBar::onSetInc);
    for (auto& pin : colourPins_)
        initializePin(pin, &KX_ScrollBar::onSetColors);
    initializePin(unused_);
    // Repeats should follow the button closely; this sets the default interval of the whole process.
    SetTimerIntervalMs(10);
    onSetColors();
}

void KX_ScrollBar::onSetOffset() {
    if (writing_)
        return;
    position_ = static_cast<float>(std::max(0, positionPin_.getValue()));
    invalidateRect();
}

void KX_ScrollBar::onSetVisible() {
    visible_ = static_cast<float>(std::max(0, visiblePin_.getValue()));
    invalidateRect();
}

void KX_ScrollBar::onSetTotal() {
    total_ = static_cast<float>(std::max(0, totalPin_.getValue()));
    invalidateRect();
}

void KX_ScrollBar::onSetColors() {
    for (int i = 0; i < 3; ++i) {
        const std::wstring& text = colourPins_[i].getValue();
        colours_[i] = Color::FromArgbText(text, defaultColour(i));
    }
    const Color& edge = colours_[2];
    light_ = Color((edge.r + 2.0f) * 0.333f, (edge.g + 2.0f) * 0.333f, (edge.b + 2.0f) * 0.333f, edge.a);
    dark_ = Color(edge.r * 0.333f, edge.g * 0.333f, edge.b * 0.333f, edge.a);
    invalidateRect();
}

void KX_ScrollBar::sendPosition() {
    // The host echoes the write into the same pin; taken as an outside position it would drop the
    // fraction a slow drag is adding up.
    kx::ReentryFlag guard(writing_);
    positionPin_ = kx::truncToInt32(position_);
}

void KX_ScrollBar::step(int direction) {
    if (direction < 0 && position_ > 0) {
        position_ = std::max(0.0f, position_ - 1);
        sendPosition();
    } else if (direction > 0 && position_ < lastStart()) {
        position_ = std::min(position_ + 1, lastStart());
        sendPosition();
    }
}

void KX_ScrollBar::onSetDec() {
    if (stepBack_ && total_ > visible_) {
        step(-1);
        StartTimer();
        ticks_ = 0;
    } else {
        StopTimer();
    }
}

void KX_ScrollBar::onSetInc() {
    if (stepForward_ && total_ > visible_) {
        step(+1);
        StartTimer();
        ticks_ = 0;
    } else {
        StopTimer();
    }
}

bool KX_ScrollBar::OnTimer() {
    if (ticks_ < kRepeatDelayTicks) {
        ++ticks_;
        return true;
    }
    if (stepBack_)
        step(-1);
    else if (stepForward_)
        step(+1);
    return stepBack_ || stepForward_;
}

KX_ScrollBar::Geometry KX_ScrollBar::geometry() const {
    const float w = getRect().right - getRect().left, h = getRect().bottom - getRect().top;
    Geometry geo{!(w > h), 0, 0, -1, 0};
    const float track = geo.vertical ? h : w, thickness = geo.vertical ? w : h;
    const auto span = kx::thumbSpan(track, total_, visible_, position_, std::max(kMinThumb, thickness));
    if (span.length <= 0)
        return geo;
    geo.track = track;
    geo.thumbStart = snap(span.start);
    geo.thumbLength = std::clamp(snap(span.length), 1.0f, std::max(1.0f, track - geo.thumbStart));
    geo.thumbEnd = geo.thumbStart + geo.thumbLength - 1;
    return geo;
}

int32_t KX_ScrollBar::OnRender(GmpiDrawing_API::IMpDeviceContext* drawingContext) {
    GmpiDrawing::Graphics g(drawingContext);
    const float w = getRect().right - getRect().left, h = getRect().bottom - getRect().top;
    const Geometry geo = geometry();
    if (!g || geo.track <= 0 || !(w > 0 && h > 0 && std::isfinite(w) && std::isfinite(h)))
        return gmpi::MP_OK;
    const bool v = geo.vertical;
    const float thickness = v ? w : h;

    // The track, and a one-unit groove around it on pixel centres.
    g.FillRectangle(Rect(0, 0, w, h), g.CreateSolidColorBrush(colours_[0]));
    auto darkBrush = g.CreateSolidColorBrush(dark_);
    if (w > 1 && h > 1)
        g.DrawRectangle(Rect(0.5f, 0.5f, w - 0.5f, h - 0.5f), darkBrush);

    // The thumb, two units clear of the groove all round; brighter while held.
    const float inset = thickness >= 8 ? 2.0f : 0.0f;
    const Rect thumb =
        oriented(v, geo.thumbStart + inset, inset, geo.thumbStart + geo.thumbLength - inset, thickness - inset);
    if (thumb.getWidth() <= 0 || thumb.getHeight() <= 0)
        return gmpi::MP_OK;
    g.FillRectangle(thumb, g.CreateSolidColorBrush(dragging_ ? mix(colours_[1], light_, 0.35f) : colours_[1]));
    Color rim = light_;
    rim.a *= 0.45f;
    auto rimBrush = g.CreateSolidColorBrush(rim);
    if (thumb.getWidth() > 2 && thumb.getHeight() > 2) {
        Rect edge = thumb;
        edge.Deflate(0.5f, 0.5f);
        g.DrawRectangle(edge, rimBrush);
    }

    // Three grip lines across the thumb's middle, when it is long and thick enough to carry them.
    const float along = geo.thumbLength - 2 * inset, across = thickness - 2 * inset;
    if (along >= 16 && across >= 6) {
        const float middle = std::floor(geo.thumbStart + geo.thumbLength / 2) + 0.5f;
        const float from = inset + 2, to = thickness - inset - 2;
        for (float offset : {-3.0f, 0.0f, 3.0f})
            g.DrawLine(oriented(v, middle + offset, from), oriented(v, middle + offset, to), darkBrush);
    }
    return gmpi::MP_OK;
}

int32_t KX_ScrollBar::onPointerDown(int32_t, GmpiDrawing_API::MP1_POINT point) {
    const Geometry geo = geometry();
    const float c = geo.vertical ? point.y : point.x;
    if (c < geo.thumbStart) {
        position_ = std::max(0.0f, position_ - visible_);
        sendPosition();
        return gmpi::MP_OK;
    }
    if (c > geo.thumbEnd) {
        // No lower limit: with fewer items than the window holds this goes below 0, and is sent so.
        position_ = std::min(position_ + visible_, lastStart());
        sendPosition();
        return gmpi::MP_OK;
    }
    thumbHeld_ = true;
    dragFrom_ = c;
    sentDuringDrag_ = kx::truncToInt32(position_);
    setCapture();
    dragging_ = true;
    invalidateRect();
    return 1;
}

int32_t KX_ScrollBar::onPointerMove(int32_t flags, GmpiDrawing_API::MP1_POINT point) {
    if (!getCapture())
        return gmpi::MP_OK;
    const Geometry geo = geometry();
    const float c = geo.vertical ? point.y : point.x;
    const float speed = (flags & gmpi_gui_api::GG_POINTER_KEY_CONTROL) ? 0.05f : 1.0f;
    const float travel = geo.track - geo.thumbLength;
    const float delta = (c - dragFrom_) * speed * lastStart() / travel;
    dragFrom_ = c;
    // With everything visible (or no room to travel) there is nothing to move.
    if (lastStart() <= 0 || travel <= 0 || !std::isfinite(delta))
        return 1;
    position_ = std::clamp(position_ + delta, 0.0f, lastStart());
    invalidateRect();
    const int n = kx::truncToInt32(position_);
    if (n != sentDuringDrag_) {
        sendPosition();
        sentDuringDrag_ = n;
    }
    return 1;
}

int32_t KX_ScrollBar::onPointerUp(int32_t, GmpiDrawing_API::MP1_POINT) {
    if (getCapture())
        releaseCapture();
    thumbHeld_ = false;
    dragging_ = false;
    invalidateRect();
    return gmpi::MP_OK;
}

namespace {
const bool registered = gmpi::Register<KX_ScrollBar>::withId(L"KX_ScrollBar");
}
