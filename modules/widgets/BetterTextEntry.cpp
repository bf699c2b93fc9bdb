#include "widgets/BetterTextEntry.h"

#include <algorithm>
#include <cmath>

#include "DrawnText.h"
#include "MpFactory.h"
#include "TextCodec.h"
#include "gmpi/IMpPlatformText.h"

using GmpiDrawing::Color;

namespace {

const Color kUnset{0, 0, 0, -1.0f};

}  // namespace

KX_BetterTextEntry::KX_BetterTextEntry() {
    initializePin(text_, &KX_BetterTextEntry::repaint);
    initializePin(style_, &KX_BetterTextEntry::onSetStyle);
    initializePin(textColourPin_, &KX_BetterTextEntry::onSetColors);
    initializePin(backgroundPin_, &KX_BetterTextEntry::onSetColors);
    initializePin(multiLine_, &KX_BetterTextEntry::onSetStyle);
    initializePin(editable_);
    initializePin(dimmed_, &KX_BetterTextEntry::repaint);
    initializePin(toolTip_);
    initializePin(menuItems_);
    initializePin(menuChoice_);
    initializePin(pointerDown_);
}

std::string KX_BetterTextEntry::formatKey() const {
    return "TextEntry4Gui:text:" + kx::toUtf8Lenient(style_.getValue()) + (multiLine_ ? ":multiline" : "");
}

void KX_BetterTextEntry::resolveStyle() {
    styleData_ = nullptr;
    format_ = {};
    // Formats belong to a drawing factory: without the graphics host there is none to make one with.
    if (!getGuiHost())
        return;
    auto& cache = FontCache::instance();
    const std::string key = formatKey();
    FontMetadata* metadata = nullptr;
    format_ = cache.TextFormatExists(getHost(), getGuiHost(), key, &metadata);
    if (!format_) {
        // The style's own format first, which finds the style record; then a variant of it, made once per
        // process for every text entry of this style and line mode.
        if (!cache.GetTextFormat(getHost(), getGuiHost(), kx::toUtf8Lenient(style_.getValue()), &metadata))
            return;
        format_ = cache.AddCustomTextFormat(getHost(), getGuiHost(), key, metadata);
        format_.SetWordWrapping(multiLine_ ? GmpiDrawing_API::MP1_WORD_WRAPPING_WRAP
                                           : GmpiDrawing_API::MP1_WORD_WRAPPING_NO_WRAP);
    }
    styleData_ = metadata;
}

void KX_BetterTextEntry::onSetStyle() {
    resolveStyle();
    invalidateMeasure();
    invalidateRect();
}

void KX_BetterTextEntry::onSetColors() {
    textColour_ = Color::FromArgbText(textColourPin_.getValue(), kUnset);
    background_ = Color::FromArgbText(backgroundPin_.getValue(), kUnset);
    invalidateRect();
}

int32_t KX_BetterTextEntry::OnRender(GmpiDrawing_API::IMpDeviceContext* drawingContext) {
    GmpiDrawing::Graphics g(drawingContext);
    const float w = getRect().right - getRect().left, h = getRect().bottom - getRect().top;
    if (!g || !(w >= 0 && h >= 0 && std::isfinite(w) && std::isfinite(h)))
        return gmpi::MP_OK;
    // Pins may arrive before the host: the style is then found at the first paint.
    if (!format_)
        resolveStyle();

    Color background = background_, text = textColour_;
    if (background.a == -1.0f)
        background = Color::FromArgb(styleData_ ? styleData_->backgroundArgb() : 0u);
    if (text.a == -1.0f)
        text = Color::FromArgb(styleData_ ? styleData_->textArgb() : 0xFF000000u);
    if (dimmed_) {
        background.a *= 0.5f;
        text.a *= 0.5f;
    }

    GmpiDrawing::Rect r(0, 0, w, h);
    r.Deflate(std::min(kInset, w / 2), std::min(kInset, h / 2));
    auto brush = g.CreateSolidColorBrush(background);
    g.FillRectangle(r, brush);
    brush.SetColor(text);
    if (styleData_ && styleData_->legacyVerticalOffset)
        r.Offset(0, static_cast<float>(styleData_->getLegacyVerticalOffset()));

    // The text keeps the inset's width clear of the background's edges as well.
    r.Deflate(std::min(kInset, r.getWidth() / 2), 0);
    const float lineHeight = styleData_ ? static_cast<float>(styleData_->fontSize) : 1.0f;
    const size_t fits = kx::charsThatFit(r.getWidth(), r.getHeight(), lineHeight, multiLine_);
    // A wrapped text flows from its start; one line shows the part its alignment puts in view.
    const auto anchor = multiLine_ ? kx::TextAnchor::Start : kx::anchorOf(styleData_);
    g.DrawTextU(kx::shownUtf8(text_.getValue(), fits, anchor), format_, r, brush,
                GmpiDrawing_API::MP1_DRAW_TEXT_OPTIONS_CLIP);
    return gmpi::MP_OK;
}

int32_t KX_BetterTextEntry::onPointerDown(int32_t flags, GmpiDrawing_API::MP1_POINT) {
    if (!(flags & gmpi_gui_api::GG_POINTER_FLAG_FIRSTBUTTON))
        return gmpi::MP_OK;
    setCapture();
    pointerDown_ = true;
    return gmpi::MP_OK;
}

int32_t KX_BetterTextEntry::onPointerUp(int32_t, GmpiDrawing_API::MP1_POINT) {
    if (!getCapture())
        return gmpi::MP_FAIL;
    releaseCapture();
    pointerDown_ = false;
    if (!editable_ || !getGuiHost())
        return gmpi::MP_OK;

    // Over the whole area, in the module's own coordinates.
    const GmpiDrawing_API::MP1_RECT area{0, 0, getRect().right - getRect().left, getRect().bottom - getRect().top};
    gmpi::IMpUnknown* made = nullptr;
    if (getGuiHost()->createPlatformTextEdit(&area, &made) != gmpi::MP_OK && made) {
        made->release();
        made = nullptr;
    }
    // A second click while an editor is open replaces it; the first one's answer is then ignored.
    editor_ = GmpiGui::TextEdit(made);
    if (editor_.isNull())
        return gmpi::MP_OK;

    int32_t alignment = 0;
    if (styleData_ && (styleData_->flags & FontMetadata::Centred))
        alignment = 2;
    else if (styleData_ && (styleData_->flags & FontMetadata::RightAligned))
        alignment = 1;
    if (multiLine_)
        alignment |= gmpi_gui::MP_PLATFORM_TEXT_MULTILINE;
    editor_.SetAlignment(alignment);
    editor_.SetTextSize(static_cast<float>(styleData_ ? styleData_->fontSize : FontMetadata{}.fontSize));
    editor_.SetText(kx::toUtf8Lenient(text_.getValue()));
    editor_.ShowAsync(editorDone_.bind([this](int32_t result) { OnTextEnteredComplete(result); }));
    return gmpi::MP_OK;
}

void KX_BetterTextEntry::OnTextEnteredComplete(int32_t result) {
    // Taken out of the member first, so the editor goes whatever happens below.
    GmpiGui::TextEdit editor = std::move(editor_);
    if (result != gmpi::MP_OK || editor.isNull())
        return;
    // Text that is not UTF-8 is refused (a range error the completion handler stops): the old text stays.
    text_ = editor.GetText();
    invalidateRect();
}

namespace {
const bool registered = gmpi::Register<KX_BetterTextEntry>::withId(L"KX_BetterTextEntry");
}
