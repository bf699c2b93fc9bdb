// A module's pins by index, as both module bases keep them: a small vector sorted by index. Modules have
// few pins and every value the host sends looks its pin up, so a scan in order beats a tree.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kx {

template <class Pin>
class PinTable {
public:
    struct Slot {
        int32_t index;
        Pin* pin;
    };

    // Enters the pin unless the index is taken: the first pin bound to an index keeps it.
    void add(int32_t index, Pin& pin) {
        // Room for a typical module's pins at once, instead of growing one pin at a time.
        if (slots_.empty())
            slots_.reserve(8);
        auto at =
            std::lower_bound(slots_.begin(), slots_.end(), index, [](const Slot& s, int32_t i) { return s.index < i; });
        if (at == slots_.end() || at->index != index)
            slots_.insert(at, Slot{index, &pin});
    }
    // The pin bound to index, or null.
    Pin* find(int32_t index) const {
        // Most modules number their pins 0, 1, 2, ...: then a pin sits at its own index.
        if (index >= 0 && static_cast<size_t>(index) < slots_.size() &&
            slots_[static_cast<size_t>(index)].index == index)
            return slots_[static_cast<size_t>(index)].pin;
        for (const Slot& slot : slots_)
            if (slot.index >= index)
                return slot.index == index ? slot.pin : nullptr;
        return nullptr;
    }
    // One more than the highest bound index, or 0.
    int32_t nextIndex() const { return slots_.empty() ? 0 : slots_.back().index + 1; }

    // In index order.
    typename std::vector<Slot>::const_iterator begin() const { return slots_.begin(); }
    typename std::vector<Slot>::const_iterator end() const { return slots_.end(); }

private:
    std::vector<Slot> slots_;
};

}  // namespace kx
