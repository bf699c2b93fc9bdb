#include <gtest/gtest.h>

#include <cmath>

#include "FakeAudioHost.h"
#include "FakeGuiHost.h"
#include "logic/PatchMemory.h"

using kxtest::Events;
using kxtest::FakeAudioHost;
using kxtest::FakeGuiHost;

namespace {

template <class M, class H>
struct Made {
    H host;
    M* m;
    explicit Made(M* module) : m(module) { m->setHost(host.unknown()); }
    ~Made() { m->release(); }
};

template <class Dsp>
Made<kx::Guarded<Dsp>, FakeAudioHost> dsp() {
    return Made<kx::Guarded<Dsp>, FakeAudioHost>(new kx::Guarded<Dsp>());
}

// The host echoes every parameter-side write back into the same pin, as it does for a host parameter.
template <class M>
void echoParameterPins(FakeGuiHost& host, M* m, int lastParameterPin) {
    host.onTransmit = [=](int pin, int size, const void* data) {
        if (pin <= lastParameterPin) {
            m->setPin(pin, 0, size, data);
            m->notifyPin(pin, 0);
        }
    };
}

}  // namespace

TEST(PatchMemoryDsp, SendsOnlyChangesExceptText) {
    auto i = dsp<KX_PM_INT_DSP>();
    Events zero, three, threeAgain;
    zero.set(0, 0, 0);
    three.set(6, 0, 3);
    threeAgain.set(2, 0, 3);
    i.m->process(8, zero.list());
    i.m->process(8, three.list());
    i.m->process(8, threeAgain.list());
    ASSERT_EQ(i.host.updates.size(), 1u);
    EXPECT_EQ(i.host.updates[0].pin, 1);
    EXPECT_EQ(i.host.updates[0].timestamp, 6);
    EXPECT_EQ(i.host.updates[0].asInt(), 3);

    auto b = dsp<KX_PM_BLOB_DSP>();
    Events blob, same;
    blob.bytes(0, 0, "0123456789");
    same.bytes(0, 0, "0123456789");
    b.m->process(8, blob.list());
    b.m->process(8, same.list());
    ASSERT_EQ(b.host.updates.size(), 1u);
    EXPECT_EQ(b.host.updates[0].bytes, "0123456789");

    auto t = dsp<KX_PM_TEXT_DSP>();
    Events text, textAgain;
    text.text(0, 0, L"same");
    textAgain.text(0, 0, L"same");
    t.m->process(8, text.list());
    t.m->process(8, textAgain.list());
    EXPECT_EQ(t.host.updates.size(), 2u);
}

TEST(PatchMemoryScalarGUI, PositionEchoIsNotWrittenBackAndNaNAlwaysCopies) {
    Made<kx::Guarded<KX_PM_FLOAT_GUI>, FakeGuiHost> f(new kx::Guarded<KX_PM_FLOAT_GUI>());
    echoParameterPins(f.host, f.m, 5);
    kxtest::deliver(*f.m, 8, 0.25f);  // the patch moves the position
    ASSERT_EQ(f.host.sent.size(), 1u) << "pin 2 written once; its echo does not reach pin 8";
    EXPECT_EQ(f.host.sent[0].pin, 2);

    f.host.sent.clear();
    f.host.onTransmit = nullptr;
    kxtest::deliver(*f.m, 2, NAN);
    kxtest::deliver(*f.m, 2, NAN);
    EXPECT_EQ(f.host.on(8).size(), 2u);

    f.host.sent.clear();
    kxtest::deliver(*f.m, 1, 0.5f);
    kxtest::deliver(*f.m, 7, 0.5f);  // the patch already holds the parameter's value
    EXPECT_EQ(f.host.sent.size(), 1u);
    EXPECT_EQ(f.host.sent[0].pin, 7);
}

TEST(PatchMemoryScalarGUI, MenuSelectionAndGrabTravelOnlyToTheParameter) {
    Made<kx::Guarded<KX_PM_INT_GUI>, FakeGuiHost> i(new kx::Guarded<KX_PM_INT_GUI>());
    kxtest::deliver(*i.m, 4, 3);
    kxtest::deliver(*i.m, 5, true);
    EXPECT_TRUE(i.host.sent.empty());
    kxtest::deliver(*i.m, 10, 2);
    kxtest::deliver(*i.m, 11, false);
    ASSERT_EQ(i.host.sent.size(), 2u);
    EXPECT_EQ(i.host.sent[0].pin, 4);
    EXPECT_EQ(i.host.sent[1].pin, 5);
    EXPECT_FALSE(i.host.sent[1].asBool());
    kxtest::deliverText(*i.m, 3, L"a,b");
    kxtest::deliverText(*i.m, 6, L"Volume");
    EXPECT_EQ(i.host.on(9).back().asText(), L"a,b");
    EXPECT_EQ(i.host.on(0).back().asText(), L"Volume");
}

TEST(PatchMemoryValueGUI, ValueEchoIsNotWrittenBack) {
    Made<kx::Guarded<KX_PM_TEXT_GUI>, FakeGuiHost> t(new kx::Guarded<KX_PM_TEXT_GUI>());
    echoParameterPins(t.host, t.m, 1);
    kxtest::deliverText(*t.m, 3, L"preset");
    ASSERT_EQ(t.host.sent.size(), 1u);
    EXPECT_EQ(t.host.sent[0].pin, 1);
    t.host.onTransmit = nullptr;
    kxtest::deliverText(*t.m, 1, L"loaded");
    EXPECT_EQ(t.host.on(3).back().asText(), L"loaded");

    Made<kx::Guarded<KX_PM_BLOB_GUI>, FakeGuiHost> b(new kx::Guarded<KX_PM_BLOB_GUI>());
    echoParameterPins(b.host, b.m, 1);
    b.m->setPin(3, 0, 3, "xyz");
    b.m->notifyPin(3, 0);
    b.m->notifyPin(3, 0);  // equal blobs are not sent again
    ASSERT_EQ(b.host.sent.size(), 1u);
    EXPECT_EQ(b.host.sent[0].pin, 1);
}

TEST(PatchMemoryListGUI, NewItemListRefreshesMenuThenOutput) {
    Made<kx::Guarded<KX_PM_LIST_GUI>, FakeGuiHost> l(new kx::Guarded<KX_PM_LIST_GUI>());
    kxtest::deliverText(*l.m, 2, L"ignored");
    EXPECT_TRUE(l.host.sent.empty());
    kxtest::deliverText(*l.m, 3, L"one,two");
    ASSERT_EQ(l.host.sent.size(), 2u);
    EXPECT_EQ(l.host.sent[0].pin, 2);
    EXPECT_EQ(l.host.sent[1].pin, 6);
    EXPECT_EQ(l.host.sent[1].asText(), L"one,two");
    kxtest::deliver(*l.m, 5, 1);
    EXPECT_EQ(l.host.on(1).back().asInt(), 1);
}
