#include <gtest/gtest.h>

#include "FakeAudioHost.h"
#include "FakeGuiHost.h"
#include "logic/DspGuiBridges.h"

using kxtest::Events;
using kxtest::FakeAudioHost;
using kxtest::FakeGuiHost;

namespace {

template <class Module, class Host>
struct Made {
    Host host;
    kx::Guarded<Module>* dsp = nullptr;
    Module* operator->() { return dsp; }
};

template <class T>
struct DspSide {
    FakeAudioHost host;
    kx::Guarded<KX_DspGuiBridge<T>>* m = new kx::Guarded<KX_DspGuiBridge<T>>();
    DspSide() { m->setHost(host.unknown()); }
    ~DspSide() { m->release(); }
};

template <class T>
struct GuiSide {
    FakeGuiHost host;
    kx::Guarded<KX_DspGuiBridgeGUI<T>>* m = new kx::Guarded<KX_DspGuiBridgeGUI<T>>();
    GuiSide() { m->setHost(host.unknown()); }
    ~GuiSide() { m->release(); }
};

}  // namespace

TEST(DspGuiBridge, DisabledInputReachesNeitherOutputNorGuiButGuiValuesStillPass) {
    DspSide<int> d;
    Events ev;
    ev.set(0, 2, false).set(0, 0, 3);
    d.m->process(16, ev.list());
    EXPECT_TRUE(d.host.updates.empty());
    EXPECT_TRUE(d.host.messages.empty());

    const int fromGui = 9;
    EXPECT_EQ(d.m->receiveMessageFromGui(0, 4, static_cast<const void*>(&fromGui)), gmpi::MP_OK);
    ASSERT_EQ(d.host.on(1).size(), 1u);
    EXPECT_EQ(d.host.on(1)[0].asInt(), 9);
}

TEST(DspGuiBridge, RepeatedInputIsPassedOnOnceButReportedEveryTime) {
    DspSide<float> d;
    Events first, second;
    first.set(0, 2, true).set(0, 0, 3.0f);
    second.set(4, 0, 3.0f);
    d.m->process(16, first.list());
    d.m->process(16, second.list());
    ASSERT_EQ(d.host.on(1).size(), 1u);
    EXPECT_FLOAT_EQ(d.host.on(1)[0].asFloat(), 3.0f);
    ASSERT_EQ(d.host.messages.size(), 2u);
    EXPECT_FLOAT_EQ(d.host.messages[1].asFloat(), 3.0f);
}

TEST(DspGuiBridge, BoolCrossesAsFourBytesAndMalformedMessagesAreIgnored) {
    DspSide<bool> d;
    Events ev;
    ev.set(0, 2, true).set(0, 0, true);
    d.m->process(8, ev.list());
    ASSERT_EQ(d.host.messages.size(), 1u);
    EXPECT_EQ(d.host.messages[0].bytes.size(), 4u);
    EXPECT_EQ(d.host.messages[0].asInt(), 1);

    const int64_t tooLong = 0;
    EXPECT_EQ(d.m->receiveMessageFromGui(0, 8, static_cast<const void*>(&tooLong)), gmpi::MP_FAIL);
    EXPECT_EQ(d.m->receiveMessageFromGui(0, 4, static_cast<const void*>(nullptr)), gmpi::MP_FAIL);
    EXPECT_EQ(d.host.on(1).size(), 1u) << "only the pass-through update";

    DspSide<int> i;
    const char shortInt[2] = {1, 2};
    EXPECT_EQ(i.m->receiveMessageFromGui(0, 2, static_cast<const void*>(shortInt)), gmpi::MP_FAIL);
    EXPECT_TRUE(i.host.updates.empty());
}

TEST(DspGuiBridge, GuiValueEchoedByTheHostIsNotSentBack) {
    GuiSide<int> g;
    // The host feeds a transmitted value back into the pin, as it does for a wired output.
    g.host.onTransmit = [&](int pin, int size, const void* data) {
        g.m->setPin(pin, 0, size, data);
        g.m->notifyPin(pin, 0);
    };
    const int fromDsp = 12;
    EXPECT_EQ(g.m->receiveMessageFromAudio(0, 4, &fromDsp), gmpi::MP_OK);
    ASSERT_EQ(g.host.sent.size(), 1u);
    EXPECT_EQ(g.host.sent[0].asInt(), 12);
    EXPECT_TRUE(g.host.messages.empty());

    g.host.onTransmit = nullptr;
    kxtest::deliver(*g.m, 0, 13);
    ASSERT_EQ(g.host.messages.size(), 1u);
    EXPECT_EQ(g.host.messages[0].asInt(), 13);
    EXPECT_EQ(g.m->receiveMessageFromAudio(0, 3, &fromDsp), gmpi::MP_FAIL);
    EXPECT_EQ(g.host.sent.size(), 1u);
}

TEST(DspGuiBridge, TextCrossesBothWays) {
    GuiSide<std::wstring> g;
    DspSide<std::wstring> d;
    kxtest::deliverText(*g.m, 0, L"h\u00e9llo");
    ASSERT_EQ(g.host.messages.size(), 1u);
    const auto& message = g.host.messages[0].bytes;
    EXPECT_EQ(message.size(), 20u);
    d.m->receiveMessageFromGui(0, static_cast<int32_t>(message.size()), static_cast<const void*>(message.data()));
    ASSERT_EQ(d.host.on(1).size(), 1u);
    EXPECT_EQ(d.host.on(1)[0].asText(), L"h\u00e9llo");

    Events ev;
    ev.set(3, 2, true).text(3, 0, L"a longer text");
    d.m->process(8, ev.list());
    ASSERT_EQ(d.host.messages.size(), 1u);
    const auto& back = d.host.messages[0].bytes;
    g.m->receiveMessageFromAudio(0, static_cast<int32_t>(back.size()), back.data());
    EXPECT_EQ(g.host.sent.back().asText(), L"a longer text");
}

TEST(DspGuiBridge, BlobsCrossAsTheirOwnBytesAndMalformedOnesAreRefused) {
    GuiSide<MpBlob> g;
    DspSide<MpBlob> d;
    const MpBlob first(3, "abc");
    g.m->setPin(0, 0, first.getSize(), first.getData());
    g.m->notifyPin(0, 0);
    g.m->setPin(0, 0, 5, "vwxyz");  // the GUI value changes before the audio side takes the first message
    g.m->notifyPin(0, 0);
    ASSERT_EQ(g.host.messages.size(), 2u);
    for (const auto& m : g.host.messages)
        d.m->receiveMessageFromGui(0, static_cast<int32_t>(m.bytes.size()), static_cast<const void*>(m.bytes.data()));
    ASSERT_EQ(d.host.on(1).size(), 2u);
    EXPECT_EQ(d.host.on(1)[0].bytes, "abc");
    EXPECT_EQ(d.host.on(1)[1].bytes, "vwxyz");

    Events ev;
    ev.set(1, 2, true).bytes(1, 0, std::string("0123456789"));
    d.m->process(8, ev.list());
    ASSERT_EQ(d.host.messages.size(), 1u);
    const auto& back = d.host.messages[0].bytes;
    g.m->receiveMessageFromAudio(0, static_cast<int32_t>(back.size()), back.data());
    EXPECT_EQ(std::string(g.host.sent.back().bytes.begin(), g.host.sent.back().bytes.end()), "0123456789");

    EXPECT_EQ(g.m->receiveMessageFromAudio(0, -1, back.data()), gmpi::MP_FAIL);
    EXPECT_EQ(d.m->receiveMessageFromGui(0, 16, static_cast<const void*>(nullptr)), gmpi::MP_FAIL);
}
