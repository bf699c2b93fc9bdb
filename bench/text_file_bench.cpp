// Loading a 64 MB UTF-8 text file through KX_StringLoader (trigger -> read -> decode -> text pin -> host)
// against the least any loader must do: read the file in one go and decode it. Both free the previous
// round's text outside the timed region. The ratio of the two is the loader's overhead.
//
// Saving the same text through KX_StringSaver (trigger -> encode -> safe replace of the old file: a new
// file written, synced and renamed over the old one, the folder synced) against the least a saver that
// replaces a file whole must do: encode the text and write the bytes to a new file, fsync, close and
// rename it over the old one.
#include <benchmark/benchmark.h>
#include <fcntl.h>
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
char savedPaths[2][4096];
void removeSample() {
    std::remove(samplePath);
    for (const char* saved : savedPaths)
        std::remove(saved);
}

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

// Baseline: std::ifstream read into a string sized from the file size, then decode. The text is kept
// from one round to the next and freed outside the timed region, as the loader's text pin is.
void RawReadAndDecode(benchmark::State& state) {
    const std::string path = sampleFile().string();
    std::wstring text;
    for (auto _ : state) {
        state.PauseTiming();
        text.clear();
        text.shrink_to_fit();
        state.ResumeTiming();
        std::ifstream in(path, std::ios::binary);
        std::string bytes(std::filesystem::file_size(path), '\0');
        in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
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

// ---- saving

// The text of the sample file, as it arrives on the saver's text pin.
const std::wstring& sampleText() {
    static const std::wstring text = [] {
        std::wstring t;
        kx::readTextFile(sampleFile().string(), t);
        return t;
    }();
    return text;
}

// A file to replace, beside the sample, that exists before the first round: every round replaces it.
std::string oldFile(int which) {
    const std::string path = sampleFile().string() + (which == 0 ? ".saved" : ".plain");
    std::snprintf(savedPaths[which], sizeof savedPaths[which], "%s", path.c_str());
    std::ofstream(path) << "the old text";
    return path;
}

void setSavedBytes(benchmark::State& state, const std::string& path) {
    const auto size = std::filesystem::file_size(path);
    if (size != std::filesystem::file_size(sampleFile()))
        state.SkipWithError("the file saved does not hold the text");
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(size));
}

// Baseline: encode, then write + fsync + close + rename over the old file.
void PlainWriteSyncRename(benchmark::State& state) {
    const std::string target = oldFile(1);
    const std::string temporary = target + ".new";
    const std::wstring& text = sampleText();
    for (auto _ : state) {
        const std::string bytes = kx::toUtf8(text);
        const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        size_t done = 0;
        while (fd >= 0 && done < bytes.size()) {
            const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
            if (n <= 0)
                break;
            done += static_cast<size_t>(n);
        }
        const bool written = fd >= 0 && done == bytes.size() && ::fsync(fd) == 0;
        if (fd >= 0)
            ::close(fd);
        if (!written || ::rename(temporary.c_str(), target.c_str()) != 0) {
            state.SkipWithError("the plain save failed");
            return;
        }
    }
    setSavedBytes(state, target);
}

// The module, as a host drives it: the text and the file name arrive first, then each round the trigger.
void StringSaverTrigger(benchmark::State& state) {
    const std::string target = oldFile(0);
    QuietHost host(5);
    KX_StringSaver saver;
    saver.setHost(&host);
    const std::wstring& text = sampleText();
    saver.setPin(kx::textfile::Text, 0, static_cast<int32_t>(text.size() * sizeof(wchar_t)), text.data());
    saver.notifyPin(kx::textfile::Text, 0);
    const std::wstring name = kx::fromUtf8(target);
    saver.setPin(kx::textfile::FileNameL, 0, static_cast<int32_t>(name.size() * sizeof(wchar_t)), name.data());
    saver.notifyPin(kx::textfile::FileNameL, 0);
    for (auto _ : state) {
        state.PauseTiming();
        const bool off = false;
        saver.setPin(kx::textfile::Trigger, 0, 1, &off);
        saver.notifyPin(kx::textfile::Trigger, 0);
        state.ResumeTiming();
        const bool on = true;
        saver.setPin(kx::textfile::Trigger, 0, 1, &on);
        saver.notifyPin(kx::textfile::Trigger, 0);
    }
    setSavedBytes(state, target);
}

BENCHMARK(RawReadAndDecode)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(StringLoaderTrigger)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(PlainWriteSyncRename)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(StringSaverTrigger)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
