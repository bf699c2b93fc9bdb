// The point a rotary image widget turns round: the middle of its layout moved by two offset pins, and a
// pin that shows it as a crosshair, so a skin author can line the artwork up with the pointer's centre.
#pragma once

#include "GmpiDrawing.h"
#include "MpGuiPin.h"

namespace kx {

class RotaryCentre {
public:
    MpGuiPin<int> offsetX;
    MpGuiPin<int> offsetY;
    MpGuiPin<bool> show;

    // Takes the offset pins' values; the widget calls it from their handler, then repaints.
    void update() { offset_ = {static_cast<float>(offsetX.getValue()), static_cast<float>(offsetY.getValue())}; }
    // The centre in the widget's own coordinates, for a layout of this size.
    GmpiDrawing::Point at(GmpiDrawing::Size layout) const {
        return {layout.width / 2 + offset_.x, layout.height / 2 + offset_.y};
    }
    // While the show pin is on: an opaque black crosshair, 1 pixel wide, each arm 30 pixels long.
    void draw(GmpiDrawing::Graphics& g, GmpiDrawing::Size layout) const {
        if (!show)
            return;
        constexpr float arm = 30.0f;
        const GmpiDrawing::Point c = at(layout);
        auto black = g.CreateSolidColorBrush(GmpiDrawing::Color(0, 0, 0, 1));
        g.DrawLine({c.x - arm, c.y}, {c.x + arm, c.y}, black, 1.0f);
        g.DrawLine({c.x, c.y - arm}, {c.x, c.y + arm}, black, 1.0f);
    }

private:
    GmpiDrawing::Point offset_{};
};

}  // namespace kx
