// The first-generation GUI face of a module, kept for hosts that still speak it.
#pragma once

#include "IMpUnknown.h"

namespace gmpi {

// {21B0EC11-6B66-4B72-928E-77E93A31A628}
inline constexpr MpGuid MP_IID_GUI_PLUGIN = {
    0x21B0EC11, 0x6B66, 0x4B72, {0x92, 0x8E, 0x77, 0xE9, 0x3A, 0x31, 0xA6, 0x28}};
// The same face as some hosts spell it: {21B0E911-6B66-4B72-928E-77E93A31A628}. Accepted, never sent.
inline constexpr MpGuid MP_IID_GUI_PLUGIN_ALT = {
    0x21B0E911, 0x6B66, 0x4B72, {0x92, 0x8E, 0x77, 0xE9, 0x3A, 0x31, 0xA6, 0x28}};

inline bool isGuiPluginIid(const MpGuid& iid) { return iid == MP_IID_GUI_PLUGIN || iid == MP_IID_GUI_PLUGIN_ALT; }

class IMpUserInterface : public IMpUnknown {
public:
    // [gui thread] Called once after the host is set. Returns 0 or -1.
    virtual int32_t initialize() = 0;
    // [gui thread] Stores a pin value and, when it changed, runs its handler. Returns 0, or -1 for an
    // unbound pin.
    virtual int32_t setPin(int32_t pinId, int32_t voice, int32_t size, const void* data) = 0;
    // [gui thread] A message from the DSP half; data is valid only during the call. Returns 0 or -1.
    virtual int32_t receiveMessageFromAudio(int32_t id, int32_t size, const void* data) = 0;

protected:
    ~IMpUserInterface() = default;
};

}  // namespace gmpi
