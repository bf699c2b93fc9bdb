// Fixed values: publish one value on two outputs and, on request, hold them against outside changes.
#pragma once

#include <string>

#include "MpGuiBase2.h"
#include "logic/ValuePins.h"

namespace kx::fixed {
enum Pin : int { Value, Hold, Left, Right, PinCount };
}

// A new "Value" always reaches both outputs, right first, whatever "Hold" says. While "Hold" is true, an
// outside change of either output (the outputs are host parameters other modules may write) is undone at
// once by sending the value again; while it is false, outside changes stay. Turning "Hold" on restores
// nothing by itself.
template <class T>
class KX_Fixed : public SeGuiInvisibleBase {
public:
    KX_Fixed();

    void onSetVal();
    void onSetL();
    void onSetR();

    kx::ValuePin<T> value;
    MpGuiPin<bool> hold;
    MpGuiPin<T> left;
    MpGuiPin<T> right;

private:
    void restore(MpGuiPin<T>& output);
};

using KX_Fixed_Int = KX_Fixed<int>;
using KX_Fixed_Float = KX_Fixed<float>;
using KX_Fixed_String = KX_Fixed<std::wstring>;
using KX_Fixed_Bool = KX_Fixed<bool>;
