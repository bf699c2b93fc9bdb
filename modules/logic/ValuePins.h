// The pin class that carries a value of type T on the logic modules: text values use the text pin that
// also speaks UTF-8, every other type its plain typed pin.
#pragma once

#include <string>
#include <type_traits>

#include "MpGuiPin.h"

namespace kx {

template <class T>
using ValuePin = std::conditional_t<std::is_same_v<T, std::wstring>, StringGuiPin, MpGuiPin<T>>;

// Restores a re-entry flag on every exit, so a throwing host cannot leave a module deaf for good, and a
// nested call that sets and clears the flag cannot clear it under an outer call that still needs it.
class FlagScope {
public:
    explicit FlagScope(bool& flag) : flag_(flag), previous_(flag) { flag_ = true; }
    ~FlagScope() { flag_ = previous_; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

private:
    bool& flag_;
    bool previous_;
};

}  // namespace kx
