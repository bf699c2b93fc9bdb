#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "FakeGuiHost.h"
#include "ManualTimerBackend.h"
#include "widgets/GuiTimer.h"

using kxtest::deliver;

namespace {

// (virtual time, value) of every change of the primary output.
using Trace = std::vector<std::pair<std::int64_t, bool>>;

class GuiTimer : public ::testing::Test {
protected:
    kx::ManualTimerBackend loop;
    kxtest::FakeGuiHost host;
    KX_GUITimer timer;
    Trace trace;

    void SetUp() override {
        timer.setHost(host.unknown());
        host.onTransmit = [this](int pin, int, const void* data) {
            if (pin == kx::guitimer::Out)
                trace.emplace_back(loop.now(), *static_cast<const bool*>(data));
        };
    }
    void configure(int mode, int t1, int t2) {
        deliver(timer, kx::guitimer::Mode, mode);
        deliver(timer, kx::guitimer::Time1, t1);
        deliver(timer, kx::guitimer::Time2, t2);
    }
    void trigger(bool value, int pin = kx::guitimer::TriggerR) { deliver(timer, pin, value); }
};

}  // namespace

TEST_F(GuiTimer, DelayOnFiresOnceAndATrueThenFalseBeforeTheDelayLeavesNoTick) {
    configure(kx::guitimer::DelayOn, 100, 0);
    trigger(true);
    loop.advance(500);
    trigger(false);
    EXPECT_EQ(trace, (Trace{{100, true}, {500, false}}));

    trace.clear();
    trigger(true);
    loop.advance(60);
    trigger(false);
    loop.advance(1000);
    EXPECT_TRUE(trace.empty());
    EXPECT_FALSE(TimerManager::Instance().isRegistered(&timer));
}

TEST_F(GuiTimer, DelayOffHoldsTheOutputForTime1AfterTheFall) {
    configure(kx::guitimer::DelayOff, 100, 0);
    trigger(true);
    loop.advance(40);
    trigger(false);
    loop.advance(1000);
    EXPECT_EQ(trace, (Trace{{0, true}, {140, false}}));
    EXPECT_FALSE(TimerManager::Instance().isRegistered(&timer));
}

TEST_F(GuiTimer, DelayedPulsesFollowTheirEdge) {
    configure(kx::guitimer::PulseAfterRise, 100, 30);
    trigger(true);
    trigger(false);  // a rising-edge pulse ignores the fall
    loop.advance(1000);
    EXPECT_EQ(trace, (Trace{{100, true}, {130, false}}));

    trace.clear();
    deliver(timer, kx::guitimer::Mode, int{kx::guitimer::PulseAfterFall});
    trigger(true);
    loop.advance(500);
    trigger(false);
    loop.advance(1000);
    EXPECT_EQ(trace, (Trace{{1600, true}, {1630, false}}));
    EXPECT_FALSE(TimerManager::Instance().isRegistered(&timer));
}

TEST_F(GuiTimer, ToggleFlipsOnTrueOnlyAndNeverUsesTheTimer) {
    configure(kx::guitimer::Toggle, 100, 100);
    trigger(true);
    trigger(false);
    trigger(true);
    trigger(true);
    EXPECT_EQ(trace, (Trace{{0, true}, {0, false}, {0, true}}));
    EXPECT_FALSE(TimerManager::Instance().isRegistered(&timer));
}

TEST_F(GuiTimer, OscillatorIsTrueForTime1AndFalseForTime2UntilTheTriggerFalls) {
    configure(kx::guitimer::Oscillator, 100, 300);
    trigger(true);
    loop.advance(850);
    trigger(false);
    loop.advance(1000);
    EXPECT_EQ(trace, (Trace{{0, true}, {100, false}, {400, true}, {500, false}, {800, true}, {850, false}}));
    EXPECT_FALSE(TimerManager::Instance().isRegistered(&timer));
}

TEST_F(GuiTimer, OutputsMoveTogetherPrimaryFirstAndOnlyOnChange) {
    configure(kx::guitimer::Toggle, 0, 0);
    host.sent.clear();
    trigger(true);
    deliver(timer, kx::guitimer::Mode, int{kx::guitimer::Toggle});  // resets to false
    deliver(timer, kx::guitimer::Mode, int{kx::guitimer::Toggle});  // already false: nothing
    ASSERT_EQ(host.sent.size(), 4u);
    EXPECT_EQ(host.sent[0].pin, kx::guitimer::Out);
    EXPECT_EQ(host.sent[1].pin, kx::guitimer::OutMirror);
    EXPECT_TRUE(host.sent[1].asBool());
    EXPECT_EQ(host.sent[2].pin, kx::guitimer::Out);
    EXPECT_FALSE(host.sent[3].asBool());
}

TEST_F(GuiTimer, TriggerLWaitsForTheSettingsAndTriggerRIsLost) {
    trigger(true, kx::guitimer::TriggerR);
    trigger(true, kx::guitimer::TriggerL);
    deliver(timer, kx::guitimer::Mode, int{kx::guitimer::Toggle});
    deliver(timer, kx::guitimer::Time1, 10);
    EXPECT_TRUE(trace.empty());
    deliver(timer, kx::guitimer::Time2, 10);  // completes the set: L is replayed once
    EXPECT_EQ(trace, (Trace{{0, true}}));
    deliver(timer, kx::guitimer::Time2, 20);
    EXPECT_EQ(trace, (Trace{{0, true}}));
}

TEST_F(GuiTimer, ModeMinusOneKeepsTriggerLPending) {
    deliver(timer, kx::guitimer::Time1, 10);
    deliver(timer, kx::guitimer::Time2, 10);
    trigger(true, kx::guitimer::TriggerL);
    deliver(timer, kx::guitimer::Mode, -1);
    EXPECT_TRUE(trace.empty());
    deliver(timer, kx::guitimer::Mode, int{kx::guitimer::DelayOff});
    EXPECT_EQ(trace, (Trace{{0, true}}));
}

TEST_F(GuiTimer, ModeChangeStopsTheTimerAndResetsTheOutput) {
    configure(kx::guitimer::Oscillator, 100, 100);
    trigger(true);
    deliver(timer, kx::guitimer::Mode, 9);  // out of range: stored, triggers and ticks do nothing
    trigger(false);
    trigger(true);
    loop.advance(1000);
    EXPECT_EQ(trace, (Trace{{0, true}, {0, false}}));
    EXPECT_FALSE(TimerManager::Instance().isRegistered(&timer));
}

TEST_F(GuiTimer, NegativeTimesClampExceptTheTime1PinOfDelayOn) {
    configure(kx::guitimer::PulseAfterFall, -50, -7);
    trigger(false);  // t1 and t2 clamped to 0
    loop.advance(1);
    loop.advance(1);
    EXPECT_EQ(trace, (Trace{{1, true}, {2, false}}));

    deliver(timer, kx::guitimer::Mode, int{kx::guitimer::DelayOn});
    trigger(true);
    bool inNegativeGroup = false;
    for (const auto& g : TimerManager::Instance().groups())
        inNegativeGroup |= g.interval() == -50 && !g.clients().empty() && g.clients()[0] == &timer;
    EXPECT_TRUE(inNegativeGroup);
    timer.StopTimer();
}
