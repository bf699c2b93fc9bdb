#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "FakeGuiHost.h"
#include "MpFactory.h"
#include "MpGuiBase2.h"

using kxtest::FakeGuiHost;

namespace {

// A module with one pin of every type, bound without indexes, recording its handler calls.
class AllPins : public SeGuiInvisibleBase {
public:
    MpGuiPin<int> i;
    MpGuiPin<float> f;
    MpGuiPin<bool> b;
    StringGuiPin s;
    MpGuiPin<MpBlob> blob;
    MpGuiPin<int> unhandled;
    int calls = 0;
    int lastVoice = -1;
    bool throwInHandler = false;

    AllPins() {
        initializePin(i, &AllPins::onSet);
        initializePin(f, &AllPins::onSet);
        initializePin(b, &AllPins::onSet);
        initializePin(s, &AllPins::onSetVoice);
        initializePin(blob, &AllPins::onSet);
        initializePin(unhandled);
    }
    void onSet() {
        ++calls;
        if (throwInHandler)
            throw std::runtime_error("handler failed");
        i = i + 1;
    }
    void onSetVoice(int voice) {
        ++calls;
        lastVoice = voice;
    }
};

template <class T>
bool setRaw(MpGuiPinBase& pin, const T& v, int size = sizeof(T)) {
    return pin.set(0, size, &v);
}

}  // namespace

TEST(GuiPins, IndexlessBindingFollowsConstructorOrder) {
    AllPins m;
    EXPECT_EQ(m.i.getId(), 0);
    EXPECT_EQ(m.blob.getId(), 4);
    EXPECT_EQ(m.unhandled.getId(), 5);
    EXPECT_EQ(m.getPin(3), &m.s);
    EXPECT_EQ(m.getPin(6), nullptr);
}

TEST(GuiPins, IntAndFloatCompareBitPatternsOnTheWayIn) {
    AllPins m;
    EXPECT_FALSE(setRaw(m.i, 0));
    EXPECT_TRUE(setRaw(m.i, 5));
    EXPECT_FALSE(setRaw(m.i, 5));
    EXPECT_EQ(m.i.value, 5);

    EXPECT_TRUE(setRaw(m.f, -0.0f));  // differs from 0.0 in bits
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(setRaw(m.f, nan));
    EXPECT_FALSE(setRaw(m.f, nan));  // the same bits: unchanged
}

TEST(GuiPins, BoolFourByteFormAlwaysCountsAsAChange) {
    AllPins m;
    const int32_t zero = 0, seven = 7;
    EXPECT_TRUE(setRaw(m.b, zero));
    EXPECT_TRUE(setRaw(m.b, zero));
    EXPECT_TRUE(setRaw(m.b, seven));
    EXPECT_TRUE(m.b.value);
    const unsigned char one = 1, zeroByte = 0;
    EXPECT_FALSE(setRaw(m.b, one));
    EXPECT_TRUE(setRaw(m.b, zeroByte));
    EXPECT_FALSE(m.b.value);
}

TEST(GuiPins, OversizedAndMalformedDataIsBounded) {
    AllPins m;
    const char big[64] = {1, 0, 0, 0, 9, 9, 9, 9};
    EXPECT_TRUE(m.i.set(0, sizeof big, big));
    EXPECT_EQ(m.i.value, 1);
    EXPECT_TRUE(m.f.set(0, 1 << 20, big));  // only four bytes are read
    EXPECT_FALSE(m.i.set(0, -4, big));
    EXPECT_FALSE(m.i.set(0, 4, nullptr));
    EXPECT_FALSE(m.s.set(0, 8, nullptr));
    EXPECT_TRUE(m.s.set(0, 7, L"ab"));  // a trailing partial character is dropped
    EXPECT_EQ(m.s.value, L"a");
    EXPECT_FALSE(m.blob.set(0, -1, big));
    EXPECT_TRUE(m.blob.set(0, 3, big));
    EXPECT_FALSE(m.blob.set(0, 3, big));
    EXPECT_EQ(m.blob.value.getSize(), 3);
}

TEST(GuiPins, AssignmentTransmitsOnlyRealChanges) {
    AllPins m;
    FakeGuiHost host;
    ASSERT_EQ(m.setHost(host.unknown()), 0);
    m.i = 0;
    EXPECT_TRUE(host.sent.empty());
    m.i = 3;
    m.i = 3;
    ASSERT_EQ(host.sent.size(), 1u);
    EXPECT_EQ(host.sent[0].pin, 0);
    EXPECT_EQ(host.sent[0].voice, 0);
    EXPECT_EQ(host.sent[0].asInt(), 3);

    m.f = -0.0f;  // IEEE: equal to 0.0, nothing sent
    EXPECT_EQ(host.on(1).size(), 0u);
    m.f = std::numeric_limits<float>::quiet_NaN();
    m.f = std::numeric_limits<float>::quiet_NaN();  // a NaN never equals itself: sent twice
    EXPECT_EQ(host.on(1).size(), 2u);

    m.s = std::string("h\xC3\xA9");
    ASSERT_EQ(host.on(3).size(), 1u);
    EXPECT_EQ(host.on(3)[0].asText(), std::wstring(L"h\u00E9"));
    EXPECT_EQ(static_cast<std::string>(m.s), "h\xC3\xA9");
    EXPECT_THROW(m.s = std::string("\xFF"), std::range_error);
    EXPECT_EQ(m.s.value, std::wstring(L"h\u00E9"));  // left as it was

    m.blob = MpBlob(2, "xy");
    EXPECT_EQ(host.on(4).size(), 1u);
    EXPECT_EQ(host.on(4)[0].bytes.size(), 2u);
}

TEST(GuiPins, HandlersRunOnNotifyOnlyAndUnboundIndexesFail) {
    AllPins m;
    FakeGuiHost host;
    m.setHost(host.unknown());
    const int v = 9;
    EXPECT_EQ(m.setPin(0, 0, 4, &v), 0);
    EXPECT_EQ(m.calls, 0);
    EXPECT_EQ(m.notifyPin(0, 0), 0);
    EXPECT_EQ(m.calls, 1);
    EXPECT_EQ(m.i.value, 10);  // the handler's own write
    EXPECT_EQ(m.notifyPin(3, 7), 0);
    EXPECT_EQ(m.lastVoice, 7);
    EXPECT_EQ(m.notifyPin(5, 0), 0);  // bound without handler
    EXPECT_EQ(m.setPin(42, 0, 4, &v), -1);
    EXPECT_EQ(m.notifyPin(-1, 0), -1);
}

TEST(GuiPins, ValuesFromTheHostFollowThePinsOwnRulesWhateverTheirPath) {
    // The host's setPin stores four-byte values without asking the pin; it must decide as the pin would.
    AllPins viaHost, viaPin;
    const char bytes[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    const float nan = std::numeric_limits<float>::quiet_NaN();
    struct Case {
        int size;
        const void* data;
    } cases[] = {{4, bytes},  {4, bytes},   {2, bytes + 4}, {8, bytes + 1}, {0, nullptr},
                 {-4, bytes}, {4, nullptr}, {1, bytes + 7}, {4, &nan},      {4, &nan}};
    for (int index : {0, 1, 2}) {
        for (const Case& c : cases) {
            MpGuiPinBase& host = *viaHost.getPin(index);
            MpGuiPinBase& pin = *viaPin.getPin(index);
            EXPECT_EQ(host.store(0, c.size, c.data), pin.set(0, c.size, c.data)) << index << " size " << c.size;
            EXPECT_EQ(viaHost.setPin(index, 0, c.size, c.data), gmpi::MP_OK);
            ASSERT_EQ(host.rawSize(), pin.rawSize());
            EXPECT_EQ(std::memcmp(host.rawData(), pin.rawData(), static_cast<size_t>(pin.rawSize())), 0);
        }
    }
}

TEST(GuiPins, SparseIndexesAreFoundAndGapsAreNot) {
    struct Sparse : SeGuiInvisibleBase {
        MpGuiPin<int> a, b, c;
        Sparse() {
            initializePin(4, c);
            initializePin(1, a);
            initializePin(3, b);
        }
    } m;
    EXPECT_EQ(m.getPin(1), &m.a);
    EXPECT_EQ(m.getPin(3), &m.b);
    EXPECT_EQ(m.getPin(4), &m.c);
    for (int gap : {-1, 0, 2, 5})
        EXPECT_EQ(m.getPin(gap), nullptr) << gap;
    EXPECT_EQ(m.nextPinIndex(), 5);
}

TEST(GuiPins, SecondBindingOfAnIndexNeverReceives) {
    struct Twice : SeGuiInvisibleBase {
        MpGuiPin<int> first, second;
        Twice() {
            initializePin(0, first);
            initializePin(0, second);
        }
    } m;
    EXPECT_EQ(m.second.getId(), 0);
    const int v = 4;
    m.setPin(0, 0, 4, &v);
    EXPECT_EQ(m.first.value, 4);
    EXPECT_EQ(m.second.value, 0);
}

TEST(GuiBase, QueryInterfaceAndReferenceCount) {
    auto* m = new AllPins();
    void* out = nullptr;
    EXPECT_EQ(m->queryInterface(gmpi::MP_IID_GUI_PLUGIN2, &out), 0);
    EXPECT_EQ(m->queryInterface(gmpi::MP_IID_GUI_PLUGIN_ALT, &out), 0);
    EXPECT_EQ(m->queryInterface(gmpi::MP_IID_UNKNOWN_ALT, &out), 0);
    EXPECT_EQ(m->queryInterface(gmpi::MP_IID_UI_HOST2, &out), -2);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(m->release(), 3);
    EXPECT_EQ(m->release(), 2);
    EXPECT_EQ(m->release(), 1);
    EXPECT_EQ(m->release(), 0);
}

TEST(GuiBase, NoHostMeansNoTransmitAndNoCrash) {
    AllPins m;
    struct NoUi : gmpi::IMpUnknown {
        int32_t queryInterface(const gmpi::MpGuid&, void** out) override {
            *out = nullptr;
            return -2;
        }
        int32_t addRef() override { return 1; }
        int32_t release() override { return 1; }
    } bare;
    EXPECT_EQ(m.setHost(&bare), -2);
    EXPECT_EQ(m.setHost(nullptr), -2);
    m.i = 5;  // nowhere to go; still stored
    EXPECT_EQ(m.i.value, 5);
}

TEST(GuiBase, ExceptionsStopAtTheBoundary) {
    gmpi::IMpUnknown* object = gmpi::Register<AllPins>::create();
    auto* face = static_cast<gmpi::IMpUserInterface2B*>(object);
    auto* module = dynamic_cast<AllPins*>(face);
    ASSERT_NE(module, nullptr);
    FakeGuiHost host;
    face->setHost(host.unknown());
    module->throwInHandler = true;
    const int v = 1;
    EXPECT_EQ(face->setPin(0, 0, 4, &v), 0);
    EXPECT_EQ(face->notifyPin(0, 0), -1);
    EXPECT_EQ(module->i.value, 1);  // stored by setPin, untouched by the failed handler
    face->release();
}
