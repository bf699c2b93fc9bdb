// The clock modules time the user's clicks with. A module keeps a kx::Clock rather than reading the
// steady clock itself, so that a test can hand it a clock it steps by hand.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

namespace kx {

// Monotonic nanoseconds.
using Clock = std::function<std::int64_t()>;

inline std::int64_t steadyNowNs() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

}  // namespace kx
