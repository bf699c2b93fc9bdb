// Random values: produce a random value on request and remember every value produced, so the user can
// step back through earlier values and forward again. Stepping forward past the newest value produces a
// new one; the history is never trimmed, and the range applies only when a value is generated (values
// already in the history replay unchanged after the range changes).
//
// The generator is a 32-bit xorshift seeded with the address of the instance's own state, so two
// instances in one process give different sequences and no sequence repeats between sessions; no system
// random source or clock is used.
#pragma once

#include <cstdint>
#include <vector>

#include "MpGuiBase2.h"

namespace kx::rnd {
enum Pin : int { Minimum, Maximum, Output, HistoryUp, HistoryDown, PinCount };
}

namespace kx {
// One xorshift step (13, 17, 5); the new state is the random number. A state of 0 stays 0.
inline uint32_t xorshift32(uint32_t& state) {
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return state;
}
}  // namespace kx

// T is the value type; Derived supplies makeValue(x) from a random 32-bit x and the current range.
template <class Derived, class T>
class RandomHistory : public SeGuiInvisibleBase {
public:
    RandomHistory() {
        initializePin(minimum);
        initializePin(maximum);
        initializePin(output);
        initializePin(historyUp, &RandomHistory::onSetHistUp);
        initializePin(historyDown, &RandomHistory::onSetHistDown);
    }

    // Next value: the one after the current one in the history, or a new one past the newest.
    void onSetHistUp() {
        if (!historyUp)
            return;
        ++position_;
        if (position_ == static_cast<int>(history_.size()))
            history_.push_back(static_cast<Derived&>(*this).makeValue(kx::xorshift32(state)));
        output = history_[static_cast<size_t>(position_)];
    }
    // Previous value; at the oldest it stays there. Nothing before the first value was produced.
    void onSetHistDown() {
        if (!historyDown || position_ < 0)
            return;
        if (position_ > 0)
            --position_;
        output = history_[static_cast<size_t>(position_)];
    }

    MpGuiPin<T> minimum;
    MpGuiPin<T> maximum;
    MpGuiPin<T> output;
    MpGuiPin<bool> historyUp;
    MpGuiPin<bool> historyDown;

    // Generator state, seeded from its own address.
    uint32_t state = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(&state));

private:
    std::vector<T> history_;
    int position_ = -1;  // index of the value on the output; -1 before the first
};

// Integers from minimum to maximum inclusive. With maximum <= minimum the value is the maximum. The full
// 32-bit range (minimum INT_MIN, maximum INT_MAX) gives a value over the whole range: there the range
// size wraps to 0 and the raw random number is used instead of taking a remainder by zero.
class KX_RndInt : public RandomHistory<KX_RndInt, int> {
public:
    int makeValue(uint32_t x) const;
};

// Floats from minimum to maximum: (maximum - minimum) x r + minimum with r = x / 2^32 narrowed to
// float, so the maximum itself can come out when r rounds up to 1. With maximum < minimum the value
// falls between them in the other direction.
class KX_RndFloat : public RandomHistory<KX_RndFloat, float> {
public:
    float makeValue(uint32_t x) const;
};
