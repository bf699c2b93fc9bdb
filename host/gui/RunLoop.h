// The GUI thread's run loop, the one the bundle's timers are on (the thread-default GLib main context on
// Linux, the current CoreFoundation run loop on macOS). The host's GUI thread is its main thread, and the
// loop runs only when the host asks it to.
#pragma once

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

}  // namespace kxhost::runloop
