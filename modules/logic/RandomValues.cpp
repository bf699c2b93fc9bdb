// Random values: KX_RndFloat, KX_RndInt.
#include "logic/RandomValues.h"

#include "MpFactory.h"

int KX_RndInt::makeValue(uint32_t x) const {
    const int lo = minimum;
    const int hi = maximum;
    if (hi <= lo)
        return hi;
    // Unsigned 32-bit arithmetic throughout; the sum wraps back into the signed range.
    const uint32_t range = static_cast<uint32_t>(hi) - static_cast<uint32_t>(lo) + 1u;
    const uint32_t offset = range == 0 ? x : x % range;
    return static_cast<int>(offset + static_cast<uint32_t>(lo));
}

float KX_RndFloat::makeValue(uint32_t x) const {
    const auto r = static_cast<float>(static_cast<double>(x) * (1.0 / 4294967296.0));
    return (maximum - minimum) * r + minimum;
}

namespace {
const bool registered = gmpi::Register<KX_RndFloat>::withId(L"KX_RndFloat") &&
                        gmpi::Register<KX_RndInt>::withId(L"KX_RndInt");
}  // namespace
