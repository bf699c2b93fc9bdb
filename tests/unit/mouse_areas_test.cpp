#include <gtest/gtest.h>

#include <cmath>

#include "DrawnWidget.h"
#include "widgets/MouseAreas.h"

namespace M = kx::mousebox;
namespace H = kx::hoverbox;
using GmpiDrawing_API::MP1_RECT;

namespace {

std::vector<int> ints(const std::vector<kxtest::Transmission>& sent) {
    std::vector<int> v;
    for (const auto& t : sent)
        v.push_back(t.asInt());
    return v;
}

}  // namespace

TEST(MouseBox, FlippedAxesCountFromTheFarEdge) {
    kxtest::DrawnWidget<KX_MouseBox> w{MP1_RECT{200, 100, 300, 150}};  // placed anywhere: 100 x 50
    EXPECT_EQ(w.sent(M::Width).at(0).asInt(), 100);
    EXPECT_EQ(w.sent(M::Height).at(0).asInt(), 50);
    w.set(M::Flip, 3);
    EXPECT_EQ(w.press({0, 0}, 0x20), gmpi::MP_OK);  // any button
    EXPECT_TRUE(w.gfx.captured);
    EXPECT_EQ(w.sent(M::X).back().asInt(), 99);
    EXPECT_EQ(w.sent(M::Y).back().asInt(), 49);
    EXPECT_FLOAT_EQ(w.sent(M::FractionX).back().asFloat(), 0.99f);
    EXPECT_FLOAT_EQ(w.sent(M::FractionY).back().asFloat(), 0.98f);
}

TEST(MouseBox, TheAngleGoesRoundTheCentreAndItsChangeTakesTheShortWayAcrossTheSeam) {
    kxtest::DrawnWidget<KX_MouseBox> w{MP1_RECT{0, 0, 100, 100}};
    const std::pair<GmpiDrawing_API::MP1_POINT, float> around[] = {
        {{50, 50}, 0.5f}, {{20, 50}, 0.75f}, {{80, 50}, 0.25f}, {{50, 80}, 0.5f}, {{50, 20}, 1.0f}};
    for (const auto& [p, angle] : around) {
        w.press(p);
        EXPECT_FLOAT_EQ(w.sent(M::Angle).back().asFloat(), angle) << p.x << "," << p.y;
        w.release();
    }

    // From just left of straight up (0.95) to just right of it (0.05): +0.1, not -0.9.
    const float r = 30, d = 2 * 3.14159265f * 0.05f;
    w.press({50 - r * std::sin(d), 50 - r * std::cos(d)});
    w.move({50 + r * std::sin(d), 50 - r * std::cos(d)});
    EXPECT_NEAR(w.sent(M::AngleChange).back().asFloat(), 0.1f, 1e-4f);
    w.release();
}

TEST(MouseBox, MovementsPassThroughZeroAndNothingIsReportedWithoutAButton) {
    kxtest::DrawnWidget<KX_MouseBox> w{MP1_RECT{0, 0, 100, 100}};
    EXPECT_EQ(w.move({10, 10}), gmpi::MP_FAIL);
    EXPECT_TRUE(w.sent(M::X).empty());

    w.press({10, 10});
    w.move({30, 15});
    w.host.sent.clear();
    w.move({40, 15});
    // Each movement pin goes through 0 on its way to the new value; one that stays 0 sends nothing.
    EXPECT_EQ(ints(w.sent(M::MoveX)), (std::vector<int>{0, 30}));
    EXPECT_EQ(ints(w.sent(M::MoveY)), (std::vector<int>{0, 5}));
    const auto fraction = w.sent(M::MoveFractionX);
    ASSERT_EQ(fraction.size(), 2u);
    EXPECT_EQ(fraction[0].asFloat(), 0.0f);
    EXPECT_NEAR(fraction[1].asFloat(), 0.3f, 1e-6f);

    w.host.sent.clear();
    EXPECT_EQ(w.release(), gmpi::MP_OK);
    EXPECT_FALSE(w.gfx.captured);
    EXPECT_EQ(ints(w.sent(M::MoveX)), std::vector<int>{0});
    ASSERT_EQ(w.sent(M::MoveFractionY).size(), 1u);
    EXPECT_EQ(w.sent(M::MoveFractionY)[0].asFloat(), 0.0f);
    EXPECT_FALSE(w.sent(M::PointerDown).at(0).asBool());
}

TEST(HoverBox, ReportsWhereThePointerIsAndLetsEveryClickPassBeneath) {
    kxtest::DrawnWidget<KX_HoverBox> w{MP1_RECT{50, 50, 151, 91}};  // 101 x 41
    EXPECT_EQ(w.sent(H::Width).at(0).asInt(), 101);
    EXPECT_EQ(w.gfx.invalidates, 0) << "it draws nothing, so it never asks to be repainted";
    w.set(H::Normalised, true);
    EXPECT_EQ(w.module->hitTest({100, 0}), gmpi::MP_FAIL);
    EXPECT_EQ(w.sent(H::X).back().asFloat(), 1.0f);
    EXPECT_EQ(w.module->hitTest({0, 40}), gmpi::MP_FAIL);
    EXPECT_EQ(w.sent(H::X).back().asFloat(), 0.0f);
    EXPECT_EQ(w.sent(H::Y).back().asFloat(), 1.0f);

    // Only what changed is sent, and the movement pulses every time.
    w.host.sent.clear();
    EXPECT_EQ(w.press({0, 20}), gmpi::MP_FAIL);
    EXPECT_EQ(w.release({0, 20}), gmpi::MP_FAIL);
    EXPECT_TRUE(w.sent(H::X).empty());
    EXPECT_EQ(w.sent(H::Y).size(), 1u);
    EXPECT_EQ(w.sent(H::Moved).size(), 4u);

    // One unit across: the scale divides by zero and the result is sent as it is.
    w.module->arrange({0, 0, 1, 1});
    w.module->hitTest({0.5f, 0.5f});
    EXPECT_TRUE(std::isinf(w.sent(H::X).back().asFloat()));
}
