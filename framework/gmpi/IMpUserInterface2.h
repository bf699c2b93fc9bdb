// The GUI half of a module as the host sees it (second version, and its B variant that adds notifyPin).
#pragma once

#include "IMpUnknown.h"

namespace gmpi {

// {9CD06775-F5C2-4321-812D-0958153294B8}
inline constexpr MpGuid MP_IID_GUI_PLUGIN2 = {
    0x9CD06775, 0xF5C2, 0x4321, {0x81, 0x2D, 0x09, 0x58, 0x15, 0x32, 0x94, 0xB8}};
// The B variant keeps the second version's identifier: it only appends notifyPin.
inline constexpr MpGuid MP_IID_GUI_PLUGIN2B = MP_IID_GUI_PLUGIN2;

class IMpUserInterface2 : public IMpUnknown {
public:
    // [gui thread] Hands the module its host object. Returns 0, or -2 without the GUI host interface.
    virtual int32_t setHost(IMpUnknown* host) = 0;
    // [gui thread] Called once after setHost, before any pin value. Returns 0 or -1.
    virtual int32_t initialize() = 0;
    // [gui thread] Stores a pin value (size bytes at data) without running its handler. Returns 0, or -1
    // for an unbound pin.
    virtual int32_t setPin(int32_t pinId, int32_t voice, int32_t size, const void* data) = 0;
    // [gui thread] A message from the module's DSP half; data is valid only during the call. Returns 0 or -1.
    virtual int32_t receiveMessageFromAudio(int32_t id, int32_t size, const void* data) = 0;
    // [gui thread] Asks the module to add its entries to an IMpContextItemSink. Returns 0, or -1 for none.
    virtual int32_t populateContextMenu(float x, float y, IMpUnknown* contextMenuItemsSink) = 0;
    // [gui thread] The user chose the entry with this id. Returns 0, or -1 when not handled.
    virtual int32_t onContextMenu(int32_t selection) = 0;
    // [gui thread] Fills an IString with the tool tip at (x, y). Returns 0, or -1 for none.
    virtual int32_t getToolTip(float x, float y, IMpUnknown* returnString) = 0;

protected:
    ~IMpUserInterface2() = default;
};

class IMpUserInterface2B : public IMpUserInterface2 {
public:
    // [gui thread] Announces the value stored by the last setPin; runs the pin's handler. Returns 0, or -1
    // for an unbound pin.
    virtual int32_t notifyPin(int32_t pinId, int32_t voice) = 0;

protected:
    ~IMpUserInterface2B() = default;
};

}  // namespace gmpi
