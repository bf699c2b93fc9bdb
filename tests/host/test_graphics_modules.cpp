// A graphic module for testing the renderer with a real skin: one frame of a skin image at the top-left
// corner and, below it, a text in a named style of the skin's style file. Its text is also its tool tip,
// and it offers a context menu from an enumeration list, whose choice comes back as a pulse.
#include "FontCache.h"
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
};

namespace {
const bool registered = gmpi::Register<T_SkinText>::withId(L"T_SkinText");
}
