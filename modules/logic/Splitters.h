// Splitters: join one common pin to any number of extra pins the host adds at run time.
#pragma once

#include <string>

#include "MpBlob.h"
#include "MpGuiBase2.h"

namespace kx::splitter {
// PinCount counts the pins the module binds; the host duplicates extra pins from FirstExtra on, and the
// module binds no pin object to them.
enum Pin : int { Mode, CrossFeed, Common, PinCount, FirstExtra = PinCount };
// Flow modes; the flow is (mode + 1) read as bits, so other values give other (or no) flows.
enum Flow : int { ExtrasToCommon = 0, CommonToExtras = 1, BothWays = 2 };
}  // namespace kx::splitter

// Copies values between "Common" and the extra pins as raw bytes, without comparing them with earlier
// values. The flow is (mode + 1): bit 0 lets an extra pin feed the common pin, bit 1 lets the common pin
// feed every extra pin, so modes -1 and 3 pass nothing and mode 4 passes only towards the common pin.
// With "Cross-Feed" true, an extra pin's value also goes to every other extra pin (never back to itself).
// The module knows only the extra pins the host has set at least once: the count is the highest extra
// index ever set, less 2.
template <class T>
class KX_Splitter : public SeGuiInvisibleBase {
public:
    KX_Splitter();

    // Forwards as the value arrives (the extra pins have no handler, and no stored value), then stores it
    // like the base for the pins the module binds; -1 for the extra pins, which have no pin object.
    int32_t setPin(int32_t pinId, int32_t voice, int32_t size, const void* data) override;

    int extraPinCount() const { return extraCount; }

    MpGuiPin<int> mode;
    MpGuiPin<bool> crossFeed;
    MpGuiPin<T> common;

private:
    // Sends the data to every known extra pin except `skip`.
    void sendToExtras(int32_t skip, int32_t size, const void* data);

    int extraCount = 0;
    // Set while the module sends to extra pins: the host delivers those values back into them, and an echo
    // must not be forwarded again.
    bool busy = false;
};

using KX_SplitterInt = KX_Splitter<int>;
using KX_SplitterFloat = KX_Splitter<float>;
using KX_SplitterText = KX_Splitter<std::wstring>;
using KX_SplitterBool = KX_Splitter<bool>;
using KX_SplitterBlob = KX_Splitter<MpBlob>;
