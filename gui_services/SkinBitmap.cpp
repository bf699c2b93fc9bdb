#include "SkinBitmap.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>

using GmpiDrawing::Rect;

namespace {

// Conversion toward zero that saturates: a metadata file can hold any numbers, and an out-of-range
// float-to-int conversion or an int overflow must not happen on the way.
int32_t trunc32(double d) {
    if (std::isnan(d))
        return 0;
    if (d >= 2147483647.0)
        return INT32_MAX;
    if (d <= -2147483648.0)
        return INT32_MIN;
    return static_cast<int32_t>(d);
}

}  // namespace

int32_t skinBitmap::Load(gmpi::IMpUserInterfaceHost2* uiHost, gmpi_gui::IMpGraphicsHost* graphicsHost,
                         const char* name) {
    metadata_ = nullptr;
    bitmap_ = GmpiDrawing::Bitmap();
    lastFrame_ = 0;
    if (!name || !*name)
        return gmpi::MP_FAIL;
    bitmap_ = ImageCache::instance().GetImage(uiHost, graphicsHost, name, &metadata_);
    if (!bitmap_ || !metadata_) {
        bitmap_ = GmpiDrawing::Bitmap();
        metadata_ = nullptr;
        return gmpi::MP_FAIL;
    }
    // A frame height of 0 (or less) in the file cannot divide the strip: no animation then.
    if (metadata_->frameHeight > 0)
        lastFrame_ = static_cast<int32_t>(bitmap_.GetSize().height / static_cast<uint32_t>(metadata_->frameHeight)) - 1;
    return gmpi::MP_OK;
}

bool skinBitmap::calcDrawAt(float v) {
    if (!bitmap_ || !metadata_)
        return false;
    const ImageMetadata& m = *metadata_;
    v = std::clamp(v, 0.0f, 1.0f);  // a NaN stays NaN and truncates to 0 below
    if (std::isnan(v))
        v = 0.0f;

    int32_t drawAt;
    if (m.mode == ImageMetadata::Slider) {
        const float span = static_cast<float>(int64_t{m.rangeEnd} - m.rangeStart);
        const int64_t d = trunc32(v * span);
        drawAt = trunc32(
            static_cast<double>((m.mouseResponse == 0 || m.mouseResponse == 5) ? m.rangeEnd - d : m.rangeStart + d));
    } else if (m.mode == ImageMetadata::BarGraph) {
        const int64_t segments = trunc32(v * (m.segmentCount + 1.0f));
        drawAt = trunc32(static_cast<double>(segments * m.rangeEnd + m.rangeStart - 1));
    } else {
        int32_t frame;
        if (frameScale == 0.0f) {
            frame = trunc32(v * static_cast<float>(lastFrame_) + 0.5f);
        } else {
            int32_t step = 0;
            if (stepCount >= 2)
                step = trunc32(std::floor(v * (static_cast<float>(stepCount) - 0.00001f)));
            currentStep_ = step;
            // stepCount - 1 is 0 for a single step: the division then gives an infinity or NaN that the
            // clamping below turns into an edge of the strip.
            float p = frameScale * static_cast<float>(step) / static_cast<float>(int64_t{stepCount} - 1) + frameOffset;
            if (p < 0.0f)
                p += 1.0f;
            if (p > 1.0f)
                p -= 1.0f;
            p = std::min(std::max(p, 0.0f), 1.0f);
            if (std::isnan(p))
                p = 0.0f;
            frame = trunc32(p * static_cast<float>(int64_t{lastFrame_} + 1) + 0.5f);
            if (frame > lastFrame_)
                frame = 0;  // the strip wraps round
        }
        drawAt = trunc32(static_cast<double>(int64_t{frame} * m.frameHeight));
    }
    const bool changed = drawAt != drawAt_;
    drawAt_ = drawAt;
    return changed;
}

BitmapHit skinBitmap::bitmapHitTest(GmpiDrawing_API::MP1_POINT point) {
    if (!bitmap_ || !metadata_)
        return {};
    const ImageMetadata& m = *metadata_;
    const float x = point.x, y = point.y;
    const float at = static_cast<float>(drawAt_);
    float bx, by;

    if (m.mode == ImageMetadata::BarGraph)
        return {true};
    if (m.mode == ImageMetadata::Slider) {
        if (!hitTestByPixel)
            return {0.0f <= x && x <= static_cast<float>(m.frameWidth) && 0.0f <= y &&
                    y <= static_cast<float>(m.frameHeight)};
        Rect handle(m.handleLeft, m.handleTop, m.handleRight, m.handleBottom);
        const bool horizontal = m.mouseResponse != 0;
        if (horizontal) {
            handle.left = std::max(handle.left + at, 0.0f);
            handle.right += at;
        } else {
            handle.top = std::max(handle.top + at, 0.0f);
            handle.bottom += at;
        }
        if (!(handle.left <= x && x <= handle.right && handle.top <= y && y <= handle.bottom))
            return {};
        bx = horizontal ? x - at : x;
        by = horizontal ? y : y - at;
    } else {
        bx = x - m.paddingLeft;
        by = y - m.paddingTop + at;
        if (!(0.0f <= bx && bx <= static_cast<float>(m.frameWidth) && at <= by &&
              by <= at + static_cast<float>(m.frameHeight)))
            return {};
        if (!hitTestByPixel)
            return {true};
    }
    // Transparent where the pixel's alpha byte is zero; outside the bitmap counts as transparent.
    const uint32_t pixel = bitmap_.getPixel(trunc32(bx), trunc32(by));
    return {pixel > 0xFFFFFFu, true, pixel};
}

void skinBitmap::renderBitmap(GmpiDrawing::Graphics& g, GmpiDrawing_API::MP1_SIZE_U offset) {
    if (!bitmap_ || !metadata_)
        return;
    const ImageMetadata& m = *metadata_;
    const float ox = static_cast<float>(offset.width), oy = static_cast<float>(offset.height);
    const float fw = static_cast<float>(m.frameWidth), fh = static_cast<float>(m.frameHeight);
    const float at = static_cast<float>(drawAt_);

    if (m.mode == ImageMetadata::Slider) {
        // A second frame, when the strip has one, is the track behind the handle.
        if (lastFrame_ >= 1)
            g.DrawBitmap(bitmap_, Rect(ox, oy, ox + fw, oy + fh), Rect(0, fh, fw, 2 * fh));
        // The first frame holds the handle at its resting place (the handle rectangle); it is drawn
        // moved by draw-at along the slider's axis, the same way the hit test reads it.
        const Rect source(m.handleLeft, m.handleTop, m.handleRight, m.handleBottom);
        Rect dest = source;
        if (m.mouseResponse != 0)
            dest.Offset(at + ox, oy);
        else
            dest.Offset(ox, at + oy);
        g.DrawBitmap(bitmap_, dest, source);
        return;
    }
    const Rect frameDest(ox + m.paddingLeft, oy + m.paddingTop, ox + m.paddingLeft + fw, oy + m.paddingTop + fh);
    if (m.mode == ImageMetadata::BarGraph) {
        // Frame 0 is the unlit bar; the lit frame 1 shows through over draw-at pixels from the bottom.
        g.DrawBitmap(bitmap_, frameDest, Rect(0, 0, fw, fh));
        const float lit = std::min(at, fh);
        if (lastFrame_ >= 1 && lit > 0.0f)
            g.DrawBitmap(bitmap_, Rect(frameDest.left, frameDest.bottom - lit, frameDest.right, frameDest.bottom),
                         Rect(0, 2 * fh - lit, fw, 2 * fh));
        return;
    }
    g.DrawBitmap(bitmap_, frameDest, Rect(0, at, fw, at + fh));
}

GmpiDrawing_API::MP1_SIZE skinBitmap::desiredSize() const {
    if (!bitmap_ || !metadata_)
        return {10, 10};
    const ImageMetadata& m = *metadata_;
    return {static_cast<float>(m.frameWidth) + m.paddingLeft + m.paddingRight,
            static_cast<float>(m.frameHeight) + m.paddingTop + m.paddingBottom};
}

int32_t skinBitmap::frameCount() const {
    if (!bitmap_ || !metadata_ || metadata_->frameHeight <= 0)
        return 0;
    return static_cast<int32_t>(bitmap_.GetSize().height / static_cast<uint32_t>(metadata_->frameHeight));
}
