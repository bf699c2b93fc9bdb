// Creating and releasing every registration of the pack: for every identifier and side its description
// declares, createInstance2 through the factory, then release. One iteration is the whole pack.
// Baseline: new and delete of a small object with a virtual destructor, once per registration.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "MpFactory.h"

namespace {

// (identifier, side) of every described half, read from the descriptions beside the module sources.
const std::vector<std::pair<std::wstring, int32_t>>& registrations() {
    static const auto all = [] {
        std::vector<std::pair<std::wstring, int32_t>> list;
        for (const auto& family : std::filesystem::directory_iterator(KX_SOURCE_DIR "/modules"))
            if (family.is_directory())
                for (const auto& file : std::filesystem::directory_iterator(family.path()))
                    if (file.path().extension() == ".json") {
                        const auto j = nlohmann::json::parse(std::ifstream(file.path()));
                        for (const auto& m : j["modules"]) {
                            const std::string id = m["id"];
                            const std::wstring wide(id.begin(), id.end());
                            if (m.contains("gui"))
                                list.emplace_back(wide, gmpi::MP_SUB_TYPE_GUI2);
                            if (m.contains("dsp"))
                                list.emplace_back(wide, gmpi::MP_SUB_TYPE_AUDIO);
                        }
                    }
        return list;
    }();
    return all;
}

void createAndReleaseAll(benchmark::State& state) {
    const auto& all = registrations();
    MpFactory* factory = Factory();
    for (auto _ : state)
        for (const auto& [id, side] : all) {
            void* out = nullptr;
            if (factory->createInstance2(id.c_str(), side, &out) != gmpi::MP_OK || !out) {
                state.SkipWithError("a described half is not registered");
                return;
            }
            static_cast<gmpi::IMpUnknown*>(out)->release();
        }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(all.size()));
    state.counters["registrations"] = static_cast<double>(all.size());
}
BENCHMARK(createAndReleaseAll)->Name("CreateReleaseEveryRegistration");

struct Small {
    virtual ~Small() = default;
    int value = 0;
};

void newDeleteBaseline(benchmark::State& state) {
    const size_t n = registrations().size();
    for (auto _ : state)
        for (size_t i = 0; i < n; ++i) {
            auto* p = new Small;
            benchmark::DoNotOptimize(p);
            delete p;
        }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(n));
}
BENCHMARK(newDeleteBaseline)->Name("NewDeleteSameCount");

}  // namespace

BENCHMARK_MAIN();
