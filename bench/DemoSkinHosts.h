// The hosts of a widget on a benchmark's panel: a GUI host serving the demo skin's style file as its
// "global" resource, and a graphics host with kxhost's drawing factory.
#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "FakeGraphicsHost.h"
#include "render/Drawing.h"

namespace kxbench {

// Resolves names without keeping a record of them, as a host that only answers does.
class SkinHost final : public kxtest::FakeSkinHost {
public:
    explicit SkinHost(std::string folder) : FakeSkinHost(std::move(folder)) {}
    int32_t resolveResource(const char* name, const char*, gmpi::IMpUnknown* returnString) override {
        void* s = nullptr;
        if (!returnString || returnString->queryInterface(gmpi::MP_IID_RETURNSTRING, &s) != gmpi::MP_OK)
            return gmpi::MP_FAIL;
        const std::string path = name[0] == '/' ? std::string(name) : folder + name;
        static_cast<gmpi::IString*>(s)->setData(path.data(), static_cast<int32_t>(path.size()));
        static_cast<gmpi::IString*>(s)->release();
        return files.count(path) ? gmpi::MP_OK : gmpi::MP_FAIL;
    }
};

// The graphics host of a module on the benchmark's panel: the tests' graphics host, with kxhost's drawing
// factory in place of the recording one.
class GraphicsHost final : public kxtest::FakeGraphicsHost {
public:
    GraphicsHost(kxtest::FakeGuiHost& gui, kxhost::draw::Factory& factory) : FakeGraphicsHost(gui), factory_(factory) {}
    void GetDrawingFactory(GmpiDrawing_API::IMpFactory** f) override { *f = &factory_; }

private:
    kxhost::draw::Factory& factory_;
};

inline std::string fileBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

// The demo skin's style file, as its bytes.
inline std::string demoStyleFile() { return fileBytes(KX_SOURCE_DIR "/examples/skin/global.txt"); }

// The demo skin served by name: every file of its folder under its real path (kxhost's factory loads
// images from there; metadata comes through openResource), and its style file as "global".
struct DemoSkinHosts {
    SkinHost gui{KX_SOURCE_DIR "/examples/skin/"};
    kxhost::draw::Factory factory;
    GraphicsHost graphics{gui, factory};
    DemoSkinHosts() {
        for (const auto& file : std::filesystem::directory_iterator(gui.folder))
            gui.files[file.path().string()] = fileBytes(file.path());
        gui.files[gui.folder + "global"] = demoStyleFile();
    }
    DemoSkinHosts(const DemoSkinHosts&) = delete;
    DemoSkinHosts& operator=(const DemoSkinHosts&) = delete;
};

}  // namespace kxbench
