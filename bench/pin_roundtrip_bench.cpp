// A GUI pin round trip as a host drives it: setPin and notifyPin on a module, its handler, the output
// pin's pinTransmit back to the host; through one KX_CheckValveInt (mode 0: In flows to Out) and along a
// chain of 100 of them, each host forwarding the value into the next module's In. Modules are made by
// the factory and driven only through their GMPI interfaces, as a host does.
//
// Baseline: the same chains written directly in the benchmark: each stage is an object with one
// virtual call that stores the value, compares it with the previous one and calls the next stage.
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "MpFactory.h"
#include "gmpi/IMpUserInterface2.h"
#include "gmpi/IMpUserInterfaceHost2.h"

namespace {

enum : int32_t { Mode = 0, In = 1, Out = 2 };

// Forwards what its module transmits into the next module's In, or counts it at the end of the chain.
class ChainHost final : public gmpi::IMpUserInterfaceHost2 {
public:
    gmpi::IMpUserInterface2B* next = nullptr;
    int64_t arrived = 0;

    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        *out = nullptr;
        if (!(iid == gmpi::MP_IID_UI_HOST2) && !gmpi::isUnknownIid(iid))
            return gmpi::MP_NOSUPPORT;
        *out = this;
        return gmpi::MP_OK;
    }
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }
    int32_t pinTransmit(int32_t pinId, int32_t size, const void* data, int32_t) override {
        if (pinId != Out)
            return gmpi::MP_OK;
        if (!next) {
            ++arrived;
            return gmpi::MP_OK;
        }
        next->setPin(In, 0, size, data);
        return next->notifyPin(In, 0);
    }
    int32_t getHandle(int32_t& h) override {
        h = 0;
        return gmpi::MP_OK;
    }
    int32_t getPinCount(int32_t& c) override {
        c = 3;
        return gmpi::MP_OK;
    }
    int32_t sendMessageToAudio(int32_t, int32_t, const void*) override { return gmpi::MP_FAIL; }
    int32_t resolveResource(const char*, const char*, gmpi::IMpUnknown*) override { return gmpi::MP_FAIL; }
    int32_t openResource(const char*, gmpi::IMpUnknown**) override { return gmpi::MP_FAIL; }
    int32_t reserved1() override { return gmpi::MP_NOSUPPORT; }
    int32_t reserved2() override { return gmpi::MP_NOSUPPORT; }
};

class ModuleChain {
public:
    explicit ModuleChain(int length) : hosts_(static_cast<size_t>(length)) {
        for (int i = 0; i < length; ++i) {
            void* out = nullptr;
            Factory()->createInstance2(L"KX_CheckValveInt", gmpi::MP_SUB_TYPE_GUI2, &out);
            auto* unknown = static_cast<gmpi::IMpUnknown*>(out);
            void* face = nullptr;
            unknown->queryInterface(gmpi::MP_IID_GUI_PLUGIN2B, &face);
            unknown->release();
            modules_.push_back(static_cast<gmpi::IMpUserInterface2B*>(face));
        }
        for (int i = 0; i < length; ++i) {
            hosts_[static_cast<size_t>(i)].next = i + 1 < length ? modules_[static_cast<size_t>(i) + 1] : nullptr;
            modules_[static_cast<size_t>(i)]->setHost(&hosts_[static_cast<size_t>(i)]);
            modules_[static_cast<size_t>(i)]->initialize();
            const int32_t forward = 0;
            modules_[static_cast<size_t>(i)]->setPin(Mode, 0, 4, &forward);
            modules_[static_cast<size_t>(i)]->notifyPin(Mode, 0);
        }
    }
    ~ModuleChain() {
        for (auto* m : modules_)
            m->release();
    }
    void send(int32_t value) {
        modules_.front()->setPin(In, 0, 4, &value);
        modules_.front()->notifyPin(In, 0);
    }
    int64_t arrived() const { return hosts_.back().arrived; }

private:
    std::vector<ChainHost> hosts_;
    std::vector<gmpi::IMpUserInterface2B*> modules_;
};

void runModules(benchmark::State& state) {
    ModuleChain chain(static_cast<int>(state.range(0)));
    int32_t value = 1;
    for (auto _ : state)
        chain.send(value++);  // a new value every time: pins send only what changed
    if (chain.arrived() != static_cast<int64_t>(state.iterations()))
        state.SkipWithError("values were lost along the chain");
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(runModules)->Name("CheckValveChain")->Arg(1)->Arg(100);

// ---- baseline

class Stage {
public:
    virtual ~Stage() = default;
    virtual void onValue(int32_t v) = 0;
};

class Forward final : public Stage {
public:
    Stage* next = nullptr;
    int64_t arrived = 0;
    void onValue(int32_t v) override {
        if (v == value_)
            return;
        value_ = v;
        if (next)
            next->onValue(v);
        else
            ++arrived;
    }

private:
    int32_t value_ = 0;
};

void runBaseline(benchmark::State& state) {
    std::vector<std::unique_ptr<Forward>> stages;
    for (int64_t i = 0; i < state.range(0); ++i)
        stages.push_back(std::make_unique<Forward>());
    for (size_t i = 0; i + 1 < stages.size(); ++i)
        stages[i]->next = stages[i + 1].get();
    Stage* first = stages.front().get();
    int32_t value = 1;
    for (auto _ : state) {
        // Through a pointer the optimiser cannot see through, as the host's calls are.
        benchmark::DoNotOptimize(first);
        first->onValue(value++);
    }
    if (stages.back()->arrived != static_cast<int64_t>(state.iterations()))
        state.SkipWithError("values were lost along the chain");
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(runBaseline)->Name("VirtualCallChain")->Arg(1)->Arg(100);

}  // namespace

BENCHMARK_MAIN();
