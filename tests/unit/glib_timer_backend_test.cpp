// The Linux backend on a real GLib main context. Nothing here asserts timing: the loop is iterated until
// the expected calls happened, with a generous bound against hanging.
#if defined(__linux__)

#include <glib.h>
#include <gtest/gtest.h>

#include "TimerManager.h"

namespace {

struct Counter : TimerClient {
    int calls = 0;
    int stopAfter = 3;
    bool OnTimer() override {
        if (++calls == stopAfter)
            StopTimer();
        return true;
    }
};

// Iterates the context until done() or about two seconds have passed.
template <class F>
void runUntil(GMainContext* context, F done) {
    const gint64 end = g_get_monotonic_time() + 2 * G_USEC_PER_SEC;
    while (!done() && g_get_monotonic_time() < end)
        if (!g_main_context_iteration(context, FALSE))
            g_usleep(500);
}

}  // namespace

TEST(GLibTimerBackend, RunsOnTheThreadDefaultContextUntilStoppedFromItsOwnTick) {
    GMainContext* context = g_main_context_new();
    g_main_context_push_thread_default(context);
    {
        Counter counter;
        counter.StartTimer(2);
        runUntil(context, [&] { return counter.calls >= 3; });
        EXPECT_EQ(counter.calls, 3);
        EXPECT_FALSE(TimerManager::Instance().isRegistered(&counter));
        // The source is gone: iterating further calls nothing.
        for (int i = 0; i < 20; ++i) {
            g_usleep(1000);
            g_main_context_iteration(context, FALSE);
        }
        EXPECT_EQ(counter.calls, 3);
    }
    g_main_context_pop_thread_default(context);
    g_main_context_unref(context);
}

#endif
