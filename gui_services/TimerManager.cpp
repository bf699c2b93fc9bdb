#include "TimerManager.h"

#include <algorithm>

#include "HostBoundary.h"

// ---- se_sdk_timers::Timer

namespace se_sdk_timers {

void Timer::Start() {
    Stop();
    if (clients_.empty())
        return;
    handle_ = manager_.backend().create(interval_, this);
}

void Timer::Stop() {
    if (!handle_)
        return;
    void* handle = handle_;
    handle_ = nullptr;
    manager_.backend().destroy(handle);
}

bool Timer::contains(const TimerClient* client) const {
    return std::find(clients_.begin(), clients_.end(), client) != clients_.end();
}

void Timer::OnTimer() {
    // Clients may start, stop or destroy themselves and each other from inside OnTimer(): the snapshot
    // fixes who is called this tick, the membership test skips whoever left meanwhile. Until someone
    // leaves, everyone in the snapshot is still registered, so the test (a search of the group) is
    // needed only after a removal; a tick of a large group stays linear while no client leaves.
    const std::vector<TimerClient*> snapshot = clients_;
    uint64_t removalsSeen = removals_;
    for (TimerClient* client : snapshot) {
        if (removals_ != removalsSeen && !contains(client))
            continue;
        const bool keep = client->OnTimer();
        if (retired_)
            return;
        if (!keep) {
            std::erase(clients_, client);
            // Leaving after its own turn changes nothing for the rest of this tick; a tick further out
            // (through a nested run loop) must still learn of it.
            if (removals_++ == removalsSeen)
                ++removalsSeen;
        }
    }
    if (clients_.empty())
        Stop();
}

}  // namespace se_sdk_timers

// ---- TimerManager

TimerManager& TimerManager::Instance() {
    static TimerManager manager;
    return manager;
}

// The platform backend is a static of its own, constructed before the manager and so destroyed after it:
// the manager's destructor still removes its timers through it.
TimerManager::TimerManager() : backend_(&kx::platformTimerBackend()) {}

TimerManager::~TimerManager() {
    for (auto& group : groups_)
        group.Stop();
    for (auto& group : retired_)
        group.Stop();
}

void TimerManager::RegisterClient(TimerClient* client, int intervalMs) {
    auto group = std::find_if(groups_.begin(), groups_.end(),
                              [&](const se_sdk_timers::Timer& g) { return g.interval() == intervalMs; });
    if (group != groups_.end()) {
        if (group->contains(client))
            return;
        group->clients_.push_back(client);
        if (!group->isRunning())
            group->Start();
        return;
    }
    auto& created = groups_.emplace_back(*this, intervalMs);
    created.clients_.push_back(client);
    created.Start();
}

void TimerManager::UnRegisterClient(TimerClient* client) {
    auto group =
        std::find_if(groups_.begin(), groups_.end(), [&](const se_sdk_timers::Timer& g) { return g.contains(client); });
    if (group == groups_.end())
        return;
    auto& clients = group->clients_;
    clients.erase(std::find(clients.begin(), clients.end(), client));
    ++group->removals_;
    if (!clients.empty())
        return;
    group->Stop();
    if (tickDepth_ == 0) {
        groups_.erase(group);
        return;
    }
    group->retired_ = true;
    retired_.splice(retired_.end(), groups_, group);
}

void TimerManager::OnTimer(void* handle) noexcept {
    if (!handle)
        return;
    auto group = std::find_if(groups_.begin(), groups_.end(),
                              [&](const se_sdk_timers::Timer& g) { return g.handle_ == handle; });
    if (group == groups_.end())
        return;
    ++tickDepth_;
    // A client that throws ends this tick; the group keeps its clients and its rhythm.
    kx::guarded([&] { group->OnTimer(); });
    if (--tickDepth_ == 0)
        retired_.clear();
}

TimerManager::Census TimerManager::census() const {
    Census c;
    for (const auto& group : groups_) {
        ++c.groups;
        c.runningGroups += group.isRunning() ? 1 : 0;
        c.registrations += static_cast<int>(group.clients().size());
    }
    return c;
}

bool TimerManager::isRegistered(const TimerClient* client) const {
    return std::any_of(groups_.begin(), groups_.end(),
                       [&](const se_sdk_timers::Timer& g) { return g.contains(client); });
}

kx::TimerBackend& TimerManager::setBackend(kx::TimerBackend& backend) {
    kx::TimerBackend& previous = *backend_;
    std::vector<se_sdk_timers::Timer*> moved;
    for (auto& group : groups_) {
        if (group.isRunning()) {
            group.Stop();
            moved.push_back(&group);
        }
    }
    backend_ = &backend;
    for (auto* group : moved)
        group->Start();
    return previous;
}

// ---- TimerClient

TimerClient::~TimerClient() {
    TimerManager& manager = TimerManager::Instance();
    while (manager.isRegistered(this))
        manager.UnRegisterClient(this);
}
