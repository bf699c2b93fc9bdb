// The virtual clock over the GUI thread's GLib context, with timeout sources made the way the bundle's
// timer backend makes them.
#include <glib.h>
#include <gtest/gtest.h>

#include <vector>

#include "gui/RunLoop.h"

using kxhost::runloop::VirtualClock;

namespace {

// A timeout source on the thread-default context that records the virtual times it fires at.
struct Timer {
    VirtualClock* clock = nullptr;
    std::vector<int64_t> fired;
    int stopAfter = -1;  // fires this many times, then removes itself
    GSource* source = nullptr;

    Timer(VirtualClock& c, guint periodMs) : clock(&c) {
        source = g_timeout_source_new(periodMs);
        g_source_set_callback(source, &Timer::tick, this, nullptr);
        g_source_attach(source, g_main_context_get_thread_default());
    }
    ~Timer() {
        g_source_destroy(source);
        g_source_unref(source);
    }
    static gboolean tick(gpointer self) {
        auto* t = static_cast<Timer*>(self);
        t->fired.push_back(t->clock->now());
        return t->stopAfter < 0 || static_cast<int>(t->fired.size()) < t->stopAfter ? G_SOURCE_CONTINUE
                                                                                    : G_SOURCE_REMOVE;
    }
};

}  // namespace

TEST(VirtualClock, TimersFireAtTheirDueTimesAndKeepToThemAcrossRealTime) {
    if (!VirtualClock::available())
        GTEST_SKIP() << "no virtual clock on this platform";
    VirtualClock clock;
    Timer fast(clock, 10), slow(clock, 25);
    clock.wait(9);
    EXPECT_TRUE(fast.fired.empty());
    clock.wait(91);
    EXPECT_EQ(fast.fired, (std::vector<int64_t>{10, 20, 30, 40, 50, 60, 70, 80, 90, 100}));
    EXPECT_EQ(slow.fired, (std::vector<int64_t>{25, 50, 75, 100}));

    // Real time passing between waits, with nobody running the loop, does not move virtual time: the next
    // wait fires what falls due in it and nothing that was overdue in real time.
    g_usleep(40 * 1000);
    clock.wait(10);
    EXPECT_EQ(fast.fired.size(), 11u);
    EXPECT_EQ(fast.fired.back(), 110);
    EXPECT_EQ(slow.fired.size(), 4u);
}

TEST(VirtualClock, BetweenWaitsARunningLoopKeepsTheTimersGoing) {
    if (!VirtualClock::available())
        GTEST_SKIP() << "no virtual clock on this platform";
    VirtualClock clock;
    Timer t(clock, 10);
    clock.wait(5);
    EXPECT_TRUE(t.fired.empty());
    // A live window runs the loop: the timer comes due about 5 ms later in real time.
    for (int i = 0; i < 200 && t.fired.empty(); ++i) {
        g_usleep(2 * 1000);
        g_main_context_iteration(g_main_context_get_thread_default(), FALSE);
    }
    EXPECT_EQ(t.fired.size(), 1u);
}

TEST(VirtualClock, TimersMadeOrEndedOnTheWayKeepToVirtualTime) {
    if (!VirtualClock::available())
        GTEST_SKIP() << "no virtual clock on this platform";
    VirtualClock clock;
    Timer once(clock, 15);
    once.stopAfter = 2;
    clock.wait(50);
    EXPECT_EQ(once.fired, (std::vector<int64_t>{15, 30})) << "a timer that removed itself fires no more";

    // A timer made between waits starts from the clock's time, not from zero.
    Timer late(clock, 20);
    clock.wait(45);
    EXPECT_EQ(late.fired, (std::vector<int64_t>{70, 90}));

    // A period of 0 fires once a virtual millisecond, so a wait always ends.
    Timer busy(clock, 0);
    clock.wait(5);
    EXPECT_EQ(busy.fired.size(), 5u);
}
