// Listing a folder of 10,000 entries through KX_FileBrowser (rescan pin -> directory iteration -> item
// list text -> item list pin -> host) against the least any listing must do: a plain std::filesystem
// directory iteration of the same folder that looks at each entry's name and type, and for the filtered
// listing at the extension too. The ratio of the two is the browser's overhead.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "QuietHost.h"
#include "TextCodec.h"
#include "convert/FilePick.h"
#include "gmpi/IMpUserInterfaceHost2.h"

namespace fs = std::filesystem;

namespace {

constexpr int kEntries = 10000;

// The folder's name in plain storage, so removing it at exit does not depend on the order in which
// static objects are destroyed.
char samplePath[4096];
void removeSample() {
    std::error_code ignored;
    fs::remove_all(samplePath, ignored);
}

// 10,000 entries as a sample library might hold: one in 20 a folder, of the files one in four a ".txt"
// beside the ".wav" files, names of 20 to 30 characters.
const fs::path& sampleFolder() {
    static const fs::path path = [] {
        auto p = fs::temp_directory_path() / ("kx_browser_bench_" + std::to_string(::getpid()));
        fs::create_directories(p);
        std::snprintf(samplePath, sizeof samplePath, "%s", p.c_str());
        std::atexit(removeSample);
        for (int i = 0; i < kEntries; ++i) {
            char name[64];
            if (i % 20 == 0) {
                std::snprintf(name, sizeof name, "Folder of takes %05d", i);
                fs::create_directory(p / name);
            } else {
                std::snprintf(name, sizeof name, "Sample %05d - kick %s", i, i % 4 == 0 ? "notes.txt" : "hard.wav");
                std::ofstream(p / name) << "x";
            }
        }
        return p;
    }();
    return path;
}

void setItems(benchmark::State& state) { state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kEntries); }

// Baseline: iterate the folder, take each entry's name and whether it is a folder. With state.range(0)
// 1, as the filtered listing: files other than ".wav" are passed over, and the others' names are taken
// without their extension.
void PlainDirectoryIteration(benchmark::State& state) {
    const fs::path& folder = sampleFolder();
    const bool filtered = state.range(0) == 1;
    for (auto _ : state) {
        size_t folders = 0, nameBytes = 0;
        for (const auto& entry : fs::directory_iterator(folder)) {
            const bool isFolder = entry.is_directory();
            folders += isFolder ? 1 : 0;
            const std::string& path = entry.path().native();
            std::string_view name = std::string_view(path).substr(path.rfind('/') + 1);
            if (filtered && !isFolder) {
                const size_t dot = name.rfind('.');
                if (dot == std::string_view::npos || name.substr(dot) != ".wav")
                    continue;
                name = name.substr(0, dot);
            }
            nameBytes += name.size();
        }
        benchmark::DoNotOptimize(folders);
        benchmark::DoNotOptimize(nameBytes);
    }
    setItems(state);
}

void sendText(KX_FileBrowser& browser, int pin, const std::wstring& text) {
    browser.setPin(pin, 0, static_cast<int32_t>(text.size() * sizeof(wchar_t)), text.data());
    browser.notifyPin(pin, 0);
}

void sendBool(KX_FileBrowser& browser, int pin, bool value) {
    browser.setPin(pin, 0, 1, &value);
    browser.notifyPin(pin, 0);
}

// The module as a host drives it: the rescan pin rises, the folder is listed and the item list sent.
// state.range(0) selects the filter: 0 lists everything, 1 only ".wav" files with extensions hidden.
void BrowserRescan(benchmark::State& state) {
    QuietHost host(kx::filebrowser::PinCount);
    KX_FileBrowser browser;
    browser.setHost(&host);
    if (state.range(0) == 1) {
        sendText(browser, kx::filebrowser::Extension, L"wav");
        sendBool(browser, kx::filebrowser::HideExtensions, true);
    }
    sendText(browser, kx::filebrowser::Folder, kx::fromUtf8(sampleFolder().native()));
    for (auto _ : state) {
        state.PauseTiming();
        browser.itemList.value.clear();  // so every round sends its list, as a changed folder would
        sendBool(browser, kx::filebrowser::Rescan, false);
        state.ResumeTiming();
        sendBool(browser, kx::filebrowser::Rescan, true);
        benchmark::DoNotOptimize(browser.itemList.value.data());
    }
    if (browser.itemList.value.empty())
        state.SkipWithError("the browser listed nothing");
    setItems(state);
}

BENCHMARK(PlainDirectoryIteration)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BrowserRescan)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
