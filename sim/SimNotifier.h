#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

/// Calls a routine for every arrival and removal, on a thread of its own.
class SimNotifier
{
public:
    using Routine = std::function<void(uint32_t status)>;
    static constexpr uint32_t kRemoved = 0;
    static constexpr uint32_t kArrived = 3;

    SimNotifier();
    ~SimNotifier();
    SimNotifier(const SimNotifier &) = delete;
    SimNotifier &operator=(const SimNotifier &) = delete;

    /// Replaces the routine. When this has returned, the one before neither runs nor will run, unless this was called from
    /// the routine itself.
    void setRoutine(Routine routine);
    /// Events without a routine are lost.
    void notify(uint32_t status);

private:
    void run();

    std::mutex m_mutex; // guards everything but the thread
    std::condition_variable m_changed;
    Routine m_routine;
    std::deque<uint32_t> m_events;
    bool m_running = false;
    bool m_stop = false;
    std::thread m_thread;
};
