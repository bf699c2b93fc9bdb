// The GUI thread's run loop. On Linux the bundle's timers are timeout sources on the thread-default
// GLib main context; one hand-driven iteration (prepare, query, check, dispatch) runs what is due and
// tells how long until the next timeout, -1 when the context holds none. CoreFoundation cannot say so,
// so on macOS only due timers run and canCount() is false.
#if defined(__APPLE__)
#include <CoreFoundation/CoreFoundation.h>
#else
#include <glib.h>
#endif

#include <algorithm>
#include <chrono>
#include <vector>

#include "gui/RunLoop.h"

namespace kxhost::runloop {

#if defined(__APPLE__)

void wait(int ms) { CFRunLoopRunInMode(kCFRunLoopDefaultMode, ms / 1000.0, false); }

int dispatchDue() {
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
    return -1;
}

void runFor(int maxMs) { CFRunLoopRunInMode(kCFRunLoopDefaultMode, std::max(maxMs, 0) / 1000.0, false); }

bool canCount() { return false; }

#else

void wait(int ms) {
    GMainContext* context = g_main_context_ref_thread_default();
    GMainLoop* loop = g_main_loop_new(context, FALSE);
    GSource* deadline = g_timeout_source_new(static_cast<guint>(ms));
    g_source_set_callback(
        deadline,
        [](gpointer data) -> gboolean {
            g_main_loop_quit(static_cast<GMainLoop*>(data));
            return G_SOURCE_REMOVE;
        },
        loop, nullptr);
    g_source_attach(deadline, context);
    g_main_loop_run(loop);
    g_source_destroy(deadline);
    g_source_unref(deadline);
    g_main_loop_unref(loop);
    g_main_context_unref(context);
}

int dispatchDue() {
    GMainContext* context = g_main_context_ref_thread_default();
    int timeout = -1;
    if (g_main_context_acquire(context)) {
        gint priority = 0;
        g_main_context_prepare(context, &priority);
        std::vector<GPollFD> fds(8);
        gint n = 0;
        while ((n = g_main_context_query(context, priority, &timeout, fds.data(), static_cast<gint>(fds.size()))) >
               static_cast<gint>(fds.size()))
            fds.resize(static_cast<size_t>(n));
        // No poll: sources that wait on descriptors are not ours; timeouts need none.
        if (g_main_context_check(context, priority, fds.data(), n))
            g_main_context_dispatch(context);
        g_main_context_release(context);
    }
    g_main_context_unref(context);
    return timeout;
}

void runFor(int maxMs) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(std::max(maxMs, 0));
    GMainContext* context = g_main_context_ref_thread_default();
    do {
        while (g_main_context_iteration(context, FALSE)) {
        }
        const int next = dispatchDue();
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (next < 0 || left.count() <= 0 || next > left.count())
            break;
        g_usleep(static_cast<gulong>(next) * 1000);
    } while (true);
    g_main_context_unref(context);
}

bool canCount() { return true; }

#endif

}  // namespace kxhost::runloop
