// Triggers: pass a value on only when a trigger input is notified as true (sample on trigger).
#pragma once

#include <string>

#include "MpBlob.h"
#include "MpGuiBase2.h"
#include "logic/ValuePins.h"

namespace kx::trigger {
// First generation: the output comes first.
enum Pin : int { Output, Input, TriggerL, TriggerR, PinCount };
}  // namespace kx::trigger
namespace kx::trigger2 {
// Second generation: input and output swap places, and the held value is appended last.
enum Pin : int { Input, Output, TriggerL, TriggerR, Held, PinCount };
}  // namespace kx::trigger2

// Copies "Input" to "Output" each time the host notifies either trigger pin with true. Changes of the input
// alone, and triggers going false, pass nothing; a trigger that stays true passes nothing new until the
// host notifies it again.
template <class T>
class KX_Trigger : public SeGuiInvisibleBase {
public:
    KX_Trigger();

    void onSetTrgL();
    void onSetTrgR();

    kx::ValuePin<T> output;
    kx::ValuePin<T> input;
    MpGuiPin<bool> triggerL;
    MpGuiPin<bool> triggerR;

private:
    void pass(const MpGuiPin<bool>& trigger);
};

// As KX_Trigger, but the value is first captured in "Held Value" (a pin the host may also write, e.g. to
// restore it), and the output then follows the held value, so a held value restored by the host reaches the
// output on the next trigger even when the input has not changed.
template <class T>
class KX_Trigger2 : public SeGuiInvisibleBase {
public:
    KX_Trigger2();

    void onSetTrgL();
    void onSetTrgR();

    kx::ValuePin<T> input;
    kx::ValuePin<T> output;
    kx::ValuePin<T> held;  // bound last, at index 4
    MpGuiPin<bool> triggerL;
    MpGuiPin<bool> triggerR;

private:
    void pass(const MpGuiPin<bool>& trigger);
};

using KX_TriggerInt = KX_Trigger<int>;
using KX_TriggerFloat = KX_Trigger<float>;
using KX_TriggerString = KX_Trigger<std::wstring>;
using KX_TriggerBool = KX_Trigger<bool>;
using KX_TriggerBlob = KX_Trigger<MpBlob>;
using KX_TriggerInt2 = KX_Trigger2<int>;
using KX_TriggerFloat2 = KX_Trigger2<float>;
using KX_TriggerString2 = KX_Trigger2<std::wstring>;
using KX_TriggerBool2 = KX_Trigger2<bool>;
using KX_TriggerBlob2 = KX_Trigger2<MpBlob>;
