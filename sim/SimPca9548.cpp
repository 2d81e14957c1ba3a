#include "sim/SimPca9548.h"

void SimPca9548::write(uint8_t control)
{
    if (!m_dead && !m_inReset)
        m_control = control;
}

bool SimPca9548::connects(int channel) const
{
    const Stuck stuck = m_stuck.at(static_cast<std::size_t>(channel));
    if (m_dead || stuck == Stuck::Disconnected)
        return false;
    return stuck == Stuck::Connected || ((m_control >> channel) & 1) != 0;
}

void SimPca9548::setResetLevel(bool high)
{
    m_inReset = !high;
    if (m_inReset)
        m_control = 0;
}

void SimPca9548::setStuck(int channel, Stuck stuck)
{
    m_stuck.at(static_cast<std::size_t>(channel)) = stuck;
}
