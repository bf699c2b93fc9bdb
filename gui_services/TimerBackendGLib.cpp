// Linux: the timers run on the GUI thread's GLib main context (the loop GTK and Qt hosts run), that is
// the thread-default context of the thread that starts them, or the global default context.
#include <glib.h>

#include "TimerManager.h"

namespace {

gboolean onTimeout(gpointer source) {
    // The manager catches what clients throw; nothing may unwind through GLib's C frames.
    TimerManager::Instance().OnTimer(source);
    // The manager removes a timer by destroying its source, also from inside this call.
    return G_SOURCE_CONTINUE;
}

class GLibTimerBackend final : public kx::TimerBackend {
public:
    void* create(int intervalMs, void*) override {
        // GLib takes an unsigned period; an interval of 0 or less fires on every loop iteration.
        GSource* source = g_timeout_source_new(intervalMs > 0 ? static_cast<guint>(intervalMs) : 0u);
        if (!source)
            return nullptr;
        // The source itself identifies the timer to the manager; it lives until destroy() unrefs it.
        g_source_set_callback(source, &onTimeout, source, nullptr);
        g_source_set_name(source, "kx timer group");
        GMainContext* context = g_main_context_ref_thread_default();
        g_source_attach(source, context);
        g_main_context_unref(context);
        return source;
    }

    void destroy(void* handle) override {
        auto* source = static_cast<GSource*>(handle);
        g_source_destroy(source);
        g_source_unref(source);
    }
};

}  // namespace

kx::TimerBackend& kx::platformTimerBackend() {
    static GLibTimerBackend backend;
    return backend;
}
