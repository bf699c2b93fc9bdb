#include <gtest/gtest.h>

#include <stdexcept>

#include "FakeAudioHost.h"
#include "MpBase2.h"
#include "gmpi/IMpFactory.h"

using kxtest::Events;
using kxtest::FakeAudioHost;

namespace {

// Doubles its int input to its output after each batch and counts what the base calls.
struct Probe : MpBase2 {
    IntInPin in;
    FloatInPin level;
    IntOutPin out;
    AudioInPin audio;
    int batches = 0;
    int processed = 0;
    int messages = 0;
    bool echoMessage = false;
    bool throwInBatch = false;

    Probe() {
        initializePin(in);
        initializePin(level);
        initializePin(out);
        initializePin(audio);
        setSubProcess(&Probe::subProcess);
    }
    void subProcess(int frames) { processed += frames; }
    void onSetPins() override {
        ++batches;
        if (throwInBatch)
            throw std::runtime_error("batch");
        if (in.isUpdated())
            out = in.getValue() * 2;
    }
    int32_t onGuiMessage(int32_t id, int32_t size, const void* data) override {
        ++messages;
        if (echoMessage) {  // as a host that delivers a reply at once would
            EXPECT_EQ(receiveMessageFromGui(id, size, data), gmpi::MP_OK);
        }
        if (id == 99)
            throw std::runtime_error("message");
        return gmpi::MP_OK;
    }
};

struct Fixture : ::testing::Test {
    FakeAudioHost host;
    kx::Guarded<Probe>* probe = new kx::Guarded<Probe>();
    void SetUp() override { ASSERT_EQ(probe->setHost(host.unknown()), gmpi::MP_OK); }
    void TearDown() override {
        probe->release();
        EXPECT_EQ(host.refs, 0) << "the host reference is dropped with the module";
    }
};

}  // namespace

TEST_F(Fixture, TwoEventsForOnePinAtOneTimeStampMakeOneBatchWithTheSecondValue) {
    Events ev;
    ev.set(5, 0, 3).set(5, 0, 4).set(5, 1, 0.5f);
    probe->process(16, ev.list());
    EXPECT_EQ(probe->batches, 1);
    EXPECT_EQ(probe->in.getValue(), 4);
    EXPECT_FLOAT_EQ(probe->level.getValue(), 0.5f);
    ASSERT_EQ(host.on(2).size(), 1u);
    EXPECT_EQ(host.on(2)[0].asInt(), 8);
    EXPECT_FALSE(probe->in.isUpdated()) << "updated only while its batch is handled";
}

TEST_F(Fixture, OnSetPinsOncePerTimeStampAndOutputsCarryTheEventsTime) {
    Events ev;
    ev.set(0, 0, 1).set(7, 1, 2.0f).set(20, 0, 5).raw(21, gmpi::EVENT_MIDI, 0, "\x90\x40\x7f", 3);
    probe->process(32, ev.list());
    EXPECT_EQ(probe->batches, 3) << "a MIDI-only batch does not count";
    ASSERT_EQ(host.on(2).size(), 2u);
    EXPECT_EQ(host.on(2)[0].timestamp, 0);
    EXPECT_EQ(host.on(2)[1].timestamp, 20);
    EXPECT_EQ(host.on(2)[1].asInt(), 10);
    EXPECT_EQ(probe->processed, 32) << "every sample of the block is processed once";
}

TEST_F(Fixture, MalformedEventsStayInsideTheBlockAndTheirPins) {
    Events ev;
    std::string longInt(64, '\x01');
    ev.set(-4, 0, 1).bytes(3, 0, longInt).set(2, 1, 1.0f).set(999, 42, 7).bytes(999, 0, std::string("\x05", 1));
    probe->process(16, ev.list());
    EXPECT_EQ(probe->processed, 16);
    EXPECT_EQ(probe->in.getValue(), 0x01010105) << "a short value overwrites the leading bytes only";
    EXPECT_EQ(probe->batches, 4);
    // A time stamp is an offset inside the block: what the late events cause goes out at its last sample.
    ASSERT_FALSE(host.on(2).empty());
    EXPECT_EQ(host.on(2).back().timestamp, 15);
}

TEST_F(Fixture, SleepsOnceTheCounterRunsOutAndStaysAwakeWhileAnInputStreams) {
    probe->process(16, static_cast<const gmpi::MpEvent*>(nullptr));
    EXPECT_EQ(host.sleeps, 1) << "nothing streams: the module may sleep at once";
    EXPECT_EQ(probe->processed, 16);

    Events start;
    start.type(0, gmpi::EVENT_PIN_STREAMING_START, 3);
    probe->process(16, start.list());
    probe->process(16, static_cast<const gmpi::MpEvent*>(nullptr));
    EXPECT_EQ(host.sleeps, 1);

    host.sleeps = 0;
    Events stop;
    stop.type(8, gmpi::EVENT_PIN_STREAMING_STOP, 3);
    probe->process(16, stop.list());
    EXPECT_EQ(host.sleeps, 1) << "the stop keeps it awake for one more sample, then it sleeps";
    EXPECT_EQ(probe->batches, 2);
}

TEST_F(Fixture, AHostIsToldOncePerBlockThatTheModuleMaySleep) {
    Events values;
    values.set(3, 0, 1).set(7, 1, 0.5f).set(12, 0, 2);
    probe->process(16, values.list());
    EXPECT_EQ(host.sleeps, 1) << "not once per stretch between events";
    EXPECT_EQ(probe->processed, 16);
    EXPECT_EQ(probe->batches, 3);
}

TEST_F(Fixture, GraphStartSendsInitialOutputs) {
    Events ev;
    ev.graphStart();
    probe->process(8, ev.list());
    ASSERT_EQ(host.updates.size(), 1u);
    EXPECT_EQ(host.updates[0].pin, 2);
    EXPECT_EQ(probe->batches, 0);
}

TEST_F(Fixture, MessageArrivingWhileOneIsHandledIsDroppedAndThrowsStopAtTheBoundary) {
    probe->echoMessage = true;
    int v = 1;
    EXPECT_EQ(probe->receiveMessageFromGui(0, 4, static_cast<const void*>(&v)), gmpi::MP_OK);
    EXPECT_EQ(probe->messages, 1);

    probe->echoMessage = false;
    EXPECT_EQ(probe->receiveMessageFromGui(99, 4, static_cast<const void*>(&v)), gmpi::MP_FAIL);
    EXPECT_EQ(probe->receiveMessageFromGui(0, 4, static_cast<void*>(&v)), gmpi::MP_OK)
        << "a throwing handler leaves the guard open";
    EXPECT_EQ(probe->messages, 3);

    probe->throwInBatch = true;
    Events ev;
    ev.set(0, 0, 1);
    probe->process(8, ev.list());  // must not throw
    probe->throwInBatch = false;
}

TEST(DspBase, UnboundPinsAndMissingHostAreRefused) {
    auto* probe = new kx::Guarded<Probe>();
    EXPECT_EQ(probe->setHost(nullptr), gmpi::MP_NOSUPPORT);
    float buffer[8];
    EXPECT_EQ(probe->setBuffer(3, buffer), gmpi::MP_OK);
    EXPECT_EQ(probe->setBuffer(0, buffer), gmpi::MP_FAIL) << "control pins take no buffer";
    EXPECT_EQ(probe->setBuffer(17, buffer), gmpi::MP_FAIL);
    Events ev;
    ev.set(0, 0, 1);
    probe->process(8, ev.list());  // outputs without a host go nowhere
    void* face = nullptr;
    EXPECT_EQ(probe->queryInterface(gmpi::MP_IID_PLUGIN2, &face), gmpi::MP_OK);
    EXPECT_EQ(face, static_cast<gmpi::IMpPlugin2*>(probe));
    EXPECT_EQ(probe->queryInterface(gmpi::MP_IID_FACTORY, &face), gmpi::MP_NOSUPPORT);
    probe->release();
    EXPECT_EQ(probe->release(), 0);
}
