// Validation of graphic GUI halves: a graphics host of the host's own panel (drawing factory, pointer
// capture, file dialogs and text editors) is offered before setHost; a half that answers the graphics
// face then gets odd available sizes and rectangles, paints into small Cairo targets, and takes random
// pointer sequences, hit tests and tool tips. Dialogs and editors it opens are the panel's counted host
// objects, completed or cancelled at random, so one the module keeps after release shows as left behind.
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <optional>
#include <sstream>
#include <string>

#include "gmpi/IMpDrawingFactory.h"
#include "gui/Graphics.h"
#include "render/Drawing.h"
#include "validate/Validate.h"

namespace kxhost::validate {

namespace {

using GmpiDrawing_API::MP1_POINT;
using GmpiDrawing_API::MP1_RECT;
using GmpiDrawing_API::MP1_SIZE;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float inf = std::numeric_limits<float>::infinity();
constexpr float big = std::numeric_limits<float>::max();

std::string num(float v) {
    if (std::isnan(v))
        return "NaN";
    if (std::isinf(v))
        return v > 0 ? "inf" : "-inf";
    char b[32];
    std::snprintf(b, sizeof b, "%g", static_cast<double>(v));
    return b;
}

// Step labels are built in a stream: GCC 12 at -O3 reports a false overlap (-Wrestrict) for chains of
// std::string operator+ that start with a literal.
template <class... Parts>
std::string label(const Parts&... parts) {
    std::ostringstream out;
    (out << ... << parts);
    return out.str();
}

std::string rectLabel(const MP1_RECT& r) {
    return label("(", num(r.left), ",", num(r.top), ",", num(r.right), ",", num(r.bottom), ")");
}

class GraphicsAspect final : public Aspect {
public:
    void offer(Subject& s, FaceTable& faces) override {
        if (s.side != Side::Gui)
            return;
        panel_ = std::make_unique<Panel>(decl_, [](const std::string&) {});
        host_ = &panel_->addInstance(s.module.id);
        faces.offer(gmpi_gui::SE_IID_GRAPHICS_HOST, host_);
        faces.offer(gmpi_gui::SE_IID_GRAPHICS_HOST_BASE, host_);
        faces.offer(GmpiDrawing_API::SE_IID_FACTORY_MPGUI, &panel_->factory);
        faces.offer(GmpiDrawing_API::SE_IID_FACTORY2_MPGUI, &panel_->factory);
    }

    bool attach(Subject& s) override {
        if (!panel_)
            return false;
        void* face = nullptr;
        s.call("queryInterface(graphics 2)",
               [&] { return s.object->queryInterface(gmpi_gui_api::SE_IID_GRAPHICS_MPGUI2, &face); });
        host_->hasHitTest = face != nullptr;
        if (!face)
            s.call("queryInterface(graphics)",
                   [&] { return s.object->queryInterface(gmpi_gui_api::SE_IID_GRAPHICS_MPGUI, &face); });
        // Without the graphics face the half still reaches the graphics host (invisible modules open
        // dialogs from pins): its rounds then answer those, and detach closes what is left open.
        if (!face || s.stopped)
            return !s.stopped;
        host_->graphics = static_cast<gmpi_gui_api::IMpGraphics*>(face);
        // Laid out once as a panel would, so the hostile rounds start from a module that has a place.
        measure(s, {100, 100});
        arrange(s, {0, 0, 100, 100});
        return !s.stopped;
    }

    void round(Subject& s) override {
        const int kind = host_->graphics ? s.pick(100) : 100;
        if (kind < 15) {
            static const float odd[] = {0, -1, -1e30f, nan, inf, -inf, 1e30f, big, 0.5f, 100};
            measure(s, {odd[s.pick(10)], odd[s.pick(10)]});
        } else if (kind < 30) {
            static const MP1_RECT odd[] = {
                {100, 100, 0, 0}, {nan, nan, nan, nan}, {0, 0, nan, 50},        {-1e30f, -1e30f, 1e30f, 1e30f},
                {0, 0, inf, inf}, {0, 0, 0, 0},         {-big, -big, big, big}, {10, 20, 110, 70}};
            arrange(s, odd[s.pick(8)]);
        } else if (kind < 45) {
            const int w = 1 + s.pick(64), h = 1 + s.pick(64);
            auto* dc = new draw::DeviceContext(&panel_->factory, w, h);
            s.call(label("OnRender into a ", w, "x", h, " context"), [&] { return host_->graphics->OnRender(dc); });
            dc->release();
        } else if (kind < 75) {
            pointerSequence(s);
        } else if (kind < 88) {
            const MP1_POINT p = point(s);
            const std::string at = label(" at (", num(p.x), ",", num(p.y), ")");
            if (host_->hasHitTest) {
                auto* g2 = static_cast<gmpi_gui_api::IMpGraphics2*>(host_->graphics);
                s.call("hitTest" + at, [&] { return g2->hitTest(p); });
                auto* text = new ReturnString;
                s.call("graphics getToolTip" + at, [&] { return g2->getToolTip(p, text); });
                text->release();
            } else {
                s.call("onPointerMove" + at, [&] { return host_->graphics->onPointerMove(0, p); });
            }
        } else {
            answer(s);
        }
    }

    void detach(Subject& s) override {
        // Open dialogs hold the module's completion handlers: they go without a call back, as when a
        // window closes, before the module's last reference does.
        s.call("closing open dialogs and editors", [&] {
            panel_->releaseModules();
            return gmpi::MP_OK;
        });
        if (host_->graphics)
            s.call("release of the graphics face", [&] { return host_->graphics->release(); });
        host_->graphics = nullptr;
    }

private:
    void measure(Subject& s, MP1_SIZE available) {
        MP1_SIZE desired{nan, nan};
        s.call(label("measure ", num(available.width), "x", num(available.height)),
               [&] { return host_->graphics->measure(available, &desired); });
    }

    void arrange(Subject& s, const MP1_RECT& r) {
        host_->rect = r;  // what getLayoutRect answers from now on, odd or not
        s.call(label("arrange ", rectLabel(r)), [&] { return host_->graphics->arrange(r); });
    }

    // Mostly inside the arranged rectangle (where buttons are), else anywhere, NaN and far outside.
    MP1_POINT point(Subject& s) {
        const MP1_RECT r = host_->rect.value_or(MP1_RECT{0, 0, 100, 100});
        const float w = r.right - r.left, h = r.bottom - r.top;
        if (s.chance(60) && std::isfinite(w) && std::isfinite(h) && w > 0 && h > 0 && w < 1e6f && h < 1e6f)
            return {static_cast<float>(s.pick(1000)) * w / 1000, static_cast<float>(s.pick(1000)) * h / 1000};
        return {Inputs::coordinate(s.rng), Inputs::coordinate(s.rng)};
    }

    int32_t flags(Subject& s) {
        if (s.chance(15))
            return static_cast<int32_t>(s.rng());
        static const int32_t buttons[] = {gmpi_gui_api::GG_POINTER_FLAG_FIRSTBUTTON,
                                          gmpi_gui_api::GG_POINTER_FLAG_SECONDBUTTON,
                                          gmpi_gui_api::GG_POINTER_FLAG_THIRDBUTTON, 0};
        static const int32_t keys[] = {0, 0, gmpi_gui_api::GG_POINTER_KEY_SHIFT, gmpi_gui_api::GG_POINTER_KEY_CONTROL,
                                       gmpi_gui_api::GG_POINTER_KEY_ALT};
        return buttons[s.pick(s.chance(70) ? 1 : 4)] | keys[s.pick(5)];
    }

    // Down, moves, up; sometimes a part is missing (an up without a down, a down never released), and
    // sometimes a storm of moves, as a fast drag across a busy panel sends.
    void pointerSequence(Subject& s) {
        auto* g = host_->graphics;
        auto send = [&](const char* what, int32_t (gmpi_gui_api::IMpGraphics::*event)(int32_t, MP1_POINT)) {
            const int32_t f = flags(s);
            const MP1_POINT p = point(s);
            s.call(label(what, " flags 0x", hex(f), " at (", num(p.x), ",", num(p.y), ")"),
                   [&] { return (g->*event)(f, p); });
        };
        if (s.chance(90))
            send("onPointerDown", &gmpi_gui_api::IMpGraphics::onPointerDown);
        for (int n = s.chance(10) ? 200 + s.pick(300) : s.pick(5); n > 0 && !s.stopped; --n)
            send("onPointerMove", &gmpi_gui_api::IMpGraphics::onPointerMove);
        if (s.chance(90) && !s.stopped)
            send("onPointerUp", &gmpi_gui_api::IMpGraphics::onPointerUp);
        settle(s);
    }

    // Completes or cancels the oldest open dialog or editor (or the next one the module opens).
    void answer(Subject& s) {
        std::optional<std::string> a;
        const int kind = s.pick(4);
        if (kind == 1)
            a = (s.folder / "chosen file.txt").string();
        else if (kind == 2)
            a = "";
        else if (kind == 3) {
            const Input in = s.inputs.value(Datatype::Text, s.rng);
            if (in.size() > 0)
                a = std::string(static_cast<const char*>(in.data()), static_cast<size_t>(in.size()));
            else
                a = "";
        }
        const bool file = s.chance(50);
        const std::string what = a ? label(file ? "file dialog " : "text editor ", "answered (", a->size(), " bytes)")
                                   : label(file ? "file dialog " : "text editor ", "cancelled");
        s.call(what, [&] {
            file ? panel_->answerFileDialog({}, a) : panel_->answerTextEdit({}, a);
            return gmpi::MP_OK;
        });
        settle(s);
    }

    // Completions already answered run once the module's own call has returned, as a real dialog's do.
    void settle(Subject& s) {
        s.call("completion of shown dialogs", [&] {
            panel_->runCompletions();
            return gmpi::MP_OK;
        });
    }

    static std::string hex(int32_t v) {
        char b[16];
        std::snprintf(b, sizeof b, "%x", static_cast<unsigned>(v));
        return b;
    }

    PanelDecl decl_;  // no placements: the validator lays the module out itself
    std::unique_ptr<Panel> panel_;
    GraphicsHost* host_ = nullptr;
};

const bool registered = Aspects::add([] { return std::make_unique<GraphicsAspect>(); });

}  // namespace

}  // namespace kxhost::validate
