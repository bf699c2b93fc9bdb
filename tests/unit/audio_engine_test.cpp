#include <gtest/gtest.h>

#include <cstring>

#include "MpFactory.h"
#include "audio/AudioEngine.h"

using kxhost::AudioEngine;
using kxhost::DspPinKind;
using kxhost::DspPinSpec;

namespace {

// Creates a DSP half through the factory, handing it the engine's host object, and attaches it.
int addModule(AudioEngine& engine, const wchar_t* id, std::vector<DspPinSpec> pins) {
    const int slot = engine.add(std::move(pins));
    gmpi::IMpUnknown* object = nullptr;
    EXPECT_EQ(Factory()->createInstance(id, 0, engine.hostObject(slot), reinterpret_cast<void**>(&object)), 0);
    EXPECT_TRUE(engine.attach(slot, object));
    object->release();  // the engine holds its own reference
    return slot;
}

std::vector<DspPinSpec> valuePins(int inputs, int outputs) {
    std::vector<DspPinSpec> pins;
    for (int i = 0; i < inputs + outputs; ++i)
        pins.push_back({i, DspPinKind::Value, i >= inputs});
    return pins;
}

template <class T>
void queue(AudioEngine& engine, int slot, int pin, T value) {
    engine.queueValue(slot, pin, &value, sizeof value);
}

int asInt(const std::string& bytes) {
    int v = 0;
    std::memcpy(&v, bytes.data(), std::min<size_t>(bytes.size(), 4));
    return v;
}

}  // namespace

TEST(AudioEngine, SetToTriggerPulseIsCapturedAtTheNextBlockStart) {
    AudioEngine engine(48000.0f, 32);
    std::vector<DspPinSpec> pins = valuePins(4, 0);
    pins.push_back({4, DspPinKind::Audio, true});
    const int trig = addModule(engine, L"KX_GUISet2Trig", pins);
    engine.capture(trig, 4);
    queue(engine, trig, 2, 10);
    engine.run(40);  // a full block and a short one
    EXPECT_TRUE(engine.asleep(trig));

    queue(engine, trig, 0, true);
    engine.run(96);
    const auto& signal = engine.captured(trig, 4);
    ASSERT_EQ(signal.size(), 136u);
    for (size_t i = 0; i < signal.size(); ++i)
        EXPECT_EQ(signal[i], i >= 40 && i < 50 ? 1.0f : 0.0f) << "sample " << i;
    EXPECT_TRUE(engine.asleep(trig)) << "back to sleep once the pulse and its tail are over";
}

TEST(AudioEngine, ValuesKeepTheirSampleAcrossWiresAndGuiMessagesArriveBetweenBlocks) {
    AudioEngine engine(44100.0f, 16);
    // A bridge's output feeds a patch-memory module processed after it in the same block.
    const int bridge =
        addModule(engine, L"KX_IntDspGuiBridge",
                  {{0, DspPinKind::Value, false}, {1, DspPinKind::Value, true}, {2, DspPinKind::Value, false}});
    const int memory = addModule(engine, L"KX_PM_INT_NAC", valuePins(1, 1));
    engine.connect(bridge, 1, memory, 0);
    queue(engine, bridge, 2, true);
    queue(engine, bridge, 0, 5);
    engine.run(16);

    auto values = engine.takeValues();
    // Each module's graph start sends its initial 0, then the 5 passes on within the same sample.
    ASSERT_EQ(values.size(), 4u);
    EXPECT_EQ(values[1].slot, bridge);
    EXPECT_EQ(asInt(values[1].bytes), 5);
    EXPECT_EQ(values[3].slot, memory);
    EXPECT_EQ(values[3].time, 0);
    EXPECT_EQ(asInt(values[3].bytes), 5);
    auto messages = engine.takeMessages();
    ASSERT_EQ(messages.size(), 1u) << "the bridge reports its input to the GUI half";
    EXPECT_EQ(asInt(messages[0].bytes), 5);

    const int fromGui = 7;
    engine.queueMessage(bridge, 0, &fromGui, 4);
    engine.run(40);
    values = engine.takeValues();
    ASSERT_EQ(values.size(), 2u);
    EXPECT_EQ(values[0].time, 16) << "a GUI message lands at the start of the next block";
    EXPECT_EQ(asInt(engine.lastValue(memory, 1)), 7);
    EXPECT_TRUE(engine.asleep(memory));
}

TEST(AudioEngine, SampleRateReachesTheGuiSideWhenTheModuleOpens) {
    AudioEngine engine(96000.0f, 8);
    addModule(engine, L"KX_GUISampleRate", {});
    engine.start();
    const auto messages = engine.takeMessages();
    ASSERT_EQ(messages.size(), 1u);
    float rate = 0;
    std::memcpy(&rate, messages[0].bytes.data(), 4);
    EXPECT_EQ(rate, 96000.0f);
}

TEST(AudioEngine, GraphStartSendsInitialOutputsAfterTheDefaults) {
    AudioEngine engine(44100.0f, 8);
    const int memory = addModule(engine, L"KX_PM_FLOAT_NAC", valuePins(1, 1));
    queue(engine, memory, 0, 0.0f);
    engine.run(8);
    const auto values = engine.takeValues();
    ASSERT_EQ(values.size(), 1u) << "the graph start's first update; the equal default sends nothing";
    EXPECT_EQ(values[0].pin, 1);
    EXPECT_EQ(values[0].bytes.size(), 4u);
}

TEST(AudioEngine, PlacedValuesArriveAtTheirSampleInWhicheverBlockHoldsIt) {
    AudioEngine engine(48000.0f, 16);
    const int bridge =
        addModule(engine, L"KX_IntDspGuiBridge",
                  {{0, DspPinKind::Value, false}, {1, DspPinKind::Value, true}, {2, DspPinKind::Value, false}});
    queue(engine, bridge, 2, true);
    engine.run(16);
    engine.takeValues();
    // Queued out of order, one of them three blocks ahead: each reaches the output at its own sample.
    const int values[] = {30, 4, 50};
    const int64_t offsets[] = {30, 4, 50};
    for (int i = 0; i < 3; ++i)
        engine.queueValue(bridge, 0, &values[i], 4, offsets[i]);
    engine.run(32);
    auto sent = engine.takeValues();
    ASSERT_EQ(sent.size(), 2u) << "the value at 50 waits for a later block";
    EXPECT_EQ(sent[0].time, 16 + 4);
    EXPECT_EQ(sent[1].time, 16 + 30);
    EXPECT_EQ(asInt(sent[1].bytes), 30);
    engine.run(32);
    sent = engine.takeValues();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].time, 16 + 50);
}

TEST(AudioEngine, ADetachedSlotIsSilentAndAModuleAttachedLaterIsOpenedAndStarted) {
    AudioEngine engine(48000.0f, 16);
    std::vector<DspPinSpec> pins = valuePins(4, 0);
    pins.push_back({4, DspPinKind::Audio, true});
    const int trig = addModule(engine, L"KX_GUISet2Trig", pins);
    engine.capture(trig, 4);
    queue(engine, trig, 1, false);
    queue(engine, trig, 2, 100);
    engine.run(16);
    queue(engine, trig, 0, true);
    engine.run(8);  // the pulse has begun
    engine.detach(trig);
    queue(engine, trig, 0, true);  // nobody there to take it
    engine.run(16);
    const auto& signal = engine.captured(trig, 4);
    ASSERT_EQ(signal.size(), 40u);
    EXPECT_EQ(signal[20], 1.0f);
    EXPECT_EQ(signal[30], 0.0f) << "a detached module's signal falls silent";

    // A fresh module in the same slot: opened at once, its first block carries the graph start.
    gmpi::IMpUnknown* object = nullptr;
    ASSERT_EQ(
        Factory()->createInstance(L"KX_GUISet2Trig", 0, engine.hostObject(trig), reinterpret_cast<void**>(&object)), 0);
    ASSERT_TRUE(engine.attach(trig, object));
    object->release();
    queue(engine, trig, 1, false);
    queue(engine, trig, 2, 4);
    queue(engine, trig, 0, true);
    engine.run(16);
    EXPECT_EQ(signal[40], 1.0f);
    EXPECT_EQ(signal[44], 0.0f);
}
