// A skinned widget under test on fake hosts: film strips served from a map, the widget laid out, the
// host's echo of every transmitted value into the sender's own pin (as kxhost and real hosts do), and
// pointer helpers in the widget's own coordinates.
#pragma once

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "FakeGraphicsHost.h"
#include "gmpi/IMpGraphics.h"

namespace kxtest {

constexpr int32_t kFirstButton = gmpi_gui_api::GG_POINTER_FLAG_FIRSTBUTTON;
constexpr int32_t kFine = gmpi_gui_api::GG_POINTER_FLAG_FIRSTBUTTON | gmpi_gui_api::GG_POINTER_KEY_CONTROL;

template <class M>
struct SkinWidget {
    FakeSkinHost host;
    FakeGraphicsHost gfx{host};
    M module;

    explicit SkinWidget(GmpiDrawing_API::MP1_RECT layout = {0, 0, 100, 100}) {
        module.setHost(gfx.unknown());
        host.onTransmit = [this](int pin, int size, const void* data) {
            module.setPin(pin, 0, size, data);
            module.notifyPin(pin, 0);
        };
        module.arrange(layout);
    }

    // A strip of frames of width x height, every pixel fill, with its metadata file: no padding, then meta.
    void strip(const std::string& name, int width, int height, int frames, const std::string& meta,
               uint32_t fill = 0xFF808080) {
        gfx.factory.images["/skin/" + name] = {uint32_t(width), uint32_t(height * frames), fill};
        host.files["/skin/" + name.substr(0, name.rfind('.')) + ".txt"] =
            "frame_size " + std::to_string(width) + " " + std::to_string(height) + "\npadding 0 0 0 0\n" + meta;
    }
    void load(int pin, const std::string& name) { deliverText(module, pin, std::wstring(name.begin(), name.end())); }
    void sendText(int pin, const std::wstring& value) { deliverText(module, pin, value); }
    template <class V>
    void set(int pin, V value) {
        deliver(module, pin, value);
    }
    FakeBitmap& pixels() { return *static_cast<FakeBitmap*>(module.getDrawBitmap().Get()); }

    int32_t down(float x, float y, int32_t flags = kFirstButton) { return module.onPointerDown(flags, {x, y}); }
    int32_t move(float x, float y, int32_t flags = kFirstButton) { return module.onPointerMove(flags, {x, y}); }
    int32_t up(float x, float y, int32_t flags = kFirstButton) { return module.onPointerUp(flags, {x, y}); }
    // Moves in equal steps from (x0, y0) to (x1, y1), the last move landing on the end point.
    void moveAlong(float x0, float y0, float x1, float y1, int steps, int32_t flags = kFirstButton) {
        for (int i = 1; i <= steps; ++i)
            move(x0 + (x1 - x0) * float(i) / float(steps), y0 + (y1 - y0) * float(i) / float(steps), flags);
    }
    // Moves along a circle round (cx, cy) from one angle to another (degrees, clockwise on the screen
    // from the right-hand horizontal), in steps of at most 5 degrees.
    void moveRound(float cx, float cy, float radius, float fromDegrees, float toDegrees, int32_t flags = kFirstButton) {
        const int steps = std::max(1, int(std::abs(toDegrees - fromDegrees) / 5.0f + 0.5f));
        for (int i = 1; i <= steps; ++i) {
            const float a = (fromDegrees + (toDegrees - fromDegrees) * float(i) / float(steps)) * 3.14159265f / 180.0f;
            move(cx + radius * std::cos(a), cy + radius * std::sin(a), flags);
        }
    }

    // Values the widget sent on a pin, in order, and the host's idea of its current value.
    std::vector<float> floats(int pin) const {
        std::vector<float> v;
        for (const auto& t : host.on(pin))
            v.push_back(t.asFloat());
        return v;
    }
    std::vector<int> ints(int pin) const {
        std::vector<int> v;
        for (const auto& t : host.on(pin))
            v.push_back(t.bytes.size() == 1 ? t.bytes[0] : t.asInt());
        return v;
    }
    float lastFloat(int pin) const {
        const auto v = floats(pin);
        return v.empty() ? -1e9f : v.back();
    }
};

}  // namespace kxtest
