// Check valves: join two pins and let a value flow one way, chosen by a mode pin.
#pragma once

#include <string>

#include "MpBlob.h"
#include "MpGuiBase2.h"

namespace kx::checkvalve {
enum Pin : int { Mode, In, Out, PinCount };
// Direction modes; any other value closes the valve.
enum Direction : int { Forward = 0, Backward = 1 };
}  // namespace kx::checkvalve

// Mode 0 copies "In" to "Out" when "In" changes; mode 1 copies "Out" to "In" when "Out" changes; other
// modes pass nothing. Only values that differ from the other side are sent.
template <class T>
class KX_CheckValve : public SeGuiInvisibleBase {
public:
    KX_CheckValve();

    void onSetIn();
    void onSetOut();

    MpGuiPin<int> mode;
    MpGuiPin<T> in;
    MpGuiPin<T> out;

private:
    // Set while a value is sent backwards: whatever the host delivers into "In" during that send (its echo,
    // or a value it adjusted) must not flow forwards again, even if the same wave of host traffic has
    // switched the mode to forward meanwhile.
    bool busy = false;
};

using KX_CheckValveInt = KX_CheckValve<int>;
using KX_CheckValveFloat = KX_CheckValve<float>;
using KX_CheckValveText = KX_CheckValve<std::wstring>;
using KX_CheckValveBool = KX_CheckValve<bool>;
using KX_CheckValveBlob = KX_CheckValve<MpBlob>;
