#include "sim/SimCounter.h"

void SimCounter::setRateHz(double hz)
{
    rebase();
    m_rateHz = hz;
}

void SimCounter::setFrozen(bool frozen)
{
    rebase();
    m_frozen = frozen;
}

void SimCounter::restartAt(uint8_t counter)
{
    m_base = counter;
    m_since = SimClock::now();
}

uint8_t SimCounter::now() const
{
    const bool held = m_frozen || m_resting;
    const double moved = held ? 0.0 : simSeconds(m_since, SimClock::now()) * m_rateHz;
    return static_cast<uint8_t>(m_base + static_cast<uint64_t>(moved));
}
