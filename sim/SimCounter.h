#pragma once

#include "sim/SimClock.h"

#include <cstdint>

/// The frame counter of a sensor: a number that runs with the time.
class SimCounter
{
public:
    double rateHz() const { return m_rateHz; }
    void setRateHz(double hz);
    /// While it is frozen or rests it stands still, but for step().
    void setFrozen(bool frozen);
    void setResting(bool resting) { m_resting = resting; }
    void step(int samples) { m_base = static_cast<uint8_t>(m_base + samples); }
    void restartAt(uint8_t counter);
    /// Counts on from the present number and time.
    void rebase() { restartAt(now()); }
    uint8_t now() const;

private:
    double m_rateHz = 200.0;
    uint8_t m_base = 0;
    SimTime m_since = SimClock::now();
    bool m_frozen = false;
    bool m_resting = false;
};
