// The process-wide colour conversion tables: 8-bit sRGB and gamma-2.2 components to linear-light
// floats and back. Drawing colours are linear; colour pins and style files carry 8-bit sRGB.
#pragma once

#include <array>
#include <cstdint>

namespace se_sdk {

// One object of T per process, made on first use (thread-safe one-time construction) and destroyed at
// exit.
template <class T>
struct static_holder {
    static T& instance() {
        static T object;
        return object;
    }
};

struct gammaLookupTables {
    gammaLookupTables();

    // Indexed by an 8-bit component; index 0 is 0.0 in every table.
    std::array<float, 256> toLinear;          // sRGB to linear
    std::array<float, 256> toLinear22;        // power 2.2
    std::array<float, 256> toLinearHalfStep;  // sRGB to linear, half a step below each index
    std::array<float, 256> toSrgb22;          // linear (power 2.2 reading of the index) to sRGB

    static gammaLookupTables& get() { return static_holder<gammaLookupTables>::instance(); }
};

// sRGB byte to linear component through the first table.
inline float srgbToLinear(uint8_t component) { return gammaLookupTables::get().toLinear[component]; }

}  // namespace se_sdk
