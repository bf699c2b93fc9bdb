// The first-generation GUI host: pin count and file-name resolution.
#pragma once

#include "IMpUnknown.h"

namespace gmpi {

// {6B9D01B1-B356-419A-A052-97316019D461}
inline constexpr MpGuid MP_IID_UI_HOST = {0x6B9D01B1, 0xB356, 0x419A, {0xA0, 0x52, 0x97, 0x31, 0x60, 0x19, 0xD4, 0x61}};

// Slots 3 to 6 are frozen in this order.
class IMpUserInterfaceHost : public IMpUnknown {
public:
    // [gui thread] Sends a pin value (copied before return) along the pin's wires. Returns 0, or -1.
    virtual int32_t pinTransmit(int32_t pinId, int32_t size, const void* data, int32_t voice) = 0;
    // [gui thread] Stores the number of pins the module's description declares (including pins the
    // module does not bind). Returns 0 or -1.
    virtual int32_t getPinCount(int32_t& returnCount) = 0;
    // [gui thread] Resolves a file name against the host's resource folders into the caller's buffer of
    // maxChars wide characters, zero-terminated and truncated to fit; an empty name yields the resource
    // folder itself. Returns 0, or -1 when maxChars < 1.
    virtual int32_t resolveFilename(const wchar_t* shortFilename, int32_t maxChars, wchar_t* returnFullFilename) = 0;
    // [gui thread] Sends a message (copied before return) to the module's DSP half. Returns 0 or -1.
    virtual int32_t sendMessageToAudio(int32_t id, int32_t size, const void* data) = 0;

protected:
    ~IMpUserInterfaceHost() = default;
};

}  // namespace gmpi
