// Increments: turn relative movements (a delta from an encoder, a mouse wheel or a jog control) into an
// absolute value. Each non-zero delta moves the value by delta x step and clamps it to a range; a delta
// of exactly 0 does nothing, so a control that resets its delta to 0 after each movement costs nothing.
// All arithmetic is single precision.
#pragma once

#include "MpGuiBase2.h"

// KX_IntInc and KX_FloatInc.
namespace kx::inc {
enum Pin : int { Value, Minimum, Maximum, Step, Delta, PinCount };
}
// KX_PMInc.
namespace kx::pminc {
enum Pin : int { Value, Step, Delta, PinCount };
}

namespace kx {
// delta x step + value, then the minimum if below it, else the maximum if above it (the minimum is
// tested first, so with minimum > maximum every result below the minimum is the minimum). NaN passes.
float stepAndClamp(float value, float delta, float step, float minimum, float maximum);
}  // namespace kx

// An integer value with a fractional accumulator, so steps smaller than one add up: with step 0.25 the
// value rises by one every fourth movement. The accumulator is clamped too, so a movement back from a
// limit starts at the limit; it is truncated toward zero for the value (-0.75 gives 0, not -1).
class KX_IntInc : public SeGuiInvisibleBase {
public:
    KX_IntInc();
    // A value set from elsewhere resets the accumulator; the host's echo of the module's own write does
    // not, so the fractional part survives it.
    void onSetValue();
    void onSetDelta();

    MpGuiPin<int> value;
    MpGuiPin<int> minimum;
    MpGuiPin<int> maximum;
    MpGuiPin<float> step;
    MpGuiPin<float> delta;

private:
    float accumulator_ = 0.0f;
    bool reentering_ = false;
};

// A float value between a minimum and a maximum.
class KX_FloatInc : public SeGuiInvisibleBase {
public:
    KX_FloatInc();
    void onSetDelta();

    MpGuiPin<float> value;
    MpGuiPin<float> minimum;
    MpGuiPin<float> maximum;
    MpGuiPin<float> step;
    MpGuiPin<float> delta;
};

// A normalised value (0 to 1), such as a patch-memory parameter's.
class KX_PMInc : public SeGuiInvisibleBase {
public:
    KX_PMInc();
    void onSetDelta();

    MpGuiPin<float> value;
    MpGuiPin<float> step;
    MpGuiPin<float> delta;
};
