// Recording fakes of the host's graphics side for unit tests: a graphics host (invalidations, capture,
// dialogs), a drawing factory whose images come from a map, bitmaps with real pixel memory, and a
// device context that records what it is asked to draw.
//
//   kxtest::FakeGuiHost host;  kxtest::FakeGraphicsHost gfx(host);
//   module.setHost(gfx.unknown());        // answers both the GUI host and the graphics host
#pragma once

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "FakeGuiHost.h"
#include "gmpi/IMpCompletionHandler.h"
#include "gmpi/IMpDeviceContext.h"
#include "gmpi/IMpGraphicsHost.h"
#include "gmpi/IMpPlatformFileDialog.h"
#include "gmpi/IMpPlatformText.h"

namespace kxtest {

using namespace GmpiDrawing_API;

// Reference counting shared by the fakes; counts every live object so tests can check for leaks.
template <class I>
class Counted : public I {
public:
    static inline int live = 0;
    Counted() { ++live; }
    virtual ~Counted() { --live; }
    int32_t addRef() override { return ++count_; }
    int32_t release() override {
        const int32_t c = --count_;
        if (c == 0)
            delete this;
        return c;
    }
    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        *out = nullptr;
        if (gmpi::isUnknownIid(iid) || answers(iid)) {
            *out = static_cast<I*>(this);
            addRef();
            return gmpi::MP_OK;
        }
        return gmpi::MP_NOSUPPORT;
    }
    virtual bool answers(const gmpi::MpGuid&) const { return false; }

private:
    int32_t count_ = 1;
};

class FakeFactory;

class FakePixels final : public Counted<IMpBitmapPixels> {
public:
    FakePixels(uint8_t* a, int32_t pitch) : address_(a), pitch_(pitch) {}
    uint8_t* getAddress() override { return address_; }
    int32_t getBytesPerRow() override { return pitch_; }
    int32_t getPixelFormat() override { return MP1_PIXEL_FORMAT_ARGB32_PREMULTIPLIED; }

private:
    uint8_t* address_;
    int32_t pitch_;
};

class FakeBitmap final : public Counted<IMpBitmap> {
public:
    FakeBitmap(IMpFactory* f, uint32_t w, uint32_t h) : factory(f), width(w), height(h), pixels(size_t(w) * h, 0) {}
    IMpFactory* factory;
    uint32_t width, height;
    std::vector<uint32_t> pixels;
    int locks = 0;

    int32_t getFactory(IMpFactory** f) override {
        *f = factory;
        return gmpi::MP_OK;
    }
    MP1_SIZE GetSizeF() override { return {float(width), float(height)}; }
    int32_t GetSize(MP1_SIZE_U* s) override {
        *s = {width, height};
        return gmpi::MP_OK;
    }
    int32_t lockPixels(IMpBitmapPixels** out, int32_t) override {
        ++locks;
        *out = new FakePixels(reinterpret_cast<uint8_t*>(pixels.data()), int32_t(width * 4));
        return gmpi::MP_OK;
    }
    bool answers(const gmpi::MpGuid& iid) const override { return iid == SE_IID_BITMAP_MPGUI; }
};

class FakeTextFormat final : public Counted<IMpTextFormat> {
public:
    std::vector<std::string> families;
    int32_t weight = 0, style = 0;
    float size = 0;
    int32_t textAlignment = 0, paragraphAlignment = 0, wordWrapping = 0;

    int32_t SetTextAlignment(int32_t a) override { return textAlignment = a, gmpi::MP_OK; }
    int32_t SetParagraphAlignment(int32_t a) override { return paragraphAlignment = a, gmpi::MP_OK; }
    int32_t SetWordWrapping(int32_t w) override { return wordWrapping = w, gmpi::MP_OK; }
    int32_t GetTextExtentU(const char*, int32_t n, MP1_SIZE* s) override {
        *s = {n * size * 0.5f, size};
        return gmpi::MP_OK;
    }
    int32_t GetFontMetrics(MP1_FONT_METRICS* m) override {
        *m = {size * 0.8f, size * 0.2f, 1.0f, 0, 0, 0, 0, 0, 0};
        return gmpi::MP_OK;
    }
    int32_t SetLineSpacing(float, float) override { return gmpi::MP_OK; }
    bool answers(const gmpi::MpGuid& iid) const override { return iid == SE_IID_TEXTFORMAT_MPGUI; }
};

// Images are entries of a map: path -> (width, height, fill pixel). Unknown paths fail to load.
class FakeFactory final : public IMpFactory2 {
public:
    struct Image {
        uint32_t width, height, fill;
    };
    std::map<std::string, Image> images;
    std::vector<std::string> loads;      // every path LoadImage* was asked for
    std::vector<std::string> maskLoads;  // mask paths given
    std::vector<FakeTextFormat*> formats;

    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        *out = nullptr;
        if (gmpi::isUnknownIid(iid) || iid == SE_IID_FACTORY_MPGUI || iid == SE_IID_FACTORY2_MPGUI) {
            *out = static_cast<IMpFactory2*>(this);
            return gmpi::MP_OK;
        }
        return gmpi::MP_NOSUPPORT;
    }
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }
    int32_t CreatePathGeometry(IMpPathGeometry** g) override {
        *g = nullptr;
        return gmpi::MP_FAIL;
    }
    int32_t CreateTextFormat(const char* family, int32_t w, int32_t s, int32_t st, float size,
                             IMpTextFormat** out) override {
        return CreateTextFormat2(&family, 1, w, s, st, size, out);
    }
    int32_t CreateImage(int32_t w, int32_t h, IMpBitmap** out) override {
        *out = new FakeBitmap(this, uint32_t(w), uint32_t(h));
        return gmpi::MP_OK;
    }
    int32_t LoadImageU(const char* uri, IMpBitmap** out) override {
        loads.push_back(uri);
        *out = nullptr;
        auto it = images.find(uri);
        if (it == images.end())
            return gmpi::MP_FAIL;
        auto* b = new FakeBitmap(this, it->second.width, it->second.height);
        std::fill(b->pixels.begin(), b->pixels.end(), it->second.fill);
        *out = b;
        return gmpi::MP_OK;
    }
    int32_t CreateTextFormat2(const char* const* names, int32_t count, int32_t w, int32_t s, int32_t, float size,
                              IMpTextFormat** out) override {
        auto* f = new FakeTextFormat;
        for (int i = 0; i < count; ++i)
            f->families.push_back(names[i]);
        f->weight = w;
        f->style = s;
        f->size = size;
        formats.push_back(f);
        *out = f;
        return gmpi::MP_OK;
    }
    int32_t LoadImageWithMaskU(const char* uri, const char* mask, IMpBitmap** out) override {
        if (mask)
            maskLoads.push_back(mask);
        return LoadImageU(uri, out);
    }
};

// Records the operations that tests look at; the rest do nothing.
class FakeDeviceContext final : public IMpDeviceContext {
public:
    explicit FakeDeviceContext(FakeFactory& f) : factory(f) {}
    FakeFactory& factory;
    struct Stops final : Counted<IMpGradientStopCollection> {
        std::vector<MP1_GRADIENT_STOP> stops;
        int32_t getFactory(IMpFactory**) override { return gmpi::MP_OK; }
    };
    struct Solid final : Counted<IMpSolidColorBrush> {
        MP1_COLOR color{};
        int32_t getFactory(IMpFactory**) override { return gmpi::MP_OK; }
        void SetColor(const MP1_COLOR* c) override { color = *c; }
        MP1_COLOR GetColor() override { return color; }
    };
    struct Linear final : Counted<IMpLinearGradientBrush> {
        int32_t getFactory(IMpFactory**) override { return gmpi::MP_OK; }
        void SetStartPoint(MP1_POINT) override {}
        void SetEndPoint(MP1_POINT) override {}
    };
    struct Radial final : Counted<IMpRadialGradientBrush> {
        int32_t getFactory(IMpFactory**) override { return gmpi::MP_OK; }
        void SetCenter(MP1_POINT) override {}
        void SetGradientOriginOffset(MP1_POINT) override {}
        void SetRadiusX(float) override {}
        void SetRadiusY(float) override {}
    };
    struct BitmapDraw {
        IMpBitmap* bitmap;
        MP1_RECT dest, source;
        float opacity;
    };

    std::vector<MP1_GRADIENT_STOP> lastStops;
    MP1_LINEAR_GRADIENT_BRUSH_PROPERTIES lastLinear{};
    MP1_RADIAL_GRADIENT_BRUSH_PROPERTIES lastRadial{};
    MP1_BRUSH_PROPERTIES lastBrush{};
    // A drawing call with the colour of its brush (alpha -1 for a brush that is not solid).
    struct Shape {
        MP1_RECT rect;
        MP1_COLOR colour;
    };
    struct Line {
        MP1_POINT from, to;
        float width;
        MP1_COLOR colour;
    };
    struct Text {
        std::string text;
        MP1_RECT rect;
        MP1_COLOR colour;
        int32_t options;
    };

    std::vector<BitmapDraw> bitmaps;
    std::vector<std::string> texts;
    std::vector<MP1_RECT> fills;
    std::vector<Shape> solidFills;  // every FillRectangle, with its colour
    std::vector<Shape> outlines;    // every DrawRectangle
    std::vector<Line> lines;
    struct Ellipse {
        MP1_ELLIPSE ellipse;
        MP1_COLOR colour;
    };
    std::vector<Ellipse> filledEllipses;
    std::vector<Text> drawnTexts;
    std::vector<MP1_RECT> clips;  // pushed and not yet popped

    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        *out = nullptr;
        if (gmpi::isUnknownIid(iid) || iid == SE_IID_DEVICECONTEXT_MPGUI) {
            *out = static_cast<IMpDeviceContext*>(this);
            return gmpi::MP_OK;
        }
        return gmpi::MP_NOSUPPORT;
    }
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }
    void GetFactory(IMpFactory** f) override { *f = &factory; }
    static MP1_COLOR colourOf(IMpBrush* b) {
        auto* solid = dynamic_cast<Solid*>(b);
        return solid ? solid->color : MP1_COLOR{0, 0, 0, -1};
    }
    void DrawRectangle(const MP1_RECT* r, IMpBrush* b, float) override { outlines.push_back({*r, colourOf(b)}); }
    void FillRectangle(const MP1_RECT* r, IMpBrush* b) override {
        fills.push_back(*r);
        solidFills.push_back({*r, colourOf(b)});
    }
    void DrawRoundedRectangle(const MP1_ROUNDED_RECT*, IMpBrush*, float) override {}
    void FillRoundedRectangle(const MP1_ROUNDED_RECT*, IMpBrush*) override {}
    void DrawEllipse(const MP1_ELLIPSE*, IMpBrush*, float) override {}
    void FillEllipse(const MP1_ELLIPSE* e, IMpBrush* b) override { filledEllipses.push_back({*e, colourOf(b)}); }
    void DrawLine(MP1_POINT p0, MP1_POINT p1, IMpBrush* b, float w) override {
        lines.push_back({p0, p1, w, colourOf(b)});
    }
    void DrawGeometry(IMpPathGeometry*, IMpBrush*, float) override {}
    void FillGeometry(IMpPathGeometry*, IMpBrush*) override {}
    void DrawTextU(const char* s, int32_t n, IMpTextFormat*, const MP1_RECT* r, IMpBrush* b, int32_t o) override {
        texts.emplace_back(s, n < 0 ? std::strlen(s) : size_t(n));
        drawnTexts.push_back({texts.back(), *r, colourOf(b), o});
    }
    void DrawBitmap(IMpBitmap* b, const MP1_RECT* d, float o, int32_t, const MP1_RECT* s) override {
        bitmaps.push_back({b, d ? *d : MP1_RECT{}, s ? *s : MP1_RECT{}, o});
    }
    void SetTransform(const MP1_MATRIX_3X2*) override {}
    void GetTransform(MP1_MATRIX_3X2* m) override { *m = {1, 0, 0, 1, 0, 0}; }
    int32_t CreateSolidColorBrush(const MP1_COLOR* c, IMpSolidColorBrush** out) override {
        auto* b = new Solid;
        b->color = *c;
        *out = b;
        return gmpi::MP_OK;
    }
    int32_t CreateGradientStopCollection(const MP1_GRADIENT_STOP* s, uint32_t n,
                                         IMpGradientStopCollection** out) override {
        auto* c = new Stops;
        c->stops.assign(s, s + n);
        lastStops = c->stops;
        *out = c;
        return gmpi::MP_OK;
    }
    int32_t CreateLinearGradientBrush(const MP1_LINEAR_GRADIENT_BRUSH_PROPERTIES* p, const MP1_BRUSH_PROPERTIES* b,
                                      IMpGradientStopCollection*, IMpLinearGradientBrush** out) override {
        lastLinear = *p;
        lastBrush = *b;
        *out = new Linear;
        return gmpi::MP_OK;
    }
    int32_t CreateRadialGradientBrush(const MP1_RADIAL_GRADIENT_BRUSH_PROPERTIES* p, const MP1_BRUSH_PROPERTIES* b,
                                      IMpGradientStopCollection*, IMpRadialGradientBrush** out) override {
        lastRadial = *p;
        lastBrush = *b;
        *out = new Radial;
        return gmpi::MP_OK;
    }
    int32_t CreateCompatibleRenderTarget(const MP1_SIZE*, IMpBitmapRenderTarget** out) override {
        *out = nullptr;
        return gmpi::MP_FAIL;
    }
    void PushAxisAlignedClip(const MP1_RECT* r) override { clips.push_back(*r); }
    void PopAxisAlignedClip() override {
        if (!clips.empty())
            clips.pop_back();
    }
    // The target's own bounds (set them to test a partial repaint) within every clip pushed.
    MP1_RECT bounds{-1e6f, -1e6f, 1e6f, 1e6f};
    void GetAxisAlignedClip(MP1_RECT* r) override {
        *r = bounds;
        for (const auto& c : clips)
            *r = {std::max(r->left, c.left), std::max(r->top, c.top), std::min(r->right, c.right),
                  std::min(r->bottom, c.bottom)};
    }
    void Clear(const MP1_COLOR*) override {}
    void BeginDraw() override {}
    int32_t EndDraw() override { return gmpi::MP_OK; }
};

class FakeStream final : public Counted<gmpi::IMpResourceStream> {
public:
    explicit FakeStream(std::string bytes) : bytes_(std::move(bytes)) {}
    int32_t getSize(int64_t& size) override { return size = int64_t(bytes_.size()), gmpi::MP_OK; }
    int32_t read(void* buffer, int32_t size) override {
        const size_t n = std::min(bytes_.size() - pos_, size_t(size < 0 ? 0 : size));
        std::memcpy(buffer, bytes_.data() + pos_, n);
        pos_ += n;
        return int32_t(n);
    }
    bool answers(const gmpi::MpGuid& iid) const override { return iid == gmpi::MP_IID_RESOURCE_STREAM; }

private:
    std::string bytes_;
    size_t pos_ = 0;
};

// A GUI host whose resources are files in a map: a relative name resolves to folder + name, an absolute
// one to itself; openResource serves the map's bytes.
class FakeSkinHost : public FakeGuiHost {
public:
    explicit FakeSkinHost(std::string skinFolder = "/skin/") : folder(std::move(skinFolder)) {}
    std::string folder;
    std::map<std::string, std::string> files;
    std::vector<std::string> resolved;  // "name|type" of every resolve, in order
    int opens = 0;

    int32_t resolveResource(const char* name, const char* type, gmpi::IMpUnknown* returnString) override {
        resolved.push_back(std::string(name) + "|" + type);
        void* s = nullptr;
        if (!returnString || returnString->queryInterface(gmpi::MP_IID_RETURNSTRING, &s) != gmpi::MP_OK)
            return gmpi::MP_FAIL;
        const std::string path = name[0] == '/' ? std::string(name) : folder + name;
        static_cast<gmpi::IString*>(s)->setData(path.data(), int32_t(path.size()));
        return files.count(path) ? gmpi::MP_OK : gmpi::MP_FAIL;
    }
    int32_t openResource(const char* path, gmpi::IMpUnknown** stream) override {
        ++opens;
        *stream = nullptr;
        auto it = files.find(path);
        if (it == files.end())
            return gmpi::MP_FAIL;
        *stream = new FakeStream(it->second);
        return gmpi::MP_OK;
    }
};

// A host text editor that remembers what it was told and completes when the test says so.
class FakeTextEdit final : public Counted<gmpi_gui::IMpPlatformText> {
public:
    MP1_RECT rect;
    std::string text;
    int32_t alignment = -1;
    float textSize = -1;
    gmpi_gui::IMpCompletionHandler* handler = nullptr;

    explicit FakeTextEdit(MP1_RECT r) : rect(r) {}
    bool answers(const gmpi::MpGuid& iid) const override { return iid == gmpi_gui::SE_IID_GRAPHICS_PLATFORM_TEXT; }
    int32_t SetText(const char* t) override { return text = t, gmpi::MP_OK; }
    int32_t GetText(gmpi::IMpUnknown* s) override {
        void* face = nullptr;
        if (!s || s->queryInterface(gmpi::MP_IID_RETURNSTRING, &face) != gmpi::MP_OK)
            return gmpi::MP_FAIL;
        static_cast<gmpi::IString*>(face)->setData(text.data(), int32_t(text.size()));
        return gmpi::MP_OK;
    }
    int32_t ShowAsync(gmpi::IMpUnknown* h) override {
        void* face = nullptr;
        if (!h || h->queryInterface(gmpi_gui::SE_IID_COMPLETION_HANDLER, &face) != gmpi::MP_OK)
            return gmpi::MP_FAIL;
        handler = static_cast<gmpi_gui::IMpCompletionHandler*>(face);
        addRef();  // shown: alive until it completes
        return gmpi::MP_OK;
    }
    int32_t SetAlignment(int32_t a) override { return alignment = a, gmpi::MP_OK; }
    int32_t SetTextSize(float size) override { return textSize = size, gmpi::MP_OK; }
    bool shown() const { return handler != nullptr; }
    // The user's answer: the edited text, or cancel (null).
    void complete(const char* edited) {
        auto* h = std::exchange(handler, nullptr);
        if (edited)
            text = edited;
        h->OnComplete(edited ? gmpi::MP_OK : gmpi::MP_FAIL);
        h->release();
        release();
    }
};

// A graphics host that also answers the GUI host interfaces of a FakeGuiHost.
class FakeGraphicsHost : public gmpi_gui::IMpGraphicsHost {
public:
    explicit FakeGraphicsHost(FakeGuiHost& gui) : guiHost(gui) {}
    FakeGuiHost& guiHost;
    FakeFactory factory;
    int invalidates = 0;
    int measureRequests = 0;
    bool captured = false;
    bool offerGraphics = true;
    int captureCalls = 0, releaseCalls = 0;
    std::vector<int32_t> dialogTypes;
    std::vector<MP1_RECT> textEditRects;
    // When set, text editors are made (and kept here, borrowed: alive while shown or held).
    bool makeTextEdits = false;
    std::vector<FakeTextEdit*> textEdits;

    gmpi::IMpUnknown* unknown() { return static_cast<gmpi_gui::IMpGraphicsHost*>(this); }

    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        *out = nullptr;
        if (offerGraphics && gmpi_gui::isGraphicsHostIid(iid)) {
            *out = static_cast<gmpi_gui::IMpGraphicsHost*>(this);
            return gmpi::MP_OK;
        }
        return guiHost.queryInterface(iid, out);
    }
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }
    int32_t getDrawingScale(float& s) override { return s = 1.0f, gmpi::MP_OK; }
    int32_t getLayoutRect(MP1_RECT& r) override { return r = {}, gmpi::MP_FAIL; }
    void invalidateRect(const MP1_RECT*) override { ++invalidates; }
    void invalidateMeasure() override { ++measureRequests; }
    int32_t setCapture() override { return ++captureCalls, captured = true, gmpi::MP_OK; }
    int32_t getCapture(int32_t& v) override { return v = captured ? 1 : 0, gmpi::MP_OK; }
    int32_t releaseCapture() override { return ++releaseCalls, captured = false, gmpi::MP_OK; }
    int32_t createFileDialog(int32_t type, gmpi::IMpUnknown** out) override {
        dialogTypes.push_back(type);
        *out = nullptr;
        return gmpi::MP_FAIL;
    }
    int32_t createPlatformTextEdit(const MP1_RECT* r, gmpi::IMpUnknown** out) override {
        textEditRects.push_back(*r);
        *out = nullptr;
        if (!makeTextEdits)
            return gmpi::MP_FAIL;
        textEdits.push_back(new FakeTextEdit(*r));
        *out = textEdits.back();
        return gmpi::MP_OK;
    }
    void GetDrawingFactory(IMpFactory** f) override { *f = &factory; }
};

}  // namespace kxtest
