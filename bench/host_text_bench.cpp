// What the host adds to a large value on its way through a patch: a 64 MB UTF-8 text loaded by
// KX_StringLoader and carried along a wire into KX_StringSaver through kxhost's session (trace off, the
// host's echo on as by default), against the loader alone as a host that discards the value drives it
// (the figure text_file_bench measures, here with a new file each round instead of an emptied pin), and
// against the loader wired straight into a saver by a host that does nothing else.
//
// Both load one of two files of the same size in turn (automatic mode, a new file name each round), so
// every round reads, decodes and sends a new text. Each benchmark reports the process's peak resident
// memory; run them one at a time (--benchmark_filter) to read each one's own peak.
#include <benchmark/benchmark.h>
#include <stdlib.h>
#include <sys/resource.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "QuietHost.h"
#include "TextCodec.h"
#include "convert/TextFiles.h"
#include "patch/Catalogue.h"
#include "patch/Patch.h"
#include "session/Bundle.h"
#include "session/Session.h"

namespace {

constexpr size_t kFileBytes = 64u << 20;

// Two sample files in a folder of their own, removed at exit; the folder's name is kept in plain storage
// so that removing it does not depend on the order in which static objects are destroyed.
char sampleFolder[4096];
void removeSamples() { std::filesystem::remove_all(sampleFolder); }

struct Samples {
    std::filesystem::path files[2];
    size_t characters = 0;  // of each text: its size in wide characters is 4 bytes each
};

const Samples& samples() {
    static const Samples made = [] {
        std::string pattern = (std::filesystem::temp_directory_path() / "kx_host_text_bench_XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            std::abort();
        std::snprintf(sampleFolder, sizeof sampleFolder, "%s", pattern.c_str());
        std::atexit(removeSamples);
        const std::string line =
            "The quick brown fox jumps over the lazy dog; caf\xC3\xA9 \xE2\x82\xAC 12.50 \xF0\x9F\x8E\xB5\n";
        std::string text;
        text.reserve(kFileBytes + line.size());
        while (text.size() < kFileBytes)
            text += line;
        text.resize(kFileBytes - (kFileBytes % line.size()));
        Samples s;
        for (int i = 0; i < 2; ++i) {
            text[0] = i ? 'B' : 'A';  // the two texts differ, so each load sends
            s.files[i] = std::filesystem::path(pattern) / (i ? "b.txt" : "a.txt");
            std::ofstream(s.files[i], std::ios::binary) << text;
        }
        // Characters are the bytes that do not continue a UTF-8 sequence (the sample is valid UTF-8).
        for (const char c : text)
            s.characters += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
        return s;
    }();
    return made;
}

void report(benchmark::State& state) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kFileBytes));
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const double peakMb = static_cast<double>(usage.ru_maxrss) / 1024.0;  // kilobytes on Linux
    const double wideMb = static_cast<double>(samples().characters * sizeof(wchar_t)) / (1024.0 * 1024.0);
    state.counters["peak_MB"] = peakMb;
    state.counters["text_wide_MB"] = wideMb;
    state.counters["peak_per_text"] = peakMb / wideMb;
}

// Baseline: the loader alone, its text sent to a host that does nothing with it.
void LoaderAlone(benchmark::State& state) {
    const Samples& s = samples();
    QuietHost host(5);
    KX_StringLoader loader;
    loader.setHost(&host);
    const bool on = true;
    loader.setPin(kx::textfile::Automatic, 0, 1, &on);
    loader.notifyPin(kx::textfile::Automatic, 0);
    int round = 0;
    for (auto _ : state) {
        const std::wstring name = kx::fromUtf8(s.files[round++ % 2].string());
        loader.setPin(kx::textfile::FileNameL, 0, static_cast<int32_t>(name.size() * sizeof(wchar_t)), name.data());
        loader.notifyPin(kx::textfile::FileNameL, 0);
        benchmark::DoNotOptimize(loader.text.value.data());
    }
    if (loader.text.value.size() != s.characters)
        state.SkipWithError("the loader did not read the sample");
    report(state);
}

// Forwards what the loader sends on its text pin straight into the saver's text pin: the least any host
// carrying the wire must do.
class WireHost final : public gmpi::IMpUserInterfaceHost2 {
public:
    explicit WireHost(KX_StringSaver& to) : to_(to) {}
    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        *out = nullptr;
        if (iid == gmpi::MP_IID_UI_HOST2 || gmpi::isUnknownIid(iid)) {
            *out = this;
            return gmpi::MP_OK;
        }
        return gmpi::MP_NOSUPPORT;
    }
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }
    int32_t pinTransmit(int32_t pin, int32_t size, const void* data, int32_t) override {
        if (pin == kx::textfile::Text && to_.setPin(kx::textfile::Text, 0, size, data) == gmpi::MP_OK)
            to_.notifyPin(kx::textfile::Text, 0);
        return gmpi::MP_OK;
    }
    int32_t sendMessageToAudio(int32_t, int32_t, const void*) override { return gmpi::MP_OK; }
    int32_t resolveResource(const char*, const char*, gmpi::IMpUnknown*) override { return gmpi::MP_FAIL; }
    int32_t openResource(const char*, gmpi::IMpUnknown**) override { return gmpi::MP_FAIL; }
    int32_t getHandle(int32_t& h) override {
        h = 0;
        return gmpi::MP_OK;
    }
    int32_t getPinCount(int32_t& count) override {
        count = kx::textfile::PinCount;
        return gmpi::MP_OK;
    }
    int32_t reserved1() override { return gmpi::MP_NOSUPPORT; }
    int32_t reserved2() override { return gmpi::MP_NOSUPPORT; }

private:
    KX_StringSaver& to_;
};

// Baseline of the wired case: the loader's text handed straight into a saver.
void LoaderToSaverDirect(benchmark::State& state) {
    const Samples& s = samples();
    KX_StringSaver saver;
    QuietHost saverHost(5);
    saver.setHost(&saverHost);
    WireHost host(saver);
    KX_StringLoader loader;
    loader.setHost(&host);
    const bool on = true;
    loader.setPin(kx::textfile::Automatic, 0, 1, &on);
    loader.notifyPin(kx::textfile::Automatic, 0);
    int round = 0;
    for (auto _ : state) {
        const std::wstring name = kx::fromUtf8(s.files[round++ % 2].string());
        loader.setPin(kx::textfile::FileNameL, 0, static_cast<int32_t>(name.size() * sizeof(wchar_t)), name.data());
        loader.notifyPin(kx::textfile::FileNameL, 0);
        benchmark::DoNotOptimize(saver.text.value.data());
    }
    if (saver.text.value.size() != s.characters)
        state.SkipWithError("the saver did not receive the sample");
    report(state);
}

// The same load through the session: state.range(0) 1 carries the text along a wire into a saver, 0
// leaves the loader alone (what the host adds: its one copy and the echo into the loader's own pin).
void ThroughSession(benchmark::State& state) {
    using namespace kxhost;
    const Samples& s = samples();
    const bool saver = state.range(0) != 0;
    const std::filesystem::path bundlePath = KX_BUNDLE_PATH;
    const Catalogue catalogue = Catalogue::load(bundlePath.parent_path() / "descriptions");
    const Patch patch = parsePatchText(std::string("option trace off\n"
                                                   "instance loader KX_StringLoader\n"
                                                   "instance saver KX_StringSaver\n"
                                                   "set loader.Automatic true\n") +
                                           (saver ? "wire loader.Text -> saver.Text\n" : ""),
                                       std::filesystem::path(sampleFolder) / "bench.kxp", catalogue);
    Bundle bundle(bundlePath);
    std::ostringstream out, err;
    Session session(bundle, patch, out, err);
    session.start();
    const PinRef fileName{"loader", Side::Gui, patch.instance("loader")->side(Side::Gui)->byName("File Name")->index};
    const PinRef last{saver ? "saver" : "loader", Side::Gui, 0};
    int round = 0;
    for (auto _ : state) {
        session.set(fileName, Value::ofText(kx::fromUtf8(s.files[round++ % 2].string())));
        benchmark::DoNotOptimize(session.value(last).text().data());
    }
    if (session.value(last).text().size() != s.characters || session.failures() || !err.str().empty())
        state.SkipWithError(("the text did not arrive: " + err.str()).c_str());
    report(state);
}

BENCHMARK(LoaderAlone)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(LoaderToSaverDirect)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(ThroughSession)->ArgName("saver")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->MinTime(2.0);

}  // namespace

BENCHMARK_MAIN();
