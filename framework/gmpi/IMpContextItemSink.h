// The host's collector of context-menu entries, handed to populateContextMenu.
#pragma once

#include "IMpUnknown.h"

namespace gmpi {

// {BC152E7E-7FB8-4921-84EE-BED7CFD9A897}
inline constexpr MpGuid MP_IID_CONTEXT_ITEMS_SINK = {
    0xBC152E7E, 0x7FB8, 0x4921, {0x84, 0xEE, 0xBE, 0xD7, 0xCF, 0xD9, 0xA8, 0x97}};

class IMpContextItemSink : public IMpUnknown {
public:
    // [gui thread] Appends an entry: zero-terminated UTF-8 text, the id returned to onContextMenu when it
    // is chosen, and flags (0 plain). Returns 0; the host copies the text.
    virtual int32_t AddItem(const char* text, int32_t id, int32_t flags) = 0;

protected:
    ~IMpContextItemSink() = default;
};

}  // namespace gmpi
