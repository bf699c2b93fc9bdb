// Loading a 64 MB UTF-8 text file through KX_StringLoader (trigger -> read -> decode -> text pin -> host)
// against the least any loader must do: read the file in one go and decode it. The ratio of the two is
// the loader's overhead.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "QuietHost.h"
#include "SampleText.h"
#include "TextCodec.h"
#include "convert/TextFiles.h"
#include "gmpi/IMpUserInterfaceHost2.h"

namespace {

// The sample's name in plain storage, so removing it at exit does not depend on the order in which
// static objects are destroyed.
char samplePath[4096];
void removeSample() { std::remove(samplePath); }

// A 64 MB file of mixed text: mostly ASCII, with two-, three- and four-byte sequences on every line.
const std::filesystem::path& sampleFile() {
    static const std::filesystem::path path = [] {
        auto p = std::filesystem::temp_directory_path() / ("kx_text_bench_" + std::to_string(::getpid()) + ".txt");
        std::ofstream(p, std::ios::binary) << sampleText();
        std::snprintf(samplePath, sizeof samplePath, "%s", p.c_str());
        std::atexit(removeSample);
        return p;
    }();
    return path;
}

void setBytes(benchmark::State& state) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(std::filesystem::file_size(sampleFile())));
}

// Baseline: std::ifstream read into a string sized from the file size, then decode.
void RawReadAndDecode(benchmark::State& state) {
    const std::string path = sampleFile().string();
    for (auto _ : state) {
        std::ifstream in(path, std::ios::binary);
        std::string bytes(std::filesystem::file_size(path), '\0');
        in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        std::wstring text;
        kx::fromUtf8Lenient(bytes, text);
        benchmark::DoNotOptimize(text.data());
    }
    setBytes(state);
}

// The module, as a host drives it: a trigger on the module loads the file and transmits the text.
void StringLoaderTrigger(benchmark::State& state) {
    QuietHost host(5);
    KX_StringLoader loader;
    loader.setHost(&host);
    const std::wstring name = kx::fromUtf8(sampleFile().string());
    loader.setPin(kx::textfile::FileNameL, 0, static_cast<int32_t>(name.size() * sizeof(wchar_t)), name.data());
    loader.notifyPin(kx::textfile::FileNameL, 0);
    const bool on = true;
    for (auto _ : state) {
        state.PauseTiming();
        loader.text.value.clear();  // so every round changes the text and sends it, as a new file would
        loader.text.value.shrink_to_fit();
        state.ResumeTiming();
        loader.setPin(kx::textfile::Trigger, 0, 1, &on);
        loader.notifyPin(kx::textfile::Trigger, 0);
        benchmark::DoNotOptimize(loader.text.value.data());
    }
    if (loader.text.value.empty())
        state.SkipWithError("the loader read nothing");
    setBytes(state);
}

BENCHMARK(RawReadAndDecode)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(StringLoaderTrigger)->Unit(benchmark::kMillisecond)->MinTime(2.0);

}  // namespace

BENCHMARK_MAIN();
