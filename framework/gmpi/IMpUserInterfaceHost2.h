// The GUI host as the GUI half of a module sees it (second version).
#pragma once

#include "IMpUnknown.h"

namespace gmpi {

// {DE009D92-E281-4F92-9996-200F49690028}
inline constexpr MpGuid MP_IID_UI_HOST2 = {
    0xDE009D92, 0xE281, 0x4F92, {0x99, 0x96, 0x20, 0x0F, 0x49, 0x69, 0x00, 0x28}};

// A resource opened for reading (see openResource).
// {C0200B6B-BFDF-4829-8240-CF9C718C00C6}
inline constexpr MpGuid MP_IID_RESOURCE_STREAM = {
    0xC0200B6B, 0xBFDF, 0x4829, {0x82, 0x40, 0xCF, 0x9C, 0x71, 0x8C, 0x00, 0xC6}};

class IMpResourceStream : public IMpUnknown {
public:
    // [gui thread] The resource's size in bytes. Returns 0 or -1.
    virtual int32_t getSize(int64_t& returnSize) = 0;
    // [gui thread] Reads up to size bytes into buffer; returns the number read (0 at the end), or -1.
    virtual int32_t read(void* buffer, int32_t size) = 0;

protected:
    ~IMpResourceStream() = default;
};

// Slots 3 to 10 are frozen in this order.
class IMpUserInterfaceHost2 : public IMpUnknown {
public:
    // [gui thread] Sends a pin value (size bytes at data, copied before return) to the host, which
    // passes it along the pin's wires. Returns 0, or -1 for an unknown pin.
    virtual int32_t pinTransmit(int32_t pinId, int32_t size, const void* data, int32_t voice) = 0;
    // [gui thread] Stores the module's handle, unique within the host. Returns 0.
    virtual int32_t getHandle(int32_t& returnHandle) = 0;
    // [gui thread] Stores the number of pins the module's description declares. Returns 0 or -1.
    virtual int32_t getPinCount(int32_t& returnCount) = 0;
    // [gui thread] Sends a message (size bytes at data, copied before return) to the module's DSP half,
    // delivered there between audio blocks. Returns 0, or -1 when the module has no DSP half.
    virtual int32_t sendMessageToAudio(int32_t id, int32_t size, const void* data) = 0;
    // [gui thread] Resolves a resource by zero-terminated UTF-8 name and type ("Image", "ImageMeta",
    // "Instrument", ...) into a full path, written to the IString given. Returns 0; when nothing is found
    // the path the resource would have is written and -1 returned.
    virtual int32_t resolveResource(const char* resourceName, const char* resourceType, IMpUnknown* returnFullPath) = 0;
    // [gui thread] Opens a file (a path resolveResource returned) for reading; the caller owns the
    // IMpResourceStream given in *returnStream. Returns 0, or -1 with null when it cannot be opened.
    virtual int32_t openResource(const char* fullPath, IMpUnknown** returnStream) = 0;
    // [gui thread] Reserved; returns -2.
    virtual int32_t reserved1() = 0;
    // [gui thread] Reserved; returns -2.
    virtual int32_t reserved2() = 0;

protected:
    ~IMpUserInterfaceHost2() = default;
};

}  // namespace gmpi
