// Pins by value type for the logic modules: the pin class that carries a T, and the copy between two
// pins that sends only a value the target does not hold already.
#pragma once

#include <string>
#include <type_traits>

#include "MpGuiPin.h"

namespace kx {

// Text values use the text pin that also speaks UTF-8, every other type its plain typed pin.
template <class T>
using ValuePin = std::conditional_t<std::is_same_v<T, std::wstring>, StringGuiPin, MpGuiPin<T>>;

// Works on GUI and DSP pins alike. Equality is the value type's own (floats: IEEE, so a NaN is always
// copied and -0.0 never overwrites 0.0).
template <class From, class To>
void copyWhenDifferent(const From& from, To& to) {
    if (!(from.getValue() == to.getValue()))
        to = from.getValue();
}

}  // namespace kx
