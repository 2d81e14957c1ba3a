#pragma once

#include <QAbstractEventDispatcher>

#include <functional>
#include <vector>

/// Timers without waiting: time stands still until the test moves it, and then jumps from one timer to the
/// next in the order in which they are due.
class VirtualTime : public QAbstractEventDispatcher
{
    Q_OBJECT

public:
    /// Makes the dispatcher of the application that is made next, which owns it.
    static void install();
    static VirtualTime &current();

    qint64 nowMs() const { return m_nowMs; }
    /// Jumps to the next timer and fires it; false when none is running.
    bool step();
    void advance(int ms);
    /// Steps until the condition holds; false when an hour has passed before.
    bool stepUntil(const std::function<bool()> &condition);

    bool processEvents(QEventLoop::ProcessEventsFlags flags) override;
    bool hasPendingEvents() override { return false; }
    void registerSocketNotifier(QSocketNotifier * /*notifier*/) override {}
    void unregisterSocketNotifier(QSocketNotifier * /*notifier*/) override {}
    void registerTimer(int timerId, int intervalMs, Qt::TimerType type, QObject *object) override;
    bool unregisterTimer(int timerId) override;
    bool unregisterTimers(QObject *object) override;
    QList<TimerInfo> registeredTimers(QObject * /*object*/) const override { return {}; }
    int remainingTime(int /*timerId*/) override { return -1; }
    void wakeUp() override {}
    void interrupt() override {}
    void flush() override {}

private:
    struct Timer
    {
        int id;
        int intervalMs;
        qint64 dueMs;
        QObject *object;
    };

    std::vector<Timer>::iterator nextDue();
    bool removeIf(const std::function<bool(const Timer &)> &condition);

    std::vector<Timer> m_timers; ///< in the order of arming: of two that are due at once the older goes first
    qint64 m_nowMs = 0;
};
