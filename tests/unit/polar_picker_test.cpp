#include <gtest/gtest.h>

#include <cmath>

#include "SkinWidget.h"
#include "widgets/PolarPicker.h"

namespace P = kx::polar;

namespace {

// A 116 x 116 picker with a 16 x 16 handle of two frames: the handle's centre reaches a 100 x 100 square.
struct Picker : kxtest::SkinWidget<KX_PolarPickerImg> {
    Picker() : SkinWidget({0, 0, 116, 116}) {
        strip("handle.png", 16, 16, 2, "");
        load(P::Filename, "handle.png");
        host.sent.clear();
    }
    // The host's idea of a float pin: the last value sent, else its default 0.
    float pin(int p) const { return host.on(p).empty() ? 0.0f : lastFloat(p); }
    // What one rendering drew.
    struct Drawn {
        std::vector<kxtest::FakeDeviceContext::BitmapDraw> bitmaps;
        std::vector<GmpiDrawing_API::MP1_GRADIENT_STOP> lastStops;
        GmpiDrawing_API::MP1_RADIAL_GRADIENT_BRUSH_PROPERTIES lastRadial;
    };
    Drawn render() {
        kxtest::FakeDeviceContext dc(gfx.factory);
        module.OnRender(&dc);
        return {dc.bitmaps, dc.lastStops, dc.lastRadial};
    }
};

void expectColour(const GmpiDrawing_API::MP1_COLOR& got, const GmpiDrawing::Color& want) {
    EXPECT_EQ(got.r, want.r);
    EXPECT_EQ(got.g, want.g);
    EXPECT_EQ(got.b, want.b);
    EXPECT_EQ(got.a, want.a);
}

}  // namespace

TEST(PolarPicker, PointerMapsToAngleAndDistanceWithTheHandleAsMargin) {
    Picker w;
    ASSERT_EQ(w.down(58, 58), gmpi::MP_OK);  // the centre
    EXPECT_TRUE(w.gfx.captured);
    EXPECT_EQ(w.pin(P::Angle), 0.0f);
    EXPECT_EQ(w.pin(P::Distance), 0.0f);
    w.move(58, 8);  // top-centre, half a handle in from the edge
    EXPECT_NEAR(w.pin(P::Angle), 0.25f, 1e-6f);
    EXPECT_NEAR(w.pin(P::Distance), 1.0f, 1e-6f);
    w.move(58, 108);
    EXPECT_NEAR(w.pin(P::Angle), 0.75f, 1e-6f);
    w.move(116, 0);  // the top-right corner lies beyond the disc
    EXPECT_NEAR(w.pin(P::Angle), 0.125f, 1e-6f);
    EXPECT_EQ(w.pin(P::Distance), 1.0f);
    w.move(8, 58);
    EXPECT_NEAR(w.pin(P::Angle), 0.5f, 1e-6f);
    EXPECT_EQ(w.move(std::nanf(""), 58), gmpi::MP_OK);  // picks nothing
    EXPECT_NEAR(w.pin(P::Angle), 0.5f, 1e-6f);
    ASSERT_EQ(w.up(8, 58), gmpi::MP_OK);
    EXPECT_FALSE(w.gfx.captured);
    EXPECT_EQ(w.ints(P::MouseDown), (std::vector<int>{1, 0}));
    EXPECT_EQ(w.move(58, 58), gmpi::MP_FAIL);
}

// The handle is drawn where the pins say, once the host hands them back, not where the pointer went.
TEST(PolarPicker, HandleIsDrawnFromThePinsTheHostHandsBack) {
    Picker w;
    w.host.onTransmit = nullptr;  // a host that does not echo
    w.down(58, 8);
    auto dc = w.render();
    ASSERT_EQ(dc.bitmaps.size(), 1u);
    EXPECT_EQ(dc.bitmaps[0].dest.left, 50.0f);  // still the centre
    EXPECT_EQ(dc.bitmaps[0].dest.top, 50.0f);

    w.set(P::Angle, 0.25f);
    w.set(P::Distance, 1.0f);
    w.set(P::Position, 1.0f);  // the second frame of the handle
    dc = w.render();
    ASSERT_EQ(dc.bitmaps.size(), 1u);
    EXPECT_NEAR(dc.bitmaps[0].dest.left, 50.0f, 1e-4f);
    EXPECT_NEAR(dc.bitmaps[0].dest.top, 0.0f, 1e-4f);
    EXPECT_NEAR(dc.bitmaps[0].dest.right, 66.0f, 1e-4f);
    EXPECT_EQ(dc.bitmaps[0].source.top, 16.0f);
    EXPECT_EQ(dc.bitmaps[0].source.bottom, 32.0f);

    w.set(P::Distance, 7.0f);  // clamped when drawn
    w.set(P::Angle, 0.5f);
    dc = w.render();
    EXPECT_NEAR(dc.bitmaps[0].dest.left, 0.0f, 1e-4f);
    EXPECT_NEAR(dc.bitmaps[0].dest.top, 50.0f, 1e-4f);
}

TEST(PolarPicker, BackgroundGradientDefaultsToBlueAndHidesWhenTransparent) {
    Picker w;
    auto dc = w.render();
    ASSERT_EQ(dc.lastStops.size(), 2u);
    expectColour(dc.lastStops[0].color, GmpiDrawing::Color::FromBytes(0, 32, 64));
    expectColour(dc.lastStops[1].color, GmpiDrawing::Color::FromBytes(64, 128, 192));
    EXPECT_EQ(dc.lastRadial.center.x, 58.0f);
    EXPECT_EQ(dc.lastRadial.radiusY, 58.0f);

    w.set(P::BackgroundShrink, 8.0f);
    w.set(P::BackgroundX, 3);
    w.set(P::BackgroundY, -4);
    w.sendText(P::InnerColour, L"8000FF00");
    dc = w.render();
    expectColour(dc.lastStops[0].color, GmpiDrawing::Color::FromArgb(0x8000FF00));
    expectColour(dc.lastStops[1].color, GmpiDrawing::Color::FromBytes(64, 128, 192));  // empty: the default
    EXPECT_EQ(dc.lastRadial.center.x, 61.0f);
    EXPECT_EQ(dc.lastRadial.center.y, 54.0f);
    EXPECT_EQ(dc.lastRadial.radiusX, 50.0f);

    w.sendText(P::InnerColour, L"00FFFFFF");
    w.sendText(P::OuterColour, L"00ffffff and more");
    dc = w.render();
    EXPECT_TRUE(dc.lastStops.empty());
    EXPECT_EQ(dc.bitmaps.size(), 1u);  // the handle still shows

    w.sendText(P::OuterColour, L"");
    w.set(P::BackgroundShrink, 58.0f);  // shrunk to nothing
    dc = w.render();
    EXPECT_TRUE(dc.lastStops.empty());
}

TEST(PolarPicker, SecondButtonAndAMissingHandleDoNothing) {
    Picker w;
    EXPECT_EQ(w.down(58, 8, gmpi_gui_api::GG_POINTER_FLAG_SECONDBUTTON), gmpi::MP_OK);
    EXPECT_FALSE(w.gfx.captured);
    EXPECT_TRUE(w.host.sent.empty());

    kxtest::SkinWidget<KX_PolarPickerImg> bare({0, 0, 116, 116});
    EXPECT_EQ(bare.down(58, 8), gmpi::MP_OK);
    EXPECT_FALSE(bare.gfx.captured);
    EXPECT_TRUE(bare.host.sent.empty());
}
