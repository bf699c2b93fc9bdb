#include <gtest/gtest.h>

#include <vector>

#include "FakeAudioHost.h"
#include "FakeGuiHost.h"
#include "logic/GuiSet2Trig.h"

using kxtest::Events;
using kxtest::FakeAudioHost;
using kxtest::FakeGuiHost;

namespace {

struct Trigger : ::testing::Test {
    FakeAudioHost host;
    kx::Guarded<KX_GUISet2Trig>* m = new kx::Guarded<KX_GUISet2Trig>();
    std::vector<float> out = std::vector<float>(32, -1.0f);
    void SetUp() override {
        m->setHost(host.unknown());
        m->setBuffer(kx::set2trig::dsp::Signal, out.data());
    }
    void TearDown() override { m->release(); }
    // Indexes of the samples at the given level.
    std::vector<int> at(float level) const {
        std::vector<int> r;
        for (int i = 0; i < static_cast<int>(out.size()); ++i)
            if (out[i] == level)
                r.push_back(i);
        return r;
    }
};

}  // namespace

TEST_F(Trigger, PulseOfZeroLengthLastsOneSampleAndStreamsOnlyWhileItRuns) {
    Events ev;
    ev.set(0, 2, 0).set(4, 0, false);  // any update triggers, false included
    m->process(32, ev.list());
    EXPECT_EQ(at(1.0f), std::vector<int>{4});
    EXPECT_EQ(at(0.0f).size(), 31u) << "idle level everywhere else";
    ASSERT_EQ(host.streaming.size(), 2u);
    EXPECT_TRUE(host.streaming[0].on);
    EXPECT_EQ(host.streaming[0].timestamp, 4);
    EXPECT_FALSE(host.streaming[1].on);
    EXPECT_EQ(host.streaming[1].timestamp, 5);
    EXPECT_GE(host.sleeps, 1);
}

TEST_F(Trigger, RetriggerRestartsTheFullLength) {
    Events ev;
    ev.set(0, 2, 5).set(2, 0, true).set(5, 0, true);
    m->process(32, ev.list());
    EXPECT_EQ(at(1.0f), (std::vector<int>{2, 3, 4, 5, 6, 7, 8, 9}));
}

TEST_F(Trigger, InvertedPulseAndIgnoredFirstTrigger) {
    Events ev;
    ev.set(0, 1, true).set(0, 2, 3).set(0, 3, true).set(1, 0, true).set(10, 0, true);
    m->process(32, ev.list());
    EXPECT_EQ(at(0.0f), (std::vector<int>{10, 11, 12})) << "the trigger at 1 is swallowed";
    EXPECT_EQ(at(1.0f).size(), 29u);
    Events again;
    again.set(0, 0, true);
    m->process(32, again.list());
    EXPECT_EQ(at(0.0f), (std::vector<int>{0, 1, 2})) << "only the first trigger is ever swallowed";
}

// Time stamps are offsets inside the block being processed, 0 to its length - 1: a pulse that ends with
// the block stops streaming at the start of the next one.
TEST_F(Trigger, APulseEndingWithTheBlockStopsAtTheStartOfTheNext) {
    Events ev;
    ev.set(0, 2, 8).set(24, 0, true);
    m->process(32, ev.list());
    EXPECT_EQ(at(1.0f), (std::vector<int>{24, 25, 26, 27, 28, 29, 30, 31}));
    ASSERT_EQ(host.streaming.size(), 1u);
    m->process(32, static_cast<const gmpi::MpEvent*>(nullptr));
    ASSERT_EQ(host.streaming.size(), 2u);
    EXPECT_FALSE(host.streaming[1].on);
    EXPECT_EQ(host.streaming[1].timestamp, 0);
    EXPECT_EQ(at(0.0f).size(), 32u);
    EXPECT_GE(host.sleeps, 1);

    // One-sample blocks: every stamp is 0.
    Events pulse;
    pulse.set(0, 2, 2).set(0, 0, true);
    m->process(1, pulse.list());
    for (int block = 0; block < 4; ++block)
        m->process(1, static_cast<const gmpi::MpEvent*>(nullptr));
    ASSERT_EQ(host.streaming.size(), 4u);
    EXPECT_TRUE(host.streaming[2].on);
    EXPECT_EQ(host.streaming[2].timestamp, 0);
    EXPECT_FALSE(host.streaming[3].on);
    EXPECT_EQ(host.streaming[3].timestamp, 0);
}

TEST(Set2TrigGUI, FiveWarmUpNotificationsThenTogglesOncePerChange) {
    FakeGuiHost host;
    auto* m = new kx::Guarded<KX_GUISet2TrigGUI>();
    m->setHost(host.unknown());
    for (int i = 0; i < 5; ++i)
        kxtest::deliver(*m, i % 2 ? 1 : 6, i);
    EXPECT_TRUE(host.sent.empty());
    kxtest::deliverText(*m, 2, L"x");
    kxtest::deliver(*m, 9, 0);  // a blob pin
    kxtest::deliver(*m, 3, true);
    ASSERT_EQ(host.sent.size(), 3u);
    EXPECT_EQ(host.sent[0].pin, 10);
    EXPECT_TRUE(host.sent[0].asBool());
    EXPECT_FALSE(host.sent[1].asBool());
    EXPECT_TRUE(host.sent[2].asBool());
    m->release();
}
