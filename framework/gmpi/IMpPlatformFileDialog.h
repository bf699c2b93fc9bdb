// The host's file dialog, made by the graphics host for one open or save request.
#pragma once

#include "IMpUnknown.h"

namespace gmpi_gui {

// {1BD1AD44-C30D-440F-BC89-C90E8CD0EEA0}
inline constexpr gmpi::MpGuid SE_IID_GRAPHICS_PLATFORM_FILE_DIALOG = {
    0x1BD1AD44, 0xC30D, 0x440F, {0xBC, 0x89, 0xC9, 0x0E, 0x8C, 0xD0, 0xEE, 0xA0}};

// Dialog types for IMpGraphicsHost::createFileDialog.
inline constexpr int32_t MP_PLATFORM_FILE_OPEN = 0;
inline constexpr int32_t MP_PLATFORM_FILE_SAVE = 1;

// Slots 3 to 7 are frozen in this order. Texts are zero-terminated UTF-8, copied by the host.
class IMpPlatformFileDialog : public gmpi::IMpUnknown {
public:
    // [gui thread] Adds a file-type filter: an extension without the dot ("*" for any) and a description.
    // Returns 0.
    virtual int32_t AddExtension(const char* extension, const char* description) = 0;
    // [gui thread] Sets the file name the dialog starts with. Returns 0.
    virtual int32_t SetInitialFilename(const char* text) = 0;
    // [gui thread] Sets the folder the dialog starts in. Returns 0.
    virtual int32_t setInitialDirectory(const char* text) = 0;
    // [gui thread] Shows the dialog without blocking; the host calls the IMpCompletionHandler given (it
    // keeps a reference until then) once with 0 for a chosen file, else non-zero. Returns 0, or -1 when
    // the handler is not one.
    virtual int32_t ShowAsync(gmpi::IMpUnknown* returnCompletionHandler) = 0;
    // [gui thread] Writes the chosen file's full path into an IString (empty before completion). Returns 0,
    // or -1 when the object is not an IString.
    virtual int32_t GetSelectedFilename(gmpi::IMpUnknown* returnString) = 0;

protected:
    ~IMpPlatformFileDialog() = default;
};

}  // namespace gmpi_gui
