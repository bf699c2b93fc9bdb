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
#include "SampleText.h"
#include "TextCodec.h"
#include "convert/TextFiles.h"
#include "patch/Catalogue.h"
#include "patch/Patch.h"
#include "session/Bundle.h"
#include "session/Session.h"

namespace {

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
        std::string text = sampleText();
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
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kSampleTextBytes));
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const double peakMb = static_cast<double>(usage.ru_maxrss) / 1024.0;  // kilobytes on Linux
    const double wideMb = static_cast<double>(samples().characters * sizeof(wchar_t)) / (1024.0 * 1024.0);
    state.counters["peak_MB"] = peakMb;
    state.counters["text_wide_MB"] = wideMb;
    state.counters["peak_per_text"] = peakMb / wideMb;
}

// Loads the two samples in turn, a new file name each round, with the loader in automatic mode.
void loadInTurns(benchmark::State& state, KX_StringLoader& loader) {
    const Samples& s = samples();
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
}

// Baseline: the loader alone, its text sent to a host that does nothing with it.
void LoaderAlone(benchmark::State& state) {
    QuietHost host(kx::textfile::PinCount);
    KX_StringLoader loader;
    loader.setHost(&host);
    loadInTurns(state, loader);
    if (loader.text.value.size() != samples().characters)
        state.SkipWithError("the loader did not read the sample");
    report(state);
}

// Baseline of the wired case: the loader's text handed straight into a saver's text pin by a host that
// does nothing else.
void LoaderToSaverDirect(benchmark::State& state) {
    QuietHost saverHost(kx::textfile::PinCount);
    KX_StringSaver saver;
    saver.setHost(&saverHost);
    QuietHost host(kx::textfile::PinCount);
    host.onTransmit = [&saver](int32_t pin, int32_t size, const void* data) {
        if (pin == kx::textfile::Text && saver.setPin(kx::textfile::Text, 0, size, data) == gmpi::MP_OK)
            saver.notifyPin(kx::textfile::Text, 0);
    };
    KX_StringLoader loader;
    loader.setHost(&host);
    loadInTurns(state, loader);
    if (saver.text.value.size() != samples().characters)
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
