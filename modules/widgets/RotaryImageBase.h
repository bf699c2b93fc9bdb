// The base of the image widgets that turn round a centre (KX_Image's rotary drag, KX_JogShuttleImg):
// they measure as their frame plus padding, and keep the centre they turn round (the middle of the
// layout moved by two offset pins) with a pin that shows it as a crosshair over the frame, so a skin
// author can line the artwork up with the pointer's centre.
#pragma once

#include "ImageBase.h"

class RotaryImageBase : public ImageBase {
public:
    // Frame plus padding; 10 x 10 without an image.
    int32_t measure(GmpiDrawing_API::MP1_SIZE, GmpiDrawing_API::MP1_SIZE* returnDesiredSize) override {
        if (!returnDesiredSize)
            return gmpi::MP_FAIL;
        *returnDesiredSize = desiredSize();
        return gmpi::MP_OK;
    }
    // The frame, then, while the show pin is on, an opaque black crosshair 1 pixel wide with arms of 30
    // pixels at the centre.
    int32_t OnRender(GmpiDrawing_API::IMpDeviceContext* drawingContext) override {
        const int32_t result = ImageBase::OnRender(drawingContext);
        if (!pinShowCentre)
            return result;
        constexpr float arm = 30.0f;
        GmpiDrawing::Graphics g(drawingContext);
        const GmpiDrawing::Point c = rotaryCentre();
        auto black = g.CreateSolidColorBrush(GmpiDrawing::Color(0, 0, 0, 1));
        g.DrawLine({c.x - arm, c.y}, {c.x + arm, c.y}, black, 1.0f);
        g.DrawLine({c.x, c.y - arm}, {c.x, c.y + arm}, black, 1.0f);
        return result;
    }
    // The handler of the three centre pins: takes the offsets, repaints.
    void onSetCenter() {
        centreOffset_ = {static_cast<float>(pinCentreX.getValue()), static_cast<float>(pinCentreY.getValue())};
        invalidateRect();
    }

protected:
    // The centre in the widget's own coordinates.
    GmpiDrawing::Point rotaryCentre() const {
        const GmpiDrawing::Size size = layoutSize();
        return {size.width / 2 + centreOffset_.x, size.height / 2 + centreOffset_.y};
    }

    MpGuiPin<int> pinCentreX;
    MpGuiPin<int> pinCentreY;
    MpGuiPin<bool> pinShowCentre;

private:
    GmpiDrawing::Point centreOffset_{};
};
