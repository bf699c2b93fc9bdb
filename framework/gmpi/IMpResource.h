// The common base of everything a drawing factory or device context makes (brushes, bitmaps,
// geometries, gradient-stop collections): each knows the factory it belongs to.
#pragma once

#include "IMpUnknown.h"

namespace GmpiDrawing_API {

class IMpFactory;

// {B7C4F8D1-F102-4166-87C6-1363CB9503BB}
inline constexpr gmpi::MpGuid SE_IID_RESOURCE_MPGUI = {
    0xB7C4F8D1, 0xF102, 0x4166, {0x87, 0xC6, 0x13, 0x63, 0xCB, 0x95, 0x03, 0xBB}};

// Slot 3 is frozen.
class IMpResource : public gmpi::IMpUnknown {
public:
    // [gui thread] Stores the factory that made this object (not counted: it outlives its objects).
    // Returns 0.
    virtual int32_t getFactory(IMpFactory** returnFactory) = 0;

protected:
    ~IMpResource() = default;
};

}  // namespace GmpiDrawing_API
