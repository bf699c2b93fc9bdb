// KX_VecJS: a drawn pad for vector mixing. Four sources sit at the points of a diamond (A left, B top,
// C right, D bottom); where the handle is gives each source a level, the four always summing to 1, so
// one handle cross-fades four oscillators, samples or effect sends.
#pragma once

#include <array>
#include <string>

#include "FontCache.h"
#include "GmpiDrawing.h"
#include "MpGuiGfxBase.h"
#include "widgets/PadTravel.h"

namespace kx::vecjs {
enum Pin : int {
    X,  // 0..1, 0 at the left (read and written)
    Y,  // 0..1, 0 at the bottom (read and written)
    LevelA,
    LevelB,
    LevelC,
    LevelD,
    PointerDown,
    BackgroundColour,  // hexadecimal AARRGGBB; empty: the module's default
    LineColour,
    HandleColour,
    Labels,  // the four labels, an enumeration list; empty: "A,B,C,D"
    Style,   // text style of the labels; empty: "normal"
    PinCount
};

// The levels of the sources for a position on the pad, A, B, C, D. The diamond is mapped onto the unit
// square (a point outside it goes onto its nearest edge) and the levels are the bilinear weights of the
// square's corners, so they sum to 1 and each is 1 at its own point.
std::array<float, 4> mix(float x, float y);
}  // namespace kx::vecjs

class KX_VecJS : public gmpi_gui::MpGuiGfxBase, public FontCacheClient {
public:
    KX_VecJS();

    int32_t OnRender(GmpiDrawing_API::IMpDeviceContext* drawingContext) override;
    // A first-button press anywhere takes the pointer and puts the handle under it.
    int32_t onPointerDown(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    int32_t onPointerMove(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    int32_t onPointerUp(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;

    void onSetXY();
    void onSetColours();
    void onSetLabels();
    void onSetStyle() { invalidateRect(); }

    // The handle's centre and radius as drawn, in the module's own coordinates.
    GmpiDrawing::Point handleCentre() const;
    float handleRadius() const;

private:
    kx::PadTravel travel() const;
    // X and Y as drawn and mixed: each clamped to 0..1.
    GmpiDrawing::Point shownPosition() const;
    // Sends the position (clamped) and the levels, each only when it changed, and repaints when the
    // handle moved.
    void moveTo(GmpiDrawing::Point position);
    void sendLevels();
    std::string styleName() const;

    MpGuiPin<float> pinX;
    MpGuiPin<float> pinY;
    MpGuiPin<float> pinLevels[4];
    MpGuiPin<bool> pinPointerDown;
    StringGuiPin pinColours[3];
    StringGuiPin pinLabels;
    StringGuiPin pinStyle;

    enum Colour { Background, Line, Handle, ColourCount };
    GmpiDrawing::Color colours_[ColourCount];
    std::array<std::wstring, 4> labels_;
    GmpiDrawing::Point shown_{-1, -1};
    kx::PadDrag drag_;
    bool writing_ = false;
};
