#include "tests/update/VirtualTime.h"

#include <QCoreApplication>
#include <QTimerEvent>

#include <algorithm>

void VirtualTime::install()
{
    QCoreApplication::setEventDispatcher(new VirtualTime);
}

VirtualTime &VirtualTime::current()
{
    return *qobject_cast<VirtualTime *>(QAbstractEventDispatcher::instance());
}

bool VirtualTime::step()
{
    const auto next = nextDue();
    if (next == m_timers.end())
        return false;
    m_nowMs = std::max(m_nowMs, next->dueMs);
    next->dueMs = m_nowMs + next->intervalMs;
    std::rotate(next, next + 1, m_timers.end());
    QTimerEvent event(m_timers.back().id);
    QCoreApplication::sendEvent(m_timers.back().object, &event);
    QCoreApplication::sendPostedEvents();
    return true;
}

void VirtualTime::advance(int ms)
{
    const qint64 untilMs = m_nowMs + ms;
    for (auto next = nextDue(); next != m_timers.end() && next->dueMs <= untilMs; next = nextDue())
        step();
    m_nowMs = untilMs;
}

bool VirtualTime::stepUntil(const std::function<bool()> &condition)
{
    const qint64 untilMs = m_nowMs + 3600000;
    while (!condition()) {
        if (m_nowMs > untilMs || !step())
            return false;
    }
    return true;
}

std::vector<VirtualTime::Timer>::iterator VirtualTime::nextDue()
{
    return std::min_element(m_timers.begin(), m_timers.end(),
                            [](const Timer &a, const Timer &b) { return a.dueMs < b.dueMs; });
}

bool VirtualTime::removeIf(const std::function<bool(const Timer &)> &condition)
{
    const auto rest = std::remove_if(m_timers.begin(), m_timers.end(), condition);
    const bool any = rest != m_timers.end();
    m_timers.erase(rest, m_timers.end());
    return any;
}

bool VirtualTime::processEvents(QEventLoop::ProcessEventsFlags /*flags*/)
{
    QCoreApplication::sendPostedEvents();
    return false;
}

void VirtualTime::registerTimer(int timerId, int intervalMs, Qt::TimerType /*type*/, QObject *object)
{
    m_timers.push_back({timerId, intervalMs, m_nowMs + intervalMs, object});
}

bool VirtualTime::unregisterTimer(int timerId)
{
    return removeIf([timerId](const Timer &timer) { return timer.id == timerId; });
}

bool VirtualTime::unregisterTimers(QObject *object)
{
    return removeIf([object](const Timer &timer) { return timer.object == object; });
}
