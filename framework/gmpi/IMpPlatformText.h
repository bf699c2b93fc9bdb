// The host's native text editor, opened over a module's area to edit one text.
#pragma once

#include "IMpUnknown.h"

namespace gmpi_gui {

// {FE3EC9DC-2719-44F2-BAFB-0E9AA29B8A27}
inline constexpr gmpi::MpGuid SE_IID_GRAPHICS_PLATFORM_TEXT = {
    0xFE3EC9DC, 0x2719, 0x44F2, {0xBA, 0xFB, 0x0E, 0x9A, 0xA2, 0x9B, 0x8A, 0x27}};

// SetAlignment: the low 16 bits are the horizontal alignment (0 left, 1 right, 2 centred); this bit
// asks for a multi-line editor.
inline constexpr int32_t MP_PLATFORM_TEXT_MULTILINE = 0x10000;

// Slots 3 to 7 are frozen in this order.
class IMpPlatformText : public gmpi::IMpUnknown {
public:
    // [gui thread] Sets the text to edit (zero-terminated UTF-8, copied). Returns 0.
    virtual int32_t SetText(const char* text) = 0;
    // [gui thread] Writes the edited text (UTF-8) into an IString. Returns 0, or -1 when the object is not
    // an IString.
    virtual int32_t GetText(gmpi::IMpUnknown* returnString) = 0;
    // [gui thread] Opens the editor without blocking; the host calls the IMpCompletionHandler given (it
    // keeps a reference until then) once with 0 when the user confirms, else non-zero. Returns 0, or -1.
    virtual int32_t ShowAsync(gmpi::IMpUnknown* returnCompletionHandler) = 0;
    // [gui thread] Sets the alignment and the multi-line bit (MP_PLATFORM_TEXT_MULTILINE). Returns 0.
    virtual int32_t SetAlignment(int32_t alignment) = 0;
    // [gui thread] Sets the editor's font size in drawing units. Returns 0.
    virtual int32_t SetTextSize(float height) = 0;

protected:
    ~IMpPlatformText() = default;
};

}  // namespace gmpi_gui
