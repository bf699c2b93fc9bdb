// The drawing factory: makes the device-independent drawing objects (text formats, bitmaps, path
// geometries). One factory per host window system; the graphics host hands it out.
#pragma once

#include "IMpBitmap.h"
#include "IMpPathGeometry.h"
#include "IMpTextFormat.h"
#include "IMpUnknown.h"
#include "MpDrawingTypes.h"

namespace GmpiDrawing_API {

// {2AF8010E-7B13-4EEC-9C64-80962F03B831}
inline constexpr gmpi::MpGuid SE_IID_FACTORY_MPGUI = {
    0x2AF8010E, 0x7B13, 0x4EEC, {0x9C, 0x64, 0x80, 0x96, 0x2F, 0x03, 0xB8, 0x31}};
// {61568E7F-5256-49C6-95E6-10327EB33EC4}
inline constexpr gmpi::MpGuid SE_IID_FACTORY2_MPGUI = {
    0x61568E7F, 0x5256, 0x49C6, {0x95, 0xE6, 0x10, 0x32, 0x7E, 0xB3, 0x3E, 0xC4}};

// Slots 3 to 6 are frozen in this order. Every object handed out is owned by the caller (one reference).
class IMpFactory : public gmpi::IMpUnknown {
public:
    // [gui thread] Makes an empty path geometry. Returns 0, or -1 with null.
    virtual int32_t CreatePathGeometry(IMpPathGeometry** returnPathGeometry) = 0;
    // [gui thread] Makes a text format of one font family (UTF-8 name), MP1_FONT_WEIGHT, MP1_FONT_STYLE,
    // MP1_FONT_STRETCH and em size in drawing units; an unknown family falls back to the system's
    // default face. Returns 0, or -1 with null.
    virtual int32_t CreateTextFormat(const char* fontFamilyName, int32_t fontWeight, int32_t fontStyle,
                                     int32_t fontStretch, float fontSize, IMpTextFormat** returnTextFormat) = 0;
    // [gui thread] Makes a transparent bitmap of width x height pixels. Returns 0, or -1 with null.
    virtual int32_t CreateImage(int32_t width, int32_t height, IMpBitmap** returnBitmap) = 0;
    // [gui thread] Loads an image file (PNG, BMP or JPEG; UTF-8 path). Returns 0, or -1 with null when the
    // file is missing or not an image.
    virtual int32_t LoadImageU(const char* utf8Uri, IMpBitmap** returnBitmap) = 0;

protected:
    ~IMpFactory() = default;
};

// Slots 7 to 8 are frozen in this order.
class IMpFactory2 : public IMpFactory {
public:
    // [gui thread] As CreateTextFormat with a stack of familyCount family names tried in order: the first
    // the system has is used, else the system's default face. Returns 0, or -1 with null.
    virtual int32_t CreateTextFormat2(const char* const* fontFamilyNames, int32_t familyCount, int32_t fontWeight,
                                      int32_t fontStyle, int32_t fontStretch, float fontSize,
                                      IMpTextFormat** returnTextFormat) = 0;
    // [gui thread] As LoadImageU; when utf8MaskUri is not null and names a loadable image, that image's
    // brightness becomes the bitmap's alpha (black transparent, white opaque). A missing mask is ignored.
    // Returns 0, or -1 with null.
    virtual int32_t LoadImageWithMaskU(const char* utf8Uri, const char* utf8MaskUri, IMpBitmap** returnBitmap) = 0;

protected:
    ~IMpFactory2() = default;
};

}  // namespace GmpiDrawing_API
