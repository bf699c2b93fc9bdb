// A timer backend on a virtual clock, for tests: nothing fires until advance() moves the clock, and then
// every timer fires at its exact due times in due order. Constructing one installs it; destroying it puts
// the previous backend back (running groups move along both ways).
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>

#include "TimerManager.h"

namespace kx {

class ManualTimerBackend final : public TimerBackend {
public:
    ManualTimerBackend() : previous_(TimerManager::Instance().setBackend(*this)) {}
    ~ManualTimerBackend() override { TimerManager::Instance().setBackend(previous_); }
    ManualTimerBackend(const ManualTimerBackend&) = delete;
    ManualTimerBackend& operator=(const ManualTimerBackend&) = delete;

    // When set, create() fails as a refusing run loop would.
    bool refuseCreation = false;

    void* create(int intervalMs, void*) override {
        if (refuseCreation)
            return nullptr;
        const std::uintptr_t id = ++lastId_;
        timers_[id] = Entry{intervalMs, now_ + std::max(intervalMs, 1)};
        ++created_;
        return reinterpret_cast<void*>(id);
    }
    void destroy(void* handle) override { timers_.erase(reinterpret_cast<std::uintptr_t>(handle)); }

    // Moves the virtual clock by ms, firing every timer that falls due on the way, earliest first (ties
    // in creation order). A period of 0 or less fires once per millisecond of virtual time.
    void advance(int ms) {
        const std::int64_t end = now_ + ms;
        for (;;) {
            auto next = std::min_element(timers_.begin(), timers_.end(),
                                         [](const auto& a, const auto& b) { return a.second.due < b.second.due; });
            if (next == timers_.end() || next->second.due > end)
                break;
            now_ = next->second.due;
            next->second.due += std::max(next->second.period, 1);
            TimerManager::Instance().OnTimer(reinterpret_cast<void*>(next->first));
        }
        now_ = end;
    }

    std::int64_t now() const { return now_; }
    // Timers alive in the run loop right now, and ever created.
    int liveTimers() const { return static_cast<int>(timers_.size()); }
    int createdTimers() const { return created_; }

private:
    struct Entry {
        int period;
        std::int64_t due;
    };
    // Handles are ids never reused, so a stale handle matches no group.
    std::map<std::uintptr_t, Entry> timers_;
    std::uintptr_t lastId_ = 0;
    std::int64_t now_ = 0;
    int created_ = 0;
    TimerBackend& previous_;
};

}  // namespace kx
