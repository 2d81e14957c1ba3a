#include "sim/SimNotifier.h"

#include <utility>

namespace {
thread_local const SimNotifier::Devices *toldDevices = nullptr;
}

SimNotifier::SimNotifier()
    : m_thread([this] { run(); })
{}

SimNotifier::~SimNotifier()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void SimNotifier::setRoutine(Routine routine)
{
    std::unique_lock lock(m_mutex);
    m_routine = std::move(routine);
    m_events.clear();
    if (std::this_thread::get_id() != m_thread.get_id())
        m_changed.wait(lock, [this] { return !m_running; });
}

const SimNotifier::Devices *SimNotifier::devicesAtEvent()
{
    return toldDevices;
}

void SimNotifier::notify(uint32_t status, const Devices &devices)
{
    const std::lock_guard lock(m_mutex);
    if (!m_routine)
        return;
    m_events.push_back({status, devices});
    m_changed.notify_all();
}

void SimNotifier::run()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_stop || !m_events.empty(); });
        if (m_stop)
            return;
        Event event = std::move(m_events.front());
        m_events.pop_front();
        const Routine routine = m_routine;
        m_running = true;
        lock.unlock();
        toldDevices = &event.devices;
        routine(event.status);
        toldDevices = nullptr;
        event.devices.clear();
        lock.lock();
        m_running = false;
        m_changed.notify_all();
    }
}
