#pragma once

#include <QString>
#include <QStringList>

#include <atomic>
#include <cstdint>

/// What a soak has counted so far.
struct SoakCounts
{
    std::atomic<qint64> made{0}; ///< samples that the sensors made, by their counters, while they were known
    std::atomic<qint64> arrived{0};   ///< of those, the ones that the worker took
    std::atomic<qint64> delivered{0}; ///< samples that a panel was given
    std::atomic<qint64> wanted{0};    ///< of those, the ones that were to be recorded
    std::atomic<qint64> toldLost{0};  ///< samples that the log says could not be recorded
    std::atomic<qint64> asked{0};     ///< commands of the panels
    std::atomic<qint64> answered{0};
    std::atomic<qint64> failed{0};
    qint64 recorded = 0; ///< lines in the recordings, headings left out
    qint64 broken = 0;   ///< lines that are none
    QString firstBroken;
};

/// Keeps the books of a soak: watches the signals between worker and panels, reads the recordings, hears the
/// log. One a process; the counting begins with it.
class Ledger
{
public:
    Ledger();
    Ledger(const Ledger &) = delete;
    Ledger &operator=(const Ledger &) = delete;

    const SoakCounts &counts() const { return m_counts; }
    /// Counts the lines of all recordings and removes them. In the thread of the panels, between two samples.
    void takeRecordings();

    /// Counts one line of the log.
    void hear(const QString &line);

private:
    void take(const QString &path);

    SoakCounts m_counts;
};
