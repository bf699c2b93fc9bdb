#include "widgets/DblClckRes.h"

#include <cmath>
#include <limits>

#include "MpFactory.h"

namespace {

// The time limit truncated to whole milliseconds, saturating instead of overflowing; a NaN limit allows
// no double click at all.
bool withinLimit(std::int64_t elapsedMs, float limitMs) {
    if (std::isnan(limitMs))
        return false;
    constexpr float kTop = 9.2e18f;  // a float below 2^63: every smaller one converts exactly
    if (limitMs >= kTop)
        return true;
    if (limitMs <= -kTop)
        return false;
    return elapsedMs <= static_cast<std::int64_t>(limitMs);
}

}  // namespace

KX_DblClckRes::KX_DblClckRes() : clock_(&kx::steadyNowNs) {
    initializePin(value_);
    initializePin(resetValue_);
    initializePin(timeLimitMs_);
    initializePin(pointerDown_, &KX_DblClckRes::onSetMouseDown);
}

void KX_DblClckRes::onSetMouseDown() {
    if (!pointerDown_) {
        armed_ = true;
        return;
    }
    const std::int64_t now = clock_();
    const std::int64_t elapsedMs = (now - lastPressNs_) / 1'000'000;
    // Assigning sends only when the value differs (a NaN always does).
    if (armed_ && withinLimit(elapsedMs, timeLimitMs_))
        value_ = resetValue_.getValue();
    lastPressNs_ = now;
    armed_ = false;
}

namespace {
const bool registered = gmpi::Register<KX_DblClckRes>::withId(L"KX_DblClckRes");
}
