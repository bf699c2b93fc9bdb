// KX_DblClckRes: watches a pointer-down signal and, on a double click, writes a reset value to its
// output — the usual "double-click a knob to reset it" behaviour for a panel.
#pragma once

#include <cstdint>

#include "MpGuiBase2.h"
#include "SteadyClock.h"

namespace kx::dblclckres {
enum Pin : int { Value, ResetValue, TimeLimitMs, PointerDown, PinCount };
}

class KX_DblClckRes : public SeGuiInvisibleBase {
public:
    // The default is the steady clock; tests inject their own.
    using Clock = kx::Clock;

    KX_DblClckRes();

    void onSetMouseDown();
    void setClock(Clock clock) { clock_ = std::move(clock); }

private:
    // The value pin is read as well as written: nothing is sent when it already holds the reset value.
    MpGuiPin<float> value_;
    MpGuiPin<float> resetValue_;
    MpGuiPin<float> timeLimitMs_;
    MpGuiPin<bool> pointerDown_;

    Clock clock_;
    // The clock's epoch until the first press; with armed still false the first press never resets.
    std::int64_t lastPressNs_ = 0;
    // A release since the last press: a double click is press, release, press.
    bool armed_ = false;
};
