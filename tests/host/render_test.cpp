// The renderer through the drawing interfaces only: what a module's calls put into pixels.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>

#include "TempFolder.h"
#include "gmpi/IMpCompletionHandler.h"
#include "gmpi/IString.h"
#include "gui/Graphics.h"
#include "render/Drawing.h"

using namespace GmpiDrawing_API;
using kxhost::draw::DeviceContext;

namespace {

float linear(int srgbByte) {
    const double x = srgbByte / 255.0;
    return static_cast<float>(x <= 0.04045 ? x / 12.92 : std::pow((x + 0.055) / 1.055, 2.4));
}

// An off-screen target and helpers to read back what it holds.
struct Target {
    kxhost::draw::Factory factory;
    IMpBitmapRenderTarget* dc;
    explicit Target(int w, int h) {
        MP1_SIZE size{float(w), float(h)};
        DeviceContext seed(&factory, 1, 1);
        seed.CreateCompatibleRenderTarget(&size, &dc);
    }
    ~Target() { dc->release(); }
    IMpSolidColorBrush* brush(int r, int g, int b, float a = 1.0f) {
        IMpSolidColorBrush* out = nullptr;
        const MP1_COLOR c{linear(r), linear(g), linear(b), a};
        dc->CreateSolidColorBrush(&c, &out);
        return out;
    }
    // Every pixel of the finished drawing, row by row.
    std::vector<uint32_t> all(int w, int h) {
        std::vector<uint32_t> out;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                out.push_back(0);
        IMpBitmap* bitmap = nullptr;
        dc->EndDraw();
        dc->GetBitmap(&bitmap);
        IMpBitmapPixels* pixels = nullptr;
        bitmap->lockPixels(&pixels, MP1_BITMAP_LOCK_READ);
        for (int y = 0; y < h; ++y)
            std::memcpy(&out[size_t(y) * w], pixels->getAddress() + y * pixels->getBytesPerRow(), size_t(w) * 4);
        pixels->release();
        bitmap->release();
        return out;
    }
    // The finished drawing's pixel at (x, y), 0xAARRGGBB premultiplied.
    uint32_t pixel(int x, int y) {
        IMpBitmap* bitmap = nullptr;
        dc->EndDraw();
        EXPECT_EQ(dc->GetBitmap(&bitmap), gmpi::MP_OK);
        IMpBitmapPixels* pixels = nullptr;
        bitmap->lockPixels(&pixels, MP1_BITMAP_LOCK_READ);
        uint32_t v;
        std::memcpy(&v, pixels->getAddress() + y * pixels->getBytesPerRow() + x * 4, 4);
        pixels->release();
        bitmap->release();
        return v;
    }
};

// A brush the host did not make.
class ForeignBrush final : public IMpSolidColorBrush {
public:
    int32_t queryInterface(const gmpi::MpGuid&, void** out) override { return *out = nullptr, gmpi::MP_NOSUPPORT; }
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }
    int32_t getFactory(IMpFactory**) override { return gmpi::MP_FAIL; }
    void SetColor(const MP1_COLOR*) override {}
    MP1_COLOR GetColor() override { return {1, 1, 1, 1}; }
};

}  // namespace

TEST(RenderDrawing, SolidFillRoundTripsSrgbColours) {
    Target t(8, 8);
    auto* b = t.brush(0x80, 0x20, 0xF0);
    const MP1_RECT r{0, 0, 4, 8};
    t.dc->FillRectangle(&r, b);
    b->release();
    const uint32_t p = t.pixel(1, 1);
    EXPECT_EQ(p >> 24, 0xFFu);
    EXPECT_NEAR(int((p >> 16) & 0xFF), 0x80, 1);
    EXPECT_NEAR(int((p >> 8) & 0xFF), 0x20, 1);
    EXPECT_NEAR(int(p & 0xFF), 0xF0, 1);
    EXPECT_EQ(t.pixel(6, 1), 0u);  // outside the rectangle: untouched
}

TEST(RenderDrawing, BitmapSourceRectangleDrawsOneFrameWithoutItsNeighbours) {
    Target t(10, 10);
    IMpBitmap* strip = nullptr;
    ASSERT_EQ(t.factory.CreateImage(10, 20, &strip), gmpi::MP_OK);
    {
        IMpBitmapPixels* px = nullptr;
        strip->lockPixels(&px, MP1_BITMAP_LOCK_WRITE);
        for (int y = 0; y < 20; ++y)
            for (int x = 0; x < 10; ++x) {
                const uint32_t v = y < 10 ? 0xFFFF0000u : 0xFF00FF00u;
                std::memcpy(px->getAddress() + y * px->getBytesPerRow() + x * 4, &v, 4);
            }
        px->release();
    }
    const MP1_RECT src{0, 10, 10, 20}, dest{0, 0, 10, 10};
    t.dc->DrawBitmap(strip, &dest, 1.0f, MP1_BITMAP_INTERPOLATION_MODE_LINEAR, &src);
    strip->release();
    EXPECT_EQ(t.pixel(5, 0), 0xFF00FF00u);  // the edge row next to the red frame stays green
    EXPECT_EQ(t.pixel(5, 9), 0xFF00FF00u);
}

TEST(RenderDrawing, ForeignObjectsDrawNothing) {
    Target t(4, 4);
    ForeignBrush foreign;
    const MP1_RECT r{0, 0, 4, 4};
    t.dc->FillRectangle(&r, &foreign);
    t.dc->FillRectangle(&r, nullptr);
    t.dc->DrawBitmap(nullptr, &r, 1, 1, nullptr);
    EXPECT_EQ(t.pixel(1, 1), 0u);
}

TEST(RenderDrawing, PoppingAClipKeepsTheTransformSetSince) {
    Target t(20, 20);
    auto* b = t.brush(255, 255, 255);
    const MP1_RECT clip{0, 0, 5, 5};
    t.dc->PushAxisAlignedClip(&clip);
    const MP1_MATRIX_3X2 move{1, 0, 0, 1, 10, 10};
    t.dc->SetTransform(&move);
    t.dc->PopAxisAlignedClip();
    t.dc->PopAxisAlignedClip();  // unmatched: ignored
    const MP1_RECT r{0, 0, 5, 5};
    t.dc->FillRectangle(&r, b);
    b->release();
    EXPECT_EQ(t.pixel(12, 12), 0xFFFFFFFFu);
    EXPECT_EQ(t.pixel(2, 2), 0u);
}

TEST(RenderDrawing, GradientBrushesRunFromFirstToLastStop) {
    Target t(100, 10);
    const MP1_GRADIENT_STOP stops[2] = {{0, {0, 0, 0, 1}}, {1, {1, 1, 1, 1}}};
    IMpGradientStopCollection* collection = nullptr;
    ASSERT_EQ(t.dc->CreateGradientStopCollection(stops, 2, &collection), gmpi::MP_OK);
    const MP1_LINEAR_GRADIENT_BRUSH_PROPERTIES line{{0, 0}, {100, 0}};
    IMpLinearGradientBrush* brush = nullptr;
    ASSERT_EQ(t.dc->CreateLinearGradientBrush(&line, nullptr, collection, &brush), gmpi::MP_OK);
    const MP1_RECT r{0, 0, 100, 10};
    t.dc->FillRectangle(&r, brush);
    brush->release();
    collection->release();
    EXPECT_LT(t.pixel(2, 5) & 0xFF, 0x10u);
    EXPECT_GT(t.pixel(97, 5) & 0xFF, 0xF0u);
    const uint32_t mid = t.pixel(50, 5) & 0xFF;
    EXPECT_GT(mid, 0x60u);
    EXPECT_LT(mid, 0xA0u);
}

TEST(RenderImages, LoadsPngAndTakesABmpsMaskAsAlpha) {
    const kxtest::TempFolder folder;
    const std::filesystem::path& dir = folder.path();
    // A 2 x 1 24-bit BMP (blue, white) and a mask (black, white): the first pixel becomes transparent.
    auto bmp = [](const std::filesystem::path& file, uint32_t p0, uint32_t p1) {
        const unsigned char header[54] = {'B', 'M', 62, 0, 0, 0, 0, 0, 0, 0,  54, 0, 0, 0, 40, 0, 0, 0, 2,
                                          0,   0,   0,  1, 0, 0, 0, 1, 0, 24, 0,  0, 0, 0, 0,  8, 0, 0, 0};
        std::ofstream f(file, std::ios::binary);
        f.write(reinterpret_cast<const char*>(header), 54);
        const unsigned char row[8] = {static_cast<unsigned char>(p0),
                                      static_cast<unsigned char>(p0 >> 8),
                                      static_cast<unsigned char>(p0 >> 16),
                                      static_cast<unsigned char>(p1),
                                      static_cast<unsigned char>(p1 >> 8),
                                      static_cast<unsigned char>(p1 >> 16),
                                      0,
                                      0};
        f.write(reinterpret_cast<const char*>(row), 8);
    };
    bmp(dir / "k.bmp", 0x0000FF, 0xFFFFFF);
    bmp(dir / "k_mask.bmp", 0x000000, 0xFFFFFF);

    kxhost::draw::Factory factory;
    IMpBitmap* plain = nullptr;
    IMpBitmap* masked = nullptr;
    ASSERT_EQ(factory.LoadImageU((dir / "k.bmp").c_str(), &plain), gmpi::MP_OK);
    ASSERT_EQ(factory.LoadImageWithMaskU((dir / "k.bmp").c_str(), (dir / "k_mask.bmp").c_str(), &masked), gmpi::MP_OK);
    auto pixel = [](IMpBitmap* b, int x) {
        IMpBitmapPixels* px = nullptr;
        b->lockPixels(&px, MP1_BITMAP_LOCK_READ);
        uint32_t v;
        std::memcpy(&v, px->getAddress() + x * 4, 4);
        px->release();
        return v;
    };
    EXPECT_EQ(pixel(plain, 0), 0xFF0000FFu);
    EXPECT_EQ(pixel(masked, 0), 0u);
    EXPECT_EQ(pixel(masked, 1), 0xFFFFFFFFu);
    plain->release();
    masked->release();

    IMpBitmap* none = reinterpret_cast<IMpBitmap*>(1);
    EXPECT_EQ(factory.LoadImageU((dir / "missing.png").c_str(), &none), gmpi::MP_FAIL);
    EXPECT_EQ(none, nullptr);
    // A missing mask is ignored.
    ASSERT_EQ(factory.LoadImageWithMaskU((dir / "k.bmp").c_str(), (dir / "none.bmp").c_str(), &masked), gmpi::MP_OK);
    EXPECT_EQ(pixel(masked, 0), 0xFF0000FFu);
    masked->release();
}

TEST(RenderText, MetricsFollowTheSizeAndUnknownFamiliesFallBack) {
    kxhost::draw::Factory factory;
    const char* stack[] = {"No Such Family", "DejaVu Sans"};
    IMpTextFormat* small = nullptr;
    IMpTextFormat* big = nullptr;
    ASSERT_EQ(factory.CreateTextFormat2(stack, 2, MP1_FONT_WEIGHT_NORMAL, 0, 5, 10, &small), gmpi::MP_OK);
    ASSERT_EQ(factory.CreateTextFormat2(stack, 2, MP1_FONT_WEIGHT_BOLD, 0, 5, 20, &big), gmpi::MP_OK);
    MP1_FONT_METRICS ms{}, mb{};
    small->GetFontMetrics(&ms);
    big->GetFontMetrics(&mb);
    EXPECT_GT(ms.ascent, 5.0f);
    EXPECT_NEAR(mb.ascent / ms.ascent, 2.0f, 0.2f);
    MP1_SIZE a{}, b{};
    small->GetTextExtentU("Hello", -1, &a);
    small->GetTextExtentU("Hello world", 5, &b);  // only the first five bytes
    EXPECT_GT(a.width, 10.0f);
    EXPECT_FLOAT_EQ(a.width, b.width);
    small->release();
    big->release();
}

TEST(RenderText, ClipOptionKeepsTextInsideItsRectangle) {
    for (int clip : {0, 1}) {
        Target t(200, 20);
        IMpTextFormat* format = nullptr;
        const char* family = "DejaVu Sans";
        t.factory.CreateTextFormat(family, MP1_FONT_WEIGHT_NORMAL, 0, 5, 14, &format);
        format->SetWordWrapping(MP1_WORD_WRAPPING_NO_WRAP);
        auto* brush = t.brush(255, 255, 255);
        const MP1_RECT r{0, 0, 40, 20};
        t.dc->DrawTextU("WWWWWWWWWWWW", -1, format, &r, brush, clip ? MP1_DRAW_TEXT_OPTIONS_CLIP : 0);
        brush->release();
        format->release();
        int inside = 0, outside = 0;
        const auto pixels = t.all(200, 20);
        for (int x = 0; x < 200; ++x)
            for (int y = 0; y < 20; ++y)
                (x < 40 ? inside : outside) += (pixels[size_t(y) * 200 + x] >> 24) > 0x80 ? 1 : 0;
        EXPECT_GT(inside, 10) << clip;
        if (clip)
            EXPECT_EQ(outside, 0);
        else
            EXPECT_GT(outside, 10);
    }
}

// Arcs of any radius: within the range of Cairo's coordinates drawn where they are, beyond it (where
// Cairo's own arcs took most of a minute) drawn somehow, but at once.
TEST(RenderDrawing, ArcsOfAnyRadiusDraw) {
    Target t(20, 20);
    auto* white = t.brush(255, 255, 255);
    const MP1_ELLIPSE below{{10, 1e6f + 15}, 1e6f, 1e6f};  // its top edge runs at y = 15
    t.dc->FillEllipse(&below, white);
    for (const float r : {1e7f, 1e30f, 3e38f}) {
        const MP1_ELLIPSE huge{{10, 10}, r, r};
        const MP1_ROUNDED_RECT corners{{-r, -r, 10, 10}, r / 10, r / 10};
        auto* none = t.brush(0, 0, 0, 0);
        t.dc->FillEllipse(&huge, none);
        t.dc->DrawEllipse(&huge, none, 1);
        t.dc->FillRoundedRectangle(&corners, none);
        none->release();
    }
    white->release();
    const auto pixels = t.all(20, 20);
    EXPECT_EQ(pixels[19 * 20 + 10] & 0xFFFFFF, 0xFFFFFFu);
    EXPECT_EQ(pixels[12 * 20 + 10] & 0xFFFFFF, 0u);
}

// A module may hand any rectangle: a wrapping width beyond what Pango's units hold draws as unwrapped.
TEST(RenderText, AWrappingWidthBeyondPangosRangeWrapsNothing) {
    Target t(200, 20);
    IMpTextFormat* format = nullptr;
    t.factory.CreateTextFormat("DejaVu Sans", MP1_FONT_WEIGHT_NORMAL, 0, 5, 14, &format);
    format->SetWordWrapping(MP1_WORD_WRAPPING_WRAP);
    auto* brush = t.brush(255, 255, 255);
    const MP1_RECT r{0, 0, 1.7e38f, 20};
    t.dc->DrawTextU("one two three", -1, format, &r, brush, 0);
    brush->release();
    format->release();
    int lit = 0;
    for (uint32_t p : t.all(200, 20))
        lit += (p >> 24) > 0x80 ? 1 : 0;
    EXPECT_GT(lit, 10);
}

namespace {

// A graphic module face that records what reaches it.
class FakeGraphic final : public gmpi_gui_api::IMpGraphics2 {
public:
    int32_t hit = gmpi::MP_OK;
    int32_t take = gmpi::MP_OK;
    std::vector<std::string> events;
    gmpi_gui::IMpGraphicsHost* host = nullptr;
    bool captureOnDown = false;

    int32_t queryInterface(const gmpi::MpGuid&, void** out) override { return *out = nullptr, gmpi::MP_NOSUPPORT; }
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }
    int32_t measure(MP1_SIZE, MP1_SIZE* desired) override { return *desired = {50, 50}, gmpi::MP_OK; }
    int32_t arrange(MP1_RECT) override { return gmpi::MP_OK; }
    int32_t OnRender(IMpDeviceContext*) override { return gmpi::MP_OK; }
    int32_t onPointerDown(int32_t, MP1_POINT p) override {
        events.push_back("down " + std::to_string(int(p.x)) + "," + std::to_string(int(p.y)));
        if (captureOnDown && host)
            host->setCapture();
        return take;
    }
    int32_t onPointerMove(int32_t, MP1_POINT p) override {
        events.push_back("move " + std::to_string(int(p.x)));
        return take;
    }
    int32_t onPointerUp(int32_t, MP1_POINT) override {
        events.push_back("up");
        if (host)
            host->releaseCapture();
        return take;
    }
    int32_t hitTest(MP1_POINT) override { return hit; }
    int32_t getToolTip(MP1_POINT, gmpi::IString*) override { return gmpi::MP_FAIL; }
};

class Handler final : public gmpi_gui::IMpCompletionHandler {
public:
    std::vector<int32_t> results;
    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        *out = nullptr;
        if (!(iid == gmpi_gui::SE_IID_COMPLETION_HANDLER))
            return gmpi::MP_NOSUPPORT;
        *out = static_cast<gmpi_gui::IMpCompletionHandler*>(this);
        return gmpi::MP_OK;
    }
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }
    void OnComplete(int32_t result) override { results.push_back(result); }
};

class Text final : public gmpi::IString {
public:
    std::string s;
    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        *out = iid == gmpi::MP_IID_RETURNSTRING ? static_cast<gmpi::IString*>(this) : nullptr;
        return *out ? gmpi::MP_OK : gmpi::MP_NOSUPPORT;
    }
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }
    int32_t setData(const char* d, int32_t n) override { return s.assign(d, size_t(n)), gmpi::MP_OK; }
    int32_t getSize() override { return int32_t(s.size()); }
    const char* getData() override { return s.data(); }
};

struct RenderPanel : ::testing::Test {
    kxhost::PanelDecl decl;
    std::vector<std::string> traced;
    std::unique_ptr<kxhost::Panel> panel;
    FakeGraphic lower, upper;

    void SetUp() override {
        decl.placements = {{"lower", 0, 0, {}}, {"upper", 25, 25, {}}};
        panel = std::make_unique<kxhost::Panel>(decl, [this](const std::string& l) { traced.push_back(l); });
        for (auto [name, g] : {std::pair{"lower", &lower}, std::pair{"upper", &upper}}) {
            auto& h = panel->addInstance(name);
            h.graphics = g;
            h.hasHitTest = true;
            g->host = &h;
        }
    }
    void TearDown() override {
        for (auto* name : {"lower", "upper"})
            panel->host(name)->graphics = nullptr;  // not counted by the fakes
    }
};

}  // namespace

TEST_F(RenderPanel, PointerGoesToTheTopmostThatHitTestsAndTakesIt) {
    using P = kxhost::Panel::Pointer;
    EXPECT_EQ(panel->pointer(P::Down, 0x10, {30, 30}), "upper");
    EXPECT_EQ(upper.events.back(), "down 5,5");  // in the instance's own coordinates
    upper.hit = gmpi::MP_FAIL;
    EXPECT_EQ(panel->pointer(P::Down, 0x10, {30, 30}), "lower");
    upper.hit = gmpi::MP_OK;
    upper.take = gmpi::MP_FAIL;  // declines after the hit test: passes beneath too
    EXPECT_EQ(panel->pointer(P::Down, 0x10, {30, 30}), "lower");
    EXPECT_EQ(panel->pointer(P::Down, 0x10, {90, 90}), "");
}

TEST_F(RenderPanel, CaptureRoutesEverythingToTheHolderUntilReleased) {
    using P = kxhost::Panel::Pointer;
    lower.captureOnDown = true;
    EXPECT_EQ(panel->pointer(P::Down, 0x10, {10, 10}), "lower");
    int32_t held = 0;
    panel->host("lower")->getCapture(held);
    EXPECT_EQ(held, 1);
    panel->host("upper")->getCapture(held);
    EXPECT_EQ(held, 0);
    panel->host("upper")->releaseCapture();                       // not the holder: nothing changes
    EXPECT_EQ(panel->pointer(P::Move, 0x10, {60, 60}), "lower");  // far outside, over upper
    EXPECT_EQ(lower.events.back(), "move 60");
    EXPECT_EQ(panel->pointer(P::Up, 0x10, {60, 60}), "lower");
    EXPECT_EQ(panel->capture, nullptr);
    EXPECT_TRUE(upper.events.empty());
}

TEST_F(RenderPanel, DialogAnswersCompleteAfterTheModulesCallOrAtOnce) {
    gmpi::IMpUnknown* object = nullptr;
    ASSERT_EQ(panel->host("lower")->createFileDialog(gmpi_gui::MP_PLATFORM_FILE_OPEN, &object), gmpi::MP_OK);
    void* face = nullptr;
    ASSERT_EQ(object->queryInterface(gmpi_gui::SE_IID_GRAPHICS_PLATFORM_FILE_DIALOG, &face), gmpi::MP_OK);
    object->release();
    auto* dialog = static_cast<gmpi_gui::IMpPlatformFileDialog*>(face);
    Handler handler;
    Text chosen;

    panel->answerFileDialog("", std::string("/skin/a.png"));
    dialog->ShowAsync(&handler);
    EXPECT_TRUE(handler.results.empty());  // not inside ShowAsync
    panel->runCompletions();
    ASSERT_EQ(handler.results, std::vector<int32_t>{0});
    dialog->GetSelectedFilename(&chosen);
    EXPECT_EQ(chosen.s, "/skin/a.png");

    dialog->ShowAsync(&handler);  // no answer queued: stays open
    panel->runCompletions();
    EXPECT_EQ(handler.results.size(), 1u);
    panel->answerFileDialog("", std::nullopt);
    EXPECT_EQ(handler.results, (std::vector<int32_t>{0, -1}));
    dialog->release();

    ASSERT_EQ(panel->host("upper")->createPlatformTextEdit(nullptr, &object), gmpi::MP_OK);
    ASSERT_EQ(object->queryInterface(gmpi_gui::SE_IID_GRAPHICS_PLATFORM_TEXT, &face), gmpi::MP_OK);
    object->release();
    auto* editor = static_cast<gmpi_gui::IMpPlatformText*>(face);
    editor->SetText("before");
    editor->ShowAsync(&handler);
    panel->answerTextEdit("", std::nullopt);
    editor->GetText(&chosen);
    EXPECT_EQ(chosen.s, "before");  // a cancelled edit keeps the text
    editor->ShowAsync(&handler);
    panel->answerTextEdit("", std::string("after"));
    editor->GetText(&chosen);
    EXPECT_EQ(chosen.s, "after");
    editor->release();
}

TEST_F(RenderPanel, ANewerEditorReplacesTheOlderAndAnswersWaitForTheirInstance) {
    auto editorOf = [&](const char* name) {
        gmpi::IMpUnknown* object = nullptr;
        EXPECT_EQ(panel->host(name)->createPlatformTextEdit(nullptr, &object), gmpi::MP_OK);
        void* face = nullptr;
        object->queryInterface(gmpi_gui::SE_IID_GRAPHICS_PLATFORM_TEXT, &face);
        object->release();
        return static_cast<gmpi_gui::IMpPlatformText*>(face);
    };
    auto* first = editorOf("lower");
    auto* second = editorOf("upper");
    Handler firstDone, secondDone;
    Text text;

    // An answer meant for upper does not complete lower's editor.
    panel->answerTextEdit("upper", std::string("for upper"));
    first->ShowAsync(&firstDone);
    panel->runCompletions();
    EXPECT_TRUE(firstDone.results.empty());

    // upper's editor replaces lower's, which is cancelled; upper takes the answer queued for it.
    second->ShowAsync(&secondDone);
    panel->runCompletions();
    EXPECT_EQ(firstDone.results, std::vector<int32_t>{-1});
    EXPECT_EQ(secondDone.results, std::vector<int32_t>{0});
    second->GetText(&text);
    EXPECT_EQ(text.s, "for upper");

    // An answer naming another instance than the open editor's waits; one naming it completes it.
    first->ShowAsync(&firstDone);
    panel->answerTextEdit("upper", std::string("later"));
    EXPECT_EQ(firstDone.results.size(), 1u);
    panel->answerTextEdit("lower", std::string("now"));
    EXPECT_EQ(firstDone.results, (std::vector<int32_t>{-1, 0}));

    // A released instance's open editor goes without a call back.
    second->ShowAsync(&secondDone);  // takes "later"
    panel->runCompletions();
    first->ShowAsync(&firstDone);
    panel->releaseInstance("lower");
    panel->answerTextEdit("", std::string("nobody"));
    panel->runCompletions();
    EXPECT_EQ(firstDone.results.size(), 2u);
    first->release();
    second->release();
}

namespace {

// Records what the panel asks a presenter to show and to take down (the panel keeps the requests).
struct Presenter final : kxhost::RequestPresenter {
    std::vector<const kxhost::PendingRequest*> shown;
    std::vector<kxhost::FileDialogRequest> asked;
    std::vector<const kxhost::PendingRequest*> withdrawn;
    void present(const std::shared_ptr<kxhost::PendingRequest>& r) override {
        shown.push_back(r.get());
        asked.push_back(std::get<kxhost::FileDialogRequest>(r->details()));
    }
    void withdraw(const kxhost::PendingRequest& r) override { withdrawn.push_back(&r); }
};

}  // namespace

TEST_F(RenderPanel, PresenterShowsWhatNoScriptAnswersAndLearnsOfEveryOtherEnd) {
    Presenter presenter;
    panel->setPresenter(&presenter);
    int repaints = 0;
    panel->repaintNeeded = [&] { ++repaints; };
    panel->host("lower")->invalidateRect(nullptr);
    panel->host("lower")->invalidateMeasure();
    EXPECT_EQ(repaints, 2);

    gmpi::IMpUnknown* object = nullptr;
    void* face = nullptr;
    ASSERT_EQ(panel->host("lower")->createFileDialog(gmpi_gui::MP_PLATFORM_FILE_SAVE, &object), gmpi::MP_OK);
    ASSERT_EQ(object->queryInterface(gmpi_gui::SE_IID_GRAPHICS_PLATFORM_FILE_DIALOG, &face), gmpi::MP_OK);
    object->release();
    auto* dialog = static_cast<gmpi_gui::IMpPlatformFileDialog*>(face);
    dialog->AddExtension("wav", "Wave files");
    dialog->SetInitialFilename("take.wav");
    dialog->setInitialDirectory("/songs");
    Handler handler;
    Text chosen;

    // Shown to the user with what the module asked for; the user's answer completes it.
    dialog->ShowAsync(&handler);
    ASSERT_EQ(presenter.shown.size(), 1u);
    const auto& asked = presenter.asked[0];
    EXPECT_TRUE(asked.save);
    ASSERT_EQ(asked.filters.size(), 1u);
    EXPECT_EQ(asked.filters[0].description, "Wave files");
    EXPECT_EQ(asked.initialName + " in " + asked.initialFolder, "take.wav in /songs");
    panel->complete(*presenter.shown[0], std::string("/songs/new.wav"));
    ASSERT_EQ(handler.results, std::vector<int32_t>{0});
    dialog->GetSelectedFilename(&chosen);
    EXPECT_EQ(chosen.s, "/songs/new.wav");

    // A scripted step answers an open one: the presenter takes it down.
    dialog->ShowAsync(&handler);
    panel->answerFileDialog("", std::nullopt);
    ASSERT_EQ(presenter.withdrawn.size(), 1u);
    EXPECT_EQ(presenter.withdrawn[0], presenter.shown[1]);
    EXPECT_EQ(handler.results, (std::vector<int32_t>{0, -1}));

    // An answer queued before the dialog shows takes it without the user.
    panel->answerFileDialog("", std::string("/songs/queued.wav"));
    dialog->ShowAsync(&handler);
    panel->runCompletions();
    EXPECT_EQ(presenter.shown.size(), 2u);
    EXPECT_EQ(handler.results.size(), 3u);

    // Releasing the modules drops what is open, without a call back, and takes it down.
    dialog->ShowAsync(&handler);
    dialog->release();
    panel->releaseModules();
    EXPECT_EQ(presenter.withdrawn.size(), 2u);
    EXPECT_EQ(handler.results.size(), 3u);
    panel->setPresenter(nullptr);
}
