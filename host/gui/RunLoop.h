// The GUI thread's run loop, the one the bundle's timers are on (the thread-default GLib main context on
// Linux, the current CoreFoundation run loop on macOS). The host's GUI thread is its main thread, and the
// loop runs only when the host asks it to.
#pragma once

#include <cstdint>
#include <memory>

namespace kxhost::runloop {

// Runs the loop for ms milliseconds of real time, as a GUI thread waiting for events would.
void wait(int ms);
// Runs whatever is due without blocking; returns the milliseconds until the next timeout source is
// due, or -1 when the loop holds none.
int dispatchDue();
// Runs the loop until nothing is due sooner than maxMs, for at most maxMs.
void runFor(int maxMs);
// Whether the platform's loop can say it holds no timeout (dispatchDue answering -1 means so).
bool canCount();

// Time on the run loop that passes only when asked: wait(ms) runs every timer that falls due within the
// span, at its due time and in due order, without waiting in real time. A timer made at virtual time t
// with period p fires at t + p, t + 2p, ...; a period of 0 counts as 1 ms. Between waits a timer is due
// in real time after what remains of its virtual period (a loop that runs meanwhile, as a live window's
// does, keeps it going); the next wait takes it back to virtual time. Modules that read the system clock
// themselves still see real time.
class VirtualClock {
public:
    VirtualClock();
    ~VirtualClock();
    VirtualClock(const VirtualClock&) = delete;
    VirtualClock& operator=(const VirtualClock&) = delete;

    void wait(int ms);
    // Virtual milliseconds since the clock was made.
    int64_t now() const;
    // Whether this platform has one; where it has not, wait() waits in real time.
    static bool available();

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace kxhost::runloop
