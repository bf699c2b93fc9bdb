#include <gtest/gtest.h>


#include <map>
#include <string>


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

