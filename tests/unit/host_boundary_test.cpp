#include <gtest/gtest.h>

#include <stdexcept>

#include "FakeAudioHost.h"
#include "FakeGraphicsHost.h"
#include "MpBase2.h"
#include "MpFactory.h"
#include "MpGuiGfxBase.h"
#include "MpString.h"

namespace {

[[noreturn]] void fail() { throw std::runtime_error("module failed"); }

// Every entry a host can reach throws, except the count the test needs to clean up.
struct GuiThrower : SeGuiInvisibleBase {
    int32_t queryInterface(const gmpi::MpGuid&, void**) override { fail(); }
    int32_t setHost(gmpi::IMpUnknown*) override { fail(); }
    int32_t initialize() override { fail(); }
    int32_t setPin(int32_t, int32_t, int32_t, const void*) override { fail(); }
    int32_t notifyPin(int32_t, int32_t) override { fail(); }
    int32_t receiveMessageFromAudio(int32_t, int32_t, const void*) override { fail(); }
    int32_t populateContextMenu(float, float, gmpi::IMpUnknown*) override { fail(); }
    int32_t onContextMenu(int32_t) override { fail(); }
    int32_t getToolTip(float, float, gmpi::IMpUnknown*) override { fail(); }
};

struct DspThrower : MpBase2 {
    int32_t queryInterface(const gmpi::MpGuid&, void**) override { fail(); }
    int32_t setHost(gmpi::IMpUnknown*) override { fail(); }
    int32_t open() override { fail(); }
    int32_t setBuffer(int32_t, float*) override { fail(); }
    void process(int32_t, gmpi::MpEvent*) override { fail(); }
    void process(int32_t, const gmpi::MpEvent*) override { fail(); }
    int32_t receiveMessageFromGui(int32_t, int32_t, void*) override { fail(); }
    int32_t receiveMessageFromGui(int32_t, int32_t, const void*) override { fail(); }
};

struct GfxThrower : gmpi_gui::MpGuiGfxBase {
    using MpGuiGfxBase::getToolTip;
    int32_t measure(GmpiDrawing_API::MP1_SIZE, GmpiDrawing_API::MP1_SIZE*) override { fail(); }
    int32_t arrange(GmpiDrawing_API::MP1_RECT) override { fail(); }
    int32_t OnRender(GmpiDrawing_API::IMpDeviceContext*) override { fail(); }
    int32_t onPointerDown(int32_t, GmpiDrawing_API::MP1_POINT) override { fail(); }
    int32_t onPointerMove(int32_t, GmpiDrawing_API::MP1_POINT) override { fail(); }
    int32_t onPointerUp(int32_t, GmpiDrawing_API::MP1_POINT) override { fail(); }
    int32_t hitTest(GmpiDrawing_API::MP1_POINT) override { fail(); }
    int32_t getToolTip(GmpiDrawing_API::MP1_POINT, gmpi::IString*) override { fail(); }
};

}  // namespace

// The host reaches a module only through the object the factory made: each slot of each face it can
// hold must turn the module's throw into -1 (process, which answers nothing, just returns).
TEST(HostBoundary, EveryGuiSlotOfAFactoryMadeModuleCatches) {
    auto* m = static_cast<gmpi::IMpUserInterface2B*>(gmpi::Register<GuiThrower>::create());
    kxtest::FakeGuiHost host;
    void* out = nullptr;
    int data = 1;
    EXPECT_EQ(m->queryInterface(gmpi::MP_IID_GUI_PLUGIN2, &out), gmpi::MP_FAIL);
    EXPECT_EQ(m->setHost(host.unknown()), gmpi::MP_FAIL);
    EXPECT_EQ(m->initialize(), gmpi::MP_FAIL);
    EXPECT_EQ(m->setPin(0, 0, 4, &data), gmpi::MP_FAIL);
    EXPECT_EQ(m->notifyPin(0, 0), gmpi::MP_FAIL);
    EXPECT_EQ(m->receiveMessageFromAudio(0, 4, &data), gmpi::MP_FAIL);
    EXPECT_EQ(m->populateContextMenu(0, 0, nullptr), gmpi::MP_FAIL);
    EXPECT_EQ(m->onContextMenu(0), gmpi::MP_FAIL);
    EXPECT_EQ(m->getToolTip(0, 0, nullptr), gmpi::MP_FAIL);
    EXPECT_EQ(m->release(), 0);
}

TEST(HostBoundary, EveryDspSlotOfEveryFaceCatches) {
    auto* plugin2 = static_cast<gmpi::IMpPlugin2*>(gmpi::Register<DspThrower>::create());
    // The other faces, found as the factory finds the initialisation face: the module itself throws
    // from queryInterface.
    auto* plugin = dynamic_cast<gmpi::IMpPlugin*>(plugin2);
    auto* legacy = dynamic_cast<gmpi::IMpLegacyInitialization*>(plugin2);
    auto* oldSchool = dynamic_cast<IoldSchoolInitialisation*>(plugin2);
    ASSERT_TRUE(plugin && legacy && oldSchool);
    kxtest::FakeAudioHost host;
    gmpi::MpEvent event{0, gmpi::EVENT_PIN_SET, 0, 4, 1, 0, nullptr, nullptr};
    int data = 1;
    void* out = nullptr;
    float buffer[4] = {};

    EXPECT_EQ(plugin2->queryInterface(gmpi::MP_IID_PLUGIN2, &out), gmpi::MP_FAIL);
    EXPECT_EQ(plugin2->open(), gmpi::MP_FAIL);
    EXPECT_EQ(plugin2->setBuffer(0, buffer), gmpi::MP_FAIL);
    EXPECT_NO_THROW(plugin2->process(4, static_cast<const gmpi::MpEvent*>(&event)));
    EXPECT_EQ(plugin2->receiveMessageFromGui(0, 4, static_cast<const void*>(&data)), gmpi::MP_FAIL);

    EXPECT_EQ(plugin->queryInterface(gmpi::MP_IID_PLUGIN, &out), gmpi::MP_FAIL);
    EXPECT_EQ(plugin->open(), gmpi::MP_FAIL);
    EXPECT_EQ(plugin->setBuffer(0, buffer), gmpi::MP_FAIL);
    EXPECT_NO_THROW(plugin->process(4, &event));
    EXPECT_EQ(plugin->receiveMessageFromGui(0, 4, &data), gmpi::MP_FAIL);

    EXPECT_EQ(legacy->setHost(host.unknown()), gmpi::MP_FAIL);
    EXPECT_EQ(oldSchool->setHost(host.unknown()), gmpi::MP_FAIL);
    EXPECT_EQ(legacy->release(), 0);
}

TEST(HostBoundary, EveryGraphicsSlotCatches) {
    gmpi::IMpUnknown* m = gmpi::Register<GfxThrower>::create();
    void* out = nullptr;
    ASSERT_EQ(m->queryInterface(gmpi_gui_api::SE_IID_GRAPHICS_MPGUI2, &out), gmpi::MP_OK);
    auto* face = static_cast<gmpi_gui_api::IMpGraphics2*>(out);
    kxtest::FakeFactory factory;
    kxtest::FakeDeviceContext dc(factory);
    gmpi_sdk::MpString text;
    GmpiDrawing_API::MP1_SIZE desired{};
    EXPECT_EQ(face->measure({10, 10}, &desired), gmpi::MP_FAIL);
    EXPECT_EQ(face->arrange({0, 0, 10, 10}), gmpi::MP_FAIL);
    EXPECT_EQ(face->OnRender(&dc), gmpi::MP_FAIL);
    EXPECT_EQ(face->onPointerDown(0x10, {1, 1}), gmpi::MP_FAIL);
    EXPECT_EQ(face->onPointerMove(0x10, {1, 1}), gmpi::MP_FAIL);
    EXPECT_EQ(face->onPointerUp(0x10, {1, 1}), gmpi::MP_FAIL);
    EXPECT_EQ(face->hitTest({1, 1}), gmpi::MP_FAIL);
    EXPECT_EQ(face->getToolTip({1, 1}, &text), gmpi::MP_FAIL);
    EXPECT_EQ(face->release(), 1);
    EXPECT_EQ(m->release(), 0);
}
