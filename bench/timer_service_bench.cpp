// The timer service's cost per tick: N clients (1, 100, 1,000) registered in one group, driven by the
// GUI thread's GLib main context as a host's run loop drives them (one loop iteration, one tick, every
// client called once).
//
// Baseline: the least any periodic service must do on the same run loop: one bare GLib timeout source
// whose callback calls the same N clients' OnTimer through the same virtual call. The ratio is what the
// service adds: finding the group of the fired timer, the guard, and the tick's protection against
// clients that start, stop or destroy each other while it runs.
#include <benchmark/benchmark.h>
#include <glib.h>

#include <memory>
#include <vector>

#include "TimerManager.h"

namespace {

class CountingClient final : public TimerClient {
public:
    bool OnTimer() override {
        ++calls;
        return true;
    }
    int64_t calls = 0;
};

// A main context of the benchmark's own, the thread's default while it lives, so that the service's
// timers and the baseline's source are the only ones on it.
class RunLoop {
public:
    RunLoop() : context_(g_main_context_new()) { g_main_context_push_thread_default(context_); }
    ~RunLoop() {
        g_main_context_pop_thread_default(context_);
        g_main_context_unref(context_);
    }
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;
    // One iteration without waiting: a timer of interval 0 is due at every one.
    void iterate() { g_main_context_iteration(context_, FALSE); }
    GMainContext* context() const { return context_; }

private:
    GMainContext* context_;
};

std::vector<std::unique_ptr<CountingClient>> makeClients(int64_t n) {
    std::vector<std::unique_ptr<CountingClient>> clients;
    for (int64_t i = 0; i < n; ++i)
        clients.push_back(std::make_unique<CountingClient>());
    return clients;
}

void checkEveryClientTicked(benchmark::State& state, const std::vector<std::unique_ptr<CountingClient>>& clients) {
    for (const auto& c : clients)
        if (c->calls < static_cast<int64_t>(state.iterations())) {
            state.SkipWithError("a client missed ticks");
            return;
        }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}

void ServiceTick(benchmark::State& state) {
    RunLoop loop;
    auto clients = makeClients(state.range(0));
    for (auto& c : clients)
        c->StartTimer(0);
    for (auto _ : state)
        loop.iterate();
    for (auto& c : clients)
        c->StopTimer();
    checkEveryClientTicked(state, clients);
}

struct Bare {
    std::vector<TimerClient*> clients;
};

gboolean bareTick(gpointer data) {
    for (TimerClient* client : static_cast<Bare*>(data)->clients)
        client->OnTimer();
    return G_SOURCE_CONTINUE;
}

void BareRunLoopTick(benchmark::State& state) {
    RunLoop loop;
    auto clients = makeClients(state.range(0));
    Bare bare;
    for (auto& c : clients)
        bare.clients.push_back(c.get());
    GSource* source = g_timeout_source_new(0);
    g_source_set_callback(source, &bareTick, &bare, nullptr);
    g_source_attach(source, loop.context());
    for (auto _ : state)
        loop.iterate();
    g_source_destroy(source);
    g_source_unref(source);
    checkEveryClientTicked(state, clients);
}

}  // namespace

BENCHMARK(ServiceTick)->Arg(1)->Arg(100)->Arg(1000);
BENCHMARK(BareRunLoopTick)->Arg(1)->Arg(100)->Arg(1000);

BENCHMARK_MAIN();
