// Loading a bundle the way a host does, from dlopen to the first created module: dlopen, MP_GetFactory,
// the factory's createInstance2 of one GUI half, then (outside the measured span) release and dlclose.
// The pack's bundle against an empty module library built for this benchmark (one trivial module
// behind the same entry point), so the difference is what the pack's size and static registrations cost.
#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <chrono>
#include <string>

#include "gmpi/IMpFactory.h"

namespace {

void loadToFirstInstance(benchmark::State& state, const char* path, const wchar_t* id) {
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        void* handle = dlopen(path, RTLD_NOW | RTLD_LOCAL);
        if (!handle) {
            state.SkipWithError(dlerror());
            return;
        }
        auto entry = reinterpret_cast<MP_GetFactoryFunc>(dlsym(handle, "MP_GetFactory"));
        void* unknown = nullptr;
        void* factory = nullptr;
        void* module = nullptr;
        if (!entry || entry(&unknown) != gmpi::MP_OK ||
            static_cast<gmpi::IMpUnknown*>(unknown)->queryInterface(gmpi::MP_IID_FACTORY2, &factory) != gmpi::MP_OK ||
            static_cast<gmpi::IMpFactory2*>(factory)->createInstance2(id, gmpi::MP_SUB_TYPE_GUI2, &module) !=
                gmpi::MP_OK) {
            state.SkipWithError("no module from the bundle");
            dlclose(handle);
            return;
        }
        const auto created = std::chrono::steady_clock::now();
        state.SetIterationTime(std::chrono::duration<double>(created - start).count());
        static_cast<gmpi::IMpUnknown*>(module)->release();
        static_cast<gmpi::IMpUnknown*>(factory)->release();
        static_cast<gmpi::IMpUnknown*>(unknown)->release();
        dlclose(handle);
        // The next round must load it again: a library that stays mapped would measure nothing.
        if (dlopen(path, RTLD_NOW | RTLD_NOLOAD)) {
            state.SkipWithError("the library stays loaded after dlclose; later rounds would not load it");
            return;
        }
    }
}

void packBundle(benchmark::State& state) { loadToFirstInstance(state, KX_BUNDLE_PATH, L"KX_CmpInt"); }
BENCHMARK(packBundle)->Name("LoadPackToFirstInstance")->UseManualTime()->Unit(benchmark::kMicrosecond);

void emptyModule(benchmark::State& state) { loadToFirstInstance(state, KX_EMPTY_MODULE_PATH, L"KX_Empty"); }
BENCHMARK(emptyModule)->Name("LoadEmptyModuleToFirstInstance")->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
