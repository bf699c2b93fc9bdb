// The callback object a module hands to an asynchronous host operation (file dialog, text editor).
#pragma once

#include "IMpUnknown.h"

namespace gmpi_gui {

// {8E47E6B8-D76B-4C43-BDBE-227769D173DD}
inline constexpr gmpi::MpGuid SE_IID_COMPLETION_HANDLER = {
    0x8E47E6B8, 0xD76B, 0x4C43, {0xBD, 0xBE, 0x22, 0x77, 0x69, 0xD1, 0x73, 0xDD}};

// Slot 3 is frozen.
class IMpCompletionHandler : public gmpi::IMpUnknown {
public:
    // [gui thread] The operation ended: 0 confirmed, non-zero cancelled or failed. Called at most once;
    // the host holds a reference until the call returns.
    virtual void OnComplete(int32_t result) = 0;

protected:
    ~IMpCompletionHandler() = default;
};

}  // namespace gmpi_gui
