#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

class SimUsbDevice;

/// Calls a routine for every arrival and removal, on a thread of its own.
class SimNotifier
{
public:
    using Routine = std::function<void(uint32_t status)>;
    using Devices = std::vector<std::shared_ptr<SimUsbDevice>>;
    static constexpr uint32_t kRemoved = 0;
    static constexpr uint32_t kArrived = 3;

    SimNotifier();
    ~SimNotifier();
    SimNotifier(const SimNotifier &) = delete;
    SimNotifier &operator=(const SimNotifier &) = delete;

    /// Replaces the routine. When this has returned, the one before neither runs nor will run, unless this
    /// was called from the routine itself.
    void setRoutine(Routine routine);
    /// `devices` is what is plugged in after the event. Events without a routine are lost.
    void notify(uint32_t status, const Devices &devices);
    /// What was plugged in at the event of which the calling thread is being told; null outside the routine.
    static const Devices *devicesAtEvent();

private:
    struct Event
    {
        uint32_t status;
        Devices devices;
    };

    void run();

    std::mutex m_mutex; // guards everything but the thread
    std::condition_variable m_changed;
    Routine m_routine;
    std::deque<Event> m_events;
    bool m_running = false;
    bool m_stop = false;
    std::thread m_thread;
};
