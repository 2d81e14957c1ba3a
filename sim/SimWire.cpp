#include "sim/SimWire.h"

#include <algorithm>

namespace {

constexpr int kBurst = 16;

} // namespace

void SimWire::schedule(const QByteArray &bytes, SimTime start)
{
    const auto later =
        std::upper_bound(m_pending.begin(), m_pending.end(), start,
                         [](SimTime time, const Pending &pending) { return time < pending.start; });
    m_pending.insert(later, {bytes, start});
}

QByteArray SimWire::takeDue(SimTime now)
{
    startDue(now);
    int count = m_sending.size();
    if (m_byteTime.count() > 0) {
        const auto whole = (now - m_sendingSince) / m_byteTime;
        if (whole < count)
            count = static_cast<int>(whole) / kBurst * kBurst;
    }
    QByteArray bytes = m_sending.left(count);
    m_sending.remove(0, count);
    m_sendingSince += count * m_byteTime;
    return bytes;
}

std::optional<SimTime> SimWire::nextDue() const
{
    if (!m_sending.isEmpty())
        return m_sendingSince + std::min(kBurst, m_sending.size()) * m_byteTime;
    if (!m_pending.empty())
        return m_pending.front().start;
    return std::nullopt;
}

void SimWire::clear()
{
    m_pending.clear();
    m_sending.clear();
}

void SimWire::startDue(SimTime now)
{
    while (!m_pending.empty() && m_pending.front().start <= now) {
        if (m_sending.isEmpty())
            m_sendingSince = std::max(m_sendingSince, m_pending.front().start);
        m_sending += m_pending.front().bytes;
        m_pending.erase(m_pending.begin());
    }
}
