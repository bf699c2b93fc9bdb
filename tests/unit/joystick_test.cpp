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

// The plain drag is also driven end to end (tests/e2e/joystick.kxp); here, what a patch cannot reach.
TEST(Joystick, AbsoluteDragKeepsAnAxisThePointerCannotMeasure) {
    Stick w;
    w.press(35, 35);
    w.move(std::nanf(""), 10);
    w.expectAt(0.25f, 1);
    ASSERT_EQ(w.up(35, 10), gmpi::MP_OK);
    EXPECT_EQ(w.move(60, 60), gmpi::MP_FAIL);
    EXPECT_EQ(w.up(60, 60), gmpi::MP_FAIL);
    // An area narrower than the handle has no travel across: X keeps its value, Y still follows.
    w.module.arrange({0, 0, 15, 120});
    w.press(14, 60);
    w.expectAt(0.25f, 0.5f);
}

TEST(Joystick, RelativePressMustHitAVisibleHandlePixelAndDragsByTheTravel) {
    Stick w(0x80404040);  // every pixel half opaque
    w.set(J::Relative, true);
    w.set(J::AlphaThreshold, 128);
    w.set(J::X, 0.5f);
    w.set(J::Y, 0.5f);  // the handle box spans 50..70, its frame 52..68
    EXPECT_EQ(w.press(30, 30), gmpi::MP_FAIL);
    EXPECT_EQ(w.press(51, 60), gmpi::MP_FAIL);  // the padding is not the handle
    ASSERT_EQ(w.press(60, 60), gmpi::MP_OK);
    w.expectAt(0.5f, 0.5f);  // a relative press does not move the handle
    w.move(70, -400);
    w.move(70, -390);  // from where the handle stopped at the edge, not from where the pointer went
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

TEST(Joystick, FineModifierInRelativeModeAddsATenthOfEachMove) {
    Stick w;
    w.set(J::Relative, true);
    w.set(J::X, 0.5f);
    w.set(J::Y, 0.5f);
    w.press(60, 60);
    w.move(80, 60, kFine);
    w.move(100, 40, kFine);  // from the previous move, not from the press
    w.expectAt(0.54f, 0.52f);
    w.move(110, 40);  // the modifier let go: the whole travel again
    w.expectAt(0.64f, 0.52f);
}

TEST(Joystick, CircularProjectsOntoTheRimBeforeClamping) {
    Stick w;
    w.set(J::Circular, true);
    // X = 2, Y = 1 is (3, 1) in the square -1..1: onto the rim along that line, then nothing to clamp.
    // Clamping first would have given the corner's direction instead.
    w.press(210, 10);
    w.expectAt((3 / std::sqrt(10.0f) + 1) / 2, (1 / std::sqrt(10.0f) + 1) / 2);
    w.move(80, 60);  // inside the disc: untouched
    w.expectAt(0.7f, 0.5f);
    // A centre in a corner is kept inside too.
    w.set(J::Spring, true);
    w.set(J::CentreX, 1.0f);
    w.set(J::CentreY, 1.0f);
    w.up(80, 60);
    const float rim = 0.5f + 0.5f / std::sqrt(2.0f);
    w.expectAt(rim, rim);
}

// The spring is driven end to end (tests/e2e/joystick_circular.kxp); double clicks need a clock.
TEST(Joystick, DoubleClickSendsTheHandleToTheCentre) {
    Stick w;
    w.set(J::CentreX, 0.2f);
    w.set(J::CentreY, 0.7f);
    // The second press 400 ms after the first resets instead of placing, and the drag before its release
    // leaves the handle where the reset put it.
    w.click(110, 10);
    w.press(100, 100, kFirstButton, 400);
    w.expectAt(0.2f, 0.7f);
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
    w.set(J::X, 0.25f);
    w.set(J::Y, 1.0f);
    w.set(J::Position, 1.0f);
    w.sendText(J::Guide, L"80FFFFFF");
    {
        const auto dc = w.render();
        ASSERT_EQ(dc.bitmaps.size(), 1u);
        EXPECT_EQ(dc.bitmaps[0].dest.left, 27.0f);  // box 25..45 by 0..20, the frame inside the padding
        EXPECT_EQ(dc.bitmaps[0].dest.top, 2.0f);
        EXPECT_EQ(dc.bitmaps[0].source.top, 16.0f);
        ASSERT_EQ(dc.lines.size(), 2u);  // through the middle of the centre's pixel
        EXPECT_EQ(dc.lines[0].from.x, 35.5f);
        EXPECT_EQ(dc.lines[1].from.y, 10.5f);
    }

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
