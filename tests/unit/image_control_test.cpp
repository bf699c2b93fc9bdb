#include <gtest/gtest.h>

#include "SkinWidget.h"
#include "widgets/ImageControl.h"

namespace P = kx::image;
using kxtest::kFine;
using kxtest::kFirstButton;

namespace {

// A 100 x 100 control with an 11-frame strip of the given pointer response, at position start.
struct Control : kxtest::SkinWidget<KX_Image> {
    explicit Control(const std::string& response, float start = 0.0f, int frames = 11) {
        strip("c.png", 100, 100, frames, "mouse_response " + response + "\n");
        load(P::Filename, "c.png");
        set(P::Position, start);
        host.sent.clear();
    }
    float position() { return module.getAnimationPos(); }
};

}  // namespace

TEST(ImageControl, LinearDragsMoveFivePerThousandPerPixelAndOnePerThousandFine) {
    Control vertical("vertical", 0.2f);
    ASSERT_EQ(vertical.down(50, 50), gmpi::MP_OK);
    vertical.moveAlong(50, 50, 50, -50, 4);  // 100 pixels up raises the value
    EXPECT_NEAR(vertical.position(), 0.7f, 1e-5f);
    vertical.moveAlong(50, -50, 50, 50, 4, kFine);  // back down, fine
    EXPECT_NEAR(vertical.position(), 0.6f, 1e-5f);
    vertical.moveAlong(50, 50, 90, 50, 4);  // sideways does nothing to a vertical control
    EXPECT_NEAR(vertical.position(), 0.6f, 1e-5f);
    vertical.moveAlong(90, 50, 90, 500, 4);  // clamped at 0
    EXPECT_EQ(vertical.position(), 0.0f);
    EXPECT_EQ(vertical.lastFloat(P::Position), 0.0f);  // every change reached the host

    for (const char* response : {"horizontal", "reverse"}) {
        Control horizontal(response, 0.2f);
        ASSERT_EQ(horizontal.down(10, 50), gmpi::MP_OK);
        horizontal.moveAlong(10, 50, 110, 50, 4);
        EXPECT_NEAR(horizontal.position(), 0.7f, 1e-5f) << response;
        horizontal.moveAlong(110, 50, 110, -500, 4);
        EXPECT_NEAR(horizontal.position(), 0.7f, 1e-5f) << response;
        horizontal.moveAlong(110, -500, 10, -500, 4, kFine);
        EXPECT_NEAR(horizontal.position(), 0.6f, 1e-5f) << response;
    }
}

// The weight makes a drag round the centre turn the knob by its angle, and a drag straight up near the
// centre line act as a vertical drag, however the drag before it went.
TEST(ImageControl, RotaryDragFollowsTheAngleAndFallsBackToVerticalNearTheCentreLine) {
    Control dial("rotary", 0.3f);
    ASSERT_EQ(dial.down(90, 50), gmpi::MP_OK);
    dial.moveRound(50, 50, 40, 0, 90);  // a quarter turn clockwise: right to bottom, the pointer moving down
    const float quarter = dial.position() - 0.3f;
    EXPECT_GT(quarter, 0.1f);
    dial.moveRound(50, 50, 40, 90, 0);  // and back
    EXPECT_NEAR(dial.position(), 0.3f, 1e-4f);
    dial.moveRound(50, 50, 40, 0, 90, kFine);
    EXPECT_NEAR(dial.position() - 0.3f, quarter / 10, 1e-4f);
    dial.up(50, 90);

    dial.set(P::Position, 0.3f);
    ASSERT_EQ(dial.down(52, 80), gmpi::MP_OK);
    dial.moveAlong(52, 80, 52, 60, 10);  // 20 pixels straight up, 2 pixels right of the centre line
    EXPECT_NEAR(dial.position(), 0.5f, 1e-4f);
    dial.up(52, 60);

    // The centre offset moves the point the knob turns round: this drag, downwards left of the middle,
    // turns clockwise round the moved centre.
    dial.set(P::CentreX, -30);
    dial.set(P::Position, 0.3f);
    ASSERT_EQ(dial.down(30, 50), gmpi::MP_OK);
    dial.moveRound(20, 50, 10, 0, 90);
    EXPECT_GT(dial.position(), 0.32f);
}

TEST(ImageControl, ClickSpringsBackOnReleaseUnlessHeld) {
    Control button("click");
    ASSERT_EQ(button.down(50, 50), gmpi::MP_OK);
    EXPECT_EQ(button.position(), 1.0f);
    EXPECT_TRUE(button.gfx.captured);
    button.moveAlong(50, 50, 50, -200, 2);  // dragging does not move a button
    EXPECT_EQ(button.position(), 1.0f);
    ASSERT_EQ(button.up(50, -200), gmpi::MP_OK);
    EXPECT_EQ(button.floats(P::Position), (std::vector<float>{1.0f, 0.0f}));
    EXPECT_EQ(button.ints(P::MouseDown), (std::vector<int>{1, 0}));

    Control latch("click");
    latch.set(P::Hold, true);
    latch.down(50, 50);
    latch.up(50, 50);
    EXPECT_EQ(latch.position(), 1.0f);
    latch.down(50, 50);
    latch.up(50, 50);
    EXPECT_EQ(latch.floats(P::Position), (std::vector<float>{1.0f, 0.0f}));
}

TEST(ImageControl, StepAdvancesOneFrameAndWrapsAfterTheLast) {
    Control stepper("step", 0.0f, 4);
    std::vector<float> seen;
    for (int press = 0; press < 4; ++press) {
        ASSERT_EQ(stepper.down(50, 50), gmpi::MP_OK);
        stepper.up(50, 50);
        seen.push_back(stepper.position());
    }
    EXPECT_EQ(seen, (std::vector<float>{1.0f / 3, 2.0f / 3, 1.0f, 0.0f}));
    EXPECT_EQ(stepper.module.getDrawAt(), 0);

    stepper.set(P::Position, 7.0f);  // beyond the end: steps from the last frame, so wraps
    stepper.down(50, 50);
    EXPECT_EQ(stepper.position(), 0.0f);

    Control single("step", 0.0f, 1);  // nothing to step to
    single.down(50, 50);
    EXPECT_TRUE(single.floats(P::Position).empty());
}

TEST(ImageControl, PressesThatDoNotDriveTheControl) {
    Control fixed("none");  // the metadata names no response: the press is taken, nothing more
    EXPECT_EQ(fixed.down(50, 50), gmpi::MP_OK);
    EXPECT_FALSE(fixed.gfx.captured);
    EXPECT_TRUE(fixed.host.on(P::MouseDown).empty());

    Control knob("vertical", 0.5f);
    EXPECT_EQ(knob.down(50, 50, gmpi_gui_api::GG_POINTER_FLAG_SECONDBUTTON), gmpi::MP_OK);
    EXPECT_FALSE(knob.gfx.captured);
    EXPECT_EQ(knob.move(50, 0), gmpi::MP_FAIL);
    EXPECT_EQ(knob.up(50, 0), gmpi::MP_FAIL);
    EXPECT_EQ(knob.position(), 0.5f);

    knob.pixels().pixels[500 * 100 + 20 * 100 + 20] = 0x00FFFFFF;  // frame 5, (20, 20): no alpha
    EXPECT_EQ(knob.down(20, 20), gmpi::MP_FAIL);
    EXPECT_EQ(knob.down(200, 20), gmpi::MP_FAIL);
    EXPECT_FALSE(knob.gfx.captured);

    // A point that is not a number during a drag is skipped; the drag goes on from the last real one.
    ASSERT_EQ(knob.down(50, 50), gmpi::MP_OK);
    EXPECT_EQ(knob.move(std::nanf(""), 10), gmpi::MP_OK);
    knob.move(50, 30);
    EXPECT_NEAR(knob.position(), 0.6f, 1e-5f);
}

TEST(ImageControl, PixelUnderThePointerReportsPositionAndPulsesAtTheThreshold) {
    Control knob("vertical");
    knob.set(P::PixelThreshold, 0x7F000000);
    knob.pixels().pixels[10 * 100 + 10] = 0x40FFFFFF;
    EXPECT_EQ(knob.module.hitTest({10.5f, 10.25f}), gmpi::MP_OK);  // visible, below the threshold
    EXPECT_EQ(knob.floats(P::PointerX), (std::vector<float>{10.5f}));
    EXPECT_EQ(knob.floats(P::PointerY), (std::vector<float>{10.25f}));
    EXPECT_TRUE(knob.host.on(P::PixelPulse).empty());

    EXPECT_EQ(knob.module.hitTest({30, 10.25f}), gmpi::MP_OK);  // 0xFF808080: above
    EXPECT_EQ(knob.ints(P::PixelPulse), (std::vector<int>{1, 0}));
    EXPECT_EQ(knob.floats(P::PointerY).size(), 1u);  // unchanged values are not sent again

    knob.host.sent.clear();
    EXPECT_EQ(knob.module.hitTest({150, 10}), gmpi::MP_FAIL);  // off the frame: no pixel read
    EXPECT_TRUE(knob.host.sent.empty());
}

TEST(ImageControl, LoadingCountsFramesAndSizesTheControl) {
    kxtest::SkinWidget<KX_Image> w;
    GmpiDrawing_API::MP1_SIZE size{};
    w.module.measure({500, 500}, &size);
    EXPECT_EQ(size.width, 10.0f);
    w.strip("a.png", 40, 30, 50, "padding 1 2 3 4\n");
    w.strip("b.png", 8, 8, 3, "");
    w.load(P::Filename, "a.png");
    w.module.measure({500, 500}, &size);
    EXPECT_EQ(size.width, 47.0f);
    EXPECT_EQ(size.height, 33.0f);
    w.load(P::Filename, "b.png");
    w.load(P::Filename, "missing.png");
    EXPECT_EQ(w.ints(P::FrameCount), (std::vector<int>{50, 3, 0}));
}

TEST(ImgM2C, PassesSelectionsOnDroppingNoneAndRepeats) {
    kxtest::FakeGuiHost host;
    KX_ImgM2C m;
    m.setHost(host.unknown());
    for (int v : {3, 3, -1, 5, -1, 5})
        kxtest::deliver(m, kx::imgm2c::In, v);
    std::vector<int> sent;
    for (const auto& t : host.on(kx::imgm2c::Out))
        sent.push_back(t.asInt());
    EXPECT_EQ(sent, (std::vector<int>{3, 5}));
}
