// process() of DSP halves as the audio engine calls it, made by the factory and driven through their
// GMPI interfaces with 64-sample blocks.
//
// KX_IntDspGuiBridge's DSP half (Value In passed to Value Out and reported to the GUI half while
// enabled):
//   - idle: no events;
//   - 8 events: eight new values on Value In at offsets 0, 8, ... 56. For each the module's job is two
//     host calls: setPin of Value Out on the audio host and the message to the GUI half.
// Baseline: the least a DSP half behind the same interface must do with the same events: a module written
// here whose process walks the list, keeps each new value, and makes the same two host calls through the
// same host; and, as nothing streams through it, tells the host once per block that it may sleep, as the
// bridge does.
//
// Then every DSP half in the pack, one benchmark per identifier: a block in which every input pin gets a
// new value, with the heap allocations made inside process counted: in the first such block ("allocs
// first block") and per block after it ("allocs/block"). Scalar values must flow without allocating;
// texts and blobs may allocate where a longer value needs more room than the pin had.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <deque>
#include <string>
#include <vector>

#include "AllocationCounter.h"
#include "Descriptions.h"
#include "MpFactory.h"
#include "gmpi/IMpAudioHost.h"
#include "gmpi/IMpLegacyInitialization.h"
#include "gmpi/IMpPlugin.h"

namespace {

constexpr int32_t kBlock = 64;

// Takes what the module sets and sends, and keeps only counts.
class NullAudioHost final : public gmpi::IMpAudioHost, public gmpi::IMpProcessorHost {
public:
    int64_t received = 0;
    int64_t messages = 0;
    int64_t sleeps = 0;

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
    int32_t setPin(int32_t, int32_t, int32_t, const void* data) override {
        benchmark::DoNotOptimize(data);
        ++received;
        return gmpi::MP_OK;
    }
    int32_t setPinStreaming(int32_t, int32_t, int32_t) override { return gmpi::MP_OK; }
    int32_t sleep() override {
        ++sleeps;
        return gmpi::MP_OK;
    }
    int32_t sendMessageToGui(int32_t, int32_t, const void* data) override {
        benchmark::DoNotOptimize(data);
        ++messages;
        return gmpi::MP_OK;
    }
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

// A DSP half made by the factory, given its host and opened, as the audio engine sets one up.
class DspHalf {
public:
    explicit DspHalf(const std::wstring& id) {
        void* out = nullptr;
        Factory()->createInstance2(id.c_str(), gmpi::MP_SUB_TYPE_AUDIO, &out);
        auto* unknown = static_cast<gmpi::IMpUnknown*>(out);
        if (!unknown)
            return;
        void* face = nullptr;
        unknown->queryInterface(gmpi::MP_IID_LEGACY_INITIALIZATION, &face);
        static_cast<gmpi::IMpLegacyInitialization*>(face)->setHost(static_cast<gmpi::IMpAudioHost*>(&host));
        static_cast<gmpi::IMpLegacyInitialization*>(face)->release();
        unknown->queryInterface(gmpi::MP_IID_PLUGIN2, &face);
        unknown->release();
        plugin = static_cast<gmpi::IMpPlugin2*>(face);
    }
    ~DspHalf() {
        if (plugin)
            plugin->release();
    }
    DspHalf(const DspHalf&) = delete;
    DspHalf& operator=(const DspHalf&) = delete;

    NullAudioHost host;
    gmpi::IMpPlugin2* plugin = nullptr;
};

enum : int32_t { ValueIn = 0, ValueOut = 1, Enable = 2 };

void startEnabled(gmpi::IMpPlugin2* plugin) {
    plugin->open();
    std::array<gmpi::MpEvent, 2> start{};
    start[0] = {0, gmpi::EVENT_PIN_SET, Enable, 1, 1, 0, nullptr, &start[1]};
    start[1].eventType = gmpi::EVENT_GRAPH_START;
    plugin->process(kBlock, start.data());
}

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

// The baseline's DSP half: the bridge's job with nothing but the interface's own calls.
class BareBridge final : public gmpi::IMpPlugin2 {
public:
    explicit BareBridge(gmpi::IMpAudioHost* host) : host_(host) {}
    int32_t queryInterface(const gmpi::MpGuid&, void** out) override {
        *out = nullptr;
        return gmpi::MP_NOSUPPORT;
    }
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }
    int32_t open() override { return gmpi::MP_OK; }
    int32_t setBuffer(int32_t, float*) override { return gmpi::MP_FAIL; }
    int32_t receiveMessageFromGui(int32_t, int32_t, const void*) override { return gmpi::MP_FAIL; }
    void process(int32_t, const gmpi::MpEvent* events) override {
        for (const gmpi::MpEvent* e = events; e; e = e->next) {
            if (e->eventType != gmpi::EVENT_PIN_SET || e->parm1 != ValueIn || e->parm2 != 4)
                continue;
            std::memcpy(&in_, &e->parm3, 4);
            if (in_ != out_) {
                out_ = in_;
                host_->setPin(e->timeDelta, ValueOut, 4, &out_);
            }
            host_->sendMessageToGui(0, 4, &in_);
        }
        // Nothing streams through it: the host may let it sleep after this block.
        host_->sleep();
    }

private:
    gmpi::IMpAudioHost* host_;
    int32_t in_ = 0;
    int32_t out_ = 0;
};

// Both sides must have made the same host calls: two per event, and the sleep once per block.
void checkHostCalls(benchmark::State& state, const NullAudioHost& host, int eventsPerBlock) {
    const auto perEvent = static_cast<int64_t>(state.iterations()) * eventsPerBlock;
    if (host.received < perEvent || host.messages < perEvent)
        state.SkipWithError("not every value was passed on and reported");
    else if (host.sleeps < static_cast<int64_t>(state.iterations()))
        state.SkipWithError("the host was not told every block that the module may sleep");
}

void idleBlock(benchmark::State& state) {
    DspHalf bridge(L"KX_IntDspGuiBridge");
    startEnabled(bridge.plugin);
    for (auto _ : state)
        bridge.plugin->process(kBlock, nullptr);
    checkHostCalls(state, bridge.host, 0);
}
BENCHMARK(idleBlock)->Name("BridgeIdleBlock");

void bareIdleBlock(benchmark::State& state) {
    NullAudioHost host;
    BareBridge bare(&host);
    gmpi::IMpPlugin2* plugin = &bare;
    for (auto _ : state) {
        benchmark::DoNotOptimize(plugin);
        plugin->process(kBlock, nullptr);
    }
    checkHostCalls(state, host, 0);
}
BENCHMARK(bareIdleBlock)->Name("BareBridgeIdleBlock");

void eightEvents(benchmark::State& state) {
    DspHalf bridge(L"KX_IntDspGuiBridge");
    startEnabled(bridge.plugin);
    EightEvents block;
    int32_t value = 1;
    for (auto _ : state) {
        block.fill(value);
        bridge.plugin->process(kBlock, block.events.data());
    }
    checkHostCalls(state, bridge.host, 8);
}
BENCHMARK(eightEvents)->Name("BridgeBlockWith8Events");

void bareEightEvents(benchmark::State& state) {
    NullAudioHost host;
    BareBridge bare(&host);
    gmpi::IMpPlugin2* plugin = &bare;
    EightEvents block;
    int32_t value = 1;
    for (auto _ : state) {
        block.fill(value);
        // Through a pointer the optimiser cannot see through, as the engine's calls are.
        benchmark::DoNotOptimize(plugin);
        plugin->process(kBlock, block.events.data());
    }
    checkHostCalls(state, host, 8);
}
BENCHMARK(bareEightEvents)->Name("BareBridgeBlockWith8Events");

// ---- every DSP half: a block of new values, and the allocations it makes

struct Pin {
    int32_t index;
    std::string datatype;
};

struct Described {
    std::string id;
    std::vector<Pin> inputs, audioOutputs;
};

// The DSP halves the descriptions beside the module sources declare, with their pins.
std::vector<Described> dspHalves() {
    std::vector<Described> halves;
    kxbench::forEachDescribedModule([&](const nlohmann::json& m) {
        if (!m.contains("dsp"))
            return;
        Described d{m["id"], {}, {}};
        for (const auto& p : m["dsp"]["pins"]) {
            const Pin pin{p["index"], p["datatype"]};
            if (p["direction"] == "in")
                d.inputs.push_back(pin);
            else if (pin.datatype == "audio")
                d.audioOutputs.push_back(pin);
        }
        halves.push_back(d);
    });
    std::sort(halves.begin(), halves.end(), [](const Described& a, const Described& b) { return a.id < b.id; });
    return halves;
}

// One event per input pin at the block's start, each carrying a value its pin has not had: numbers
// count up, bools alternate, texts and blobs are 40 bytes (longer than a string keeps in place) with a
// count in them. Rewritten in place every block, so making the list allocates nothing.
class NewValues {
public:
    explicit NewValues(const std::vector<Pin>& inputs) {
        for (const Pin& pin : inputs) {
            gmpi::MpEvent e{};
            e.eventType = gmpi::EVENT_PIN_SET;
            e.parm1 = pin.index;
            Kind kind = pin.datatype == "float" ? Float : pin.datatype == "bool" ? Bool : Whole;
            if (pin.datatype == "text" || pin.datatype == "blob") {
                kind = Bytes;
                e.extraData = payloads_.emplace_back(40, 'a').data();
            }
            e.parm2 = kind == Bytes ? 40 : kind == Bool ? 1 : 4;
            events_.push_back(e);
            kinds_.push_back(kind);
        }
        for (size_t i = 0; i + 1 < events_.size(); ++i)
            events_[i].next = &events_[i + 1];
    }
    const gmpi::MpEvent* next(int32_t count) {
        const float fraction = static_cast<float>(count);
        for (size_t i = 0; i < events_.size(); ++i) {
            gmpi::MpEvent& e = events_[i];
            switch (kinds_[i]) {
                case Whole:
                    e.parm3 = count;
                    break;
                case Float:
                    std::memcpy(&e.parm3, &fraction, 4);
                    break;
                case Bool:
                    e.parm3 = count & 1;
                    break;
                case Bytes:
                    std::memcpy(e.extraData, &count, 4);
                    break;
            }
        }
        return events_.empty() ? nullptr : &events_.front();
    }

private:
    enum Kind { Whole, Float, Bool, Bytes };
    std::deque<gmpi::MpEvent> events_;
    std::vector<Kind> kinds_;
    std::deque<std::string> payloads_;
};

void blockOfNewValues(benchmark::State& state, const Described& described) {
    DspHalf half(std::wstring(described.id.begin(), described.id.end()));
    if (!half.plugin) {
        state.SkipWithError("the factory made no DSP half for a described identifier");
        return;
    }
    std::vector<std::vector<float>> buffers;
    for (const Pin& pin : described.audioOutputs)
        half.plugin->setBuffer(pin.index, buffers.emplace_back(kBlock, 0.0f).data());
    half.plugin->open();
    gmpi::MpEvent start{};
    start.eventType = gmpi::EVENT_GRAPH_START;
    half.plugin->process(kBlock, &start);

    NewValues values(described.inputs);
    // The first block of new values may make room that later blocks reuse: counted on its own.
    kxtest::AllocationCounter::allocations = 0;
    kxtest::AllocationCounter::counting = true;
    half.plugin->process(kBlock, values.next(1));
    kxtest::AllocationCounter::counting = false;
    state.counters["allocs first block"] = static_cast<double>(kxtest::AllocationCounter::allocations);
    int32_t count = 2;
    long allocations = 0;
    for (auto _ : state) {
        const gmpi::MpEvent* events = values.next(count++);
        kxtest::AllocationCounter::allocations = 0;
        kxtest::AllocationCounter::counting = true;
        half.plugin->process(kBlock, events);
        kxtest::AllocationCounter::counting = false;
        allocations += kxtest::AllocationCounter::allocations;
    }
    state.counters["allocs/block"] = static_cast<double>(allocations) / static_cast<double>(state.iterations());
    state.counters["inputs"] = static_cast<double>(described.inputs.size());
}

}  // namespace

int main(int argc, char** argv) {
    static const std::vector<Described> halves = dspHalves();
    for (const Described& d : halves)
        // What these report is the allocation count; a short run per half is enough for it.
        benchmark::RegisterBenchmark(("BlockOfNewValues/" + d.id).c_str(), [&d](benchmark::State& state) {
            blockOfNewValues(state, d);
        })->MinTime(0.05);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
