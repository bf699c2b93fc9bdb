// One frame of a panel in kxhost: Panel::render of N widgets (N = 10, 100) made by the bundle's factory
// and set up as kxhost's session sets them up, each with its graphics host from the panel. A frame makes
// the panel's surface, fills the background and paints each widget through a device context of its own
// (the drawing interface: brushes, bitmaps and text formats as objects) into its place.
//
// Baseline: the same pixels drawn with Cairo directly: the same surface made and filled, and for each
// widget the same shapes at the same place, with colours, the image and the font set up once beforehand.
// Before timing, both frames are rendered once and compared byte for byte; the benchmark fails if they
// differ. The ratio is what the drawing interface and kxhost's implementation of it cost over Cairo.
//
// The widgets, in turn: a line (200 x 60), a text entry (200 x 24, one line of text in the demo skin's
// "normal" style), a dial (KX_Image, 56 x 56, one frame of dial.png) and a scroll bar (16 x 200).
#include <benchmark/benchmark.h>
#include <cairo.h>
#include <pango/pangocairo.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "DemoSkinHosts.h"
#include "GmpiDrawing.h"
#include "MpFactory.h"
#include "gmpi/IMpGraphics.h"
#include "gmpi/IMpUserInterface2.h"
#include "gui/Graphics.h"
#include "render/Drawing.h"

using GmpiDrawing::Color;

namespace {

enum Kind { Line, Entry, Dial, Bar, Kinds };

constexpr float kColumn = 210;
constexpr int kPerRow = 5;
const char* const kEntryText = "Cutoff 440 Hz";

GmpiDrawing_API::MP1_SIZE sizeOf(Kind kind) {
    switch (kind) {
        case Line:
            return {200, 60};
        case Entry:
            return {200, 24};
        case Dial:
            return {56, 56};
        default:
            return {16, 200};
    }
}

// N widgets, the kinds in blocks of equal share, five to a row; each row as high as its kind plus a gap.
struct Layout {
    struct Place {
        Kind kind;
        float x, y;
    };
    std::vector<Place> places;
    float width = kPerRow * kColumn, height = 0;

    explicit Layout(int n) {
        for (int k = 0; k < Kinds; ++k) {
            const int count = n / Kinds + (k < n % Kinds ? 1 : 0);
            const float rowHeight = sizeOf(static_cast<Kind>(k)).height + 10;
            for (int i = 0; i < count; ++i) {
                places.push_back({static_cast<Kind>(k), static_cast<float>(i % kPerRow) * kColumn, height});
                if (i % kPerRow == kPerRow - 1 || i == count - 1)
                    height += rowHeight;
            }
        }
    }
};

kxbench::DemoSkinHosts& skin() {
    static kxbench::DemoSkinHosts hosts;
    return hosts;
}

// What a module's setHost receives in kxhost: the session's GUI host and, for the graphics host, the
// panel's host of this instance.
class InstanceHost final : public gmpi::IMpUnknown {
public:
    explicit InstanceHost(kxhost::GraphicsHost& graphics) : graphics_(graphics) {}
    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        if (gmpi_gui::isGraphicsHostIid(iid))
            return graphics_.queryInterface(iid, out);
        return skin().gui.queryInterface(iid, out);
    }
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }

private:
    kxhost::GraphicsHost& graphics_;
};

void setText(gmpi::IMpUserInterface2B* m, int pin, const std::wstring& text) {
    m->setPin(pin, 0, static_cast<int32_t>(text.size() * sizeof(wchar_t)), text.data());
    m->notifyPin(pin, 0);
}
template <class T>
void setValue(gmpi::IMpUserInterface2B* m, int pin, T value) {
    m->setPin(pin, 0, sizeof value, &value);
    m->notifyPin(pin, 0);
}

gmpi::IMpUserInterface2B* makeWidget(Kind kind, gmpi::IMpUnknown* host) {
    static const wchar_t* const ids[] = {L"KX_Line", L"KX_BetterTextEntry", L"KX_Image", L"KX_ScrollBar"};
    void* made = nullptr;
    Factory()->createInstance2(ids[kind], gmpi::MP_SUB_TYPE_GUI2, &made);
    auto* m = static_cast<gmpi::IMpUserInterface2B*>(made);
    m->setHost(host);
    m->initialize();
    switch (kind) {
        case Line:
            setValue(m, 1, 0.4f);  // position
            setValue(m, 2, 2);     // thickness
            setText(m, 4, L"FF283038");
            break;
        case Entry:
            setText(m, 1, L"normal");
            setText(m, 0, L"Cutoff 440 Hz");
            break;
        case Dial:
            setValue(m, 0, 0.4f);
            setText(m, 1, L"dial.png");
            break;
        default:
            setValue(m, 2, 100);  // total
            setValue(m, 1, 20);   // visible
            setValue(m, 0, 30);   // position
            break;
    }
    return m;
}

// The panel as kxhost's session makes it.
class KxPanel {
public:
    explicit KxPanel(const Layout& layout) {
        decl_.size = GmpiDrawing_API::MP1_SIZE{layout.width, layout.height};
        decl_.background = 0xFF202020;
        for (size_t i = 0; i < layout.places.size(); ++i) {
            const auto& p = layout.places[i];
            std::string name = std::to_string(i);
            name.insert(0, 1, 'w');
            kxhost::Placement place{name, p.x, p.y,
                                    p.kind == Dial ? GmpiDrawing_API::MP1_SIZE{100, 100} : sizeOf(p.kind)};
            decl_.placements.push_back(place);
            kxhost::GraphicsHost& graphics = panel_.addInstance(name);
            hosts_.push_back(std::make_unique<InstanceHost>(graphics));
            gmpi::IMpUserInterface2B* m = makeWidget(p.kind, hosts_.back().get());
            void* face = nullptr;
            m->queryInterface(gmpi_gui_api::SE_IID_GRAPHICS_MPGUI2, &face);
            graphics.graphics = static_cast<gmpi_gui_api::IMpGraphics2*>(face);
            graphics.hasHitTest = true;
            modules_.push_back(m);
        }
    }
    ~KxPanel() {
        panel_.releaseModules();
        for (auto* m : modules_)
            m->release();
    }
    cairo_surface_t* frame() { return panel_.render(); }

private:
    kxhost::PanelDecl decl_;
    kxhost::Panel panel_{decl_, [](const std::string&) {}};
    std::vector<std::unique_ptr<InstanceHost>> hosts_;
    std::vector<gmpi::IMpUserInterface2B*> modules_;
};

// Cairo's components for a colour: kxhost draws in sRGB, the drawing interface's colours are linear.
struct Rgba {
    double r, g, b, a;
    explicit Rgba(const Color& c)
        : r(kxhost::draw::toSrgb(c.r)), g(kxhost::draw::toSrgb(c.g)), b(kxhost::draw::toSrgb(c.b)), a(c.a) {}
    void use(cairo_t* cr) const { cairo_set_source_rgba(cr, r, g, b, a); }
};

// The same frame in Cairo: what each widget draws, written out.
class CairoPanel {
public:
    explicit CairoPanel(const Layout& layout)
        : layout_(layout), dial_(cairo_image_surface_create_from_png(KX_SOURCE_DIR "/examples/skin/dial.png")) {
        font_ = pango_font_description_from_string("DejaVu Sans,Verdana");
        pango_font_description_set_absolute_size(font_, 12 * PANGO_SCALE);
        options_ = cairo_font_options_create();
        cairo_font_options_set_antialias(options_, CAIRO_ANTIALIAS_GRAY);
        cairo_font_options_set_hint_style(options_, CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_hint_metrics(options_, CAIRO_HINT_METRICS_OFF);
    }
    ~CairoPanel() {
        cairo_surface_destroy(dial_);
        pango_font_description_free(font_);
        cairo_font_options_destroy(options_);
    }

    cairo_surface_t* frame() {
        cairo_surface_t* s = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(layout_.width),
                                                        static_cast<int>(layout_.height));
        cairo_t* cr = cairo_create(s);
        cairo_set_source_rgba(cr, 0x20 / 255.0, 0x20 / 255.0, 0x20 / 255.0, 1.0);
        cairo_paint(cr);
        cairo_set_line_cap(cr, CAIRO_LINE_CAP_BUTT);
        for (const auto& p : layout_.places) {
            cairo_save(cr);
            cairo_translate(cr, p.x, p.y);
            switch (p.kind) {
                case Line:
                    line(cr);
                    break;
                case Entry:
                    entry(cr);
                    break;
                case Dial:
                    dial(cr);
                    break;
                default:
                    bar(cr);
                    break;
            }
            cairo_restore(cr);
        }
        cairo_destroy(cr);
        return s;
    }

private:
    static void fill(cairo_t* cr, double x0, double y0, double x1, double y1, const Rgba& c) {
        cairo_rectangle(cr, x0, y0, x1 - x0, y1 - y0);
        c.use(cr);
        cairo_fill(cr);
    }
    static void stroke(cairo_t* cr, const Rgba& c, double width) {
        c.use(cr);
        cairo_set_line_width(cr, width);
        cairo_stroke(cr);
    }

    void line(cairo_t* cr) const {
        fill(cr, 0, 0, 200, 60, lineBackground_);
        cairo_move_to(cr, 0, 25);
        cairo_line_to(cr, 200, 25);
        stroke(cr, lineColour_, 2);
    }
    void entry(cairo_t* cr) const {
        fill(cr, 3, 3, 197, 21, entryBackground_);
        PangoLayout* text = pango_cairo_create_layout(cr);
        pango_cairo_context_set_font_options(pango_layout_get_context(text), options_);
        pango_layout_set_font_description(text, font_);
        pango_layout_set_text(text, kEntryText, -1);
        PangoRectangle logical;
        pango_layout_get_extents(text, nullptr, &logical);
        entryText_.use(cr);
        cairo_move_to(cr, 6, 3 + (18 - static_cast<double>(logical.height) / PANGO_SCALE) / 2);
        pango_cairo_show_layout(cr, text);
        g_object_unref(text);
    }
    void dial(cairo_t* cr) const {
        // Frame 25 of the strip of 56 x 56 frames.
        cairo_set_source_surface(cr, dial_, 0, -25 * 56);
        cairo_rectangle(cr, 0, 0, 56, 56);
        cairo_fill(cr);
    }
    void bar(cairo_t* cr) const {
        fill(cr, 0, 0, 16, 200, barTrack_);
        cairo_rectangle(cr, 0.5, 0.5, 15, 199);
        stroke(cr, barDark_, 1);
        fill(cr, 2, 62, 14, 98, barThumb_);
        cairo_rectangle(cr, 2.5, 62.5, 11, 35);
        stroke(cr, barRim_, 1);
        for (double y : {77.5, 80.5, 83.5}) {
            cairo_move_to(cr, 4, y);
            cairo_line_to(cr, 12, y);
        }
        stroke(cr, barDark_, 1);
    }

    const Layout& layout_;
    cairo_surface_t* dial_;
    PangoFontDescription* font_;
    cairo_font_options_t* options_;
    const Rgba lineBackground_{Color::FromArgb(0xFF283038)}, lineColour_{Color::FromBytes(255, 128, 0)};
    const Rgba entryBackground_{Color::FromArgb(0xFF202024)}, entryText_{Color::FromArgb(0xFFE0E0E0)};
    // The bar's default colours: track, thumb, and a groove and rim a third of the way from its edge
    // colour to black and to white.
    static Color scaled(float add, float alpha) {
        const Color edge = Color::FromArgb(0xFF8C96A8);
        return Color((edge.r + add) * 0.333f, (edge.g + add) * 0.333f, (edge.b + add) * 0.333f, alpha);
    }
    const Rgba barTrack_{Color::FromArgb(0xFF25272C)}, barDark_{scaled(0, 1)};
    const Rgba barThumb_{Color::FromArgb(0xFF5B6270)}, barRim_{scaled(2, 0.45f)};
};

bool samePixels(cairo_surface_t* a, cairo_surface_t* b) {
    cairo_surface_flush(a);
    cairo_surface_flush(b);
    const int height = cairo_image_surface_get_height(a);
    return height == cairo_image_surface_get_height(b) &&
           cairo_image_surface_get_stride(a) == cairo_image_surface_get_stride(b) &&
           std::memcmp(cairo_image_surface_get_data(a), cairo_image_surface_get_data(b),
                       static_cast<size_t>(cairo_image_surface_get_stride(a)) * static_cast<size_t>(height)) == 0;
}

// Both frames once, compared; kept as PNG in the temporary folder when they differ, for a look.
bool framesAgree(KxPanel& kx, CairoPanel& cairo) {
    cairo_surface_t* a = kx.frame();
    cairo_surface_t* b = cairo.frame();
    const bool same = samePixels(a, b);
    if (!same) {
        const auto folder = std::filesystem::temp_directory_path();
        cairo_surface_write_to_png(a, (folder / "panel_render_kxhost.png").c_str());
        cairo_surface_write_to_png(b, (folder / "panel_render_cairo.png").c_str());
    }
    cairo_surface_destroy(a);
    cairo_surface_destroy(b);
    return same;
}

void KxhostPanelFrame(benchmark::State& state) {
    const Layout layout(static_cast<int>(state.range(0)));
    KxPanel kx(layout);
    CairoPanel cairo(layout);
    if (!framesAgree(kx, cairo)) {
        state.SkipWithError(
            "the Cairo baseline does not draw the panel's pixels (both frames are in the "
            "temporary folder as panel_render_*.png)");
        return;
    }
    for (auto _ : state)
        cairo_surface_destroy(kx.frame());
}

void CairoPanelFrame(benchmark::State& state) {
    const Layout layout(static_cast<int>(state.range(0)));
    CairoPanel cairo(layout);
    for (auto _ : state)
        cairo_surface_destroy(cairo.frame());
}

}  // namespace

BENCHMARK(KxhostPanelFrame)->Arg(10)->Arg(100)->Unit(benchmark::kMicrosecond);
BENCHMARK(CairoPanelFrame)->Arg(10)->Arg(100)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
