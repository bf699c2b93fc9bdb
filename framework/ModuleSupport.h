// Small pieces module handlers share: a re-entry flag that is cleared on every way out, and conversions at
// the edge of what the language defines (a float truncated to an integer, wide text handed to UTF-8
// routines) that give a defined answer for every input, the same on every processor, so malformed values
// never reach undefined behaviour or an exception.
#pragma once

#include <climits>
#include <cmath>
#include <cstdint>
#include <string_view>

namespace kx {

// Holds a module's re-entry flag for one scope. A module whose write is echoed back by the host into one
// of its own pins tests the flag in that pin's handler; the destructor puts back what the flag was (so a
// nested hold does not release an outer one) on every path out, including an exception.
class ReentryFlag {
public:
    explicit ReentryFlag(bool& flag) : flag_(flag), previous_(flag) { flag_ = true; }
    ~ReentryFlag() { flag_ = previous_; }
    ReentryFlag(const ReentryFlag&) = delete;
    ReentryFlag& operator=(const ReentryFlag&) = delete;

private:
    bool& flag_;
    bool previous_;
};

// Truncates toward zero to a 32-bit integer. NaN and values outside the 32-bit range give INT_MIN, the
// value x86 processors produce for them, so patches behave alike on every machine.
inline int32_t truncToInt32(double value) {
    if (value > -2147483649.0 && value < 2147483648.0)
        return static_cast<int32_t>(value);
    return INT32_MIN;
}

// A position 0..1 as controls draw and drag it: clamped, and 0 for a NaN a host may have sent.
inline float clampUnit(float v) { return std::isnan(v) ? 0.0f : std::fmin(std::fmax(v, 0.0f), 1.0f); }

// True when every character is a Unicode code point that UTF-8 can carry (no surrogates, nothing above
// 0x10FFFF), i.e. when kx::toUtf8 will not throw.
inline bool isCodePointText(std::wstring_view text) {
    for (wchar_t c : text) {
        const auto cp = static_cast<uint32_t>(c);
        if (cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
            return false;
    }
    return true;
}

}  // namespace kx
