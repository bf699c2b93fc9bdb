// A GUI pin round trip as a host drives it: setPin and notifyPin on a module, its handler, the output
// pin's pinTransmit back to the host; through one KX_CheckValveInt (mode 0: In flows to Out) and along a
// chain of 100 of them, each host forwarding the value into the next module's In. Modules are made by
// the factory and driven only through their GMPI interfaces, as a host does.
//
// Baseline: the least a module behind the same interface must do for the same hop, driven by the same
// hosts in the same chain: setPin keeps the four bytes, notifyPin compares them with the output's value
// and, when they differ, stores them and transmits. So both sides make the same four virtual calls per
// hop (setPin, notifyPin, pinTransmit, and the host's setPin on the next module), and the ratio is what
// the framework adds to them: the guard, the pin table, the pin objects and the handler call. A second
// baseline adds only the guard: what any module pays that keeps exceptions from its host.
#include <benchmark/benchmark.h>

#include <cstring>
#include <functional>
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

// The baseline's module: In passed to Out with nothing but the interface's own calls. With Guard, each
// entry runs inside a try block that turns an exception into a failure code, as a module must that never
// lets an exception reach its host: the entry then keeps its frame while the value travels on, where the
// unguarded one hands over to the host's pinTransmit by a tail call.
template <bool Guard>
class BareValve final : public gmpi::IMpUserInterface2B {
public:
    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        *out = nullptr;
        if (!(iid == gmpi::MP_IID_GUI_PLUGIN2B) && !gmpi::isUnknownIid(iid))
            return gmpi::MP_NOSUPPORT;
        *out = this;
        return gmpi::MP_OK;
    }
    int32_t addRef() override { return 1; }
    int32_t release() override {
        delete this;
        return 0;
    }
    int32_t setHost(gmpi::IMpUnknown* host) override {
        void* face = nullptr;
        host->queryInterface(gmpi::MP_IID_UI_HOST2, &face);
        host_ = static_cast<gmpi::IMpUserInterfaceHost2*>(face);
        return gmpi::MP_OK;
    }
    int32_t initialize() override { return gmpi::MP_OK; }
    int32_t setPin(int32_t pinId, int32_t, int32_t size, const void* data) override {
        return guard([&] {
            if (pinId != In || size != 4)
                return pinId == Mode ? gmpi::MP_OK : gmpi::MP_FAIL;
            std::memcpy(&in_, data, 4);
            return gmpi::MP_OK;
        });
    }
    int32_t notifyPin(int32_t pinId, int32_t) override {
        return guard([&] {
            if (pinId != In || in_ == out_)
                return gmpi::MP_OK;
            out_ = in_;
            return host_->pinTransmit(Out, 4, &out_, 0);
        });
    }
    int32_t receiveMessageFromAudio(int32_t, int32_t, const void*) override { return gmpi::MP_FAIL; }
    int32_t populateContextMenu(float, float, gmpi::IMpUnknown*) override { return gmpi::MP_FAIL; }
    int32_t onContextMenu(int32_t) override { return gmpi::MP_FAIL; }
    int32_t getToolTip(float, float, gmpi::IMpUnknown*) override { return gmpi::MP_FAIL; }

private:
    template <class F>
    static int32_t guard(F&& f) {
        if constexpr (Guard) {
            try {
                return f();
            } catch (...) {
                return gmpi::MP_FAIL;
            }
        } else {
            return f();
        }
    }

    gmpi::IMpUserInterfaceHost2* host_ = nullptr;
    int32_t in_ = 0;
    int32_t out_ = 0;
};

gmpi::IMpUserInterface2B* packValve() {
    void* out = nullptr;
    Factory()->createInstance2(L"KX_CheckValveInt", gmpi::MP_SUB_TYPE_GUI2, &out);
    auto* unknown = static_cast<gmpi::IMpUnknown*>(out);
    void* face = nullptr;
    unknown->queryInterface(gmpi::MP_IID_GUI_PLUGIN2B, &face);
    unknown->release();
    return static_cast<gmpi::IMpUserInterface2B*>(face);
}

gmpi::IMpUserInterface2B* bareValve() { return new BareValve<false>; }
gmpi::IMpUserInterface2B* guardedBareValve() { return new BareValve<true>; }

class ModuleChain {
public:
    ModuleChain(int length, const std::function<gmpi::IMpUserInterface2B*()>& make)
        : hosts_(static_cast<size_t>(length)) {
        for (int i = 0; i < length; ++i)
            modules_.push_back(make());
        for (size_t i = 0; i < modules_.size(); ++i) {
            hosts_[i].next = i + 1 < modules_.size() ? modules_[i + 1] : nullptr;
            modules_[i]->setHost(&hosts_[i]);
            modules_[i]->initialize();
            const int32_t forward = 0;
            modules_[i]->setPin(Mode, 0, 4, &forward);
            modules_[i]->notifyPin(Mode, 0);
        }
    }
    ~ModuleChain() {
        for (auto* m : modules_)
            m->release();
    }
    void send(int32_t value) {
        // Through a pointer the optimiser cannot see through, as the host's calls are.
        gmpi::IMpUserInterface2B* first = modules_.front();
        benchmark::DoNotOptimize(first);
        first->setPin(In, 0, 4, &value);
        first->notifyPin(In, 0);
    }
    int64_t arrived() const { return hosts_.back().arrived; }

private:
    std::vector<ChainHost> hosts_;
    std::vector<gmpi::IMpUserInterface2B*> modules_;
};

void run(benchmark::State& state, gmpi::IMpUserInterface2B* (*make)()) {
    ModuleChain chain(static_cast<int>(state.range(0)), make);
    int32_t value = 1;
    for (auto _ : state)
        chain.send(value++);  // a new value every time: pins send only what changed
    if (chain.arrived() != static_cast<int64_t>(state.iterations()))
        state.SkipWithError("values were lost along the chain");
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

}  // namespace

BENCHMARK_CAPTURE(run, CheckValveChain, packValve)->Name("CheckValveChain")->Arg(1)->Arg(100);
BENCHMARK_CAPTURE(run, BareModuleChain, bareValve)->Name("BareModuleChain")->Arg(1)->Arg(100);
BENCHMARK_CAPTURE(run, GuardedBareModuleChain, guardedBareValve)->Name("GuardedBareModuleChain")->Arg(1)->Arg(100);

BENCHMARK_MAIN();
