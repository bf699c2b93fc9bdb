#include "GmpiDrawing.h"

#include <cstring>
#include <cwchar>

namespace GmpiDrawing {

using namespace GmpiDrawing_API;

Color Color::FromArgbText(const std::wstring& text) {
    // Only the low 32 bits of the number read count, as a 32-bit store of it keeps them.
    return FromArgb(static_cast<uint32_t>(std::wcstoul(text.c_str(), nullptr, 16)));
}

uint32_t Bitmap::getPixel(int32_t x, int32_t y) const {
    const SizeU size = GetSize();
    if (x < 0 || y < 0 || static_cast<uint32_t>(x) >= size.width || static_cast<uint32_t>(y) >= size.height)
        return 0;
    BitmapPixels pixels = lockPixels(MP1_BITMAP_LOCK_READ);
    const uint8_t* base = pixels.getAddress();
    const int32_t pitch = pixels.getBytesPerRow();
    if (!base || pitch < static_cast<int32_t>(size.width) * 4)
        return 0;
    uint32_t value = 0;
    std::memcpy(&value, base + static_cast<size_t>(y) * static_cast<size_t>(pitch) + static_cast<size_t>(x) * 4,
                sizeof value);
    return value;
}

Factory Bitmap::GetFactory() const {
    IMpFactory* factory = nullptr;
    if (p_)
        p_->getFactory(&factory);
    return Factory(factory);
}

// ---- Factory

TextFormat Factory::CreateTextFormat(float fontSize, const char* family, int32_t weight, int32_t style,
                                     int32_t stretch) const {
    TextFormat format;
    if (p_)
        p_->CreateTextFormat(family, weight, style, stretch, fontSize, format.GetAddressOf());
    return format;
}

TextFormat Factory::CreateTextFormat2(float fontSize, const FontStack& families, int32_t weight, int32_t style,
                                      int32_t stretch) const {
    TextFormat format;
    if (!p_)
        return format;
    if (auto factory2 = gmpi_sdk::queryAs<IMpFactory2>(p_.get(), SE_IID_FACTORY2_MPGUI)) {
        std::vector<const char*> names;
        names.reserve(families.size());
        for (const auto& f : families)
            names.push_back(f.c_str());
        factory2->CreateTextFormat2(names.data(), static_cast<int32_t>(names.size()), weight, style, stretch, fontSize,
                                    format.GetAddressOf());
        return format;
    }
    return CreateTextFormat(fontSize, families.empty() ? "" : families.front().c_str(), weight, style, stretch);
}

Bitmap Factory::LoadImageU(const std::string& utf8Path) const {
    Bitmap bitmap;
    if (p_)
        p_->LoadImageU(utf8Path.c_str(), bitmap.GetAddressOf());
    return bitmap;
}

Bitmap Factory::LoadImageWithMaskU(const std::string& utf8Path, const std::string& utf8MaskPath) const {
    Bitmap bitmap;
    if (!p_)
        return bitmap;
    if (auto factory2 = gmpi_sdk::queryAs<IMpFactory2>(p_.get(), SE_IID_FACTORY2_MPGUI)) {
        factory2->LoadImageWithMaskU(utf8Path.c_str(), utf8MaskPath.c_str(), bitmap.GetAddressOf());
        return bitmap;
    }
    return LoadImageU(utf8Path);
}

Bitmap Factory::CreateImage(int32_t width, int32_t height) const {
    Bitmap bitmap;
    if (p_)
        p_->CreateImage(width, height, bitmap.GetAddressOf());
    return bitmap;
}

PathGeometry Factory::CreatePathGeometry() const {
    PathGeometry geometry;
    if (p_)
        p_->CreatePathGeometry(geometry.GetAddressOf());
    return geometry;
}

// ---- Graphics_base

Factory Graphics_base::GetFactory() const {
    IMpFactory* factory = nullptr;
    if (context_)
        context_->GetFactory(&factory);
    return Factory(factory);
}

SolidColorBrush Graphics_base::CreateSolidColorBrush(const Color& color) {
    IMpSolidColorBrush* brush = nullptr;
    if (context_)
        context_->CreateSolidColorBrush(&color, &brush);
    return SolidColorBrush::adopt(brush);
}

GradientStopCollection Graphics_base::CreateGradientStopCollection(const GradientStops& stops) {
    GradientStopCollection collection;
    if (context_ && !stops.empty())
        context_->CreateGradientStopCollection(stops.data(), static_cast<uint32_t>(stops.size()),
                                               collection.GetAddressOf());
    return collection;
}

namespace {
constexpr MP1_BRUSH_PROPERTIES kPlainBrush{1.0f, {1, 0, 0, 1, 0, 0}};
}

LinearGradientBrush Graphics_base::CreateLinearGradientBrush(const GradientStopCollection& stops, Point start,
                                                             Point end) {
    IMpLinearGradientBrush* brush = nullptr;
    if (context_) {
        const MP1_LINEAR_GRADIENT_BRUSH_PROPERTIES props{start, end};
        context_->CreateLinearGradientBrush(&props, &kPlainBrush, stops.Get(), &brush);
    }
    return LinearGradientBrush::adopt(brush);
}

LinearGradientBrush Graphics_base::CreateLinearGradientBrush(Color c1, Color c2, Point start, Point end) {
    const GradientStops stops{{0.0f, c1}, {1.0f, c2}};
    return CreateLinearGradientBrush(CreateGradientStopCollection(stops), start, end);
}

RadialGradientBrush Graphics_base::CreateRadialGradientBrush(const GradientStopCollection& stops, Point center,
                                                             Point gradientOriginOffset, float radiusX, float radiusY) {
    IMpRadialGradientBrush* brush = nullptr;
    if (context_) {
        const MP1_RADIAL_GRADIENT_BRUSH_PROPERTIES props{center, gradientOriginOffset, radiusX, radiusY};
        context_->CreateRadialGradientBrush(&props, &kPlainBrush, stops.Get(), &brush);
    }
    return RadialGradientBrush::adopt(brush);
}

RadialGradientBrush Graphics_base::CreateRadialGradientBrush(MP1_POINT center, float radius, MP1_COLOR c1,
                                                             MP1_COLOR c2) {
    const GradientStops stops{{0.0f, c1}, {1.0f, c2}};
    return CreateRadialGradientBrush(CreateGradientStopCollection(stops), center, Point(0, 0), radius, radius);
}

BitmapRenderTarget Graphics_base::CreateCompatibleRenderTarget(Size desiredSize) {
    IMpBitmapRenderTarget* target = nullptr;
    if (context_) {
        const MP1_SIZE size = desiredSize;
        context_->CreateCompatibleRenderTarget(&size, &target);
    }
    return BitmapRenderTarget::adopt(target);
}

void Graphics_base::DrawRectangle(const Rect& r, const Brush& b, float strokeWidth) {
    const MP1_RECT rect = r;
    if (context_)
        context_->DrawRectangle(&rect, b.Get(), strokeWidth);
}

void Graphics_base::FillRectangle(const Rect& r, const Brush& b) {
    const MP1_RECT rect = r;
    if (context_)
        context_->FillRectangle(&rect, b.Get());
}

void Graphics_base::DrawRoundedRectangle(const Rect& r, float radius, const Brush& b, float strokeWidth) {
    const MP1_ROUNDED_RECT rr{r, radius, radius};
    if (context_)
        context_->DrawRoundedRectangle(&rr, b.Get(), strokeWidth);
}

void Graphics_base::FillRoundedRectangle(const Rect& r, float radius, const Brush& b) {
    const MP1_ROUNDED_RECT rr{r, radius, radius};
    if (context_)
        context_->FillRoundedRectangle(&rr, b.Get());
}

void Graphics_base::DrawEllipse(Point center, float radiusX, float radiusY, const Brush& b, float strokeWidth) {
    const MP1_ELLIPSE e{center, radiusX, radiusY};
    if (context_)
        context_->DrawEllipse(&e, b.Get(), strokeWidth);
}

void Graphics_base::FillEllipse(Point center, float radiusX, float radiusY, const Brush& b) {
    const MP1_ELLIPSE e{center, radiusX, radiusY};
    if (context_)
        context_->FillEllipse(&e, b.Get());
}

void Graphics_base::DrawLine(Point p0, Point p1, const Brush& b, float strokeWidth) {
    if (context_)
        context_->DrawLine(p0, p1, b.Get(), strokeWidth);
}

void Graphics_base::DrawGeometry(const PathGeometry& g, const Brush& b, float strokeWidth) {
    if (context_)
        context_->DrawGeometry(g.Get(), b.Get(), strokeWidth);
}

void Graphics_base::FillGeometry(const PathGeometry& g, const Brush& b) {
    if (context_)
        context_->FillGeometry(g.Get(), b.Get());
}

void Graphics_base::DrawTextU(std::string_view utf8, const TextFormat& format, const Rect& layoutRect, const Brush& b,
                              int32_t options) {
    const MP1_RECT rect = layoutRect;
    if (context_)
        context_->DrawTextU(utf8.data(), static_cast<int32_t>(utf8.size()), format.Get(), &rect, b.Get(), options);
}

void Graphics_base::DrawBitmap(const Bitmap& bitmap, const Rect& destination, const Rect& source, float opacity,
                               int32_t interpolationMode) {
    const MP1_RECT dest = destination;
    const MP1_RECT src = source;
    if (context_)
        context_->DrawBitmap(bitmap.Get(), &dest, opacity, interpolationMode, &src);
}

void Graphics_base::DrawBitmap(const Bitmap& bitmap, Point destination) {
    const Size size = bitmap.GetSizeF();
    DrawBitmap(bitmap, Rect(destination, size), Rect(Point(0, 0), size));
}

void Graphics_base::SetTransform(const Matrix3x2& m) {
    if (context_)
        context_->SetTransform(&m);
}

Matrix3x2 Graphics_base::GetTransform() const {
    Matrix3x2 m;
    if (context_)
        context_->GetTransform(&m);
    return m;
}

void Graphics_base::PushAxisAlignedClip(const Rect& r) {
    const MP1_RECT rect = r;
    if (context_)
        context_->PushAxisAlignedClip(&rect);
}

void Graphics_base::PopAxisAlignedClip() {
    if (context_)
        context_->PopAxisAlignedClip();
}

Rect Graphics_base::GetAxisAlignedClip() const {
    MP1_RECT r{0, 0, 0, 0};
    if (context_)
        context_->GetAxisAlignedClip(&r);
    return r;
}

void Graphics_base::Clear(const Color& c) {
    if (context_)
        context_->Clear(&c);
}

void Graphics_base::BeginDraw() {
    if (context_)
        context_->BeginDraw();
}

int32_t Graphics_base::EndDraw() { return context_ ? context_->EndDraw() : gmpi::MP_FAIL; }

Graphics::Graphics(gmpi::IMpUnknown* object) {
    context_ = gmpi_sdk::queryAs<IMpDeviceContext>(object, SE_IID_DEVICECONTEXT_MPGUI);
}

BitmapRenderTarget BitmapRenderTarget::adopt(IMpBitmapRenderTarget* owned) {
    BitmapRenderTarget t;
    t.target_ = gmpi_sdk::mp_shared_ptr<IMpBitmapRenderTarget>::adopt(owned);
    t.context_ = gmpi_sdk::mp_shared_ptr<IMpDeviceContext>(owned);
    return t;
}

Bitmap BitmapRenderTarget::GetBitmap() const {
    Bitmap bitmap;
    if (target_)
        target_->GetBitmap(bitmap.GetAddressOf());
    return bitmap;
}

}  // namespace GmpiDrawing
