#include <gtest/gtest.h>

#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

#include "MpFactory.h"
#include "logic/DspGuiBridges.h"
#include "logic/GuiSampleRate.h"
#include "logic/GuiSet2Trig.h"
#include "logic/PatchMemory.h"

namespace {

struct Created {
    gmpi::IMpUnknown* object = nullptr;
    ~Created() {
        if (object)
            object->release();
    }
};

}  // namespace

TEST(DspRegistry, TwoSidedIdentifiersCreateBothHalvesAndPairsShareTheirClasses) {
    const std::vector<std::pair<const wchar_t*, const wchar_t*>> pairs = {
        {L"KX_IntDspGuiBridge", L"KX_IntDspGuiBridge2"},
        {L"KX_FloatDspGuiBridge", L"KX_FloatDspGuiBridge2"},
        {L"KX_BoolDspGuiBridge", L"KX_BoolDspGuiBridge2"},
        {L"KX_TextDspGuiBridge", L"KX_TextDspGuiBridge2"},
        {L"KX_BlobDspGuiBridge", L"KX_BlobDspGuiBridge2"},
        {L"KX_PM_INT_NAC", L"KX_PM_INT_NAC_VOL"},
        {L"KX_PM_FLOAT_NAC", L"KX_PM_FLOAT_NAC_VOL"},
        {L"KX_PM_BOOL_NAC", L"KX_PM_BOOL_NAC_VOL"},
        {L"KX_PM_TEXT_NAC", L"KX_PM_TEXT_NAC_VOL"},
        {L"KX_PM_BLOB_NAC", L"KX_PM_BLOB_NAC_VOL"},
        {L"KX_PM_LIST_NAC", L"KX_PM_LIST_NAC_VOL"},
        {L"KX_GUISampleRate", L"KX_GUISampleRate"},
        {L"KX_GUISet2Trig", L"KX_GUISet2Trig"}};
    MpFactory& f = *Factory();
    for (const auto& [a, b] : pairs) {
        SCOPED_TRACE(std::wstring(a).size());
        Created dspA, dspB, guiA, guiB;
        ASSERT_EQ(f.createInstance2(a, 0, reinterpret_cast<void**>(&dspA.object)), 0);
        ASSERT_EQ(f.createInstance2(b, 0, reinterpret_cast<void**>(&dspB.object)), 0);
        ASSERT_EQ(f.createInstance2(a, 2, reinterpret_cast<void**>(&guiA.object)), 0);
        ASSERT_EQ(f.createInstance2(b, 2, reinterpret_cast<void**>(&guiB.object)), 0);
        auto* pluginA = dynamic_cast<MpPluginBase*>(static_cast<gmpi::IMpPlugin2*>(dspA.object));
        auto* pluginB = dynamic_cast<MpPluginBase*>(static_cast<gmpi::IMpPlugin2*>(dspB.object));
        ASSERT_NE(pluginA, nullptr);
        ASSERT_NE(pluginB, nullptr);
        EXPECT_EQ(typeid(*pluginA), typeid(*pluginB));
        auto* uiA = dynamic_cast<MpGuiBase2*>(static_cast<gmpi::IMpUserInterface2B*>(guiA.object));
        auto* uiB = dynamic_cast<MpGuiBase2*>(static_cast<gmpi::IMpUserInterface2B*>(guiB.object));
        ASSERT_NE(uiA, nullptr);
        EXPECT_EQ(typeid(*uiA), typeid(*uiB));
    }
    Created pm, list;
    f.createInstance2(L"KX_PM_INT_NAC_VOL", 0, reinterpret_cast<void**>(&pm.object));
    f.createInstance2(L"KX_PM_LIST_NAC", 0, reinterpret_cast<void**>(&list.object));
    EXPECT_NE(dynamic_cast<KX_PM_INT_DSP*>(static_cast<gmpi::IMpPlugin2*>(pm.object)), nullptr);
    EXPECT_EQ(dynamic_cast<KX_PM_INT_DSP*>(static_cast<gmpi::IMpPlugin2*>(list.object)), nullptr)
        << "the list type is a class of its own";
}

TEST(DspRegistry, CreateInstanceHandsTheAudioHostToTheDspHalf) {
    struct NoHost : gmpi::IMpUnknown {
        int32_t queryInterface(const gmpi::MpGuid&, void** out) override {
            *out = nullptr;
            return gmpi::MP_NOSUPPORT;
        }
        int32_t addRef() override { return 1; }
        int32_t release() override { return 1; }
    } noHost;
    Created c;
    EXPECT_EQ(Factory()->createInstance(L"KX_GUISet2Trig", 0, &noHost, reinterpret_cast<void**>(&c.object)), 0)
        << "a host without the audio interface is not a creation failure";
    EXPECT_NE(c.object, nullptr);
}
