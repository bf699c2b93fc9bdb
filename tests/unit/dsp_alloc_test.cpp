// Proves that int, float and bool values flow through DSP halves without heap allocation on the audio
// thread: allocations are counted only around process calls.
#include <gtest/gtest.h>

#include "AllocationCounter.h"
#include "FakeAudioHost.h"
#include "logic/DspGuiBridges.h"
#include "logic/GuiSet2Trig.h"
#include "logic/PatchMemory.h"

using kxtest::AllocationCounter;

namespace {

template <class M>
long allocationsWhileProcessing(const gmpi::MpEvent* events, float* buffer = nullptr, int bufferPin = -1) {
    kxtest::FakeAudioHost host;
    auto* m = new kx::Guarded<M>();
    m->setHost(host.unknown());
    if (buffer)
        m->setBuffer(bufferPin, buffer);
    AllocationCounter::allocations = 0;
    AllocationCounter::counting = true;
    for (int block = 0; block < 4; ++block)
        m->process(64, events);
    AllocationCounter::counting = false;
    m->release();
    return AllocationCounter::allocations;
}

}  // namespace

TEST(DspAllocation, IntFloatAndBoolValuesFlowWithoutHeapAllocation) {
    kxtest::Events ints, floats, bools, trigger;
    ints.graphStart().set(0, 2, true).set(3, 0, 1).set(3, 0, 2).set(40, 0, 3);
    floats.graphStart().set(0, 2, true).set(3, 0, 1.5f).set(17, 0, -2.0f);
    bools.graphStart().set(0, 2, true).set(3, 0, true).set(9, 0, false);
    trigger.set(0, 2, 10).set(0, 3, true).set(5, 0, true).set(30, 0, true);

    EXPECT_EQ(allocationsWhileProcessing<KX_IntDspGuiBridge>(ints.list()), 0);
    EXPECT_EQ(allocationsWhileProcessing<KX_FloatDspGuiBridge>(floats.list()), 0);
    EXPECT_EQ(allocationsWhileProcessing<KX_BoolDspGuiBridge>(bools.list()), 0);
    EXPECT_EQ(allocationsWhileProcessing<KX_PM_INT_DSP>(ints.list()), 0);
    EXPECT_EQ(allocationsWhileProcessing<KX_PM_LIST_DSP>(ints.list()), 0);
    EXPECT_EQ(allocationsWhileProcessing<KX_PM_FLOAT_DSP>(floats.list()), 0);
    EXPECT_EQ(allocationsWhileProcessing<KX_PM_BOOL_DSP>(bools.list()), 0);
    float buffer[64];
    EXPECT_EQ(allocationsWhileProcessing<KX_GUISet2Trig>(trigger.list(), buffer, kx::set2trig::dsp::Signal), 0);

    // The counter does see allocations: a text value allocates.
    kxtest::Events text;
    text.set(0, 2, true).text(0, 0, L"a text longer than any small-string buffer");
    EXPECT_GT(allocationsWhileProcessing<KX_TextDspGuiBridge>(text.list()), 0);
}
