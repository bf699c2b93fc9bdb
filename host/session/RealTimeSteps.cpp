// Real time in a scenario. The bundle's GUI timers live on the GUI thread's run loop (the thread-default
// GLib main context on Linux, the current CoreFoundation run loop on macOS); kxhost's GUI thread is the
// main thread, and the loop runs only while a scenario waits:
//
//   wait MS                          runs the run loop for MS milliseconds; timers fire, their
//                                    transmissions are routed and traced as usual
//   expect_sent instance.Pin MIN MAX the pin was sent between MIN and MAX times (inclusive) since the
//                                    last step that was not an observation, for real-time counts that
//                                    need a margin
#if defined(__APPLE__)
#include <CoreFoundation/CoreFoundation.h>
#else
#include <glib.h>
#endif

#include "patch/Registry.h"
#include "session/Session.h"

namespace kxhost {

namespace {

void runLoopFor(int ms) {
#if defined(__APPLE__)
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, ms / 1000.0, false);
#else
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
#endif
}

// wait MS
Action compileWait(Parser& p, const Line& line) {
    p.arity(line, 2, 2, "wait MS");
    const int ms = p.integer(line, line.tokens[1]);
    if (ms < 0)
        p.fail(line, "wait takes milliseconds, 0 or more");
    return [ms](Session&) { runLoopFor(ms); };
}

// expect_sent instance.Pin MIN MAX
Action compileExpectSent(Parser& p, const Line& line) {
    p.arity(line, 4, 4, "expect_sent instance.Pin MIN MAX");
    const PinRef pin = p.pin(line, line.tokens[1]);
    const int min = p.integer(line, line.tokens[2]);
    const int max = p.integer(line, line.tokens[3]);
    if (min < 0 || max < min)
        p.fail(line, "expect_sent needs 0 <= MIN <= MAX");
    const std::string label = p.patch.label(pin);
    const Location where = line.where;
    return [pin, min, max, label, where](Session& s) {
        const int sent = s.sentCount(pin);
        if (sent < min || sent > max)
            s.fail(where, "expectation failed: " + label + " sent " + std::to_string(sent) + " time(s), expected " +
                              std::to_string(min) + " to " + std::to_string(max));
    };
}

const bool registered = Steps::add("wait", compileWait) && Steps::add("expect_sent", compileExpectSent, true);

}  // namespace

}  // namespace kxhost
