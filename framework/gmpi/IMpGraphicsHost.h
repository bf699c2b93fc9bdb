// The graphics host: the per-module face of the host's panel that a graphic module talks to, to be
// repainted, measured again, to capture the pointer, and to reach the drawing factory, the file dialog
// and the text editor.
#pragma once

#include "IMpDrawingFactory.h"
#include "IMpUnknown.h"
#include "MpDrawingTypes.h"

namespace gmpi_gui {

// {E394AF51-C4D0-4885-84F1-963CA8182964}
inline constexpr gmpi::MpGuid SE_IID_GRAPHICS_HOST = {
    0xE394AF51, 0xC4D0, 0x4885, {0x84, 0xF1, 0x96, 0x3C, 0xA8, 0x18, 0x29, 0x64}};
// {E4717EA4-CA6D-4FAE-9D35-BA95EBAAEA2B}: the first version's identifier. A host answers it with the
// same object; modules ask for SE_IID_GRAPHICS_HOST.
inline constexpr gmpi::MpGuid SE_IID_GRAPHICS_HOST_BASE = {
    0xE4717EA4, 0xCA6D, 0x4FAE, {0x9D, 0x35, 0xBA, 0x95, 0xEB, 0xAA, 0xEA, 0x2B}};

inline bool isGraphicsHostIid(const gmpi::MpGuid& iid) {
    return iid == SE_IID_GRAPHICS_HOST || iid == SE_IID_GRAPHICS_HOST_BASE;
}

// Slots 3 to 12 are frozen in this order. One object per module instance; it outlives the module.
class IMpGraphicsHost : public gmpi::IMpUnknown {
public:
    // [gui thread] Stores how many device pixels one drawing unit covers (1.0 on a plain display).
    // Returns 0.
    virtual int32_t getDrawingScale(float& returnScale) = 0;
    // [gui thread] Stores the rectangle the host last arranged the module in, in panel coordinates.
    // Returns 0, or -1 before the first arrange.
    virtual int32_t getLayoutRect(GmpiDrawing_API::MP1_RECT& returnRect) = 0;
    // [gui thread] Marks a rectangle of the module (module coordinates; null: all of it) for repainting.
    // No result.
    virtual void invalidateRect(const GmpiDrawing_API::MP1_RECT* invalidRect) = 0;
    // [gui thread] Asks the host to measure and arrange the module again before the next paint. No result.
    virtual void invalidateMeasure() = 0;
    // [gui thread] Sends every pointer event to this module until releaseCapture. Returns 0.
    virtual int32_t setCapture() = 0;
    // [gui thread] Stores non-zero when this module holds the pointer capture. Returns 0.
    virtual int32_t getCapture(int32_t& returnValue) = 0;
    // [gui thread] Ends this module's capture (nothing when it holds none). Returns 0.
    virtual int32_t releaseCapture() = 0;
    // [gui thread] Makes a file dialog (MP_PLATFORM_FILE_OPEN or _SAVE); the caller owns the
    // IMpPlatformFileDialog given. Returns 0, or -1 with null.
    virtual int32_t createFileDialog(int32_t dialogType, gmpi::IMpUnknown** returnFileDialog) = 0;
    // [gui thread] Makes a text editor over a rectangle of the module; the caller owns the IMpPlatformText
    // given. Returns 0, or -1 with null.
    virtual int32_t createPlatformTextEdit(const GmpiDrawing_API::MP1_RECT* rect,
                                           gmpi::IMpUnknown** returnTextEdit) = 0;
    // [gui thread] Stores the drawing factory (also an IMpFactory2; not counted, it outlives the module).
    // No result.
    virtual void GetDrawingFactory(GmpiDrawing_API::IMpFactory** returnFactory) = 0;

protected:
    ~IMpGraphicsHost() = default;
};

}  // namespace gmpi_gui
