// The graphics face of a graphic module, as the host's panel sees it: layout, painting, pointer input,
// hit testing and tool tips.
#pragma once

#include "IMpDeviceContext.h"
#include "IMpUnknown.h"
#include "IString.h"
#include "MpDrawingTypes.h"

namespace gmpi_gui_api {

// {4541A1EE-98AB-4C79-B857-66AE64249125}
inline constexpr gmpi::MpGuid SE_IID_GRAPHICS_MPGUI = {
    0x4541A1EE, 0x98AB, 0x4C79, {0xB8, 0x57, 0x66, 0xAE, 0x64, 0x24, 0x91, 0x25}};
// {6AEFB1B9-C92A-472B-A53E-4A476DF85C85}
inline constexpr gmpi::MpGuid SE_IID_GRAPHICS_MPGUI2 = {
    0x6AEFB1B9, 0xC92A, 0x472B, {0xA5, 0x3E, 0x4A, 0x47, 0x6D, 0xF8, 0x5C, 0x85}};

// Pointer flags of onPointerDown/Move/Up.
inline constexpr int32_t GG_POINTER_FLAG_FIRSTBUTTON = 0x10;
inline constexpr int32_t GG_POINTER_FLAG_SECONDBUTTON = 0x20;
inline constexpr int32_t GG_POINTER_FLAG_THIRDBUTTON = 0x40;
inline constexpr int32_t GG_POINTER_KEY_SHIFT = 0x10000;
inline constexpr int32_t GG_POINTER_KEY_CONTROL = 0x20000;  // the fine-adjustment modifier
inline constexpr int32_t GG_POINTER_KEY_ALT = 0x40000;

// Slots 3 to 8 are frozen in this order. Points are in the module's own coordinates.
class IMpGraphics : public gmpi::IMpUnknown {
public:
    // [gui thread] Stores the size the module wants within the available size. Returns 0.
    virtual int32_t measure(GmpiDrawing_API::MP1_SIZE availableSize, GmpiDrawing_API::MP1_SIZE* returnDesiredSize) = 0;
    // [gui thread] Gives the module its rectangle in panel coordinates. Returns 0.
    virtual int32_t arrange(GmpiDrawing_API::MP1_RECT finalRect) = 0;
    // [gui thread] Paints into the context (borrowed for the call; origin at the module's corner).
    // Returns 0.
    virtual int32_t OnRender(GmpiDrawing_API::IMpDeviceContext* drawingContext) = 0;
    // [gui thread] A button went down. Returns 0 when the module takes it, -1 to let it pass beneath.
    virtual int32_t onPointerDown(int32_t flags, GmpiDrawing_API::MP1_POINT point) = 0;
    // [gui thread] The pointer moved (to the capturing module, else the one beneath). Returns 0 or -1.
    virtual int32_t onPointerMove(int32_t flags, GmpiDrawing_API::MP1_POINT point) = 0;
    // [gui thread] A button went up. Returns 0 when handled, -1 otherwise.
    virtual int32_t onPointerUp(int32_t flags, GmpiDrawing_API::MP1_POINT point) = 0;

protected:
    ~IMpGraphics() = default;
};

// Slots 9 to 10 are frozen in this order.
class IMpGraphics2 : public IMpGraphics {
public:
    // [gui thread] Returns 0 when the point is on the module, -1 when it lies on something beneath.
    virtual int32_t hitTest(GmpiDrawing_API::MP1_POINT point) = 0;
    // [gui thread] Fills the caller's string (UTF-8) with the tool tip at the point. Returns 0, or -1 for
    // none.
    virtual int32_t getToolTip(GmpiDrawing_API::MP1_POINT point, gmpi::IString* returnString) = 0;

protected:
    ~IMpGraphics2() = default;
};

}  // namespace gmpi_gui_api
