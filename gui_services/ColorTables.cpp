#include "ColorTables.h"

#include <cmath>

namespace se_sdk {
namespace {

// The sRGB transfer function's break point and the reverse one, as the tables are defined.
constexpr double kSrgbLinearLimit = 0.0404482362771082;
constexpr double kLinearSrgbLimit = 0.00313066844250063;

double srgbToLinearExact(double x) { return x <= kSrgbLinearLimit ? x / 12.92 : std::pow((x + 0.055) / 1.055, 2.4); }

}  // namespace

gammaLookupTables::gammaLookupTables() {
    // The step is taken in single precision and widened: the tables' values depend on it.
    const double s = static_cast<double>(1.0f / 255.0f);
    toLinear[0] = toLinear22[0] = toLinearHalfStep[0] = toSrgb22[0] = 0.0f;
    for (int i = 1; i < 256; ++i) {
        const double x = i * s;
        toLinear[i] = static_cast<float>(srgbToLinearExact(x));
        toLinear22[i] = static_cast<float>(std::pow(x, 2.2));
        const double half = static_cast<double>(static_cast<float>(i) - 0.5f) * s;
        toLinearHalfStep[i] = static_cast<float>(srgbToLinearExact(half));
        const double y = std::pow(x, 2.2);
        toSrgb22[i] = static_cast<float>(y <= kLinearSrgbLimit ? 12.92 * y : 1.055 * std::pow(y, 1.0 / 2.4) - 0.055);
    }
}

}  // namespace se_sdk
