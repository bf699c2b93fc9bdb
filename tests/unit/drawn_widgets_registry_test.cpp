#include <gtest/gtest.h>

#include "FakeGraphicsHost.h"
#include "FontCache.h"
#include "ManualTimerBackend.h"
#include "MpFactory.h"
#include "TextCodec.h"
#include "gmpi/IMpGraphics.h"
#include "gmpi/IMpUserInterface2.h"

// The drawn widgets made by the factory, used, and released mid-gesture (a thumb held, an editor open,
// a button repeating) leave nothing behind: no timer, no text format, no host object.
TEST(DrawnWidgets, ReleasedMidGestureTheyLeaveNothingBehind) {
    kx::ManualTimerBackend loop;
    kxtest::FakeSkinHost host("/drawn-widgets-released/");  // no style file: every style is the default
    kxtest::FakeGraphicsHost gfx(host);
    gfx.makeTextEdits = true;
    const auto timers = TimerManager::Instance().census().registrations;
    for (const wchar_t* id :
         {L"KX_BetterListBox", L"KX_BetterTextEntry", L"KX_ScrollBar", L"KX_Line", L"KX_MouseBox", L"KX_HoverBox"}) {
        void* made = nullptr;
        ASSERT_EQ(Factory()->createInstance2(id, gmpi::MP_SUB_TYPE_GUI2, &made), gmpi::MP_OK);
        auto* gui = static_cast<gmpi::IMpUserInterface2B*>(made);
        gui->setHost(gfx.unknown());
        void* face = nullptr;
        ASSERT_EQ(gui->queryInterface(gmpi_gui_api::SE_IID_GRAPHICS_MPGUI2, &face), gmpi::MP_OK);
        auto* g = static_cast<gmpi_gui_api::IMpGraphics2*>(face);
        // Pins 4 and 5 true: the scroll bar's buttons held, the text entry editable.
        const bool on = true;
        for (int pin : {4, 5}) {
            gui->setPin(pin, 0, 1, &on);
            gui->notifyPin(pin, 0);
        }
        g->arrange({0, 0, 60, 40});
        kxtest::FakeDeviceContext dc(gfx.factory);
        g->OnRender(&dc);
        g->onPointerDown(0x10, {30, 20});
        g->onPointerUp(0x10, {30, 20});
        g->onPointerDown(0x10, {30, 20});
        loop.advance(30);
        g->release();
        EXPECT_EQ(gui->release(), 0) << "the count of " << kx::toUtf8(id);
    }
    EXPECT_EQ(TimerManager::Instance().census().registrations, timers);
    EXPECT_EQ(FontCache::instance().textFormatCount(), 0u);
    ASSERT_EQ(gfx.textEdits.size(), 1u);
    gfx.textEdits[0]->complete("after the entry has gone");
    EXPECT_EQ(kxtest::Counted<gmpi_gui::IMpPlatformText>::live, 0);
    EXPECT_EQ(kxtest::Counted<GmpiDrawing_API::IMpTextFormat>::live, 0);
}
