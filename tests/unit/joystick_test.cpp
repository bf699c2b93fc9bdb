#include <gtest/gtest.h>

#include <cmath>

#include "SkinWidget.h"
#include "widgets/Joystick.h"

namespace J = kx::joystick;
using kxtest::kFine;
using kxtest::kFirstButton;

namespace {

// A 120 x 120 joystick with a handle of 16 x 16 frames and 2 units of padding all round: the handle is
// 20 x 20, so its centre travels over (10, 10)-(110, 110), a hundred units each way. Presses are a
// second apart unless a test says otherwise.
struct Stick : kxtest::SkinWidget<KX_BetterJoystickImg> {
    std::int64_t nowMs = 0;

    explicit Stick(uint32_t fill = 0xFF808080) : SkinWidget({0, 0, 120, 120}) {
        module.setClock([this] { return nowMs * 1'000'000; });
        strip("stick.png", 16, 16, 2, "padding 2 2 2 2\n", fill);
        load(J::Filename, "stick.png");
        host.sent.clear();
    }
    int32_t press(float x, float y, int32_t flags = kFirstButton, std::int64_t afterMs = 1000) {
        nowMs += afterMs;
        return down(x, y, flags);
    }
    void click(float x, float y, std::int64_t afterMs = 1000) {
        press(x, y, kFirstButton, afterMs);
        up(x, y);
    }
    // The value a float pin holds: the host's last, or the module's own since.
    float pin(int p) { return static_cast<MpGuiPin<float>*>(module.getPin(p))->getValue(); }
    void expectAt(float x, float y) {
        EXPECT_NEAR(pin(J::X), x, 1e-5f);
        EXPECT_NEAR(pin(J::Y), y, 1e-5f);
    }
    kxtest::FakeDeviceContext render() {
        kxtest::FakeDeviceContext dc(gfx.factory);
        module.OnRender(&dc);
        return dc;
    }
};

}  // namespace

TEST(Joystick, AbsoluteDragFollowsThePointerOverTheTravelInsetByHalfTheHandle) {
    Stick w;
    ASSERT_EQ(w.press(60, 60), gmpi::MP_OK);
    EXPECT_TRUE(w.gfx.captured);
    w.expectAt(0.5f, 0.5f);
    w.move(10, 110);
    w.expectAt(0, 0);
    w.move(35, 35);  // up grows
    w.expectAt(0.25f, 0.75f);
    w.move(-50, 500);
    w.expectAt(0, 0);
    w.move(200, -3);
    w.expectAt(1, 1);
    EXPECT_EQ(w.move(std::nanf(""), 60), gmpi::MP_OK);  // the other axis still follows
    w.expectAt(1, 0.5f);
    ASSERT_EQ(w.up(200, 60), gmpi::MP_OK);
    EXPECT_FALSE(w.gfx.captured);
    EXPECT_EQ(w.ints(J::MouseDown), (std::vector<int>{1, 0}));
    EXPECT_EQ(w.move(60, 60), gmpi::MP_FAIL);
    EXPECT_EQ(w.up(60, 60), gmpi::MP_FAIL);
    // Only changes are sent: 0.5, 0, 0.25, 0, 1 on X; the NaN move and the last sent nothing new on it.
    EXPECT_EQ(w.floats(J::X).size(), 5u);

    // Other buttons are taken and do nothing.
    EXPECT_EQ(w.press(30, 30, gmpi_gui_api::GG_POINTER_FLAG_SECONDBUTTON), gmpi::MP_OK);
    EXPECT_FALSE(w.gfx.captured);
    w.expectAt(1, 0.5f);

    // An area narrower than the handle has no travel across: X keeps its value, Y still follows.
    w.module.arrange({0, 0, 15, 120});
    w.press(14, 10);
    w.expectAt(1, 1);
}

TEST(Joystick, RelativePressMustHitAVisibleHandlePixelAndDragsByTheTravel) {
    Stick w(0x80404040);  // every pixel half opaque
    w.set(J::Relative, true);
    w.set(J::AlphaThreshold, 128);
    w.set(J::X, 0.5f);
    w.set(J::Y, 0.5f);  // the handle box spans 50..70, its frame 52..68
    w.host.sent.clear();

    EXPECT_EQ(w.press(30, 30), gmpi::MP_FAIL);
    EXPECT_EQ(w.press(51, 60), gmpi::MP_FAIL);  // the padding is not the handle
    EXPECT_FALSE(w.gfx.captured);
    ASSERT_EQ(w.press(60, 60), gmpi::MP_OK);
    EXPECT_TRUE(w.gfx.captured);
    EXPECT_TRUE(w.floats(J::X).empty());  // a relative press does not move the handle
    w.move(70, 40);
    w.expectAt(0.6f, 0.7f);
    w.move(70, -400);
    w.expectAt(0.6f, 1);
    w.move(70, -390);  // from where the handle stopped, not from where the pointer went
    w.expectAt(0.6f, 0.9f);
    w.up(70, -390);

    // The frame shown decides: a clear pixel of frame 0 misses, the same pixel of frame 1 hits.
    w.set(J::X, 0.5f);
    w.set(J::Y, 0.5f);
    w.pixels().pixels[0] = 0;
    EXPECT_EQ(w.module.hitTest({52.5f, 52.5f}), gmpi::MP_FAIL);
    w.set(J::Position, 1.0f);
    EXPECT_EQ(w.module.hitTest({52.5f, 52.5f}), gmpi::MP_OK);
    w.set(J::AlphaThreshold, 129);
    EXPECT_EQ(w.module.hitTest({60, 60}), gmpi::MP_FAIL);
}

TEST(Joystick, FineModifierAddsATenthOfEachMoveInBothModes) {
    for (bool relative : {false, true}) {
        SCOPED_TRACE(relative ? "relative" : "absolute");
        Stick w;
        w.set(J::Relative, relative);
        w.set(J::X, 0.5f);
        w.set(J::Y, 0.5f);
        w.press(60, 60);
        w.move(80, 60, kFine);
        w.expectAt(0.52f, 0.5f);
        w.move(100, 40, kFine);  // from the previous move, not from the press
        w.expectAt(0.54f, 0.52f);
        w.move(110, 40);  // the modifier let go: plain dragging again from here
        if (relative)
            w.expectAt(0.64f, 0.52f);
        else
            w.expectAt(1.0f, 0.7f);
    }
}

TEST(Joystick, CircularProjectsOntoTheRimBeforeClamping) {
    Stick w;
    w.set(J::Circular, true);
    // X = 2, Y = 1 is (3, 1) in the square -1..1: onto the rim along that line, then nothing to clamp.
    // Clamping first would have given the corner's direction instead.
    w.press(210, 10);
    w.expectAt((3 / std::sqrt(10.0f) + 1) / 2, (1 / std::sqrt(10.0f) + 1) / 2);
    w.move(110, 10);
    const float rim = 0.5f + 0.5f / std::sqrt(2.0f);
    w.expectAt(rim, rim);
    w.move(80, 60);  // inside the disc: untouched
    w.expectAt(0.7f, 0.5f);
    w.up(80, 60);

    // Relative drags are kept inside too; so is a centre in a corner.
    w.set(J::Relative, true);
    w.press(80, 60);
    w.move(80, -200);  // Y = 3.1: (0.4, 5.2) in the square
    const float r = std::hypot(0.4f, 5.2f);
    w.expectAt((0.4f / r + 1) / 2, (5.2f / r + 1) / 2);
    w.set(J::Spring, true);
    w.set(J::CentreX, 1.0f);
    w.set(J::CentreY, 1.0f);
    w.up(80, -200);
    w.expectAt(rim, rim);
}

TEST(Joystick, SpringAndDoubleClickSendTheHandleToTheCentre) {
    Stick w;
    w.set(J::CentreX, 0.2f);
    w.set(J::CentreY, 0.7f);
    w.click(110, 110);
    w.expectAt(1, 0);  // no spring: the handle stays
    w.set(J::Spring, true);
    w.press(110, 110);
    w.up(110, 110);
    w.expectAt(0.2f, 0.7f);
    EXPECT_FALSE(w.ints(J::MouseDown).back());
    w.set(J::Spring, false);

    // The second press 400 ms after the first resets instead of placing, and the drag before its release
    // leaves the handle where the reset put it.
    w.click(110, 10);
    w.press(100, 100, kFirstButton, 400);
    w.expectAt(0.2f, 0.7f);
    EXPECT_TRUE(w.gfx.captured);
    w.move(90, 90);
    w.up(90, 90);
    w.expectAt(0.2f, 0.7f);
    // A third press soon after starts a new pair, and 401 ms is too late for a double click.
    w.click(90, 20, 100);
    w.expectAt(0.8f, 0.9f);
    w.click(10, 110, 401);
    w.expectAt(0, 0);

    // Relative mode: a press that misses the handle is no press, so the one after it pairs with the
    // one before.
    w.set(J::Relative, true);
    w.click(10, 110);
    EXPECT_EQ(w.press(60, 60, kFirstButton, 100), gmpi::MP_FAIL);
    w.press(10, 110, kFirstButton, 200);
    w.expectAt(0.2f, 0.7f);
}

// What is drawn is where X and Y say, whoever set them: the host or the pointer (the pin holds what the
// module sent, echoed or not).
TEST(Joystick, DrawingFollowsThePins) {
    Stick w;
    w.host.onTransmit = nullptr;
    {
        const auto dc = w.render();
        ASSERT_EQ(dc.bitmaps.size(), 1u);
        EXPECT_TRUE(dc.solidFills.empty());  // no background, no guide by default
        EXPECT_TRUE(dc.lines.empty());
        EXPECT_EQ(dc.bitmaps[0].dest.left, 2.0f);  // X = Y = 0: bottom left, frame inside the padding
        EXPECT_EQ(dc.bitmaps[0].dest.top, 102.0f);
    }

    w.set(J::X, 0.25f);
    w.set(J::Y, 1.0f);
    w.set(J::Position, 1.0f);
    w.sendText(J::Background, L"FF102030");
    w.sendText(J::Guide, L"80FFFFFF");
    const auto dc = w.render();
    ASSERT_EQ(dc.bitmaps.size(), 1u);
    const auto& frame = dc.bitmaps[0];
    EXPECT_EQ(frame.dest.left, 27.0f);  // box 25..45, 0..20
    EXPECT_EQ(frame.dest.top, 2.0f);
    EXPECT_EQ(frame.dest.right, 43.0f);
    EXPECT_EQ(frame.source.top, 16.0f);
    ASSERT_EQ(dc.solidFills.size(), 1u);
    EXPECT_EQ(dc.solidFills[0].rect.right, 120.0f);
    ASSERT_EQ(dc.lines.size(), 2u);  // across the whole area, through the centre's pixel
    EXPECT_EQ(dc.lines[0].from.x, 35.5f);
    EXPECT_EQ(dc.lines[0].to.y, 120.0f);
    EXPECT_EQ(dc.lines[1].from.y, 10.5f);
    EXPECT_EQ(dc.lines[1].width, 1.0f);

    // Out of range is drawn clamped; a change that clamps to the same place repaints nothing.
    w.set(J::X, 7.0f);
    const int repaints = w.gfx.invalidates;
    w.set(J::X, 5.0f);
    EXPECT_EQ(w.gfx.invalidates, repaints);
    EXPECT_EQ(w.render().bitmaps[0].dest.left, 102.0f);

    // The pointer moves what is drawn through the pins, with no echo from this host.
    w.press(60, 60);
    EXPECT_GT(w.gfx.invalidates, repaints);
    EXPECT_EQ(w.render().bitmaps[0].dest.left, 52.0f);
}
