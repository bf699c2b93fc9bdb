#include <gtest/gtest.h>

#include <cmath>

#include "SkinWidget.h"
#include "widgets/JogShuttle.h"

namespace P = kx::jog;

namespace {

// A 100 x 100 wheel of 25 frames over range 0..1, one turn for the range, at value start.
struct Wheel : kxtest::SkinWidget<KX_JogShuttleImg> {
    explicit Wheel(float start = 0.0f) {
        strip("jog.png", 100, 100, 25, "mouse_response rotary\n");
        load(P::Filename, "jog.png");
        set(P::Maximum, 1.0f);
        set(P::Turns, 1.0f);
        set(P::Value, start);
        host.sent.clear();
    }
    // Drags a full clockwise circle round the middle, starting at the right.
    void fullTurn() {
        ASSERT_EQ(down(90, 50), gmpi::MP_OK);
        moveRound(50, 50, 40, 0, 360);
        up(90, 50);
    }
    float value() const { return lastFloat(P::Value); }
};

}  // namespace

TEST(JogShuttle, CrossingTheSeamAtTheLeftIsASmallTurn) {
    Wheel w(0.5f);
    ASSERT_EQ(w.down(10, 51), gmpi::MP_OK);
    w.move(10, 49);  // just below to just above the left horizontal: a little clockwise
    EXPECT_GT(w.value(), 0.5f);
    EXPECT_LT(w.value(), 0.51f);
    w.move(10, 51);
    EXPECT_NEAR(w.value(), 0.5f, 1e-6f);
}

TEST(JogShuttle, FullClockwiseTurnAddsTheRangeOverTheTurnsClampedUnlessUnlimited) {
    Wheel clamped(0.25f);
    clamped.fullTurn();
    EXPECT_EQ(clamped.value(), 1.0f);

    Wheel unlimited(0.25f);
    unlimited.set(P::Unlimited, true);
    unlimited.fullTurn();
    EXPECT_NEAR(unlimited.value(), 1.25f, 1e-5f);

    Wheel twoTurns(0.25f);
    twoTurns.set(P::Turns, 2.0f);
    twoTurns.fullTurn();
    EXPECT_NEAR(twoTurns.value(), 0.75f, 1e-5f);
    EXPECT_NEAR(twoTurns.module.getAnimationPos(), 0.5f, 1e-5f);  // one turn of the wheel, back where it was
}

TEST(JogShuttle, AngleComesFromTheValueWrappingRoundEveryTurn) {
    Wheel w;
    w.set(P::Unlimited, true);
    w.set(P::Turns, 2.0f);
    w.set(P::Value, 1.75f);
    EXPECT_EQ(w.module.getAnimationPos(), 0.5f);
    EXPECT_EQ(w.module.getDrawAt(), 1200);  // frame 12 of 0..24
    w.set(P::Turns, 1.0f);
    w.set(P::Value, -0.25f);
    EXPECT_EQ(w.module.getAnimationPos(), 0.75f);
    w.set(P::Minimum, -0.5f);  // the range moves the angle too: 0.25 / 1.5 of a turn
    EXPECT_NEAR(w.module.getAnimationPos(), 1.0f / 6, 1e-6f);
    w.set(P::Maximum, -0.5f);  // an empty range has no angle
    EXPECT_EQ(w.module.getAnimationPos(), 0.0f);
}

TEST(JogShuttle, PixelsLessOpaqueThanTheThresholdLetThePointerThrough) {
    Wheel w;
    w.pixels().pixels[20 * 100 + 20] = 0x40FFFFFF;
    w.pixels().pixels[30 * 100 + 30] = 0x00FFFFFF;
    w.set(P::AlphaThreshold, 0x41);
    EXPECT_EQ(w.module.hitTest({20.5f, 20.5f}), gmpi::MP_FAIL);
    w.set(P::AlphaThreshold, 0x40);
    EXPECT_EQ(w.module.hitTest({20.5f, 20.5f}), gmpi::MP_OK);
    EXPECT_EQ(w.module.hitTest({101, 20}), gmpi::MP_FAIL);
    EXPECT_EQ(w.down(30, 30), gmpi::MP_FAIL);  // no alpha at all
    EXPECT_FALSE(w.gfx.captured);
}

TEST(JogShuttle, TurnStepGoesBackToZeroBeforeEachStep) {
    Wheel w(0.5f);
    ASSERT_EQ(w.down(90, 50), gmpi::MP_OK);
    EXPECT_EQ(w.ints(P::MouseDown), (std::vector<int>{1}));
    w.moveRound(50, 50, 40, 0, 10);  // two equal steps of 5 degrees
    const float step = 5.0f / 360;
    const auto steps = w.floats(P::TurnStep);
    ASSERT_EQ(steps.size(), 3u);
    EXPECT_NEAR(steps[0], step, 1e-5f);
    EXPECT_EQ(steps[1], 0.0f);
    EXPECT_NEAR(steps[2], step, 1e-5f);
    EXPECT_NEAR(w.value(), 0.5f + 2 * step, 1e-5f);
    w.up(90, 50);
    EXPECT_EQ(w.lastFloat(P::TurnStep), 0.0f);
    EXPECT_EQ(w.ints(P::MouseDown), (std::vector<int>{1, 0}));

    // At the end of the range a turn changes nothing, and nothing is sent.
    w.set(P::Value, 1.0f);
    w.host.sent.clear();
    w.down(90, 50);
    w.moveRound(50, 50, 40, 0, 30);
    EXPECT_TRUE(w.host.on(P::Value).empty());
    EXPECT_TRUE(w.host.on(P::TurnStep).empty());
}

TEST(JogShuttle, OtherButtonsAndMovesWithoutCaptureDoNothing) {
    Wheel w(0.5f);
    EXPECT_EQ(w.down(90, 50, gmpi_gui_api::GG_POINTER_FLAG_SECONDBUTTON), gmpi::MP_OK);
    EXPECT_FALSE(w.gfx.captured);
    EXPECT_EQ(w.move(50, 90), gmpi::MP_FAIL);
    EXPECT_EQ(w.up(50, 90), gmpi::MP_FAIL);
    EXPECT_TRUE(w.host.sent.empty());
}
