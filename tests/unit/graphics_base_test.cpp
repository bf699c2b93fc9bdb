#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

#include "ColorTables.h"
#include "FakeGraphicsHost.h"
#include "GmpiDrawing.h"
#include "MpFactory.h"
#include "MpGuiGfxBase.h"

using namespace GmpiDrawing_API;

namespace {

class PlainWidget : public gmpi_gui::MpGuiGfxBase {};

class PickyWidget : public gmpi_gui::MpGuiGfxBase {
public:
    int32_t hitTest(MP1_POINT p) override { return p.x < 10 ? gmpi::MP_OK : gmpi::MP_FAIL; }
};

class ThrowingWidget : public gmpi_gui::MpGuiGfxBase {
public:
    int32_t OnRender(IMpDeviceContext*) override { throw std::runtime_error("draw failed"); }
    int32_t measure(MP1_SIZE, MP1_SIZE* desired) override {
        *desired = {42, 7};
        return gmpi::MP_OK;
    }
};

template <class W>
gmpi_gui_api::IMpGraphics2* graphicsFace(gmpi::IMpUnknown* module) {
    void* face = nullptr;
    EXPECT_EQ(module->queryInterface(gmpi_gui_api::SE_IID_GRAPHICS_MPGUI2, &face), gmpi::MP_OK);
    return static_cast<gmpi_gui_api::IMpGraphics2*>(face);
}

}  // namespace

TEST(GfxBase, MeasureRaisesDegenerateSizesToOne) {
    PlainWidget w;
    MP1_SIZE desired{};
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (MP1_SIZE available : {MP1_SIZE{0, 0}, MP1_SIZE{-5, -1}, MP1_SIZE{nan, nan}}) {
        w.measure(available, &desired);
        EXPECT_EQ(desired.width, 1.0f);
        EXPECT_EQ(desired.height, 1.0f);
    }
    w.measure({50, 0.5f}, &desired);
    EXPECT_EQ(desired.width, 50.0f);
    EXPECT_EQ(desired.height, 1.0f);
}

TEST(GfxBase, ArrangeInvalidatesOnlyOnRealChange) {
    kxtest::FakeGuiHost gui;
    kxtest::FakeGraphicsHost gfx(gui);
    PlainWidget w;
    ASSERT_EQ(w.setHost(gfx.unknown()), gmpi::MP_OK);
    w.arrange({0, 0, 10, 10});
    w.arrange({0, 0, 10, 10});
    EXPECT_EQ(gfx.invalidates, 1);
    w.arrange({0, 0, 10, 11});
    w.arrange({1, 0, 10, 11});
    EXPECT_EQ(gfx.invalidates, 3);
    // A NaN never equals itself, so the same NaN rectangle repaints every time.
    const float nan = std::numeric_limits<float>::quiet_NaN();
    w.arrange({nan, 0, 10, 11});
    w.arrange({nan, 0, 10, 11});
    EXPECT_EQ(gfx.invalidates, 5);
}

TEST(GfxBase, WithoutGraphicsHostStillServesTheGuiFace) {
    kxtest::FakeGuiHost gui;
    PlainWidget w;
    EXPECT_EQ(w.setHost(gui.unknown()), gmpi::MP_OK);
    EXPECT_EQ(w.getGuiHost(), nullptr);
    EXPECT_EQ(w.arrange({0, 0, 5, 5}), gmpi::MP_OK);
    EXPECT_EQ(w.getHost(), static_cast<gmpi::IMpUserInterfaceHost2*>(&gui));
}

TEST(GfxBase, PointerAnswersFollowHitTest) {
    PlainWidget plain;
    EXPECT_EQ(plain.onPointerDown(0x10, {100, 100}), gmpi::MP_OK);
    EXPECT_EQ(plain.onPointerMove(0, {100, 100}), gmpi::MP_OK);
    EXPECT_EQ(plain.onPointerUp(0, {100, 100}), gmpi::MP_OK);
    PickyWidget picky;
    EXPECT_EQ(picky.onPointerDown(0x10, {5, 0}), gmpi::MP_OK);
    EXPECT_EQ(picky.onPointerDown(0x10, {50, 0}), gmpi::MP_FAIL);
    EXPECT_EQ(picky.onPointerMove(0, {50, 0}), gmpi::MP_FAIL);
    EXPECT_EQ(picky.onPointerUp(0, {50, 0}), gmpi::MP_FAIL);
}

TEST(GfxBase, GraphicsFaceForwardsToGuardedOverridesAndSharesTheCount) {
    gmpi::IMpUnknown* module = gmpi::Register<ThrowingWidget>::create();
    auto* face = graphicsFace<ThrowingWidget>(module);
    ASSERT_NE(face, nullptr);
    void* v1 = nullptr;
    EXPECT_EQ(module->queryInterface(gmpi_gui_api::SE_IID_GRAPHICS_MPGUI, &v1), gmpi::MP_OK);
    EXPECT_EQ(v1, face);

    MP1_SIZE desired{};
    EXPECT_EQ(face->measure({1, 1}, &desired), gmpi::MP_OK);
    EXPECT_EQ(desired.width, 42.0f);
    kxtest::FakeGuiHost gui;
    kxtest::FakeFactory factory;
    kxtest::FakeDeviceContext dc(factory);
    EXPECT_EQ(face->OnRender(&dc), gmpi::MP_FAIL);  // the exception stops at the boundary

    void* none = reinterpret_cast<void*>(1);
    EXPECT_EQ(face->queryInterface(gmpi::MP_IID_UI_HOST2, &none), gmpi::MP_NOSUPPORT);
    EXPECT_EQ(none, nullptr);

    // Created at 1, two queries: three references across both faces.
    EXPECT_EQ(face->release(), 2);
    EXPECT_EQ(static_cast<gmpi_gui_api::IMpGraphics*>(v1)->release(), 1);
    EXPECT_EQ(module->release(), 0);
}

TEST(ColorTables, EdgesOfEveryTable) {
    const auto& t = se_sdk::gammaLookupTables::get();
    EXPECT_EQ(t.toLinear[0], 0.0f);
    EXPECT_EQ(t.toLinear22[0], 0.0f);
    EXPECT_EQ(t.toLinearHalfStep[0], 0.0f);
    EXPECT_EQ(t.toSrgb22[0], 0.0f);
    EXPECT_FLOAT_EQ(t.toLinear[255], 1.0f);
    EXPECT_FLOAT_EQ(t.toLinear22[255], 1.0f);
    EXPECT_NEAR(t.toSrgb22[255], 1.0f, 1e-6);
    // Index 10 lies below the sRGB break point (the straight segment), 11 above it (the power curve).
    const double s = static_cast<double>(1.0f / 255.0f);
    EXPECT_FLOAT_EQ(t.toLinear[10], static_cast<float>(10 * s / 12.92));
    EXPECT_FLOAT_EQ(t.toLinear[11], static_cast<float>(std::pow((11 * s + 0.055) / 1.055, 2.4)));
    // The half-step table sits between neighbours of the plain one.
    for (int i = 1; i < 256; ++i) {
        EXPECT_LT(t.toLinearHalfStep[i], t.toLinear[i]) << i;
        EXPECT_GT(t.toLinearHalfStep[i], t.toLinear[i - 1]) << i;
        EXPECT_GT(t.toLinear[i], t.toLinear[i - 1]) << i;
        EXPECT_GT(t.toSrgb22[i], t.toSrgb22[i - 1]) << i;
    }
}

TEST(Color, FromArgbKeepsChannelsInPlace) {
    const auto c = GmpiDrawing::Color::FromArgb(0x80FF0040);
    EXPECT_FLOAT_EQ(c.r, 1.0f);
    EXPECT_EQ(c.g, 0.0f);
    EXPECT_EQ(c.b, se_sdk::srgbToLinear(0x40));
    EXPECT_FLOAT_EQ(c.a, 128 * 0.003921569f);
    EXPECT_EQ(GmpiDrawing::Color::FromArgb(0).a, 0.0f);
}

TEST(Drawing, GradientConveniencesMakeTwoStopsWithPlainBrushProperties) {
    kxtest::FakeFactory factory;
    kxtest::FakeDeviceContext dc(factory);
    GmpiDrawing::Graphics g(&dc);
    const GmpiDrawing::Color red(1, 0, 0), blue(0, 0, 1, 0.5f);
    {
        auto brush = g.CreateLinearGradientBrush(red, blue, {1, 2}, {3, 4});
        EXPECT_TRUE(brush);
        ASSERT_EQ(dc.lastStops.size(), 2u);
        EXPECT_EQ(dc.lastStops[0].position, 0.0f);
        EXPECT_EQ(dc.lastStops[0].color.r, 1.0f);
        EXPECT_EQ(dc.lastStops[1].position, 1.0f);
        EXPECT_EQ(dc.lastStops[1].color.a, 0.5f);
        EXPECT_EQ(dc.lastLinear.startPoint.x, 1.0f);
        EXPECT_EQ(dc.lastLinear.endPoint.y, 4.0f);
        EXPECT_EQ(dc.lastBrush.opacity, 1.0f);
        EXPECT_EQ(dc.lastBrush.transform._11, 1.0f);
        EXPECT_EQ(dc.lastBrush.transform._21, 0.0f);
        EXPECT_EQ(dc.lastBrush.transform._31, 0.0f);
    }
    {
        auto brush = g.CreateRadialGradientBrush(MP1_POINT{10, 20}, 7.0f, red, blue);
        EXPECT_TRUE(brush);
        EXPECT_EQ(dc.lastStops[0].color.r, 1.0f);
        EXPECT_EQ(dc.lastStops[1].color.b, 1.0f);
        EXPECT_EQ(dc.lastRadial.center.x, 10.0f);
        EXPECT_EQ(dc.lastRadial.gradientOriginOffset.x, 0.0f);
        EXPECT_EQ(dc.lastRadial.gradientOriginOffset.y, 0.0f);
        EXPECT_EQ(dc.lastRadial.radiusX, 7.0f);
        EXPECT_EQ(dc.lastRadial.radiusY, 7.0f);
    }
    // Every brush and stop collection made above was released with its wrappers.
    EXPECT_EQ(kxtest::Counted<IMpGradientStopCollection>::live, 0);
    EXPECT_EQ(kxtest::Counted<IMpLinearGradientBrush>::live, 0);
    EXPECT_EQ(kxtest::Counted<IMpRadialGradientBrush>::live, 0);
}

TEST(Drawing, WrappersShareOneObjectAndNullWrappersDoNothing) {
    kxtest::FakeFactory factory;
    factory.images["/a.png"] = {2, 3, 0xFF00FF00};
    GmpiDrawing::Factory f(&factory);
    {
        GmpiDrawing::Bitmap a = f.LoadImageU("/a.png");
        ASSERT_TRUE(a);
        GmpiDrawing::Bitmap b = a;
        a = GmpiDrawing::Bitmap();
        EXPECT_EQ(b.GetSize().height, 3u);
        EXPECT_EQ(b.getPixel(1, 2), 0xFF00FF00u);
        EXPECT_EQ(b.getPixel(2, 0), 0u);  // outside: transparent, never read
        EXPECT_EQ(b.getPixel(0, -1), 0u);
        EXPECT_EQ(kxtest::Counted<IMpBitmap>::live, 1);
    }
    EXPECT_EQ(kxtest::Counted<IMpBitmap>::live, 0);
    EXPECT_FALSE(f.LoadImageU("/missing.png"));

    GmpiDrawing::Graphics none;
    GmpiDrawing::SolidColorBrush brush = none.CreateSolidColorBrush(GmpiDrawing::Color(1, 1, 1));
    EXPECT_FALSE(brush);
    none.FillRectangle({0, 0, 1, 1}, brush);
    EXPECT_EQ(GmpiDrawing::Bitmap().getPixel(0, 0), 0u);
    EXPECT_FALSE(GmpiDrawing::Factory().CreateTextFormat2(12, {"Arial"}));
}
