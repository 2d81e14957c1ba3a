#include "sim/SimJournal.h"

#include <algorithm>
#include <iterator>

void SimJournal::add(SimRecord::Kind kind, uint8_t address, const QByteArray &bytes, uint8_t channels)
{
    const std::lock_guard lock(m_mutex);
    m_records.push_back({kind, address, bytes, SimClock::now(), channels});
    while (m_records.size() > m_limit) {
        m_records.pop_front();
        ++m_dropped;
    }
    m_grown.notify_all();
}

void SimJournal::setLimit(std::size_t limit)
{
    const std::lock_guard lock(m_mutex);
    m_limit = limit;
}

void SimJournal::clear()
{
    const std::lock_guard lock(m_mutex);
    m_dropped += m_records.size();
    m_records.clear();
}

std::vector<SimRecord> SimJournal::records() const
{
    const std::lock_guard lock(m_mutex);
    return {m_records.begin(), m_records.end()};
}

std::vector<SimRecord> SimJournal::records(SimRecord::Kind kind) const
{
    const std::lock_guard lock(m_mutex);
    std::vector<SimRecord> found;
    std::copy_if(m_records.begin(), m_records.end(), std::back_inserter(found),
                 [kind](const SimRecord &record) { return record.kind == kind; });
    return found;
}

int SimJournal::count(SimRecord::Kind kind, const QByteArray &bytes) const
{
    const std::lock_guard lock(m_mutex);
    return static_cast<int>(
        std::count_if(m_records.begin(), m_records.end(), [kind, &bytes](const SimRecord &record) {
            return record.kind == kind && record.bytes == bytes;
        }));
}

int SimJournal::count(SimRecord::Kind kind) const
{
    const std::lock_guard lock(m_mutex);
    return static_cast<int>(std::count_if(m_records.begin(), m_records.end(),
                                          [kind](const SimRecord &record) { return record.kind == kind; }));
}

bool SimJournal::waitFor(const std::function<bool(const SimRecord &)> &condition,
                         std::chrono::milliseconds timeout) const
{
    const SimTime end = SimClock::now() + timeout;
    uint64_t seen = 0;
    std::unique_lock lock(m_mutex);
    for (;;) {
        const uint64_t first = std::max(seen, m_dropped);
        const auto begin = m_records.begin() + static_cast<std::ptrdiff_t>(first - m_dropped);
        if (std::any_of(begin, m_records.end(), condition))
            return true;
        seen = m_dropped + m_records.size();
        if (SimClock::now() >= end)
            return false;
        m_grown.wait_until(lock, end);
    }
}

bool SimJournal::waitFor(SimRecord::Kind kind, const QByteArray &bytes,
                         std::chrono::milliseconds timeout) const
{
    return waitFor([&](const SimRecord &record) { return record.kind == kind && record.bytes == bytes; },
                   timeout);
}
