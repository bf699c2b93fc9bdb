// A text format: font, size and layout rules that text is measured and drawn with.
#pragma once

#include "IMpUnknown.h"
#include "MpDrawingTypes.h"

namespace GmpiDrawing_API {

// {ED903255-3FE0-4CE4-8CD1-97D72D51B7CB}
inline constexpr gmpi::MpGuid SE_IID_TEXTFORMAT_MPGUI = {
    0xED903255, 0x3FE0, 0x4CE4, {0x8C, 0xD1, 0x97, 0xD7, 0x2D, 0x51, 0xB7, 0xCB}};

// Slots 3 to 8 are frozen in this order. Formats are shared between modules: a change applies to every
// later drawing with the format.
class IMpTextFormat : public gmpi::IMpUnknown {
public:
    // [gui thread] Horizontal placement (MP1_TEXT_ALIGNMENT). Returns 0, or -1 for an unknown value.
    virtual int32_t SetTextAlignment(int32_t textAlignment) = 0;
    // [gui thread] Vertical placement (MP1_PARAGRAPH_ALIGNMENT). Returns 0, or -1 for an unknown value.
    virtual int32_t SetParagraphAlignment(int32_t paragraphAlignment) = 0;
    // [gui thread] Wrapping at the layout width (MP1_WORD_WRAPPING). Returns 0, or -1 for an unknown value.
    virtual int32_t SetWordWrapping(int32_t wordWrapping) = 0;
    // [gui thread] Stores the unwrapped size of length bytes of UTF-8 text (length < 0: up to a zero byte).
    // Returns 0.
    virtual int32_t GetTextExtentU(const char* utf8String, int32_t stringLength, MP1_SIZE* returnSize) = 0;
    // [gui thread] Stores the font's metrics in drawing units. Returns 0.
    virtual int32_t GetFontMetrics(MP1_FONT_METRICS* returnFontMetrics) = 0;
    // [gui thread] Fixes the line pitch (lineSpacing < 0: the font's own) and the baseline's distance
    // from the line top. Returns 0.
    virtual int32_t SetLineSpacing(float lineSpacing, float baseline) = 0;

protected:
    ~IMpTextFormat() = default;
};

}  // namespace GmpiDrawing_API
