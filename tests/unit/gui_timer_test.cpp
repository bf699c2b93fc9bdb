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
            if (pin == kGuiTimerOut)
                trace.emplace_back(loop.now(), *static_cast<const bool*>(data));
        };
    }
    void configure(int mode, int t1, int t2) {
        deliver(timer, kGuiTimerMode, mode);
        deliver(timer, kGuiTimerTime1, t1);
        deliver(timer, kGuiTimerTime2, t2);
    }
    void trigger(bool value, int pin = kGuiTimerTriggerR) { deliver(timer, pin, value); }
};

}  // namespace

TEST_F(GuiTimer, DelayOnFiresOnceAndATrueThenFalseBeforeTheDelayLeavesNoTick) {
    configure(KX_GUITimer::kDelayOn, 100, 0);
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
    configure(KX_GUITimer::kDelayOff, 100, 0);
    trigger(true);
    loop.advance(40);
    trigger(false);
    loop.advance(1000);
    EXPECT_EQ(trace, (Trace{{0, true}, {140, false}}));
    EXPECT_FALSE(TimerManager::Instance().isRegistered(&timer));
}

TEST_F(GuiTimer, DelayedPulsesFollowTheirEdge) {
    configure(KX_GUITimer::kPulseAfterRise, 100, 30);
    trigger(true);
    trigger(false);  // a rising-edge pulse ignores the fall
    loop.advance(1000);
    EXPECT_EQ(trace, (Trace{{100, true}, {130, false}}));

    trace.clear();
    deliver(timer, kGuiTimerMode, int{KX_GUITimer::kPulseAfterFall});
    trigger(true);
    loop.advance(500);
    trigger(false);
    loop.advance(1000);
    EXPECT_EQ(trace, (Trace{{1600, true}, {1630, false}}));
    EXPECT_FALSE(TimerManager::Instance().isRegistered(&timer));
}

TEST_F(GuiTimer, ToggleFlipsOnTrueOnlyAndNeverUsesTheTimer) {
    configure(KX_GUITimer::kToggle, 100, 100);
    trigger(true);
    trigger(false);
    trigger(true);
    trigger(true);
    EXPECT_EQ(trace, (Trace{{0, true}, {0, false}, {0, true}}));
    EXPECT_FALSE(TimerManager::Instance().isRegistered(&timer));
}

TEST_F(GuiTimer, OscillatorIsTrueForTime1AndFalseForTime2UntilTheTriggerFalls) {
    configure(KX_GUITimer::kOscillator, 100, 300);
    trigger(true);
    loop.advance(850);
    trigger(false);
    loop.advance(1000);
    EXPECT_EQ(trace, (Trace{{0, true}, {100, false}, {400, true}, {500, false}, {800, true}, {850, false}}));
    EXPECT_FALSE(TimerManager::Instance().isRegistered(&timer));
}

TEST_F(GuiTimer, OutputsMoveTogetherPrimaryFirstAndOnlyOnChange) {
    configure(KX_GUITimer::kToggle, 0, 0);
    host.sent.clear();
    trigger(true);
    deliver(timer, kGuiTimerMode, int{KX_GUITimer::kToggle});  // resets to false
    deliver(timer, kGuiTimerMode, int{KX_GUITimer::kToggle});  // already false: nothing
    ASSERT_EQ(host.sent.size(), 4u);
    EXPECT_EQ(host.sent[0].pin, kGuiTimerOut);
    EXPECT_EQ(host.sent[1].pin, kGuiTimerOutMirror);
    EXPECT_TRUE(host.sent[1].asBool());
    EXPECT_EQ(host.sent[2].pin, kGuiTimerOut);
    EXPECT_FALSE(host.sent[3].asBool());
}

TEST_F(GuiTimer, TriggerLWaitsForTheSettingsAndTriggerRIsLost) {
    trigger(true, kGuiTimerTriggerR);
    trigger(true, kGuiTimerTriggerL);
    deliver(timer, kGuiTimerMode, int{KX_GUITimer::kToggle});
    deliver(timer, kGuiTimerTime1, 10);
    EXPECT_TRUE(trace.empty());
    deliver(timer, kGuiTimerTime2, 10);  // completes the set: L is replayed once
    EXPECT_EQ(trace, (Trace{{0, true}}));
    deliver(timer, kGuiTimerTime2, 20);
    EXPECT_EQ(trace, (Trace{{0, true}}));
}

TEST_F(GuiTimer, ModeMinusOneKeepsTriggerLPending) {
    deliver(timer, kGuiTimerTime1, 10);
    deliver(timer, kGuiTimerTime2, 10);
    trigger(true, kGuiTimerTriggerL);
    deliver(timer, kGuiTimerMode, -1);
    EXPECT_TRUE(trace.empty());
    deliver(timer, kGuiTimerMode, int{KX_GUITimer::kDelayOff});
    EXPECT_EQ(trace, (Trace{{0, true}}));
}

TEST_F(GuiTimer, ModeChangeStopsTheTimerAndResetsTheOutput) {
    configure(KX_GUITimer::kOscillator, 100, 100);
    trigger(true);
    deliver(timer, kGuiTimerMode, 9);  // out of range: stored, triggers and ticks do nothing
    trigger(false);
    trigger(true);
    loop.advance(1000);
    EXPECT_EQ(trace, (Trace{{0, true}, {0, false}}));
    EXPECT_FALSE(TimerManager::Instance().isRegistered(&timer));
}

TEST_F(GuiTimer, NegativeTimesClampExceptTheTime1PinOfDelayOn) {
    configure(KX_GUITimer::kPulseAfterFall, -50, -7);
    trigger(false);  // t1 and t2 clamped to 0
    loop.advance(1);
    loop.advance(1);
    EXPECT_EQ(trace, (Trace{{1, true}, {2, false}}));

    deliver(timer, kGuiTimerMode, int{KX_GUITimer::kDelayOn});
    trigger(true);
    bool inNegativeGroup = false;
    for (const auto& g : TimerManager::Instance().groups())
        inNegativeGroup |= g.interval() == -50 && !g.clients().empty() && g.clients()[0] == &timer;
    EXPECT_TRUE(inNegativeGroup);
    timer.StopTimer();
}
