// process() of a DSP half as the audio engine calls it: KX_IntDspGuiBridge's DSP half (Value In passed
// to Value Out and reported to the GUI half while enabled), made by the factory and driven through its
// GMPI interfaces, with a 64-sample block:
//   - idle: no events;
//   - 8 events: eight new values on Value In at offsets 0, 8, ... 56, each passed on to the host.
// Baseline: the least a DSP half must do with those eight events, written directly: walk the list,
// read each event's inline value, and make one virtual call to a host per value.
#include <benchmark/benchmark.h>

#include <array>
#include <cstring>

#include "MpFactory.h"
#include "gmpi/IMpAudioHost.h"
#include "gmpi/IMpLegacyInitialization.h"
#include "gmpi/IMpPlugin.h"

namespace {

constexpr int32_t kBlock = 64;

// Takes what the module sets and sends, and keeps only a count.
class NullAudioHost final : public gmpi::IMpAudioHost, public gmpi::IMpProcessorHost {
public:
    int64_t received = 0;

    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        *out = nullptr;
        if (iid == gmpi::MP_IID_HOST || gmpi::isUnknownIid(iid))
            *out = static_cast<gmpi::IMpAudioHost*>(this);
        else if (iid == gmpi::MP_IID_PROCESSOR_HOST)
            *out = static_cast<gmpi::IMpProcessorHost*>(this);
        else
            return gmpi::MP_NOSUPPORT;
        return gmpi::MP_OK;
    }
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }
    int32_t setPin(int32_t, int32_t, int32_t, const void*) override {
        ++received;
        return gmpi::MP_OK;
    }
    int32_t setPinStreaming(int32_t, int32_t, int32_t) override { return gmpi::MP_OK; }
    int32_t sleep() override { return gmpi::MP_OK; }
    int32_t sendMessageToGui(int32_t, int32_t, const void*) override { return gmpi::MP_OK; }
    int32_t resetSleepCounter(int32_t* count) override {
        *count = kBlock;
        return gmpi::MP_OK;
    }
    int32_t getSampleRate(float& rate) override {
        rate = 48000.0f;
        return gmpi::MP_OK;
    }
    int32_t getBlockSize(int32_t& size) override {
        size = kBlock;
        return gmpi::MP_OK;
    }
    int32_t getBlockStart(int32_t& clock) override {
        clock = 0;
        return gmpi::MP_OK;
    }
};

enum : int32_t { ValueIn = 0, ValueOut = 1, Enable = 2 };

class Bridge {
public:
    Bridge() {
        void* out = nullptr;
        Factory()->createInstance2(L"KX_IntDspGuiBridge", gmpi::MP_SUB_TYPE_AUDIO, &out);
        auto* unknown = static_cast<gmpi::IMpUnknown*>(out);
        void* face = nullptr;
        unknown->queryInterface(gmpi::MP_IID_LEGACY_INITIALIZATION, &face);
        static_cast<gmpi::IMpLegacyInitialization*>(face)->setHost(static_cast<gmpi::IMpAudioHost*>(&host));
        static_cast<gmpi::IMpLegacyInitialization*>(face)->release();
        unknown->queryInterface(gmpi::MP_IID_PLUGIN2, &face);
        unknown->release();
        plugin = static_cast<gmpi::IMpPlugin2*>(face);
        plugin->open();
        std::array<gmpi::MpEvent, 2> start{};
        start[0] = {0, gmpi::EVENT_PIN_SET, Enable, 1, 1, 0, nullptr, &start[1]};
        start[1].eventType = gmpi::EVENT_GRAPH_START;
        plugin->process(kBlock, start.data());
    }
    ~Bridge() { plugin->release(); }

    NullAudioHost host;
    gmpi::IMpPlugin2* plugin = nullptr;
};

// Eight pin events, each with a value the pin has not had, linked in time order.
struct EightEvents {
    std::array<gmpi::MpEvent, 8> events{};
    void fill(int32_t& value) {
        for (size_t i = 0; i < events.size(); ++i) {
            events[i] = {static_cast<int32_t>(i) * 8,
                         gmpi::EVENT_PIN_SET,
                         ValueIn,
                         4,
                         value++,
                         0,
                         nullptr,
                         i + 1 < events.size() ? &events[i + 1] : nullptr};
        }
    }
};

void idleBlock(benchmark::State& state) {
    Bridge bridge;
    for (auto _ : state)
        bridge.plugin->process(kBlock, nullptr);
}
BENCHMARK(idleBlock)->Name("BridgeIdleBlock");

void eightEvents(benchmark::State& state) {
    Bridge bridge;
    EightEvents block;
    int32_t value = 1;
    for (auto _ : state) {
        block.fill(value);
        bridge.plugin->process(kBlock, block.events.data());
    }
    if (bridge.host.received < static_cast<int64_t>(state.iterations()) * 8)
        state.SkipWithError("the bridge did not pass every value on");
}
BENCHMARK(eightEvents)->Name("BridgeBlockWith8Events");

// ---- baseline

class Sink {
public:
    virtual ~Sink() = default;
    virtual void set(int32_t timestamp, int32_t value) = 0;
};

class CountingSink final : public Sink {
public:
    int64_t received = 0;
    void set(int32_t, int32_t) override { ++received; }
};

void baselineEightEvents(benchmark::State& state) {
    CountingSink counting;
    Sink* sink = &counting;
    EightEvents block;
    int32_t value = 1;
    int32_t current = 0;
    for (auto _ : state) {
        block.fill(value);
        benchmark::DoNotOptimize(sink);
        for (const gmpi::MpEvent* e = block.events.data(); e; e = e->next) {
            if (e->eventType != gmpi::EVENT_PIN_SET || e->parm1 != ValueIn || e->parm2 != 4)
                continue;
            std::memcpy(&current, &e->parm3, 4);
            sink->set(e->timeDelta, current);
        }
    }
    if (counting.received != static_cast<int64_t>(state.iterations()) * 8)
        state.SkipWithError("values lost");
}
BENCHMARK(baselineEightEvents)->Name("DirectEventWalk8");

}  // namespace

BENCHMARK_MAIN();
