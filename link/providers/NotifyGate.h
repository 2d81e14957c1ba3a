#pragma once

#include "link/providers/vendor_call.h"

#include <cstdint>
#include <mutex>

/// Stands between the thread on which a provider hears of arrivals and removals and the routine that its user
/// has registered. After set() has returned, the routine that was there before neither runs nor will run,
/// unless set() was called from that routine itself.
class NotifyGate
{
public:
    using Routine = void(TACTILE_VENDOR_CALL *)(uint32_t status);

    /// Null for no routine.
    void set(Routine routine)
    {
        const std::lock_guard<std::recursive_mutex> lock(m_mutex);
        m_routine = routine;
    }

    void notify(uint32_t status)
    {
        const std::lock_guard<std::recursive_mutex> lock(m_mutex);
        if (m_routine != nullptr)
            m_routine(status);
    }

private:
    std::recursive_mutex m_mutex; // guards m_routine, and is held while the routine runs
    Routine m_routine = nullptr;
};
