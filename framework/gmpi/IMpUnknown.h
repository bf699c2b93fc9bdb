// The root of every interface that crosses between a module and its host:
// the 16-byte interface identifier, result codes, and the counted base interface.
#pragma once

#include <cstdint>
#include <cstring>

namespace gmpi {

// A 16-byte interface identifier: one 32-bit, two 16-bit and eight 8-bit fields.
struct MpGuid {
    uint32_t data1;
    uint16_t data2;
    uint16_t data3;
    unsigned char data4[8];
};

// Field-by-field comparison; the struct has no padding, but comparing fields keeps that irrelevant.
inline bool operator==(const MpGuid& a, const MpGuid& b) {
    return a.data1 == b.data1 && a.data2 == b.data2 && a.data3 == b.data3 &&
           std::memcmp(a.data4, b.data4, sizeof a.data4) == 0;
}

// {00000000-0000-0000-C000-000000000046}
inline constexpr MpGuid MP_IID_UNKNOWN = {0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
// The same identifier as some hosts spell it: {00000000-0000-C000-0000-000000000046}.
// Never sent by us; accepted wherever the other spelling is.
inline constexpr MpGuid MP_IID_UNKNOWN_ALT = {
    0x00000000, 0x0000, 0xC000, {0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

inline bool isUnknownIid(const MpGuid& iid) { return iid == MP_IID_UNKNOWN || iid == MP_IID_UNKNOWN_ALT; }

// Result codes of every host-facing operation.
inline constexpr int32_t MP_OK = 0;          // success, handled, hit
inline constexpr int32_t MP_FAIL = -1;       // failure, not handled, or an exception caught at the boundary
inline constexpr int32_t MP_NOSUPPORT = -2;  // unknown interface, identifier or side

// Sub-types (sides) a module identifier can be created on.
inline constexpr int32_t MP_SUB_TYPE_AUDIO = 0;  // the DSP half
inline constexpr int32_t MP_SUB_TYPE_GUI2 = 2;   // the GUI half

// Base of every interface. Objects start with a count of 1 and delete themselves when it reaches 0.
class IMpUnknown {
public:
    // [any thread] Stores the object's face for iid in *returnInterface and adds a reference; returns 0,
    // or -2 with *returnInterface null when the interface is not offered.
    virtual int32_t queryInterface(const MpGuid& iid, void** returnInterface) = 0;
    // [any thread] Adds a reference; returns the new count (objects that do not count return 1).
    virtual int32_t addRef() = 0;
    // [any thread] Drops a reference, deleting the object at 0; returns the new count.
    virtual int32_t release() = 0;

protected:
    ~IMpUnknown() = default;
};

}  // namespace gmpi

static_assert(sizeof(gmpi::MpGuid) == 16, "interface identifiers are 16 bytes");
static_assert(sizeof(wchar_t) == 4, "wide text is 32-bit code points");
