// One frame of each drawn widget (list box, text entry, scroll bar, line, mouse box, hover box) through
// the drawing interface, painted by kxhost's renderer into a Cairo image surface; a panel of 100 of
// them; a list box of 10,000 rows. Each against a baseline that makes the same drawing calls, with the
// same brushes, texts and text format, through the same kind of device context, written straight in
// the benchmark: the least work the interface forces. The ratio is what the widget's own logic costs.
//
// A second text entry of a style costs a font-cache look-up, not a new text format: TextEntryOfAKnownStyle
// against TextFormatCreation, what making the format would cost.
#include <benchmark/benchmark.h>

#include <cairo.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "DemoSkinHosts.h"
#include "FontCache.h"
#include "GmpiDrawing.h"
#include "TextCodec.h"
#include "render/Drawing.h"
#include "widgets/BetterListBox.h"
#include "widgets/BetterTextEntry.h"
#include "widgets/Line.h"
#include "widgets/MouseAreas.h"
#include "widgets/ScrollBar.h"

using GmpiDrawing::Color;
using GmpiDrawing::Rect;
using GmpiDrawing_API::MP1_RECT;

namespace {

using Hosts = kxbench::DemoSkinHosts;

Hosts& hosts() {
    static Hosts h;
    return h;
}

struct Surface {
    cairo_surface_t* surface;
    cairo_t* cr;
    Surface(int w, int h) : surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, w, h)), cr(cairo_create(surface)) {}
    ~Surface() {
        cairo_destroy(cr);
        cairo_surface_destroy(surface);
    }
};

// One frame through a fresh device context over the surface, as kxhost paints a module: its place on
// the panel is the context's base transform and clip.
void paint(Surface& s, float x, float y, float w, float h,
           const std::function<void(GmpiDrawing_API::IMpDeviceContext*)>& draw) {
    cairo_save(s.cr);
    cairo_translate(s.cr, x, y);
    cairo_rectangle(s.cr, 0, 0, w, h);
    cairo_clip(s.cr);
    auto* dc = new kxhost::draw::DeviceContext(&hosts().factory, s.cr);
    draw(dc);
    dc->release();
    cairo_restore(s.cr);
}

// ---- the widgets, set up as a patch would set them, and their baselines

template <class M>
std::unique_ptr<M> hosted(MP1_RECT rect) {
    auto m = std::make_unique<M>();
    m->setHost(hosts().graphics.unknown());
    m->arrange(rect);
    return m;
}

std::wstring numbered(int n) {
    std::wstring list;
    for (int i = 0; i < n; ++i)
        list += (i ? L"," : L"") + std::wstring(L"Item ") + std::to_wstring(i);
    return list;
}

struct ListBox {
    static constexpr float w = 200, h = 120;
    std::unique_ptr<KX_BetterListBox> module;
    explicit ListBox(int rows = 10, int scroll = 0, float height = h) {
        module = hosted<KX_BetterListBox>({0, 0, w, height});
        kxtest::deliverText(*module, kx::listbox::Style, L"normal");
        kxtest::deliverText(*module, kx::listbox::Items, numbered(rows));
        kxtest::deliver(*module, kx::listbox::Choice, scroll + 2);
        // Scrolled as a user would: dragging the bar a row per row height.
        module->onPointerDown(0x10, {w - 4, 0});
        for (int i = 1; i <= scroll; ++i)
            module->onPointerMove(0x10, {w - 4, (module->rowHeight() + 1) * i});
        module->onPointerUp(0x10, {w - 4, 0});
    }
    void draw(GmpiDrawing_API::IMpDeviceContext* dc) { module->OnRender(dc); }

    // The same calls: bar, clip, gradient, and a highlight and a text per row in view.
    struct Baseline {
        float width, height, rowHeight;
        int visible, count, scroll;
        GmpiDrawing::TextFormat format;
        std::vector<std::string> texts;
        explicit Baseline(const ListBox& l, float height = h)
            : width(w),
              height(height),
              rowHeight(l.module->rowHeight()),
              visible(l.module->visibleRows()),
              count(l.module->rows().count()),
              scroll(l.module->scrollPosition()) {
            format = FontCache::instance().GetTextFormat(&hosts().gui, &hosts().graphics, "normal");
            for (int r = scroll; r < count && r < scroll + visible; ++r)
                texts.push_back(kx::toUtf8(l.module->rows().textAt(r)));
        }
        void draw(GmpiDrawing_API::IMpDeviceContext* dc) {
            GmpiDrawing::Graphics g(dc);
            const float list = width - 12;
            g.FillRectangle(Rect(list, 0, width, height), g.CreateSolidColorBrush(Color::FromArgb(0xFF22252A)));
            g.FillRectangle(Rect(width - 10, 40, width - 2, 55), g.CreateSolidColorBrush(Color::FromArgb(0xFF6A7382)));
            g.PushAxisAlignedClip(Rect(0, 0, list, height));
            auto gradient = g.CreateLinearGradientBrush(Color::FromArgb(0xFF2C3038), Color::FromArgb(0xFF1F2228),
                                                        {0, 0}, {0, height - 1});
            g.FillRectangle(Rect(0, 0, list, height), gradient);
            benchmark::DoNotOptimize(g.GetAxisAlignedClip());
            auto text = g.CreateSolidColorBrush(Color::FromArgb(0xFFE0E0E0));
            auto highlight = g.CreateSolidColorBrush(Color::FromArgb(0xFF3B6EA8));
            float top = 0;
            for (size_t i = 0; i < texts.size(); ++i, top += rowHeight) {
                if (i == 2)
                    g.FillRectangle(Rect(0, top, list, top + rowHeight), highlight);
                g.DrawTextU(texts[i], format, Rect(4, top, list - 4, top + rowHeight), text,
                            GmpiDrawing_API::MP1_DRAW_TEXT_OPTIONS_CLIP);
            }
            g.PopAxisAlignedClip();
        }
    };
};

struct TextEntry {
    static constexpr float w = 200, h = 24;
    static constexpr const wchar_t* text = L"A name rather too long for its box, clipped";
    std::unique_ptr<KX_BetterTextEntry> module = hosted<KX_BetterTextEntry>({0, 0, w, h});
    TextEntry() {
        kxtest::deliverText(*module, kx::textentry::Style, L"normal");
        kxtest::deliverText(*module, kx::textentry::Text, text);
    }
    void draw(GmpiDrawing_API::IMpDeviceContext* dc) { module->OnRender(dc); }

    struct Baseline {
        GmpiDrawing::TextFormat format;
        std::string utf8 = kx::toUtf8(text);
        explicit Baseline(const TextEntry& e) : format(e.module->textFormat()) {}
        void draw(GmpiDrawing_API::IMpDeviceContext* dc) {
            GmpiDrawing::Graphics g(dc);
            auto brush = g.CreateSolidColorBrush(Color::FromArgb(0xFF202024));
            g.FillRectangle(Rect(3, 3, w - 3, h - 3), brush);
            brush.SetColor(Color::FromArgb(0xFFE0E0E0));
            g.DrawTextU(utf8, format, Rect(6, 3, w - 6, h - 3), brush, GmpiDrawing_API::MP1_DRAW_TEXT_OPTIONS_CLIP);
        }
    };
};

struct ScrollBar {
    static constexpr float w = 16, h = 200;
    std::unique_ptr<KX_ScrollBar> module = hosted<KX_ScrollBar>({0, 0, w, h});
    ScrollBar() {
        kxtest::deliver(*module, kx::scrollbar::Total, 100);
        kxtest::deliver(*module, kx::scrollbar::Visible, 20);
        kxtest::deliver(*module, kx::scrollbar::Position, 30);
    }
    void draw(GmpiDrawing_API::IMpDeviceContext* dc) { module->OnRender(dc); }

    struct Baseline {
        explicit Baseline(const ScrollBar&) {}
        void draw(GmpiDrawing_API::IMpDeviceContext* dc) {
            GmpiDrawing::Graphics g(dc);
            g.FillRectangle(Rect(0, 0, w, h), g.CreateSolidColorBrush(Color::FromArgb(0xFF25272C)));
            // The groove and rim colours: a third of the way from the edge colour to black and to white.
            const Color edge = Color::FromArgb(0xFF8C96A8);
            auto dark = g.CreateSolidColorBrush(Color(edge.r * 0.333f, edge.g * 0.333f, edge.b * 0.333f));
            g.DrawRectangle(Rect(0.5f, 0.5f, w - 0.5f, h - 0.5f), dark);
            g.FillRectangle(Rect(2, 62, w - 2, 98), g.CreateSolidColorBrush(Color::FromArgb(0xFF5B6270)));
            g.DrawRectangle(Rect(2.5f, 62.5f, w - 2.5f, 97.5f),
                            g.CreateSolidColorBrush(
                                Color((edge.r + 2) * 0.333f, (edge.g + 2) * 0.333f, (edge.b + 2) * 0.333f, 0.45f)));
            for (float y : {77.5f, 80.5f, 83.5f})
                g.DrawLine({4, y}, {w - 4, y}, dark);
        }
    };
};

struct Line {
    static constexpr float w = 200, h = 60;
    std::unique_ptr<KX_Line> module = hosted<KX_Line>({0, 0, w, h});
    Line() {
        kxtest::deliver(*module, kx::line::Position, 0.4f);
        kxtest::deliver(*module, kx::line::Thickness, 2);
        kxtest::deliverText(*module, kx::line::Background, L"FF283038");
    }
    void draw(GmpiDrawing_API::IMpDeviceContext* dc) { module->OnRender(dc); }

    struct Baseline {
        explicit Baseline(const Line&) {}
        void draw(GmpiDrawing_API::IMpDeviceContext* dc) {
            GmpiDrawing::Graphics g(dc);
            g.FillRectangle(Rect(0, 0, w, h), g.CreateSolidColorBrush(Color::FromArgb(0xFF283038)));
            g.DrawLine({0, 25}, {w, 25}, g.CreateSolidColorBrush(Color::FromBytes(255, 128, 0)), 2);
        }
    };
};

// The pointer areas draw nothing: their frame is the call itself, with no baseline to compare.
template <class M>
struct Invisible {
    static constexpr float w = 100, h = 100;
    std::unique_ptr<M> module = hosted<M>({0, 0, w, h});
    void draw(GmpiDrawing_API::IMpDeviceContext* dc) { module->OnRender(dc); }
    struct Baseline {
        explicit Baseline(const Invisible&) {}
        void draw(GmpiDrawing_API::IMpDeviceContext*) {}
    };
};

template <class W>
void WidgetFrame(benchmark::State& state) {
    W widget;
    Surface s(static_cast<int>(W::w), static_cast<int>(W::h));
    for (auto _ : state)
        paint(s, 0, 0, W::w, W::h, [&](auto* dc) { widget.draw(dc); });
}

template <class W>
void WidgetBaseline(benchmark::State& state) {
    W widget;
    typename W::Baseline baseline(widget);
    Surface s(static_cast<int>(W::w), static_cast<int>(W::h));
    for (auto _ : state)
        paint(s, 0, 0, W::w, W::h, [&](auto* dc) { baseline.draw(dc); });
}

// ---- a panel of 100: 20 lists, 20 entries, 20 bars, 20 lines, 10 mouse and 10 hover boxes

struct Placed {
    float x, y, w, h;
    std::function<void(GmpiDrawing_API::IMpDeviceContext*)> draw, baseline;
};

template <class W>
void place(std::vector<Placed>& panel, std::vector<std::shared_ptr<void>>& keep, int n, float& y) {
    for (int i = 0; i < n; ++i) {
        auto widget = std::make_shared<W>();
        auto baseline = std::make_shared<typename W::Baseline>(*widget);
        keep.push_back(widget);
        keep.push_back(baseline);
        const float x = static_cast<float>(i % 5) * 210;
        panel.push_back(
            {x, y, W::w, W::h, [widget](auto* dc) { widget->draw(dc); }, [baseline](auto* dc) { baseline->draw(dc); }});
        if (i % 5 == 4)
            y += W::h + 10;
    }
}

struct Panel {
    std::vector<Placed> widgets;
    std::vector<std::shared_ptr<void>> keep;
    float height = 0;
    Panel() {
        place<ListBox>(widgets, keep, 20, height);
        place<TextEntry>(widgets, keep, 20, height);
        place<ScrollBar>(widgets, keep, 20, height);
        place<Line>(widgets, keep, 20, height);
        place<Invisible<KX_MouseBox>>(widgets, keep, 10, height);
        place<Invisible<KX_HoverBox>>(widgets, keep, 10, height);
    }
};

void PanelOf100(benchmark::State& state) {
    Panel panel;
    Surface s(1050, static_cast<int>(panel.height));
    const bool baseline = state.range(0) == 0;
    for (auto _ : state)
        for (const auto& p : panel.widgets)
            paint(s, p.x, p.y, p.w, p.h, baseline ? p.baseline : p.draw);
    state.SetLabel(baseline ? "baseline: the same calls" : "widgets");
}

// ---- a list of 10,000 rows scrolled to its middle

struct BigList : ListBox {
    static constexpr float h = 480;
    BigList() : ListBox(10000, 5000, h) {}
};

void ListOf10000Rows(benchmark::State& state) {
    const bool baseline = state.range(0) == 0;
    BigList list;
    BigList::Baseline calls(list, BigList::h);
    Surface s(static_cast<int>(BigList::w), static_cast<int>(BigList::h));
    for (auto _ : state)
        paint(s, 0, 0, BigList::w, BigList::h, [&](auto* dc) { baseline ? calls.draw(dc) : list.draw(dc); });
    state.SetLabel(baseline ? "baseline: the same calls" : "widget");
    state.counters["rows drawn"] = static_cast<double>(list.module->visibleRows());
}

// ---- a second text entry of a style: a look-up in the font cache

void TextEntryOfAKnownStyle(benchmark::State& state) {
    TextEntry first;  // the style's format exists from here on
    const size_t formats = FontCache::instance().textFormatCount();
    for (auto _ : state) {
        auto second = hosted<KX_BetterTextEntry>({0, 0, 200, 24});
        kxtest::deliverText(*second, kx::textentry::Style, L"normal");
        benchmark::DoNotOptimize(second->textFormat().Get());
    }
    state.counters["formats made"] = static_cast<double>(FontCache::instance().textFormatCount() - formats);
}

void TextFormatCreation(benchmark::State& state) {
    const GmpiDrawing::Factory factory(&hosts().factory);
    const GmpiDrawing::FontStack families{"DejaVu Sans", "Verdana"};
    for (auto _ : state)
        benchmark::DoNotOptimize(factory.CreateTextFormat2(12, families).Get());
}

}  // namespace

BENCHMARK(WidgetBaseline<ListBox>);
BENCHMARK(WidgetFrame<ListBox>);
BENCHMARK(WidgetBaseline<TextEntry>);
BENCHMARK(WidgetFrame<TextEntry>);
BENCHMARK(WidgetBaseline<ScrollBar>);
BENCHMARK(WidgetFrame<ScrollBar>);
BENCHMARK(WidgetBaseline<Line>);
BENCHMARK(WidgetFrame<Line>);
BENCHMARK(WidgetFrame<Invisible<KX_MouseBox>>);
BENCHMARK(WidgetFrame<Invisible<KX_HoverBox>>);
BENCHMARK(PanelOf100)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(ListOf10000Rows)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(TextFormatCreation);
BENCHMARK(TextEntryOfAKnownStyle);

BENCHMARK_MAIN();
