#include "widgets/VectorJoystick.h"

#include <algorithm>
#include <cmath>

#include "DrawnText.h"
#include "ModuleSupport.h"
#include "MpFactory.h"
#include "TextCodec.h"
#include "it_enum_list.h"

using GmpiDrawing::Color;
using GmpiDrawing::Point;
using GmpiDrawing::Rect;
using GmpiDrawing_API::MP1_POINT;

namespace {

Color defaultColour(int which) {
    switch (which) {
        case 0:
            return Color::FromBytes(30, 34, 40);  // background
        case 1:
            return Color::FromBytes(96, 108, 124);  // lines
        default:
            return Color::FromBytes(255, 160, 32);  // handle
    }
}

// Labels sit against the area's edges with this much room either side of their text, in the background
// colour, so the diamond's lines stop short of them instead of crossing them.
constexpr float kLabelPadding = 3.0f;

// Whole units, so that label boxes and their text sit on the pixel grid.
float snap(float v) { return std::floor(v + 0.5f); }

}  // namespace

std::array<float, 4> kx::vecjs::mix(float x, float y) {
    const float s = std::clamp(x + y - 0.5f, 0.0f, 1.0f);
    const float t = std::clamp(y - x + 0.5f, 0.0f, 1.0f);
    return {(1 - s) * t, s * t, s * (1 - t), (1 - s) * (1 - t)};
}

KX_VecJS::KX_VecJS() {
    initializePin(pinX, &KX_VecJS::onSetXY);
    initializePin(pinY, &KX_VecJS::onSetXY);
    for (auto& pin : pinLevels)
        initializePin(pin);
    initializePin(pinPointerDown);
    for (auto& pin : pinColours)
        initializePin(pin, &KX_VecJS::onSetColours);
    initializePin(pinLabels, &KX_VecJS::onSetLabels);
    initializePin(pinStyle, &KX_VecJS::onSetStyle);
    for (int i = 0; i < ColourCount; ++i)
        colours_[i] = defaultColour(i);
    onSetLabels();
}

kx::PadTravel KX_VecJS::travel() const {
    return kx::PadTravel::of(getRect().right - getRect().left, getRect().bottom - getRect().top);
}

Point KX_VecJS::shownPosition() const { return {kx::clampUnit(pinX), kx::clampUnit(pinY)}; }

Point KX_VecJS::handleCentre() const { return travel().centreAt(shownPosition()); }

float KX_VecJS::handleRadius() const {
    const float w = getRect().right - getRect().left, h = getRect().bottom - getRect().top;
    return std::max(3.0f, std::min(w, h) / 20);  // a NaN size gives 3
}

std::string KX_VecJS::styleName() const {
    const std::wstring& style = pinStyle.getValue();
    return style.empty() ? std::string("normal") : kx::toUtf8Lenient(style);
}

void KX_VecJS::onSetXY() {
    // While the pointer writes X and then Y, a host's echo of X alone must not send the levels of a
    // place the handle never was.
    if (writing_)
        return;
    sendLevels();
    const Point p = shownPosition();
    if (p == shown_)
        return;
    shown_ = p;
    invalidateRect();
}

void KX_VecJS::moveTo(Point position) {
    {
        kx::ReentryFlag hold(writing_);
        pinX = kx::clampUnit(position.x);
        pinY = kx::clampUnit(position.y);
    }
    onSetXY();
}

void KX_VecJS::sendLevels() {
    const Point p = shownPosition();
    const auto levels = kx::vecjs::mix(p.x, p.y);
    for (size_t i = 0; i < levels.size(); ++i)
        pinLevels[i] = levels[i];
}

void KX_VecJS::onSetColours() {
    for (int i = 0; i < ColourCount; ++i) {
        const std::wstring& text = pinColours[i].getValue();
        colours_[i] = Color::FromArgbText(text, defaultColour(i));
    }
    invalidateRect();
}

void KX_VecJS::onSetLabels() {
    const std::wstring& list = pinLabels.getValue();
    it_enum_list it(list.empty() ? std::wstring(L"A,B,C,D") : list);
    size_t n = 0;
    for (it.First(); !it.IsDone() && n < labels_.size(); it.Next())
        if (!it.IsSeparator())
            labels_[n++] = it.text;
    // A list of fewer than four leaves the rest of the points without a label.
    for (; n < labels_.size(); ++n)
        labels_[n].clear();
    invalidateRect();
}

int32_t KX_VecJS::onPointerDown(int32_t flags, MP1_POINT point) {
    // Other buttons are taken (nothing beneath gets them) but do nothing.
    if (!(flags & gmpi_gui_api::GG_POINTER_FLAG_FIRSTBUTTON))
        return gmpi::MP_OK;
    setCapture();
    pinPointerDown = true;
    moveTo(drag_.press(travel(), shownPosition(), point));
    return gmpi::MP_OK;
}

int32_t KX_VecJS::onPointerMove(int32_t flags, MP1_POINT point) {
    if (!getCapture())
        return gmpi::MP_FAIL;
    moveTo(drag_.move(travel(), shownPosition(), point, flags, false));
    return gmpi::MP_OK;
}

int32_t KX_VecJS::onPointerUp(int32_t, MP1_POINT) {
    if (!getCapture())
        return gmpi::MP_FAIL;
    releaseCapture();
    pinPointerDown = false;
    return gmpi::MP_OK;
}

int32_t KX_VecJS::OnRender(GmpiDrawing_API::IMpDeviceContext* drawingContext) {
    GmpiDrawing::Graphics g(drawingContext);
    const float w = getRect().right - getRect().left, h = getRect().bottom - getRect().top;
    if (!g || !(w > 0 && h > 0 && std::isfinite(w) && std::isfinite(h)))
        return gmpi::MP_OK;
    auto background = g.CreateSolidColorBrush(colours_[Background]);
    if (colours_[Background].a > 0)
        g.FillRectangle(Rect(0, 0, w, h), background);

    // The diagonals run through the middle of a pixel row and column, so they light one pixel each; the
    // outline's points lie half a pixel in from the edges, so it shows whole.
    const float mx = std::floor(w / 2) + 0.5f, my = std::floor(h / 2) + 0.5f;
    const Point left(0.5f, my), top(mx, 0.5f), right(w - 0.5f, my), bottom(mx, h - 0.5f);
    auto line = g.CreateSolidColorBrush(colours_[Line]);
    g.DrawLine(left, top, line, 1.0f);
    g.DrawLine(top, right, line, 1.0f);
    g.DrawLine(right, bottom, line, 1.0f);
    g.DrawLine(bottom, left, line, 1.0f);
    g.DrawLine({0, my}, {w, my}, line, 1.0f);
    g.DrawLine({mx, 0}, {mx, h}, line, 1.0f);

    const std::string style = styleName();
    auto format = GetTextFormat(style);
    const FontMetadata* metadata = GetFontMetatdata(style);
    auto text = g.CreateSolidColorBrush(Color::FromArgb(metadata ? metadata->textArgb() : 0xFF000000u));
    const auto anchor = kx::anchorOf(metadata);
    // A label may take up to half the width, less its room.
    const float most = std::max(0.0f, w / 2 - 2 * kLabelPadding);
    const float lineHeight = format.GetFontMetrics().ascent + format.GetFontMetrics().descent;
    for (size_t i = 0; i < labels_.size(); ++i) {
        if (labels_[i].empty())
            continue;
        const std::string shown =
            kx::shownUtf8(labels_[i], kx::charsThatFit(most, lineHeight, lineHeight, false), anchor);
        const GmpiDrawing::Size extent = format.GetTextExtentU(shown);
        const float bw = std::ceil(std::min(extent.width, most)) + 2 * kLabelPadding;
        const float bh = std::ceil(extent.height);
        float x = snap(mx - bw / 2), y = snap(my - bh / 2);
        switch (i) {
            case 0:  // A, left
                x = 0;
                break;
            case 1:  // B, top
                y = 0;
                break;
            case 2:  // C, right
                x = snap(w - bw);
                break;
            default:  // D, bottom
                y = snap(h - bh);
        }
        const Rect box(x, y, x + bw, y + bh);
        if (colours_[Background].a > 0)
            g.FillRectangle(box, background);
        g.DrawTextU(shown, format, Rect(box.left + kLabelPadding, box.top, box.right - kLabelPadding, box.bottom), text,
                    GmpiDrawing_API::MP1_DRAW_TEXT_OPTIONS_CLIP);
    }

    const float r = handleRadius();
    g.FillEllipse(handleCentre(), r, r, g.CreateSolidColorBrush(colours_[Handle]));
    return gmpi::MP_OK;
}

namespace {
const bool registered = gmpi::Register<KX_VecJS>::withId(L"KX_VecJS");
}
