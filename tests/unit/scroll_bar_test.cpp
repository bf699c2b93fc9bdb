#include <gtest/gtest.h>

#include <cmath>

#include "DrawnWidget.h"
#include "ManualTimerBackend.h"
#include "widgets/ScrollBar.h"

namespace S = kx::scrollbar;
using GmpiDrawing_API::MP1_RECT;

namespace {

// A vertical bar 16 x 200 over 100 items, 10 visible: the thumb is 20 units long and travels 180.
struct ScrollBar : ::testing::Test {
    kx::ManualTimerBackend loop;
    kxtest::DrawnWidget<KX_ScrollBar> w{MP1_RECT{0, 0, 16, 200}};
    ScrollBar() {
        w.set(S::Total, 100);
        w.set(S::Visible, 10);
        w.host.sent.clear();
    }
    std::vector<int> positionsSent() const {
        std::vector<int> v;
        for (const auto& t : w.sent(S::Position))
            v.push_back(t.asInt());
        return v;
    }
    // The host's echo: every value the module sends comes back into the same pin.
    void echo() {
        w.host.onTransmit = [this](int pin, int size, const void* data) {
            w.module->setPin(pin, 0, size, data);
            w.module->notifyPin(pin, 0);
        };
    }
};

}  // namespace

TEST_F(ScrollBar, AHeldButtonStepsOnceThenRepeatsAfterFifteenTicksUntilTheEnd) {
    w.set(S::Position, 85);
    w.set(S::StepForward, true);
    EXPECT_EQ(positionsSent(), std::vector<int>{86});
    loop.advance(150);  // 15 ticks of 10 ms: the delay
    EXPECT_EQ(positionsSent(), std::vector<int>{86});
    loop.advance(30);
    EXPECT_EQ(positionsSent(), (std::vector<int>{86, 87, 88, 89}));
    loop.advance(100);  // at the last start (90) it stops stepping but keeps running while held
    EXPECT_EQ(positionsSent().back(), 90);
    EXPECT_TRUE(TimerManager::Instance().isRegistered(w.module.get()));

    w.set(S::StepForward, false);
    EXPECT_FALSE(TimerManager::Instance().isRegistered(w.module.get()));
    w.host.sent.clear();
    w.set(S::StepBack, true);
    loop.advance(160);
    EXPECT_EQ(positionsSent(), (std::vector<int>{89, 88}));
    w.set(S::StepBack, false);
    loop.advance(100);
    EXPECT_EQ(positionsSent().size(), 2u);
}

TEST_F(ScrollBar, WithEverythingVisibleNothingMovesAndTheThumbFillsTheTrack) {
    w.set(S::Total, 8);
    w.set(S::StepForward, true);
    EXPECT_FALSE(TimerManager::Instance().isRegistered(w.module.get()));
    const auto geo = w.module->geometry();
    EXPECT_EQ(geo.thumbStart, 0);
    EXPECT_EQ(geo.thumbLength, 200);
    EXPECT_EQ(w.press({8, 100}), 1);
    w.move({8, 150});
    w.release();
    EXPECT_TRUE(w.sent(S::Position).empty());
    EXPECT_EQ(w.module->position(), 0);

    // Nothing at all: the thumb still fills the track, and a press beside nothing pages nowhere.
    w.set(S::Total, 0);
    w.set(S::Visible, 0);
    EXPECT_EQ(w.module->geometry().thumbLength, 200);
    w.press({8, 199});
    EXPECT_TRUE(w.sent(S::Position).empty());
}

TEST_F(ScrollBar, AClickBesideTheThumbPagesAndADragFollowsThePointer) {
    w.set(S::Position, 45);  // thumb 90..109
    EXPECT_EQ(w.module->geometry().thumbStart, 90);
    EXPECT_EQ(w.press({8, 50}), gmpi::MP_OK);
    EXPECT_EQ(w.press({8, 150}), gmpi::MP_OK);
    EXPECT_EQ(w.press({8, 199}), gmpi::MP_OK);  // to the last start, no further
    EXPECT_EQ(positionsSent(), (std::vector<int>{35, 45, 55}));
    w.set(S::Position, 45);
    w.host.sent.clear();

    // 180 units of travel for 90 positions: 2 units per position. The echo of the module's own write
    // does not drop the fraction it is adding up.
    echo();
    EXPECT_EQ(w.press({8, 95}), 1);
    EXPECT_TRUE(w.gfx.captured);
    EXPECT_TRUE(w.sent(S::ThumbHeld).at(0).asBool());
    EXPECT_EQ(w.move({8, 96}), 1);  // half a position: nothing sent
    EXPECT_TRUE(w.sent(S::Position).empty());
    w.move({8, 97});
    EXPECT_EQ(positionsSent(), std::vector<int>{46});
    w.move({8, 105}, 0x10 | 0x20000);  // fine: a twentieth, 0.2 of a position
    EXPECT_FLOAT_EQ(w.module->position(), 46.2f);
    w.move({8, 1000});
    EXPECT_EQ(positionsSent().back(), 90);
    // A position from outside while dragging is taken.
    w.host.onTransmit = nullptr;
    w.set(S::Position, 10);
    EXPECT_EQ(w.module->position(), 10);
    w.release();
    EXPECT_FALSE(w.gfx.captured);
    EXPECT_FALSE(w.sent(S::ThumbHeld).back().asBool());
    EXPECT_EQ(w.move({8, 0}), gmpi::MP_OK) << "no capture: nothing moves";
    EXPECT_EQ(w.module->position(), 10);
}

TEST_F(ScrollBar, TheThumbKeepsAGrabbableLengthAndEndsAtTheTracksEnd) {
    w.module->arrange({0, 0, 10, 200});
    w.set(S::Total, 100000);
    auto geo = w.module->geometry();
    EXPECT_EQ(geo.thumbLength, KX_ScrollBar::kMinThumb);
    w.set(S::Position, 100000 - 10);
    geo = w.module->geometry();
    EXPECT_EQ(geo.thumbEnd, 199);

    // Wider than high: horizontal, and the minimum follows the thickness when that is larger.
    w.module->arrange({0, 0, 300, 20});
    geo = w.module->geometry();
    EXPECT_FALSE(geo.vertical);
    EXPECT_EQ(geo.thumbLength, 20);
    const auto frame = w.render();
    EXPECT_FALSE(frame.solidFills.empty());
    for (const auto& line : frame.lines)  // grip lines on pixel centres
        EXPECT_EQ(line.from.x - std::floor(line.from.x), 0.5f);
}
