// Periodic calls on the GUI thread. Clients are grouped by interval; each group owns one repeating timer
// on the GUI thread's run loop, created and removed through a platform backend (TimerBackend). All of
// it runs on the GUI thread: there are no locks, only the manager's one-time creation is thread-safe.
#pragma once

#include <cstdint>
#include <list>
#include <vector>

class TimerClient;
class TimerManager;

namespace kx {

// The platform seam: one repeating timer on the calling thread's run loop. Backends call
// TimerManager::Instance().OnTimer(handle) with the handle create() returned each time the timer fires,
// and must not let anything thrown out of that call escape into their run loop.
class TimerBackend {
public:
    virtual ~TimerBackend() = default;
    // Creates a timer firing first after intervalMs and then every intervalMs (no clamping of intervals
    // of 0 or less: what such a period does is the backend's rule). `info` is the group that asks, for
    // backends whose run loop wants a context pointer; it is never read back. Returns the handle, or
    // null when the run loop refused.
    virtual void* create(int intervalMs, void* info) = 0;
    // Removes the timer from the run loop and frees it; it never fires again. Safe from inside its own
    // callback.
    virtual void destroy(void* handle) = 0;
};

// The backend of the platform the bundle was built for.
TimerBackend& platformTimerBackend();

}  // namespace kx

namespace se_sdk_timers {

// One group: every client registered under one interval, and the run-loop timer that drives them. It
// reaches the backend through the manager that made it, never through TimerManager::Instance(): the
// manager's destructor stops its groups while the process-wide instance is being torn down.
class Timer {
public:
    Timer(TimerManager& manager, int intervalMs) : manager_(manager), interval_(intervalMs) {}
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;
    ~Timer() { Stop(); }

    // (Re)creates the run-loop timer when there are clients; a refused creation leaves it stopped.
    void Start();
    void Stop();
    bool isRunning() const { return handle_ != nullptr; }
    // The group's tick: calls every client registered when the tick began and still registered when
    // its turn comes; a client answering false leaves the group; a group the tick empties stops but stays.
    void OnTimer();

    int interval() const { return interval_; }
    // In order of registration; not owned.
    const std::vector<TimerClient*>& clients() const { return clients_; }

private:
    friend class ::TimerManager;

    bool contains(const TimerClient* client) const;

    TimerManager& manager_;
    void* handle_ = nullptr;
    const int interval_;
    std::vector<TimerClient*> clients_;
    // Clients removed so far, counted so that a tick knows whether anyone in its snapshot may have left.
    uint64_t removals_ = 0;
    // Set when UnRegisterClient empties the group during its own tick: the group is already unlinked and
    // its storage is freed once the outermost tick has returned, so the tick ends at once.
    bool retired_ = false;
};

}  // namespace se_sdk_timers

// The process-wide manager.
class TimerManager {
public:
    // Created on first use, destroyed at process exit (or when the bundle is unloaded), removing every
    // run-loop timer it still has so that no callback reaches unloaded code.
    static TimerManager& Instance();

    TimerManager(const TimerManager&) = delete;
    TimerManager& operator=(const TimerManager&) = delete;

    // Adds the client to the group of that interval, creating the group at the end of the list when
    // there is none. A client already in the group stays once; a running group is not restarted, so the
    // newcomer joins its rhythm. Allocation failure propagates.
    void RegisterClient(TimerClient* client, int intervalMs);
    // Removes the client from the first group (in list order) holding it; a group so emptied is stopped
    // and destroyed. A later group also holding the client keeps it.
    void UnRegisterClient(TimerClient* client);
    // The interval of StartTimer() without argument, for every client of the process; 50 at creation.
    void SetInterval(int ms) { defaultInterval_ = ms; }
    int defaultInterval() const { return defaultInterval_; }
    // Runs the tick of the first group holding this run-loop timer; nothing when none does (a late
    // callback of a removed timer). Nothing thrown by a client escapes.
    void OnTimer(void* handle) noexcept;

    // In order of creation.
    const std::list<se_sdk_timers::Timer>& groups() const { return groups_; }
    // What is registered right now: for checks that released modules leave nothing behind.
    struct Census {
        int groups = 0;
        int runningGroups = 0;
        int registrations = 0;  // client memberships, summed over the groups
    };
    Census census() const;
    bool isRegistered(const TimerClient* client) const;

    // Installs another backend (tests install a manual one) and returns the previous one. Running
    // groups are moved: their timers are removed through the old backend and recreated through the new.
    kx::TimerBackend& setBackend(kx::TimerBackend& backend);
    kx::TimerBackend& backend() const { return *backend_; }

private:
    TimerManager();
    ~TimerManager();

    // First, so that it is still set while the groups below are destroyed.
    kx::TimerBackend* backend_;
    std::list<se_sdk_timers::Timer> groups_;
    // Groups destroyed by UnRegisterClient while a tick was running; freed when the outermost tick ends,
    // since a tick (or one further out, through a nested run loop) may still be inside one of them.
    std::list<se_sdk_timers::Timer> retired_;
    int defaultInterval_ = 50;
    int tickDepth_ = 0;
};

// Mix-in giving a GUI module periodic OnTimer() calls.
class TimerClient {
public:
    TimerClient() = default;
    TimerClient(const TimerClient&) = delete;
    TimerClient& operator=(const TimerClient&) = delete;
    // Leaves every group, including groups a StopTimer() would not reach, so no group keeps the address
    // of a destroyed client.
    virtual ~TimerClient();

    // true keeps the client registered, false removes it from the group that called.
    virtual bool OnTimer() = 0;

    void StartTimer(int intervalMs) { TimerManager::Instance().RegisterClient(this, intervalMs); }
    void StartTimer() { StartTimer(TimerManager::Instance().defaultInterval()); }
    // Changes the process-wide default interval: every later StartTimer() of every client uses it;
    // clients already registered keep their groups.
    void SetTimerIntervalMs(int ms) { TimerManager::Instance().SetInterval(ms); }
    void StopTimer() { TimerManager::Instance().UnRegisterClient(this); }
};
