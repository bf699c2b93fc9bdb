// The image widgets as a host drives them, drawn through kxhost's renderer (Cairo), each against the
// least work the same drawing interface forces for the same picture:
//   - one frame of KX_Image, KX_JogShuttleImg and KX_PolarPickerImg (OnRender through the graphics face)
//     against the same DrawBitmap call (and, for the picker, the same gradient and ellipse) made straight
//     on the same device context;
//   - a panel of 100 of them, laid out and painted the way kxhost paints a panel, against the same loop
//     of baseline drawing;
//   - loading a skin: a second widget showing an image another widget already shows (a cache look-up)
//     and the first widget to show it (a decode), against decoding the PNG with the decoder alone.
#include <benchmark/benchmark.h>
#include <cairo.h>
#include <stb/stb_image.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "GmpiDrawing.h"
#include "HostResources.h"
#include "MpFactory.h"
#include "gmpi/IMpGraphics.h"
#include "gmpi/IMpGraphicsHost.h"
#include "gmpi/IMpUserInterface2.h"
#include "gmpi/IMpUserInterfaceHost2.h"
#include "gmpi/IString.h"
#include "render/Drawing.h"

using namespace GmpiDrawing_API;

namespace {

const std::string kSkin = std::string(KX_SOURCE_DIR) + "/examples/skin/";

class FileStream final : public gmpi::IMpResourceStream {
public:
    explicit FileStream(const std::string& path)
        : bytes_(std::istreambuf_iterator<char>(std::ifstream(path, std::ios::binary).rdbuf()), {}) {}
    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        *out = nullptr;
        if (iid != gmpi::MP_IID_RESOURCE_STREAM && !gmpi::isUnknownIid(iid))
            return gmpi::MP_NOSUPPORT;
        *out = this;
        addRef();
        return gmpi::MP_OK;
    }
    int32_t addRef() override { return ++count_; }
    int32_t release() override {
        if (--count_ == 0) {
            delete this;
            return 0;
        }
        return count_;
    }
    int32_t getSize(int64_t& size) override {
        size = static_cast<int64_t>(bytes_.size());
        return gmpi::MP_OK;
    }
    int32_t read(void* buffer, int32_t size) override {
        const size_t n = std::min(bytes_.size() - at_, static_cast<size_t>(std::max(size, 0)));
        std::memcpy(buffer, bytes_.data() + at_, n);
        at_ += n;
        return static_cast<int32_t>(n);
    }

private:
    std::string bytes_;
    size_t at_ = 0;
    int32_t count_ = 1;
};

// One window's worth of host for every widget of the benchmark: resources from the demo skin, pins
// that go nowhere, the drawing factory of kxhost's renderer. A real host gives each widget a graphics
// host of its own; these widgets never tell them apart.
class BenchHost final : public gmpi::IMpUserInterfaceHost2, public gmpi_gui::IMpGraphicsHost {
public:
    kxhost::draw::Factory factory;

    gmpi::IMpUnknown* unknown() { return static_cast<gmpi::IMpUserInterfaceHost2*>(this); }
    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        *out = nullptr;
        if (iid == gmpi::MP_IID_UI_HOST2 || gmpi::isUnknownIid(iid))
            *out = static_cast<gmpi::IMpUserInterfaceHost2*>(this);
        else if (gmpi_gui::isGraphicsHostIid(iid))
            *out = static_cast<gmpi_gui::IMpGraphicsHost*>(this);
        return *out ? gmpi::MP_OK : gmpi::MP_NOSUPPORT;
    }
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }

    int32_t pinTransmit(int32_t, int32_t size, const void* data, int32_t) override {
        benchmark::DoNotOptimize(data);
        benchmark::DoNotOptimize(size);
        return gmpi::MP_OK;
    }
    int32_t getHandle(int32_t& h) override { return h = 0, gmpi::MP_OK; }
    int32_t getPinCount(int32_t& n) override { return n = 0, gmpi::MP_OK; }
    int32_t sendMessageToAudio(int32_t, int32_t, const void*) override { return gmpi::MP_OK; }
    int32_t resolveResource(const char* name, const char*, gmpi::IMpUnknown* returnString) override {
        void* s = nullptr;
        if (!returnString || returnString->queryInterface(gmpi::MP_IID_RETURNSTRING, &s) != gmpi::MP_OK)
            return gmpi::MP_FAIL;
        // The metadata file is asked for by the image's full path.
        const std::string path = name[0] == '/' ? std::string(name) : kSkin + name;
        static_cast<gmpi::IString*>(s)->setData(path.data(), static_cast<int32_t>(path.size()));
        static_cast<gmpi::IString*>(s)->release();
        return std::filesystem::exists(path) ? gmpi::MP_OK : gmpi::MP_FAIL;
    }
    int32_t openResource(const char* path, gmpi::IMpUnknown** stream) override {
        *stream = std::filesystem::exists(path) ? new FileStream(path) : nullptr;
        return *stream ? gmpi::MP_OK : gmpi::MP_FAIL;
    }
    int32_t reserved1() override { return gmpi::MP_NOSUPPORT; }
    int32_t reserved2() override { return gmpi::MP_NOSUPPORT; }

    int32_t getDrawingScale(float& s) override { return s = 1, gmpi::MP_OK; }
    int32_t getLayoutRect(MP1_RECT&) override { return gmpi::MP_FAIL; }
    void invalidateRect(const MP1_RECT*) override {}
    void invalidateMeasure() override {}
    int32_t setCapture() override { return gmpi::MP_OK; }
    int32_t getCapture(int32_t& c) override { return c = 0, gmpi::MP_OK; }
    int32_t releaseCapture() override { return gmpi::MP_OK; }
    int32_t createFileDialog(int32_t, gmpi::IMpUnknown** out) override { return *out = nullptr, gmpi::MP_FAIL; }
    int32_t createPlatformTextEdit(const MP1_RECT*, gmpi::IMpUnknown** out) override {
        return *out = nullptr, gmpi::MP_FAIL;
    }
    void GetDrawingFactory(IMpFactory** f) override { *f = &factory; }
};

BenchHost& host() {
    static BenchHost h;
    return h;
}

// A widget made by the bundle's factory and set up as a host sets it up, with its faces.
struct Widget {
    gmpi::IMpUserInterface2B* gui = nullptr;
    gmpi_gui_api::IMpGraphics2* graphics = nullptr;
    MP1_SIZE size{};

    Widget(const wchar_t* id, std::vector<std::pair<int, std::wstring>> texts,
           std::vector<std::pair<int, float>> floats, MP1_SIZE available = {100, 100}, MP1_POINT at = {0, 0}) {
        void* object = nullptr;
        Factory()->createInstance2(id, gmpi::MP_SUB_TYPE_GUI2, &object);
        gui = static_cast<gmpi::IMpUserInterface2B*>(object);
        void* face = nullptr;
        gui->queryInterface(gmpi_gui_api::SE_IID_GRAPHICS_MPGUI2, &face);
        graphics = static_cast<gmpi_gui_api::IMpGraphics2*>(face);
        gui->setHost(host().unknown());
        gui->initialize();
        for (auto& [pin, text] : texts)
            set(pin, static_cast<int32_t>(text.size() * sizeof(wchar_t)), text.data());
        for (auto& [pin, value] : floats)
            set(pin, sizeof value, &value);
        graphics->measure(available, &size);
        graphics->arrange({at.x, at.y, at.x + size.width, at.y + size.height});
    }
    ~Widget() {
        graphics->release();
        gui->release();
    }
    Widget(const Widget&) = delete;
    Widget& operator=(const Widget&) = delete;

    void set(int pin, int32_t size, const void* data) {
        gui->setPin(pin, 0, size, data);
        gui->notifyPin(pin, 0);
    }
};

// The three kinds in a state a user would leave them in.
Widget* dial(MP1_POINT at = {0, 0}) { return new Widget(L"KX_Image", {{1, L"dial.png"}}, {{0, 0.4f}}, {100, 100}, at); }
Widget* jog(MP1_POINT at = {0, 0}) {
    return new Widget(L"KX_JogShuttleImg", {{0, L"jog.png"}}, {{8, 1.0f}, {9, 1.0f}, {6, 0.3f}}, {100, 100}, at);
}
Widget* picker(MP1_POINT at = {0, 0}) {
    return new Widget(L"KX_PolarPickerImg", {{1, L"handle.png"}}, {{7, 0.125f}, {8, 0.6f}}, {96, 96}, at);
}

// What the baseline draws for each kind: the same frame of the same image (decoded once, as the
// widgets' cache holds it), and for the picker also its gradient disc.
struct Baseline {
    GmpiDrawing_API::IMpBitmap* dialBitmap = nullptr;
    GmpiDrawing_API::IMpBitmap* jogBitmap = nullptr;
    GmpiDrawing_API::IMpBitmap* handleBitmap = nullptr;

    Baseline() {
        host().factory.LoadImageU((kSkin + "dial.png").c_str(), &dialBitmap);
        host().factory.LoadImageU((kSkin + "jog.png").c_str(), &jogBitmap);
        host().factory.LoadImageU((kSkin + "handle.png").c_str(), &handleBitmap);
    }
    ~Baseline() {
        dialBitmap->release();
        jogBitmap->release();
        handleBitmap->release();
    }
    static void frame(IMpDeviceContext* dc, IMpBitmap* bitmap, float size, float frame) {
        const MP1_RECT dest{0, 0, size, size};
        const MP1_RECT source{0, frame * size, size, (frame + 1) * size};
        dc->DrawBitmap(bitmap, &dest, 1.0f, MP1_BITMAP_INTERPOLATION_MODE_LINEAR, &source);
    }
    void dial(IMpDeviceContext* dc) const { frame(dc, dialBitmap, 56, 25); }
    void jog(IMpDeviceContext* dc) const { frame(dc, jogBitmap, 72, 14); }
    void picker(IMpDeviceContext* dc) const {
        const MP1_GRADIENT_STOP stops[] = {{0, GmpiDrawing::Color::FromBytes(0, 32, 64)},
                                           {1, GmpiDrawing::Color::FromBytes(64, 128, 192)}};
        IMpGradientStopCollection* collection = nullptr;
        dc->CreateGradientStopCollection(stops, 2, &collection);
        const MP1_RADIAL_GRADIENT_BRUSH_PROPERTIES radial{{48, 48}, {0, 0}, 48, 48};
        const MP1_BRUSH_PROPERTIES plain{1.0f, {1, 0, 0, 1, 0, 0}};
        IMpRadialGradientBrush* brush = nullptr;
        dc->CreateRadialGradientBrush(&radial, &plain, collection, &brush);
        const MP1_ELLIPSE disc{{48, 48}, 48, 48};
        dc->FillEllipse(&disc, brush);
        brush->release();
        collection->release();
        const MP1_RECT dest{56.97f, 23.03f, 72.97f, 39.03f};  // where the picker puts its handle
        const MP1_RECT source{0, 0, 16, 16};
        dc->DrawBitmap(handleBitmap, &dest, 1.0f, MP1_BITMAP_INTERPOLATION_MODE_LINEAR, &source);
    }
};

// A surface and a device context over it, as kxhost makes for a paint.
struct Target {
    cairo_surface_t* surface;
    cairo_t* cr;
    explicit Target(int width, int height)
        : surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height)), cr(cairo_create(surface)) {}
    ~Target() {
        cairo_destroy(cr);
        cairo_surface_destroy(surface);
    }
    // Paints through a fresh device context at (x, y), clipped to w x h, as kxhost paints each widget.
    template <class Paint>
    void paint(double x, double y, double w, double h, Paint&& p) {
        cairo_save(cr);
        cairo_translate(cr, x, y);
        cairo_rectangle(cr, 0, 0, w, h);
        cairo_clip(cr);
        auto* dc = new kxhost::draw::DeviceContext(&host().factory, cr);
        p(dc);
        dc->release();
        cairo_restore(cr);
    }
};

enum Kind { Dial, Jog, Picker };

Widget* make(Kind kind, MP1_POINT at = {0, 0}) { return kind == Dial ? dial(at) : kind == Jog ? jog(at) : picker(at); }

// The size each kind measures: the dial's and the wheel's frames, the picker's available size.
float sizeOf(Kind kind) { return kind == Dial ? 56.0f : kind == Jog ? 72.0f : 96.0f; }

void drawBaseline(const Baseline& b, Kind kind, IMpDeviceContext* dc) {
    kind == Dial ? b.dial(dc) : kind == Jog ? b.jog(dc) : b.picker(dc);
}

// The baseline is fair only if it draws what the widget draws: both render once, pixel for pixel.
bool samePicture(Kind kind, Widget& w) {
    Baseline b;
    Target widget(96, 96), baseline(96, 96);
    widget.paint(0, 0, w.size.width, w.size.height, [&](IMpDeviceContext* dc) { w.graphics->OnRender(dc); });
    baseline.paint(0, 0, w.size.width, w.size.height, [&](IMpDeviceContext* dc) { drawBaseline(b, kind, dc); });
    cairo_surface_flush(widget.surface);
    cairo_surface_flush(baseline.surface);
    const size_t bytes = static_cast<size_t>(cairo_image_surface_get_stride(widget.surface)) * 96;
    return std::memcmp(cairo_image_surface_get_data(widget.surface), cairo_image_surface_get_data(baseline.surface),
                       bytes) == 0;
}

void WidgetFrame(benchmark::State& state) {
    const auto kind = static_cast<Kind>(state.range(0));
    Widget* w = make(kind);
    if (!samePicture(kind, *w))
        state.SkipWithError("the baseline does not draw the widget's picture");
    Target t(96, 96);
    for (auto _ : state)
        t.paint(0, 0, w->size.width, w->size.height, [&](IMpDeviceContext* dc) { w->graphics->OnRender(dc); });
    cairo_surface_flush(t.surface);
    delete w;
}

void BaselineFrame(benchmark::State& state) {
    const auto kind = static_cast<Kind>(state.range(0));
    Baseline b;
    Target t(96, 96);
    for (auto _ : state)
        t.paint(0, 0, sizeOf(kind), sizeOf(kind), [&](IMpDeviceContext* dc) { drawBaseline(b, kind, dc); });
    cairo_surface_flush(t.surface);
}

// 100 widgets in a 10 x 10 grid of 100-pixel cells, kinds taken in turn.
constexpr int kPanel = 100;
Kind kindAt(int i) { return static_cast<Kind>(i % 3); }
MP1_POINT cell(int i) { return {static_cast<float>(i % 10 * 100), static_cast<float>(i / 10 * 100)}; }

void WidgetPanel(benchmark::State& state) {
    std::vector<Widget*> widgets;
    for (int i = 0; i < kPanel; ++i)
        widgets.push_back(make(kindAt(i), cell(i)));
    Target t(1000, 1000);
    for (auto _ : state)
        for (int i = 0; i < kPanel; ++i) {
            Widget* w = widgets[static_cast<size_t>(i)];
            t.paint(cell(i).x, cell(i).y, w->size.width, w->size.height,
                    [&](IMpDeviceContext* dc) { w->graphics->OnRender(dc); });
        }
    for (auto* w : widgets)
        delete w;
}

void BaselinePanel(benchmark::State& state) {
    Baseline b;
    Target t(1000, 1000);
    for (auto _ : state)
        for (int i = 0; i < kPanel; ++i)
            t.paint(cell(i).x, cell(i).y, sizeOf(kindAt(i)), sizeOf(kindAt(i)),
                    [&](IMpDeviceContext* dc) { drawBaseline(b, kindAt(i), dc); });
}

// A second KX_Image showing the dial another one already shows: created, set up, its image set
// (the cache finds it), released.
void SecondInstanceLoad(benchmark::State& state) {
    Widget* first = dial();
    const size_t loads = host().factory.loads.size();
    for (auto _ : state) {
        Widget second(L"KX_Image", {{1, L"dial.png"}}, {});
        benchmark::DoNotOptimize(second.size);
    }
    // A look-up, never a decode: the host's factory was asked to load nothing more.
    if (host().factory.loads.size() != loads)
        state.SkipWithError("a second widget on a shown image decoded it again");
    delete first;
}

// The same widget made and set up the same way with no image to show, and the host asked where the
// image is, which no module can skip before it shows a skin image: what the second widget costs beyond
// it is finding the shown image among those the cache holds and taking its size and frames.
void WidgetWithoutImage(benchmark::State& state) {
    for (auto _ : state) {
        Widget bare(L"KX_Image", {}, {});
        benchmark::DoNotOptimize(bare.size);
        benchmark::DoNotOptimize(kx::resolveResource(&host(), "dial.png", "Image").data());
    }
}

// The first widget to show the dial: with no other widget alive the cache is empty, so every round
// decodes the image (and reads its metadata) again.
void FirstInstanceLoad(benchmark::State& state) {
    for (auto _ : state) {
        Widget only(L"KX_Image", {{1, L"dial.png"}}, {});
        benchmark::DoNotOptimize(only.size);
    }
}

// The host's own image loading (decode, then conversion into a Cairo surface): what any widget's
// first load pays in kxhost, whatever the widget does.
void HostLoadOnly(benchmark::State& state) {
    const std::string path = kSkin + "dial.png";
    kxhost::draw::Factory factory;
    for (auto _ : state) {
        IMpBitmap* bitmap = nullptr;
        factory.LoadImageU(path.c_str(), &bitmap);
        benchmark::DoNotOptimize(bitmap);
        bitmap->release();
        factory.loads.clear();
    }
}

// The decoder alone on the same file: the least a first load must do.
void DecodeOnly(benchmark::State& state) {
    const std::string path = kSkin + "dial.png";
    for (auto _ : state) {
        int w = 0, h = 0, channels = 0;
        unsigned char* pixels = stbi_load(path.c_str(), &w, &h, &channels, 4);
        benchmark::DoNotOptimize(pixels);
        stbi_image_free(pixels);
    }
}

}  // namespace

BENCHMARK(BaselineFrame)->DenseRange(0, 2)->ArgName("kind");
BENCHMARK(WidgetFrame)->DenseRange(0, 2)->ArgName("kind");
BENCHMARK(BaselinePanel);
BENCHMARK(WidgetPanel);
BENCHMARK(DecodeOnly);
BENCHMARK(HostLoadOnly);
BENCHMARK(FirstInstanceLoad);
BENCHMARK(SecondInstanceLoad);
BENCHMARK(WidgetWithoutImage);

BENCHMARK_MAIN();
