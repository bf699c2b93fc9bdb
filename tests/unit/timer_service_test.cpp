#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ManualTimerBackend.h"
#include "TimerManager.h"

// The manager is process-wide and keeps groups emptied by their own tick, so every test uses intervals
// of its own.

namespace {

struct Probe : TimerClient {
    std::string name;
    std::vector<std::string>* log;
    std::function<bool()> action;
    int calls = 0;

    Probe(std::string n, std::vector<std::string>& l) : name(std::move(n)), log(&l) {}
    bool OnTimer() override {
        ++calls;
        log->push_back(name);
        return action ? action() : true;
    }
};

const se_sdk_timers::Timer* group(int interval) {
    for (const auto& g : TimerManager::Instance().groups())
        if (g.interval() == interval)
            return &g;
    return nullptr;
}

int groupsWith(int interval) {
    int n = 0;
    for (const auto& g : TimerManager::Instance().groups())
        n += g.interval() == interval ? 1 : 0;
    return n;
}

class TimerService : public ::testing::Test {
protected:
    kx::ManualTimerBackend loop;
    std::vector<std::string> log;
};

}  // namespace

TEST_F(TimerService, GroupsClientsByIntervalInCreationOrder) {
    Probe a("a", log), b("b", log), c("c", log);
    a.StartTimer(1001);
    b.StartTimer(1001);
    b.StartTimer(1001);
    c.StartTimer(1002);
    ASSERT_NE(group(1001), nullptr);
    EXPECT_EQ(group(1001)->clients().size(), 2u);
    EXPECT_EQ(loop.liveTimers(), 2);
    const auto& groups = TimerManager::Instance().groups();
    auto first = std::find_if(groups.begin(), groups.end(), [](const auto& g) { return g.interval() == 1001; });
    ASSERT_NE(first, groups.end());
    ASSERT_NE(std::next(first), groups.end());
    EXPECT_EQ(std::next(first)->interval(), 1002);

    loop.advance(2004);
    EXPECT_EQ(log, (std::vector<std::string>{"a", "b", "c", "a", "b", "c"}));
}

TEST_F(TimerService, NewcomerJoinsTheRunningRhythm) {
    Probe a("a", log), b("b", log);
    a.StartTimer(1010);
    loop.advance(600);
    b.StartTimer(1010);
    loop.advance(410);  // the group's first tick, 410 ms after b arrived
    EXPECT_EQ(log, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(loop.createdTimers(), 1);
}

TEST_F(TimerService, DefaultIntervalIsProcessWide) {
    const int saved = TimerManager::Instance().defaultInterval();
    Probe setter("s", log), other("o", log);
    setter.SetTimerIntervalMs(1020);
    other.StartTimer();
    EXPECT_TRUE(group(1020) && group(1020)->clients() == std::vector<TimerClient*>{&other});
    // A later change does not move a client already registered.
    setter.SetTimerIntervalMs(1021);
    EXPECT_TRUE(group(1020)->clients() == std::vector<TimerClient*>{&other});
    TimerManager::Instance().SetInterval(saved);
}

TEST_F(TimerService, ClientAnsweringFalseLeavesAndItsEmptiedGroupStaysStopped) {
    Probe once("once", log);
    once.action = [] { return false; };
    once.StartTimer(1030);
    loop.advance(3000);
    EXPECT_EQ(once.calls, 1);
    ASSERT_NE(group(1030), nullptr);
    EXPECT_FALSE(group(1030)->isRunning());
    EXPECT_EQ(loop.liveTimers(), 0);

    // The same group is started anew, on a fresh rhythm.
    const auto* kept = group(1030);
    loop.advance(500);
    once.StartTimer(1030);
    EXPECT_EQ(group(1030), kept);
    EXPECT_TRUE(kept->isRunning());
    loop.advance(1029);
    EXPECT_EQ(once.calls, 1);
    loop.advance(1);
    EXPECT_EQ(once.calls, 2);
}

TEST_F(TimerService, ClientStoppedByAnEarlierOneIsNotCalledThatTick) {
    Probe a("a", log), b("b", log), c("c", log);
    a.action = [&] {
        b.StopTimer();
        return true;
    };
    // c stopping a from behind it takes effect only from the next tick on.
    c.action = [&] {
        a.StopTimer();
        return true;
    };
    a.StartTimer(1040);
    b.StartTimer(1040);
    c.StartTimer(1040);
    loop.advance(2080);
    EXPECT_EQ(log, (std::vector<std::string>{"a", "c", "c"}));
}

// A client leaving by its own answer inside a tick run from within another tick of its group (a nested
// run loop) has left for the outer tick too.
TEST_F(TimerService, ClientLeavingInANestedTickIsNotCalledAgainByTheOuterOne) {
    Probe a("a", log), b("b", log), c("c", log);
    bool nested = false;
    a.action = [&] {
        if (!nested) {
            nested = true;
            loop.advance(1042);
        }
        return true;
    };
    b.action = [] { return false; };
    a.StartTimer(1042);
    b.StartTimer(1042);
    c.StartTimer(1042);
    loop.advance(1042);
    EXPECT_EQ(log, (std::vector<std::string>{"a", "a", "b", "c", "c"}));
    a.StopTimer();
    c.StopTimer();
}

TEST_F(TimerService, ClientsAddedDuringATickWaitForTheNext) {
    Probe a("a", log), late("late", log);
    a.action = [&] {
        late.StartTimer(1045);
        return true;
    };
    a.StartTimer(1045);
    loop.advance(1045);
    EXPECT_EQ(log, (std::vector<std::string>{"a"}));
    loop.advance(1045);
    EXPECT_EQ(log, (std::vector<std::string>{"a", "a", "late"}));
}

TEST_F(TimerService, GroupEmptiedByUnregisteringIsDestroyed) {
    Probe a("a", log);
    a.StartTimer(1050);
    a.StopTimer();
    EXPECT_EQ(group(1050), nullptr);
    EXPECT_EQ(loop.liveTimers(), 0);
    a.StopTimer();  // not registered: nothing
    loop.advance(3000);
    EXPECT_EQ(a.calls, 0);
}

TEST_F(TimerService, ClientInTwoGroupsIsCalledByBothAndStopLeavesOnlyTheFirst) {
    Probe a("a", log);
    a.StartTimer(1060);
    a.StartTimer(1070);
    loop.advance(1070);
    EXPECT_EQ(a.calls, 2);
    a.StopTimer();
    EXPECT_EQ(group(1060), nullptr);
    ASSERT_NE(group(1070), nullptr);
    loop.advance(1070);
    EXPECT_EQ(a.calls, 3);
    a.StopTimer();
    EXPECT_FALSE(TimerManager::Instance().isRegistered(&a));
}

TEST_F(TimerService, DestroyedClientLeavesEveryGroup) {
    const auto before = TimerManager::Instance().census();
    {
        Probe never("never", log);  // never started: harmless
    }
    {
        Probe both("both", log);
        both.StartTimer(1080);
        both.StartTimer(1090);
    }
    const auto after = TimerManager::Instance().census();
    EXPECT_EQ(after.registrations, before.registrations);
    EXPECT_EQ(after.groups, before.groups);
    EXPECT_EQ(loop.liveTimers(), 0);
    loop.advance(3000);
    EXPECT_TRUE(log.empty());
}

// The last client leaving its group from inside that group's tick destroys the group while the tick is
// still running: the tick must end without touching it (ASan would catch a use after free).
TEST_F(TimerService, LastClientStoppingInsideItsOwnTickEndsTheGroupSafely) {
    Probe a("a", log), b("b", log);
    a.action = [&] {
        a.StopTimer();
        b.StopTimer();
        // Re-registering under the same interval makes a new group, not a revival of the dying one.
        a.StartTimer(1100);
        return true;
    };
    a.StartTimer(1100);
    b.StartTimer(1100);
    loop.advance(1100);
    EXPECT_EQ(log, (std::vector<std::string>{"a"}));
    EXPECT_EQ(groupsWith(1100), 1);
    loop.advance(1100);
    EXPECT_EQ(log, (std::vector<std::string>{"a", "a"}));
    a.StopTimer();
    EXPECT_EQ(groupsWith(1100), 0);
}

TEST_F(TimerService, ClientDestroyedInsideItsOwnTickLeavesNoTrace) {
    struct SelfDeleting : TimerClient {
        bool OnTimer() override {
            delete this;
            return false;
        }
    };
    (new SelfDeleting)->StartTimer(1110);
    loop.advance(1110);
    EXPECT_EQ(group(1110), nullptr);
    EXPECT_EQ(loop.liveTimers(), 0);

    // Destroying a later client of the same group from inside a tick.
    Probe other("other", log);
    auto* victim = new Probe("victim", log);
    other.action = [&] {
        delete victim;
        victim = nullptr;
        return true;
    };
    other.StartTimer(1120);
    victim->StartTimer(1120);
    loop.advance(1120);
    EXPECT_EQ(log, (std::vector<std::string>{"other"}));
    other.StopTimer();
}

TEST_F(TimerService, RefusedRunLoopTimerIsRetriedByTheNextRegistration) {
    Probe a("a", log), b("b", log);
    loop.refuseCreation = true;
    a.StartTimer(1130);
    ASSERT_NE(group(1130), nullptr);
    EXPECT_FALSE(group(1130)->isRunning());
    loop.refuseCreation = false;
    b.StartTimer(1130);
    EXPECT_TRUE(group(1130)->isRunning());
    loop.advance(1130);
    EXPECT_EQ(log, (std::vector<std::string>{"a", "b"}));
}

TEST_F(TimerService, ZeroIntervalIsKeptAsGiven) {
    Probe a("a", log);
    a.action = [] { return false; };
    a.StartTimer(0);
    ASSERT_NE(group(0), nullptr);
    EXPECT_TRUE(group(0)->isRunning());
    loop.advance(5);
    EXPECT_EQ(a.calls, 1);
}
