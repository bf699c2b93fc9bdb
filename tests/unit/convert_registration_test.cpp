#include <gtest/gtest.h>

#include "FakeGuiHost.h"
#include "MpFactory.h"
#include "MpGuiBase2.h"

// Every conversion, text, increment and random identifier exists on the GUI side only.
TEST(ConvertRegistration, EachIdentifierIsCreatedOnTheGuiSideOnly) {
    const wchar_t* const ids[] = {
        L"KX_V2dB",        L"KX_dB2V",         L"KX_Oct2Hz",      L"KX_Hz2Oct",         L"KX_GUI_MIDI2Pitch",
        L"KX_GUI_Pitch2MIDI", L"KX_MIDI2Note", L"KX_Pitch2Note",  L"KX_Int2TxtC",       L"KX_Float2TxtC",
        L"KX_ARGB2Str",    L"KX_SplitFName",   L"KX_AppendFName", L"KX_StringLoader",   L"KX_StringSaver",
        L"KX_IntInc",      L"KX_FloatInc",     L"KX_PMInc",       L"KX_RndInt",         L"KX_RndFloat",
    };
    MpFactory& factory = *Factory();
    kxtest::FakeGuiHost host;
    for (const wchar_t* id : ids) {
        SCOPED_TRACE(testing::Message() << static_cast<const void*>(id));
        void* out = &factory;
        EXPECT_EQ(factory.createInstance2(id, 0, &out), gmpi::MP_NOSUPPORT);
        EXPECT_EQ(out, nullptr);
        ASSERT_EQ(factory.createInstance2(id, 2, &out), gmpi::MP_OK);
        ASSERT_NE(out, nullptr);
        auto* module = static_cast<gmpi::IMpUserInterface2B*>(out);
        EXPECT_EQ(module->setHost(host.unknown()), gmpi::MP_OK);
        EXPECT_EQ(module->initialize(), gmpi::MP_OK);
        EXPECT_EQ(module->release(), 0);
    }
}
