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
#include <cstdint>
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

struct VirtualClock::Impl {
    int64_t now = 0;
};

VirtualClock::VirtualClock() : impl_(std::make_unique<Impl>()) {}
VirtualClock::~VirtualClock() = default;

void VirtualClock::wait(int ms) {
    runloop::wait(ms);
    impl_->now += std::max(ms, 0);
}

int64_t VirtualClock::now() const { return impl_->now; }
bool VirtualClock::available() { return false; }

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

namespace {

// How GLib lays out its timeout sources: the period follows the source. Read only from sources whose
// functions are g_timeout_funcs, and only when the source's ready time agrees with it.
struct TimeoutLayout {
    GSource source;
    guint interval;
    gboolean seconds;
};

// Firings one wait may make before it gives up (a timer that keeps restarting itself at once).
constexpr int kMaxFirings = 1'000'000;

}  // namespace

// Timers are the timeout sources of the thread-default context. They are found by source id (ids only
// grow; a probe source attached and destroyed at once gives the next one), parked with a ready time of
// -1 while a wait runs, so that real time never fires them, and fired one due time after the other by
// making them ready and running one iteration of the context. Between waits each is left due in real
// time after what remains of its virtual period, so a loop that runs meanwhile (a live window) keeps
// them going.
struct VirtualClock::Impl {
    struct Timer {
        GSource* source;  // one reference of ours
        int64_t period;   // ms
        int64_t due;      // virtual ms
    };

    GMainContext* context = g_main_context_ref_thread_default();
    guint scanned = 0;
    int64_t now = 0;
    std::vector<Timer> timers;

    ~Impl() {
        for (auto& t : timers)
            g_source_unref(t.source);
        g_main_context_unref(context);
    }

    guint nextId() {
        GSource* probe = g_idle_source_new();
        const guint id = g_source_attach(probe, context);
        g_source_destroy(probe);
        g_source_unref(probe);
        return id;
    }

    static int64_t periodOf(GSource* source) {
        // Rounded up, what is left until the source is due is the period less the (short) time since
        // the source was made.
        const int64_t left = std::max<int64_t>(0, g_source_get_ready_time(source) - g_get_monotonic_time());
        const int64_t approx = (left + 999) / 1000;
        const auto* layout = reinterpret_cast<const TimeoutLayout*>(source);
        if (layout->seconds)
            return static_cast<int64_t>(layout->interval) * 1000;
        const auto stated = static_cast<int64_t>(layout->interval);
        return stated >= approx && stated <= approx + 1000 ? stated : approx;
    }

    void scan() {
        for (auto& t : timers)
            if (!g_source_is_destroyed(t.source))
                g_source_set_ready_time(t.source, -1);
        const guint top = nextId();
        for (guint id = scanned + 1; id < top; ++id) {
            GSource* source = g_main_context_find_source_by_id(context, id);
            if (!source || source->source_funcs != &g_timeout_funcs)
                continue;
            const int64_t period = std::max<int64_t>(1, periodOf(source));
            g_source_ref(source);
            g_source_set_ready_time(source, -1);
            timers.push_back({source, period, now + period});
        }
        scanned = top;
        std::erase_if(timers, [](const Timer& t) {
            if (!g_source_is_destroyed(t.source))
                return false;
            g_source_unref(t.source);
            return true;
        });
    }

    void wait(int ms) {
        const int64_t end = now + std::max(ms, 0);
        for (int fired = 0; fired < kMaxFirings; ++fired) {
            scan();
            int64_t next = end + 1;
            for (const auto& t : timers)
                next = std::min(next, t.due);
            if (next > end)
                break;
            now = next;
            std::vector<GSource*> due;
            for (auto& t : timers)
                if (t.due == now) {
                    due.push_back(t.source);
                    g_source_set_ready_time(t.source, 0);
                    t.due = now + t.period;
                }
            // One iteration dispatches them; another is needed only when a source of higher priority
            // was ready too.
            for (int i = 0; i < 8; ++i) {
                g_main_context_iteration(context, FALSE);
                if (std::none_of(due.begin(), due.end(), [](GSource* s) {
                        return !g_source_is_destroyed(s) && g_source_get_ready_time(s) == 0;
                    }))
                    break;
            }
            for (GSource* source : due)
                if (!g_source_is_destroyed(source))
                    g_source_set_ready_time(source, -1);
        }
        now = end;
        scan();
        const int64_t real = g_get_monotonic_time();
        for (auto& t : timers)
            g_source_set_ready_time(t.source, real + (t.due - now) * 1000);
    }
};

VirtualClock::VirtualClock() : impl_(std::make_unique<Impl>()) {}
VirtualClock::~VirtualClock() = default;
void VirtualClock::wait(int ms) { impl_->wait(ms); }
int64_t VirtualClock::now() const { return impl_->now; }
bool VirtualClock::available() { return true; }

#endif

}  // namespace kxhost::runloop
