#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <pthread.h>
#include <thread>

/// Watches how long the event loop of the window stands still, beside a bare thread of the same machine.
///
/// Some acts make the window wait by rule: the end of a worker, a link that opens, a TCP peer that does not
/// answer. They are known by their log lines, and a stall in which one was heard is kept apart. For any other
/// that is too long the standard error says where the window stands; addr2line makes lines of it.
class LoopWatch
{
public:
    LoopWatch();
    ~LoopWatch();
    LoopWatch(const LoopWatch &) = delete;
    LoopWatch &operator=(const LoopWatch &) = delete;

    /// Watches the loop of this thread as long as the object lives.
    void watchFor(QObject *object);
    /// A line of the log, from any thread.
    void hear(const QString &line);

    std::chrono::milliseconds longest() const { return m_longest; }
    QString longestAfter() const { return m_longestAfter; }
    std::chrono::milliseconds longestByRule() const { return m_longestByRule; }
    std::chrono::milliseconds longestOfMachine() const
    {
        return std::chrono::milliseconds(m_longestOfMachine);
    }

private:
    using Clock = std::chrono::steady_clock;

    void tick();
    void watchMachine();

    const std::thread::id m_owner = std::this_thread::get_id();
    const pthread_t m_ownerThread = ::pthread_self();
    std::atomic<Clock::rep> m_last{0};
    std::atomic<bool> m_ruleHeard{false};
    QString m_lastHeard;
    std::chrono::milliseconds m_longest{0};
    QString m_longestAfter;
    std::chrono::milliseconds m_longestByRule{0};
    std::atomic<std::chrono::milliseconds::rep> m_longestOfMachine{0};
    std::atomic<bool> m_ended{false};
    std::thread m_machine;
};
