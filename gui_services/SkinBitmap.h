// One widget's skin image: the film-strip bitmap, its metadata, and the arithmetic that picks the frame
// (or a slider's handle offset) for a value and decides whether a point is on the control.
#pragma once

#include <cstdint>

#include "GmpiDrawing.h"
#include "ImageCache.h"

// What a hit test found: whether the point is on the control and, when the test read a pixel of the
// bitmap to decide, that pixel as 0xAARRGGBB.
struct BitmapHit {
    bool hit = false;
    bool pixelRead = false;
    uint32_t pixel = 0;
};

class skinBitmap : public ImageCacheClient {
public:
    // Forgets the current image, then loads name through the cache. -1 for a null or empty name or an
    // image that cannot be loaded (the widget then draws nothing and is never hit), else 0.
    int32_t Load(gmpi::IMpUserInterfaceHost2* uiHost, gmpi_gui::IMpGraphicsHost* graphicsHost, const char* name);

    const GmpiDrawing::Bitmap& getDrawBitmap() const { return bitmap_; }
    const ImageMetadata* getMetadata() const { return metadata_; }

    // Moves to the frame (or handle offset) for v in 0..1; true when draw-at changed.
    bool calcDrawAt(float normalised);
    // Whether a point in the widget's own coordinates is on the control.
    bool bitmapHitTestLocal(GmpiDrawing_API::MP1_POINT point) { return bitmapHitTest(point).hit; }
    // The same test, also telling the pixel it read (widgets that react to the pixel under the pointer).
    BitmapHit bitmapHitTest(GmpiDrawing_API::MP1_POINT point);
    // Draws the current frame with the widget's top-left corner at offset. Knobs, animations and buttons
    // draw their frame inside the padding. A slider's first frame holds the handle at its resting place
    // (the handle rectangle), drawn moved by draw-at along its axis; a second frame is its track. A bar
    // graph's first frame is unlit, and draw-at pixels of its second frame show from the bottom up.
    void renderBitmap(GmpiDrawing::Graphics& g, GmpiDrawing_API::MP1_SIZE_U offset);
    // The desired size: frame plus padding, or 10 x 10 with no image.
    GmpiDrawing_API::MP1_SIZE desiredSize() const;
    // Bitmap height / frame height, 0 with no image.
    int32_t frameCount() const;

    int32_t getDrawAt() const { return drawAt_; }
    int32_t getLastFrame() const { return lastFrame_; }
    int32_t getCurrentStep() const { return currentStep_; }

    // When true (the default) a hit also needs a non-transparent pixel under the point.
    bool hitTestByPixel = true;
    // Animation steps: with a non-zero frame scale, v is quantised to stepCount steps and mapped through
    // frame = frameScale x step / (stepCount - 1) + frameOffset (wrapping round the strip).
    int32_t stepCount = 0;
    float frameOffset = 0;
    float frameScale = 0;

protected:
    GmpiDrawing::Bitmap bitmap_;
    ImageMetadata* metadata_ = nullptr;  // owned by the cache entry

private:
    int32_t drawAt_ = 0;
    int32_t lastFrame_ = 0;
    int32_t currentStep_ = 0;
};
