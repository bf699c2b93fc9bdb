// Bitmaps, and the pixel lock through which their memory is read (hit tests) or written.
#pragma once

#include "IMpResource.h"
#include "MpDrawingTypes.h"

namespace GmpiDrawing_API {

// {BD2A47F5-E68E-4874-A6A1-764B19716B78}
inline constexpr gmpi::MpGuid SE_IID_BITMAP_MPGUI = {
    0xBD2A47F5, 0xE68E, 0x4874, {0xA6, 0xA1, 0x76, 0x4B, 0x19, 0x71, 0x6B, 0x78}};
// {476BC99E-6287-4158-A310-71C2746DCA4F}
inline constexpr gmpi::MpGuid SE_IID_BITMAP_PIXELS_MPGUI = {
    0x476BC99E, 0x6287, 0x4158, {0xA3, 0x10, 0x71, 0xC2, 0x74, 0x6D, 0xCA, 0x4F}};

// The pixel format every lock presents: one 32-bit word per pixel in the machine's byte order, alpha in
// the top byte, then red, green, blue; colours premultiplied by alpha. A pixel is transparent exactly
// when its word is at most 0x00FFFFFF.
inline constexpr int32_t MP1_PIXEL_FORMAT_ARGB32_PREMULTIPLIED = 0;

// Slots 3 to 5 are frozen in this order. The lock lasts until the object is released.
class IMpBitmapPixels : public gmpi::IMpUnknown {
public:
    // [gui thread] The first byte of the top row; valid while this object lives. Owned by the bitmap.
    virtual uint8_t* getAddress() = 0;
    // [gui thread] The distance between rows in bytes (at least 4 x width).
    virtual int32_t getBytesPerRow() = 0;
    // [gui thread] The pixel format, MP1_PIXEL_FORMAT_ARGB32_PREMULTIPLIED.
    virtual int32_t getPixelFormat() = 0;

protected:
    ~IMpBitmapPixels() = default;
};

// Slots 4 to 6 are frozen in this order.
class IMpBitmap : public IMpResource {
public:
    // [gui thread] Returns the size in drawing units (equal to pixels in this interface version).
    virtual MP1_SIZE GetSizeF() = 0;
    // [gui thread] Stores the size in pixels. Returns 0.
    virtual int32_t GetSize(MP1_SIZE_U* returnSize) = 0;
    // [gui thread] Locks the pixels for reading and/or writing (MP1_BITMAP_LOCK_FLAGS); the caller owns
    // the IMpBitmapPixels given and releases it to unlock (writes take effect then). Returns 0, or -1
    // with null.
    virtual int32_t lockPixels(IMpBitmapPixels** returnPixels, int32_t flags) = 0;

protected:
    ~IMpBitmap() = default;
};

}  // namespace GmpiDrawing_API
