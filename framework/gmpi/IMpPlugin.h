// The DSP half of a module as the audio host sees it (first version and second version).
#pragma once

#include "IMpUnknown.h"
#include "MpEvent.h"

namespace gmpi {

// {03F24D64-4ADA-4741-9F0C-A0011A85ED65}
inline constexpr MpGuid MP_IID_PLUGIN = {0x03F24D64, 0x4ADA, 0x4741, {0x9F, 0x0C, 0xA0, 0x01, 0x1A, 0x85, 0xED, 0x65}};
// {21025BA3-AEF8-4414-9120-48123140CDA5}
inline constexpr MpGuid MP_IID_PLUGIN2 = {0x21025BA3, 0xAEF8, 0x4414, {0x91, 0x20, 0x48, 0x12, 0x31, 0x40, 0xCD, 0xA5}};

class IMpPlugin : public IMpUnknown {
public:
    // [audio thread] Called once before the first block. Returns 0 or -1.
    virtual int32_t open() = 0;
    // [audio thread] Gives an audio pin its sample buffer for the coming blocks. Returns 0, or -1 for a pin
    // that is not bound.
    virtual int32_t setBuffer(int32_t pinId, float* buffer) = 0;
    // [audio thread] First-generation processing entry; does nothing.
    virtual void process(int32_t count, MpEvent* events) = 0;
    // [audio thread] First-generation message entry; as IMpPlugin2::receiveMessageFromGui.
    virtual int32_t receiveMessageFromGui(int32_t id, int32_t size, void* messageData) = 0;

protected:
    ~IMpPlugin() = default;
};

class IMpPlugin2 : public IMpUnknown {
public:
    // [audio thread] Called once before the first block. Returns 0 or -1.
    virtual int32_t open() = 0;
    // [audio thread] Gives an audio pin its sample buffer. Returns 0, or -1 for an unbound pin.
    virtual int32_t setBuffer(int32_t pinId, float* buffer) = 0;
    // [audio thread] Processes count samples; events (host-owned, time-ordered, may be null) apply at
    // their sample offsets.
    virtual void process(int32_t count, const MpEvent* events) = 0;
    // [audio thread, between blocks] A message from the GUI half; data is valid only during the call.
    // Returns 0 or -1.
    virtual int32_t receiveMessageFromGui(int32_t id, int32_t size, const void* messageData) = 0;

protected:
    ~IMpPlugin2() = default;
};

}  // namespace gmpi
