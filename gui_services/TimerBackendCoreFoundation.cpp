// macOS: the timers are CoreFoundation run-loop timers on the current thread's run loop, in the common
// modes so that they also fire during mouse tracking and modal loops.
#include <CoreFoundation/CoreFoundation.h>

#include "TimerManager.h"

namespace {

void timerCallback(CFRunLoopTimerRef timer, void*) {
    // The firing timer is the handle the manager knows; the info pointer (the group that created it) is
    // not read, since the group may be gone while a stale callback is still queued. The manager catches
    // what clients throw.
    TimerManager::Instance().OnTimer(timer);
}

class CoreFoundationTimerBackend final : public kx::TimerBackend {
public:
    void* create(int intervalMs, void* info) override {
        // The period is computed in single precision, then widened, as the run loop has always been fed.
        const CFTimeInterval period = static_cast<double>(static_cast<float>(intervalMs) * 0.001f);
        CFRunLoopTimerContext context = {0, info, nullptr, nullptr, nullptr};
        CFRunLoopTimerRef timer = CFRunLoopTimerCreate(kCFAllocatorDefault, CFAbsoluteTimeGetCurrent() + period, period,
                                                       0, 0, &timerCallback, &context);
        if (!timer)
            return nullptr;
        CFRunLoopAddTimer(CFRunLoopGetCurrent(), timer, kCFRunLoopCommonModes);
        return timer;
    }

    void destroy(void* handle) override {
        auto timer = static_cast<CFRunLoopTimerRef>(handle);
        CFRunLoopRemoveTimer(CFRunLoopGetCurrent(), timer, kCFRunLoopCommonModes);
        CFRunLoopTimerInvalidate(timer);
        CFRelease(timer);
    }
};

}  // namespace

kx::TimerBackend& kx::platformTimerBackend() {
    static CoreFoundationTimerBackend backend;
    return backend;
}
