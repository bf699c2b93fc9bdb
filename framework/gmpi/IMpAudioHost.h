// The audio host as the DSP half of a module sees it.
#pragma once

#include "IMpUnknown.h"

namespace gmpi {

// {F6005292-669C-4E90-AC7B-7B829CB98D70}
inline constexpr MpGuid MP_IID_HOST = {0xF6005292, 0x669C, 0x4E90, {0xAC, 0x7B, 0x7B, 0x82, 0x9C, 0xB9, 0x8D, 0x70}};
// {B0CB2EA0-12BF-420A-9305-D22E0CB20575}
inline constexpr MpGuid MP_IID_PROCESSOR_HOST = {
    0xB0CB2EA0, 0x12BF, 0x420A, {0x93, 0x05, 0xD2, 0x2E, 0x0C, 0xB2, 0x05, 0x75}};

// Slots 3 to 8 are frozen in this order.
class IMpAudioHost : public IMpUnknown {
public:
    // [audio thread] Sets an output pin's value at a sample offset of the current block (size bytes at
    // data, copied before return). Returns 0, or -1 for an unknown pin.
    virtual int32_t setPin(int32_t timestamp, int32_t pinId, int32_t size, const void* data) = 0;
    // [audio thread] Tells the host an audio output starts (1) or stops (0) streaming at the offset.
    // Returns 0 or -1.
    virtual int32_t setPinStreaming(int32_t timestamp, int32_t pinId, int32_t isStreaming) = 0;
    // [audio thread] Puts the module to sleep until its next event. Returns 0.
    virtual int32_t sleep() = 0;
    // [audio thread] Sends a message (copied before return) to the GUI half, delivered on the GUI thread.
    // Returns 0, or -1 when the module has no GUI half.
    virtual int32_t sendMessageToGui(int32_t id, int32_t size, const void* messageData) = 0;
    // [audio thread] Sets *sleepCount to the number of samples the module must run before it may sleep
    // (the host's tail length). Returns 0.
    virtual int32_t resetSleepCounter(int32_t* sleepCount) = 0;
    // [audio thread] Stores the engine's sample rate in Hz. Returns 0.
    virtual int32_t getSampleRate(float& returnSampleRate) = 0;

protected:
    ~IMpAudioHost() = default;
};

// Slots 3 to 4 are frozen in this order.
class IMpProcessorHost : public IMpUnknown {
public:
    // [audio thread] Stores the number of samples in a block. Returns 0.
    virtual int32_t getBlockSize(int32_t& returnBlockSize) = 0;
    // [audio thread] Stores the sample offset of the current block since graph start (low 32 bits).
    // Returns 0.
    virtual int32_t getBlockStart(int32_t& returnSampleClock) = 0;

protected:
    ~IMpProcessorHost() = default;
};

}  // namespace gmpi
