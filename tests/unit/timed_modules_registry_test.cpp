#include <gtest/gtest.h>

#include <dlfcn.h>

#include <fstream>
#include <map>
#include <string>

#include <nlohmann/json.hpp>

#include "FakeGuiHost.h"
#include "ManualTimerBackend.h"
#include "MpFactory.h"
#include "gmpi/IMpUserInterface2.h"
#include "widgets/RadioButtons.h"

using kxtest::deliver;

namespace {

const wchar_t* const kIdentifiers[] = {L"KX_RadioButtons", L"KX_ToggleSwitch", L"KX_GUITimer", L"KX_DblClckRes"};

gmpi::IMpUserInterface2B* createGui(const std::wstring& id) {
    void* out = nullptr;
    if (Factory()->createInstance2(id.c_str(), gmpi::MP_SUB_TYPE_GUI2, &out) != gmpi::MP_OK)
        return nullptr;
    return static_cast<gmpi::IMpUserInterface2B*>(out);
}

}  // namespace

// Modules created by the factory, left with running timers and released, leave no registration behind.
TEST(TimedModules, ReleasedModulesLeaveNoTimerRegistered) {
    kx::ManualTimerBackend loop;
    kxtest::FakeGuiHost host;
    host.pinCount = 10;
    const auto before = TimerManager::Instance().census();

    auto make = [&](const wchar_t* id) {
        auto* module = createGui(id);
        EXPECT_NE(module, nullptr);
        module->setHost(host.unknown());
        module->initialize();
        return module;
    };
    auto* timer = make(L"KX_GUITimer");
    deliver(*timer, 2, 5);  // oscillator
    deliver(*timer, 3, 20);
    deliver(*timer, 4, 30);
    deliver(*timer, 0, true);  // running
    auto* radio = make(L"KX_RadioButtons");
    const float on = 1.0f;
    radio->setPin(4, 0, sizeof(on), &on);
    auto* toggle = make(L"KX_ToggleSwitch");
    auto* dbl = make(L"KX_DblClckRes");

    EXPECT_EQ(TimerManager::Instance().census().registrations, before.registrations + 2);
    loop.advance(45);
    for (auto* m : {timer, radio, toggle, dbl})
        EXPECT_EQ(m->release(), 0);

    const auto after = TimerManager::Instance().census();
    EXPECT_EQ(after.registrations, before.registrations);
    EXPECT_EQ(after.runningGroups, before.runningGroups);
    EXPECT_EQ(loop.liveTimers(), 0);
    loop.advance(1000);
}

// Every pin a module binds is declared at its index with its pin's datatype; the radio buttons' further
// pins are its buttons, declared but read by the module's own setPin.
TEST(TimedModules, DescriptionsMatchTheBoundPins) {
    const std::map<std::string, int> datatypes = {
        {"text", MP_DT_TEXT}, {"bool", MP_DT_BOOL}, {"float", MP_DT_FLOAT}, {"int", MP_DT_INT}, {"blob", MP_DT_BLOB}};
    int described = 0;
    for (const char* file : {"gui_timer", "radio_buttons", "dbl_clck_res"}) {
        std::ifstream in(std::string(KX_SOURCE_DIR) + "/modules/widgets/" + file + ".json");
        ASSERT_TRUE(in) << file;
        const auto doc = nlohmann::json::parse(in);
        for (const auto& module : doc.at("modules")) {
            const std::string id = module.at("id");
            ++described;
            auto* object = createGui(kx::fromUtf8(id));
            ASSERT_NE(object, nullptr) << id;
            auto* pins = dynamic_cast<GuiPinOwner*>(object);
            ASSERT_NE(pins, nullptr);
            int expectedIndex = 0;
            for (const auto& p : module.at("gui").at("pins")) {
                const int index = p.at("index");
                EXPECT_EQ(index, expectedIndex++) << id << ": pins out of order";
                const std::string direction = p.at("direction");
                EXPECT_TRUE(direction == "in" || direction == "out") << id;
                if (id == "KX_RadioButtons" && index >= kRadioFirstButton) {
                    EXPECT_EQ(p.at("datatype"), "float") << id << " button " << index;
                    continue;
                }
                MpGuiPinBase* pin = pins->getPin(index);
                ASSERT_NE(pin, nullptr) << id << " pin " << index << " is not bound";
                EXPECT_EQ(pin->getDatatype(), datatypes.at(p.at("datatype"))) << id << " pin " << index;
            }
            EXPECT_EQ(pins->nextPinIndex(), id == "KX_RadioButtons" ? int{kRadioFirstButton} : expectedIndex)
                << id << " binds pins the description lacks";
            object->release();
        }
    }
    EXPECT_EQ(described, 4);
}

// The registrations must reach the loadable bundle, not only this test program.
TEST(TimedModules, BundleCreatesEveryIdentifier) {
    void* handle = dlopen(KX_BUNDLE_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle, nullptr) << dlerror();
    using Entry = int32_t (*)(void**);
    auto entry = reinterpret_cast<Entry>(dlsym(handle, "MP_GetFactory"));
    ASSERT_NE(entry, nullptr);
    void* out = nullptr;
    ASSERT_EQ(entry(&out), gmpi::MP_OK);
    void* factory = nullptr;
    ASSERT_EQ(static_cast<gmpi::IMpUnknown*>(out)->queryInterface(gmpi::MP_IID_FACTORY2, &factory), gmpi::MP_OK);
    auto* f = static_cast<gmpi::IMpFactory2*>(factory);
    for (const wchar_t* id : kIdentifiers) {
        void* object = nullptr;
        ASSERT_EQ(f->createInstance2(id, gmpi::MP_SUB_TYPE_GUI2, &object), gmpi::MP_OK) << kx::toUtf8(id);
        static_cast<gmpi::IMpUnknown*>(object)->release();
    }
    dlclose(handle);
}
