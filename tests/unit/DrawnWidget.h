// A drawn widget under test: hosted by a recording GUI and graphics host with a style file, arranged,
// painted into a recording device context and driven with pointer events.
//
//   kxtest::DrawnWidget<KX_Line> w({0, 0, 100, 40});
//   auto frame = w.render();  w.press({5, 5});
#pragma once

#include <memory>
#include <string>

#include "FakeGraphicsHost.h"

namespace kxtest {

// "normal": 12-unit text, light grey on dark, centred; with the fake format's metrics a 12-unit style
// makes rows of 15 units (9.6 + 2.4 + 1 + 2).
inline const char* const kDrawnStyles =
    "FONT_CATEGORY normal\nfont-size 12\nfont-color #E0E0E0\nbackground-color #202024\n"
    "FONT_CATEGORY right\nfont-size 12\ntext-align right\n";

template <class M>
struct DrawnWidget {
    // Style files are parsed once per process and path: this path holds these styles only.
    FakeSkinHost host{"/drawn-widgets/"};
    FakeGraphicsHost gfx{host};
    std::unique_ptr<M> module = std::make_unique<M>();

    explicit DrawnWidget(MP1_RECT rect = {0, 0, 100, 100}) {
        host.files[host.folder + "global"] = kDrawnStyles;
        module->setHost(gfx.unknown());
        module->arrange(rect);
    }

    FakeDeviceContext render() {
        FakeDeviceContext dc(gfx.factory);
        module->OnRender(&dc);
        return dc;
    }
    int32_t press(MP1_POINT p, int32_t flags = 0x10) { return module->onPointerDown(flags, p); }
    int32_t move(MP1_POINT p, int32_t flags = 0x10) { return module->onPointerMove(flags, p); }
    int32_t release(MP1_POINT p = {0, 0}, int32_t flags = 0x10) { return module->onPointerUp(flags, p); }

    template <class V>
    void set(int pin, const V& value) {
        deliver(*module, pin, value);
    }
    void setText(int pin, const std::wstring& value) { deliverText(*module, pin, value); }
    // The values sent on a pin since the last clear, as ints, floats or bools.
    std::vector<Transmission> sent(int pin) const { return host.on(pin); }
};

}  // namespace kxtest
