// Creating and releasing every registration of the pack: for every identifier and side its description
// declares, createInstance2 through the factory, then release. One iteration is the whole pack.
//
// Baseline: the least the same interface forces for each registration, made the same number of times
// with the same identifiers: the wide-string identifier looked up (a hash table over views of the same
// identifiers, so the look-up copies nothing), a creator called through the found pointer, an object made
// with a table binding as many pins as the description declares (one slot per pin, room reserved once),
// and the object released through its interface.
#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Descriptions.h"
#include "MpFactory.h"

namespace {

struct Registration {
    std::wstring id;
    int32_t side;
    int pins;
};

// Every described half, read from the descriptions beside the module sources.
const std::vector<Registration>& registrations() {
    static const auto all = [] {
        std::vector<Registration> list;
        kxbench::forEachDescribedModule([&](const nlohmann::json& m) {
            const std::string id = m["id"];
            const std::wstring wide(id.begin(), id.end());
            for (const auto& [side, subType] :
                 {std::pair{"gui", gmpi::MP_SUB_TYPE_GUI2}, {"dsp", gmpi::MP_SUB_TYPE_AUDIO}})
                if (m.contains(side))
                    list.push_back({wide, subType, static_cast<int>(m[side]["pins"].size())});
        });
        return list;
    }();
    return all;
}

void createAndReleaseAll(benchmark::State& state) {
    const auto& all = registrations();
    MpFactory* factory = Factory();
    for (auto _ : state)
        for (const auto& r : all) {
            void* out = nullptr;
            if (factory->createInstance2(r.id.c_str(), r.side, &out) != gmpi::MP_OK || !out) {
                state.SkipWithError("a described half is not registered");
                return;
            }
            static_cast<gmpi::IMpUnknown*>(out)->release();
        }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(all.size()));
    state.counters["registrations"] = static_cast<double>(all.size());
}
BENCHMARK(createAndReleaseAll)->Name("CreateReleaseEveryRegistration");

// ---- baseline

// A module with the pins its description declares, bound into a table in its constructor.
class BareModule final : public gmpi::IMpUnknown {
public:
    explicit BareModule(int pins) {
        table_.reserve(static_cast<size_t>(pins));
        for (int i = 0; i < pins; ++i)
            table_.push_back({i, &values_[static_cast<size_t>(i)]});
    }
    int32_t queryInterface(const gmpi::MpGuid&, void** out) override {
        *out = nullptr;
        return gmpi::MP_NOSUPPORT;
    }
    int32_t addRef() override { return 1; }
    int32_t release() override {
        delete this;
        return 0;
    }

private:
    struct Slot {
        int index;
        int32_t* value;
    };
    std::vector<Slot> table_;
    std::array<int32_t, 32> values_{};
};

using Creator = gmpi::IMpUnknown* (*)(int pins);
gmpi::IMpUnknown* createBare(int pins) { return new BareModule(pins); }

struct Key {
    int32_t side;
    std::wstring_view id;
    bool operator==(const Key&) const = default;
};
struct KeyHash {
    size_t operator()(const Key& k) const { return std::hash<std::wstring_view>()(k.id) ^ static_cast<size_t>(k.side); }
};

void bareCreateAndReleaseAll(benchmark::State& state) {
    const auto& all = registrations();
    std::unordered_map<Key, Creator, KeyHash> creators;
    for (const auto& r : all)
        creators.emplace(Key{r.side, r.id}, &createBare);
    for (auto _ : state)
        for (const auto& r : all) {
            // As the factory is given it: a pointer to a terminated wide string.
            const wchar_t* id = r.id.c_str();
            benchmark::DoNotOptimize(id);
            const auto found = creators.find(Key{r.side, id});
            if (found == creators.end()) {
                state.SkipWithError("a registration is missing");
                return;
            }
            Creator create = found->second;
            benchmark::DoNotOptimize(create);
            gmpi::IMpUnknown* made = create(r.pins);
            benchmark::DoNotOptimize(made);
            made->release();
        }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(all.size()));
}
BENCHMARK(bareCreateAndReleaseAll)->Name("BareCreateReleaseSameRegistrations");

}  // namespace

BENCHMARK_MAIN();
