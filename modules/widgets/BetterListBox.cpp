#include "widgets/BetterListBox.h"

#include <algorithm>
#include <climits>
#include <cmath>

#include "DrawnText.h"
#include "MpFactory.h"
#include "TextCodec.h"
#include "it_enum_list.h"
#include "widgets/ScrollThumb.h"

using GmpiDrawing::Color;
using GmpiDrawing::Rect;

namespace {

// A host that reports no clip, or one of absurd size, still gets a frame of bounded cost: no display
// shows more rows than this at once.
constexpr int kMostRowsPerFrame = 1000;
// Text starts this far inside its row, so that it does not touch the highlight's edge.
constexpr float kTextInset = 4.0f;

Color defaultColour(int which) {
    switch (which) {
        case 1:
            return Color::FromBytes(64, 176, 255);
        case 2:
            return Color::FromBytes(0, 80, 128);
        case 3:
            return Color::FromBytes(255, 255, 255);
        case 4:
            return Color::FromBytes(128, 208, 255);
        case 5:
            return Color::FromBytes(0, 64, 112);
        default:
            return Color(0, 0, 0, 0);  // text: the style's
    }
}

// Rows of height h that fit in height: 0 for NaN and degenerate sizes, never more than an int holds.
int rowsThatFit(float height, float rowHeight) {
    const double n = std::floor(static_cast<double>(height) / rowHeight);
    return n >= 1 ? static_cast<int>(std::min(n, static_cast<double>(INT_MAX))) : 0;
}

// Whole units, so that fills and their edges fall on pixel boundaries.
float snap(double v) { return static_cast<float>(std::floor(v + 0.5)); }

}  // namespace

// ---- ListRows

void ListRows::assign(const std::wstring& list) {
    entries_.clear();
    it_enum_list it(list);
    range_ = it.IsRange();
    it.First();
    if (range_) {
        first_ = it.id;
        count_ = it.IsDone() ? 0 : it.size();
        return;
    }
    for (; !it.IsDone(); it.Next())
        if (!it.IsSeparator())
            entries_.push_back({it.id, it.text});
    count_ = static_cast<int>(std::min<size_t>(entries_.size(), INT_MAX));
}

int ListRows::valueAt(int row) const {
    if (range_)
        return static_cast<int>(static_cast<long long>(first_) + row);
    return entries_[static_cast<size_t>(row)].value;
}

std::wstring ListRows::textAt(int row) const {
    if (range_)
        return std::to_wstring(valueAt(row));
    return entries_[static_cast<size_t>(row)].text;
}

// ---- KX_BetterListBox

KX_BetterListBox::KX_BetterListBox() {
    initializePin(choice_, &KX_BetterListBox::onSetChoice);
    initializePin(items_, &KX_BetterListBox::onSetItemList);
    initializePin(pointerDown_);
    initializePin(style_, &KX_BetterListBox::onSetStyle);
    for (auto& pin : colourPins_)
        initializePin(pin, &KX_BetterListBox::onSetColors);
    initializePin(hideScrollBar_);
    for (int i = 0; i < ColourCount; ++i)
        colours_[i] = defaultColour(i);
}

std::string KX_BetterListBox::styleName() const { return kx::toUtf8Lenient(style_.getValue()); }

void KX_BetterListBox::onSetItemList() {
    rows_.assign(items_.getValue());
    scroll_ = 0;
    calcScrollBars();
    invalidateRect();
}

void KX_BetterListBox::onSetStyle() {
    if (style_.getValue().empty())
        style_ = L"normal";
    invalidateMeasure();
    calcScrollBars();
    invalidateRect();
}

void KX_BetterListBox::onSetColors() {
    for (int i = 0; i < ColourCount; ++i) {
        const std::wstring& text = colourPins_[i].getValue();
        colours_[i] = Color::FromArgbText(text, defaultColour(i));
    }
    invalidateRect();
}

void KX_BetterListBox::calcScrollBars() {
    const auto metrics = GetTextFormat(styleName()).GetFontMetrics();
    // Whole units, so that every row, its highlight and its text sit on the same pixel grid (rounding
    // noise in the metrics does not add a unit).
    const double height =
        std::ceil(static_cast<double>(metrics.ascent) + metrics.descent + metrics.lineGap + 2.0 - 1e-3);
    rowHeight_ = height >= 1 && height < 1e6 ? static_cast<float>(height) : 1.0f;
    visibleRows_ = rowsThatFit(getRect().bottom - getRect().top, rowHeight_);
    clampScroll();
}

void KX_BetterListBox::clampScroll() { scrollBy(0); }

void KX_BetterListBox::scrollBy(int rows) {
    const long long last = std::max(0LL, static_cast<long long>(rows_.count()) - visibleRows_);
    scroll_ = static_cast<int>(std::clamp(static_cast<long long>(scroll_) + rows, 0LL, last));
    if (rows != 0)
        invalidateRect();
}

bool KX_BetterListBox::barShown() const {
    return !hideScrollBar_ || static_cast<long long>(visibleRows_) < rows_.count();
}

int32_t KX_BetterListBox::measure(GmpiDrawing_API::MP1_SIZE available, GmpiDrawing_API::MP1_SIZE* desired) {
    return desiredAtLeast(available, desired, 4.0f);
}

int32_t KX_BetterListBox::arrange(GmpiDrawing_API::MP1_RECT finalRect) {
    MpGuiGfxBase::arrange(finalRect);
    calcScrollBars();
    return gmpi::MP_OK;
}

int32_t KX_BetterListBox::OnRender(GmpiDrawing_API::IMpDeviceContext* drawingContext) {
    GmpiDrawing::Graphics g(drawingContext);
    const float w = getRect().right - getRect().left, h = getRect().bottom - getRect().top;
    if (!g || !(w > 0 && h > 0 && std::isfinite(w) && std::isfinite(h)))
        return gmpi::MP_OK;

    const std::string style = styleName();
    auto format = GetTextFormat(style);
    Color textColour = colours_[Text];
    if (textColour.a == 0.0f) {
        const FontMetadata* metadata = GetFontMetatdata(style);
        textColour = Color::FromArgb(metadata ? metadata->textArgb() : 0xFF000000u);
    }

    float listWidth = w;
    if (barShown()) {
        listWidth = std::max(0.0f, w - kBarWidth);
        g.FillRectangle(Rect(listWidth, 0, w, h), g.CreateSolidColorBrush(colours_[Track]));
        const auto thumb = kx::thumbSpan(h - 4, rows_.count(), visibleRows_, scroll_, kMinThumb);
        if (thumb.length > 0) {
            const float top = snap(thumb.start);
            // One unit longer than the span: the thumb keeps two units clear of the top, one of the bottom.
            g.FillRectangle(Rect(w - 10, top + 2, w - 2, top + snap(thumb.length) + 3),
                            g.CreateSolidColorBrush(colours_[Thumb]));
        }
    }

    g.PushAxisAlignedClip(Rect(0, 0, listWidth, h));
    if (colours_[Top].a > 0 || colours_[Bottom].a > 0) {
        auto gradient = g.CreateLinearGradientBrush(colours_[Top], colours_[Bottom], {0, 0}, {0, h - 1});
        g.FillRectangle(Rect(0, 0, listWidth, h), gradient);
    }

    // Only the rows inside the clip are drawn: a panel repainting a corner of a tall list pays for that
    // corner. A host that reports no usable clip gets the whole height.
    const Rect clip = g.GetAxisAlignedClip();
    const bool clipUsable = clip.bottom > clip.top && std::isfinite(clip.top) && std::isfinite(clip.bottom);
    const double from = clipUsable ? std::max(0.0, std::floor(static_cast<double>(clip.top) / rowHeight_)) : 0.0;
    const float bottom = clipUsable ? std::min(h, clip.bottom) : h;
    if (from < rows_.count()) {
        auto textBrush = g.CreateSolidColorBrush(textColour);
        auto highlight = g.CreateSolidColorBrush(colours_[Highlight]);
        const auto anchor = kx::anchorOf(GetFontMetatdata(style));
        const size_t fits = kx::charsThatFit(listWidth, rowHeight_, rowHeight_, false);
        const int choice = choice_;
        long long row = scroll_ + static_cast<long long>(from);
        float top = static_cast<float>(from * rowHeight_);
        for (int drawn = 0; row < rows_.count() && drawn < kMostRowsPerFrame; ++row, ++drawn, top += rowHeight_) {
            // A partly visible last row is left out.
            if (top + rowHeight_ > h || top >= bottom)
                break;
            const int r = static_cast<int>(row);
            const Rect box(0, top, listWidth, top + rowHeight_);
            if (rows_.valueAt(r) == choice)
                g.FillRectangle(box, highlight);
            const Rect textBox(kTextInset, top, std::max(kTextInset, listWidth - kTextInset), top + rowHeight_);
            g.DrawTextU(kx::shownUtf8(rows_.textAt(r), fits, anchor), format, textBox, textBrush,
                        GmpiDrawing_API::MP1_DRAW_TEXT_OPTIONS_CLIP);
        }
    }
    g.PopAxisAlignedClip();
    return gmpi::MP_OK;
}

int32_t KX_BetterListBox::onPointerDown(int32_t flags, GmpiDrawing_API::MP1_POINT point) {
    if (!(flags & gmpi_gui_api::GG_POINTER_FLAG_FIRSTBUTTON))
        return gmpi::MP_OK;
    setCapture();
    const float w = getRect().right - getRect().left;
    draggingBar_ = barShown() && point.x > w - kBarWidth;
    dragY_ = point.y;
    if (draggingBar_)
        return gmpi::MP_OK;
    const double row = std::trunc(static_cast<double>(point.y) / rowHeight_) + scroll_;
    // Below the last row (or above the first, or at no number at all) nothing is chosen.
    if (row >= 0 && row < rows_.count()) {
        choice_ = rows_.valueAt(static_cast<int>(row));
        pointerDown_ = true;
    }
    return gmpi::MP_OK;
}

int32_t KX_BetterListBox::onPointerMove(int32_t, GmpiDrawing_API::MP1_POINT point) {
    if (!getCapture() || !draggingBar_)
        return gmpi::MP_OK;
    const float dy = point.y - dragY_;
    if (dy > rowHeight_) {
        dragY_ += rowHeight_;
        scrollBy(1);
    } else if (dy < -rowHeight_) {
        dragY_ -= rowHeight_;
        scrollBy(-1);
    }
    return gmpi::MP_OK;
}

int32_t KX_BetterListBox::onPointerUp(int32_t, GmpiDrawing_API::MP1_POINT) {
    if (getCapture())
        releaseCapture();
    draggingBar_ = false;
    pointerDown_ = false;
    return gmpi::MP_OK;
}

namespace {
const bool registered = gmpi::Register<KX_BetterListBox>::withId(L"KX_BetterListBox");
}
