// Increments: KX_PMInc, KX_FloatInc, KX_IntInc.
#include "logic/Increments.h"

#include "ModuleSupport.h"
#include "MpFactory.h"

float kx::stepAndClamp(float value, float delta, float step, float minimum, float maximum) {
    const float v = delta * step + value;
    if (minimum > v)
        return minimum;
    if (v > maximum)
        return maximum;
    return v;
}

// ---- KX_PMInc

KX_PMInc::KX_PMInc() {
    initializePin(value);
    initializePin(step);
    initializePin(delta, &KX_PMInc::onSetDelta);
}

void KX_PMInc::onSetDelta() {
    if (delta == 0.0f)
        return;
    value = kx::stepAndClamp(value, delta, step, 0.0f, 1.0f);
}

// ---- KX_FloatInc

KX_FloatInc::KX_FloatInc() {
    initializePin(value);
    initializePin(minimum);
    initializePin(maximum);
    initializePin(step);
    initializePin(delta, &KX_FloatInc::onSetDelta);
}

void KX_FloatInc::onSetDelta() {
    if (delta == 0.0f)
        return;
    value = kx::stepAndClamp(value, delta, step, minimum, maximum);
}

// ---- KX_IntInc

KX_IntInc::KX_IntInc() {
    initializePin(value, &KX_IntInc::onSetValue);
    initializePin(minimum);
    initializePin(maximum);
    initializePin(step);
    initializePin(delta, &KX_IntInc::onSetDelta);
}

void KX_IntInc::onSetValue() {
    if (!reentering_)
        accumulator_ = static_cast<float>(value.value);
}

void KX_IntInc::onSetDelta() {
    if (delta == 0.0f)
        return;
    accumulator_ = kx::stepAndClamp(accumulator_, delta, step, static_cast<float>(minimum.value),
                                    static_cast<float>(maximum.value));
    kx::ReentryFlag hold(reentering_);
    value = kx::truncToInt32(accumulator_);
}

namespace {
const bool registered = gmpi::Register<KX_PMInc>::withId(L"KX_PMInc") &&
                        gmpi::Register<KX_FloatInc>::withId(L"KX_FloatInc") &&
                        gmpi::Register<KX_IntInc>::withId(L"KX_IntInc");
}  // namespace
