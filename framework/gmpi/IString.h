// A text object the caller owns and the callee fills: how text is returned across the boundary.
#pragma once

#include "IMpUnknown.h"

namespace gmpi {

// {AB8FFB21-44FF-42B7-8885-29431399E7E4}
inline constexpr MpGuid MP_IID_RETURNSTRING = {
    0xAB8FFB21, 0x44FF, 0x42B7, {0x88, 0x85, 0x29, 0x43, 0x13, 0x99, 0xE7, 0xE4}};

class IString : public IMpUnknown {
public:
    // [caller's thread] Replaces the text with size bytes (UTF-8) copied from data; size <= 0 empties it.
    // Returns 0.
    virtual int32_t setData(const char* data, int32_t size) = 0;
    // [caller's thread] The text's size in bytes.
    virtual int32_t getSize() = 0;
    // [caller's thread] The text's bytes, not necessarily terminated; owned by the string object.
    virtual const char* getData() = 0;

protected:
    ~IString() = default;
};

}  // namespace gmpi
