#include <gtest/gtest.h>

#include <limits>

#include "DrawnWidget.h"
#include "widgets/Line.h"

namespace Ln = kx::line;
using GmpiDrawing_API::MP1_RECT;

namespace {

struct Line : ::testing::Test {
    kxtest::DrawnWidget<KX_Line> w{MP1_RECT{0, 0, 100, 40}};
    const kxtest::FakeDeviceContext::Line drawn() {
        const auto frame = w.render();
        EXPECT_EQ(frame.lines.size(), 1u);
        return frame.lines.at(0);
    }
};

}  // namespace

TEST_F(Line, PositionIsClampedAndRepaintsOnlyOnChange) {
    w.set(Ln::Position, -0.3f);
    EXPECT_EQ(drawn().from.y, 0.5f);  // row 0, on its pixel centre
    w.set(Ln::Position, 5.0f);
    EXPECT_EQ(drawn().from.y, 39.5f);  // the last row
    const int before = w.gfx.invalidates;
    w.set(Ln::Position, 0.25f);
    w.set(Ln::Position, 0.25f);
    w.set(Ln::Position, 7.0f);
    w.set(Ln::Position, 1.0f);  // the same as 7, clamped
    EXPECT_EQ(w.gfx.invalidates, before + 2);
    w.set(Ln::Position, std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(drawn().from.y, 0.5f);

    // Thickness 0 or less draws a thickness of 1; an even one sits on a pixel edge.
    w.set(Ln::Thickness, -4);
    EXPECT_EQ(drawn().width, 1.0f);
    w.set(Ln::Thickness, 2);
    EXPECT_EQ(drawn().from.y, 1.0f);
}

TEST_F(Line, TheHitBandLiesAroundPositionTimesTheWholeSize) {
    // Drawn on the last column (centre 99.5) but found around x = 100.
    w.set(Ln::Vertical, true);
    w.set(Ln::Position, 1.0f);
    const auto line = drawn();
    EXPECT_EQ(line.from.x, 99.5f);
    EXPECT_EQ(line.from.y, 0);
    EXPECT_EQ(line.to.y, 40);  // the full length, not height - 1
    EXPECT_EQ(w.module->hitTest({100, 7}), gmpi::MP_OK);
    EXPECT_EQ(w.module->hitTest({99.5f, 7}), gmpi::MP_OK);
    EXPECT_EQ(w.module->hitTest({99.4f, 7}), gmpi::MP_FAIL);

    // A horizontal line three thick at 0.5 of 40: band 18.5..21.5, whatever x.
    w.set(Ln::Vertical, false);
    w.set(Ln::Position, 0.5f);
    w.set(Ln::Thickness, 3);
    EXPECT_EQ(w.module->hitTest({-50, 18.5f}), gmpi::MP_OK);
    EXPECT_EQ(w.module->hitTest({0, 21.6f}), gmpi::MP_FAIL);

    // An area one unit long still shows its line, one pixel of it.
    w.module->arrange({0, 0, 1, 1});
    const auto dot = drawn();
    EXPECT_EQ(dot.to.x - dot.from.x, 1.0f);
}

TEST_F(Line, OnlyAPressOnTheLineTakesThePointer) {
    w.set(Ln::Position, 0.5f);  // y 20
    EXPECT_EQ(w.press({50, 5}), gmpi::MP_OK);
    EXPECT_FALSE(w.gfx.captured);
    EXPECT_TRUE(w.sent(Ln::PointerDown).empty());

    EXPECT_EQ(w.press({50, 20}, 0x20), 1);  // any button
    EXPECT_TRUE(w.gfx.captured);
    EXPECT_EQ(w.release(), gmpi::MP_OK);
    EXPECT_FALSE(w.gfx.captured);
    const auto down = w.sent(Ln::PointerDown);
    ASSERT_EQ(down.size(), 2u);
    EXPECT_TRUE(down[0].asBool());
    EXPECT_FALSE(down[1].asBool());
}

TEST_F(Line, EmptyColourPinsGiveOpaqueOrangeOnNothing) {
    const auto frame = w.render();
    EXPECT_TRUE(frame.solidFills.empty());
    EXPECT_EQ(frame.lines.at(0).colour.a, 1.0f);
    EXPECT_FLOAT_EQ(frame.lines.at(0).colour.r, 1.0f);
    EXPECT_FLOAT_EQ(frame.lines.at(0).colour.g, GmpiDrawing::Color::FromBytes(255, 128, 0).g);
    w.setText(Ln::Background, L"FF102030");
    w.setText(Ln::LineColour, L"80FFFFFF");
    const auto coloured = w.render();
    ASSERT_EQ(coloured.solidFills.size(), 1u);
    EXPECT_FLOAT_EQ(coloured.lines.at(0).colour.a, 128 * 0.003921569f);
}
