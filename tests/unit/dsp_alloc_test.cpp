// Proves that int, float and bool values flow through DSP halves without heap allocation on the audio
// thread. Global operator new is replaced for this test binary; it only counts while `counting` is set,
// which happens around process calls here, so every other test is unaffected.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "logic/DspGuiBridges.h"
#include "FakeAudioHost.h"
#include "logic/HostState.h"
#include "logic/PatchMemory.h"

namespace {
bool counting = false;
long allocations = 0;
}  // namespace

void* operator new(std::size_t size) {
    if (counting)
        ++allocations;
    if (void* p = std::malloc(size ? size : 1))
        return p;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return ::operator new(size); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }

namespace {

template <class M>
long allocationsWhileProcessing(const gmpi::MpEvent* events, float* buffer = nullptr, int bufferPin = -1) {
    kxtest::FakeAudioHost host;
    auto* m = new kx::GuardedDsp<M>();
    m->setHost(host.unknown());
    if (buffer)
        m->setBuffer(bufferPin, buffer);
    allocations = 0;
    counting = true;
    for (int block = 0; block < 4; ++block)
        m->process(64, events);
    counting = false;
    m->release();
    return allocations;
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
    EXPECT_EQ(allocationsWhileProcessing<KX_GUISet2Trig>(trigger.list(), buffer, KX_GUISet2Trig::pinSignalIndex), 0);

    // The counter does see allocations: a text value allocates.
    kxtest::Events text;
    text.set(0, 2, true).text(0, 0, L"a text longer than any small-string buffer");
    EXPECT_GT(allocationsWhileProcessing<KX_TextDspGuiBridge>(text.list()), 0);
}
