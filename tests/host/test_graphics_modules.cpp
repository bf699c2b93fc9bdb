// Graphic modules for testing the renderer and the panel's pointer routing with a real skin: a frame of a
// skin image with a text below it, dragged like a knob, whose text is also its tool tip and which offers a
// context menu from an enumeration list (the choice comes back as a pulse); a drawn list whose rows take
// clicks and hover; and a text field edited through the host's text editor.
#include <algorithm>
#include <cmath>
#include <vector>

#include "FontCache.h"
#include "GmpiGui.h"
#include "ImageBase.h"
#include "MpFactory.h"
#include "TextCodec.h"

class T_SkinText : public ImageBase, public FontCacheClient {
public:
    T_SkinText() {
        initializePin(position, &ImageBase::calcDrawAt);
        initializePin(pinFilename, &ImageBase::onSetFilename);
        initializePin(text, &T_SkinText::onSetText);
        initializePin(style, &T_SkinText::onSetText);
        initializePin(pinMenuItems);
        initializePin(pinMenuSelection);
    }

    // A vertical drag moves the position by 0.005 a pixel (0.001 with the fine modifier), up raising it.
    int32_t onPointerDown(int32_t flags, GmpiDrawing_API::MP1_POINT point) override {
        if (!(flags & gmpi_gui_api::GG_POINTER_FLAG_FIRSTBUTTON))
            return gmpi::MP_OK;
        start_ = point;
        setCapture();
        return gmpi::MP_OK;
    }
    int32_t onPointerMove(int32_t flags, GmpiDrawing_API::MP1_POINT point) override {
        if (!getCapture())
            return gmpi::MP_FAIL;
        const float k = (flags & gmpi_gui_api::GG_POINTER_KEY_CONTROL) ? 0.001f : 0.005f;
        position = std::clamp(position - k * (point.y - start_.y), 0.0f, 1.0f);
        start_ = point;
        calcDrawAt();
        return gmpi::MP_OK;
    }

    float getAnimationPos() override { return position; }
    void setAnimationPos(float p) override { position = p; }
    void onLoaded() override {}
    std::wstring getHint() override { return text; }
    void onSetText() { reDraw(); }

    int32_t OnRender(GmpiDrawing_API::IMpDeviceContext* dc) override {
        ImageBase::OnRender(dc);
        GmpiDrawing::Graphics g(dc);
        const std::string styleName = kx::toUtf8(style.getValue());
        const FontMetadata* meta = GetFontMetatdata(styleName);
        auto brush = g.CreateSolidColorBrush(GmpiDrawing::Color::FromArgb(meta ? meta->textArgb() : 0xFFFFFFFF));
        const auto r = getRect();
        const float top = desiredSize().height;
        g.DrawTextU(kx::toUtf8(text.getValue()), GetTextFormat(styleName),
                    GmpiDrawing::Rect(0, top, r.right - r.left, r.bottom - r.top), brush,
                    GmpiDrawing_API::MP1_DRAW_TEXT_OPTIONS_CLIP);
        return gmpi::MP_OK;
    }

private:
    MpGuiPin<float> position;
    StringGuiPin text;
    StringGuiPin style;
    GmpiDrawing_API::MP1_POINT start_{0, 0};
};

// Comma-separated items in rows; a press on a row chooses it, a move over one (button or not) hovers it.
class T_List : public gmpi_gui::MpGuiGfxBase, public FontCacheClient {
public:
    static constexpr float kRow = 18;

    T_List() {
        initializePin(items, &T_List::onSetItems);
        initializePin(choice, &T_List::onRedraw);
        initializePin(hover);
    }

    void onSetItems() {
        rows_.clear();
        std::wstring row;
        for (wchar_t c : items.getValue() + L",") {
            if (c != L',') {
                row += c;
            } else if (!row.empty()) {
                rows_.push_back(kx::toUtf8(row));
                row.clear();
            }
        }
        invalidateRect();
    }
    void onRedraw() { invalidateRect(); }

    int32_t onPointerDown(int32_t flags, GmpiDrawing_API::MP1_POINT point) override {
        if ((flags & gmpi_gui_api::GG_POINTER_FLAG_FIRSTBUTTON) && rowAt(point) >= 0) {
            choice = rowAt(point);
            invalidateRect();
        }
        return gmpi::MP_OK;
    }
    int32_t onPointerMove(int32_t, GmpiDrawing_API::MP1_POINT point) override {
        if (rowAt(point) != hover) {
            hover = rowAt(point);
            invalidateRect();
        }
        return gmpi::MP_OK;
    }
    int32_t onPointerUp(int32_t, GmpiDrawing_API::MP1_POINT) override { return gmpi::MP_OK; }

    int32_t OnRender(GmpiDrawing_API::IMpDeviceContext* dc) override {
        GmpiDrawing::Graphics g(dc);
        const auto r = getRect();
        const float w = r.right - r.left;
        g.FillRectangle(GmpiDrawing::Rect(0, 0, w, r.bottom - r.top),
                        g.CreateSolidColorBrush(GmpiDrawing::Color::FromArgb(0xFF181820)));
        const auto format = GetTextFormat("normal");
        for (int i = 0; i < static_cast<int>(rows_.size()); ++i) {
            const GmpiDrawing::Rect row(0, kRow * static_cast<float>(i), w, kRow * static_cast<float>(i + 1));
            const uint32_t fill = i == choice ? 0xFF2060C0 : i == hover ? 0xFF383848 : 0;
            if (fill)
                g.FillRectangle(row, g.CreateSolidColorBrush(GmpiDrawing::Color::FromArgb(fill)));
            g.DrawTextU(rows_[static_cast<size_t>(i)], format, GmpiDrawing::Rect(4, row.top + 1, w, row.bottom),
                        g.CreateSolidColorBrush(GmpiDrawing::Color::FromArgb(0xFFE0E0E0)),
                        GmpiDrawing_API::MP1_DRAW_TEXT_OPTIONS_CLIP);
        }
        return gmpi::MP_OK;
    }

private:
    int rowAt(GmpiDrawing_API::MP1_POINT p) const {
        const int row = static_cast<int>(std::floor(p.y / kRow));
        return p.y >= 0 && row < static_cast<int>(rows_.size()) ? row : -1;
    }

    StringGuiPin items;
    MpGuiPin<int> choice;
    MpGuiPin<int> hover;
    std::vector<std::string> rows_;
};

// Shows its text; a press opens the host's text editor over it, and a confirmed edit becomes the text.
class T_TextField : public gmpi_gui::MpGuiGfxBase, public FontCacheClient {
public:
    T_TextField() { initializePin(text, &T_TextField::onSetText); }
    void onSetText() { invalidateRect(); }

    int32_t onPointerDown(int32_t flags, GmpiDrawing_API::MP1_POINT) override {
        gmpi::IMpUnknown* made = nullptr;
        // Over the module's own area, in its own coordinates.
        const auto r = getRect();
        const GmpiDrawing_API::MP1_RECT area{0, 0, r.right - r.left, r.bottom - r.top};
        if (!(flags & gmpi_gui_api::GG_POINTER_FLAG_FIRSTBUTTON) || !getGuiHost() ||
            getGuiHost()->createPlatformTextEdit(&area, &made) != gmpi::MP_OK)
            return gmpi::MP_OK;
        editor_ = GmpiGui::TextEdit(made);
        editor_.SetText(kx::toUtf8(text.getValue()));
        editor_.SetTextSize(12);
        // The host drops an open editor without calling back when the module goes.
        editor_.ShowAsync([this](int32_t result) {
            if (result == gmpi::MP_OK)
                text = kx::fromUtf8(editor_.GetText());
            editor_.release();
        });
        return gmpi::MP_OK;
    }

    int32_t OnRender(GmpiDrawing_API::IMpDeviceContext* dc) override {
        GmpiDrawing::Graphics g(dc);
        const auto r = getRect();
        const GmpiDrawing::Rect all(0, 0, r.right - r.left, r.bottom - r.top);
        g.FillRectangle(all, g.CreateSolidColorBrush(GmpiDrawing::Color::FromArgb(0xFF101018)));
        g.DrawTextU(kx::toUtf8(text.getValue()), GetTextFormat("normal"),
                    GmpiDrawing::Rect(4, 3, all.right, all.bottom),
                    g.CreateSolidColorBrush(GmpiDrawing::Color::FromArgb(0xFFE0E0E0)),
                    GmpiDrawing_API::MP1_DRAW_TEXT_OPTIONS_CLIP);
        return gmpi::MP_OK;
    }

private:
    StringGuiPin text;
    GmpiGui::TextEdit editor_;
};

namespace {
const bool registered = gmpi::Register<T_SkinText>::withId(L"T_SkinText") &&
                        gmpi::Register<T_List>::withId(L"T_List") &&
                        gmpi::Register<T_TextField>::withId(L"T_TextField");
}
