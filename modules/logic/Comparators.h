// Comparators: compare a value with a reference value and drive a boolean result.
#pragma once

#include <string>

#include "MpGuiBase2.h"
#include "logic/ValuePins.h"

namespace kx::cmp {
enum Pin : int { ValueA, ValueB, Mode, Result, PinCount };
}

// Compares "Value A" with "Value B" by the mode and sends the result when it changes. Nothing is computed
// until the host has delivered all three inputs at least once, and since the result starts false, a first
// result of false is never sent. Numeric modes: 0 A>B, 1 A>=B, 2 A==B, 3 A!=B, 4 A<=B, 5 A<B; any other
// mode leaves the module silent with its last result. Text: mode 0 is equality, any other mode inequality,
// both exact (case-sensitive, no trimming).
template <class T>
class KX_Cmp : public SeGuiInvisibleBase {
public:
    KX_Cmp();

    void onSetVal();
    void onSetCmp();
    void onSetMode();

    kx::ValuePin<T> valueA;
    kx::ValuePin<T> valueB;
    MpGuiPin<int> mode;
    MpGuiPin<bool> result;

private:
    void setResult();
    // Writes the comparison into `out`; false when the mode computes nothing.
    bool compare(bool& out) const;

    bool seenA = false;
    bool seenB = false;
    bool seenMode = false;
};

using KX_CmpInt = KX_Cmp<int>;
using KX_CmpFloat = KX_Cmp<float>;
using KX_CmpString = KX_Cmp<std::wstring>;
