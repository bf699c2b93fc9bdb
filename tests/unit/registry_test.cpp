// The module descriptions shipped beside the module files are what a host reads to wire pins; these tests
// hold every description against the registrations and the pins the module objects really bind.
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "MpBase2.h"
#include "MpFactory.h"
#include "MpGuiBase2.h"

namespace {

struct Described {
    std::string file;
    nlohmann::json module;
};

std::vector<Described> allDescriptions() {
    std::vector<Described> out;
    for (const auto& family : std::filesystem::directory_iterator(std::string(KX_SOURCE_DIR) + "/modules")) {
        if (!family.is_directory())
            continue;
        for (const auto& file : std::filesystem::directory_iterator(family.path())) {
            if (file.path().extension() != ".json")
                continue;
            std::ifstream in(file.path());
            const auto doc = nlohmann::json::parse(in);
            for (const auto& module : doc.at("modules"))
                out.push_back({file.path().filename().string(), module});
        }
    }
    return out;
}

int datatypeCode(const std::string& name) {
    static const std::map<std::string, int> codes = {{"enum", MP_DT_ENUM},   {"text", MP_DT_TEXT}, {"bool", MP_DT_BOOL},
                                                     {"float", MP_DT_FLOAT}, {"int", MP_DT_INT},   {"blob", MP_DT_BLOB},
                                                     {"audio", MP_DT_AUDIO}, {"midi", MP_DT_MIDI}};
    const auto it = codes.find(name);
    return it == codes.end() ? -1 : it->second;
}

struct Releaser {
    gmpi::IMpUnknown* object = nullptr;
    ~Releaser() {
        if (object)
            object->release();
    }
};

// Checks one side's pin list against the pins the object binds. Declared pins a module does not bind are
// allowed (pins the host adds and the module reads through its own setPin); bound pins must be declared
// with their pin object's datatype.
template <class Owner, class Pin>
void checkPins(const std::string& where, const nlohmann::json& pins, const Owner& owner, int boundCount) {
    int expected = 0;
    for (const auto& p : pins) {
        const int index = p.at("index");
        EXPECT_EQ(index, expected++) << where << ": pins out of order";
        const std::string direction = p.at("direction");
        EXPECT_TRUE(direction == "in" || direction == "out") << where << " pin " << index;
        const int code = datatypeCode(p.at("datatype"));
        EXPECT_NE(code, -1) << where << " pin " << index << ": unknown datatype";
        if (const Pin* pin = owner.getPin(index)) {
            EXPECT_EQ(pin->getDatatype(), code) << where << " pin " << index;
        }
    }
    EXPECT_LE(boundCount, expected) << where << " binds pins its description lacks";
}

}  // namespace

TEST(Registry, EveryDescribedSideIsCreatedAndEveryOtherRefused) {
    const auto all = allDescriptions();
    ASSERT_FALSE(all.empty());
    MpFactory& factory = *Factory();
    for (const auto& [file, module] : all) {
        const std::string id = module.at("id");
        const std::wstring wid(id.begin(), id.end());
        for (const auto& [side, code] : {std::pair{"gui", gmpi::MP_SUB_TYPE_GUI2}, {"dsp", gmpi::MP_SUB_TYPE_AUDIO}}) {
            const std::string where = file + ": " + id + " (" + side + ")";
            Releaser made;
            const int32_t result = factory.createInstance2(wid.c_str(), code, reinterpret_cast<void**>(&made.object));
            if (!module.contains(side)) {
                EXPECT_EQ(result, gmpi::MP_NOSUPPORT) << where << " is created but not described";
                EXPECT_EQ(made.object, nullptr);
                continue;
            }
            ASSERT_EQ(result, gmpi::MP_OK) << where;
            ASSERT_NE(made.object, nullptr) << where;
            const auto& pins = module.at(side).at("pins");
            if (code == gmpi::MP_SUB_TYPE_GUI2) {
                auto* owner = dynamic_cast<GuiPinOwner*>(static_cast<gmpi::IMpUserInterface2B*>(made.object));
                ASSERT_NE(owner, nullptr) << where;
                checkPins<GuiPinOwner, MpGuiPinBase>(where, pins, *owner, owner->nextPinIndex());
            } else {
                auto* plugin = dynamic_cast<MpPluginBase*>(static_cast<gmpi::IMpPlugin2*>(made.object));
                ASSERT_NE(plugin, nullptr) << where;
                int bound = 0;
                for (int i = 0; i < 256; ++i)
                    bound += plugin->getPin(i) != nullptr;
                checkPins<MpPluginBase, MpPinBase>(where, pins, *plugin, bound);
            }
        }
    }
}

// The registrations must reach the loadable bundle, not only this test program.
TEST(Registry, TheBundleCreatesEveryDescribedSide) {
    void* handle = dlopen(KX_BUNDLE_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle, nullptr) << dlerror();
    auto entry = reinterpret_cast<MP_GetFactoryFunc>(dlsym(handle, "MP_GetFactory"));
    ASSERT_NE(entry, nullptr);
    void* unknown = nullptr;
    ASSERT_EQ(entry(&unknown), gmpi::MP_OK);
    void* out = nullptr;
    ASSERT_EQ(static_cast<gmpi::IMpUnknown*>(unknown)->queryInterface(gmpi::MP_IID_FACTORY2, &out), gmpi::MP_OK);
    auto* factory = static_cast<gmpi::IMpFactory2*>(out);
    for (const auto& [file, module] : allDescriptions()) {
        const std::string id = module.at("id");
        const std::wstring wid(id.begin(), id.end());
        for (const auto& [side, code] : {std::pair{"gui", gmpi::MP_SUB_TYPE_GUI2}, {"dsp", gmpi::MP_SUB_TYPE_AUDIO}}) {
            if (!module.contains(side))
                continue;
            void* object = nullptr;
            EXPECT_EQ(factory->createInstance2(wid.c_str(), code, &object), gmpi::MP_OK) << id << " (" << side << ")";
            if (object)
                static_cast<gmpi::IMpUnknown*>(object)->release();
        }
    }
    dlclose(handle);
}

// The pack holds what the factory registers: every registered identifier is described (so the catalogue
// and `kxhost list` show all of it), and the README states the count the registry has, not a round guess.
// The pack's identifiers start with "KX_"; this program also registers a few test modules of its own.
TEST(Registry, EveryRegistrationIsDescribedAndTheReadmeCountsTheIdentifiers) {
    std::set<std::string> described;
    for (const auto& [file, module] : allDescriptions())
        described.insert(module.at("id").get<std::string>());
    std::set<std::string> registered;
    for (const auto& [side, wid] : Factory()->registrations()) {
        const std::string id(wid.begin(), wid.end());
        if (id.rfind("KX_", 0) != 0)
            continue;
        registered.insert(id);
        EXPECT_TRUE(described.count(id)) << id << " (side " << side << ") is registered but not described";
    }
    std::ifstream in(std::string(KX_SOURCE_DIR) + "/README.md");
    const std::string readme((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::smatch count;
    ASSERT_TRUE(std::regex_search(readme, count, std::regex("creates ([0-9]+) modules by identifier")))
        << "README.md states how many modules the factory creates: \"creates N modules by identifier\"";
    EXPECT_EQ(std::stoul(count[1]), registered.size()) << "README.md's count of identifiers";
}
