#include "soak/soak_report.h"

#include "soak/Ledger.h"

#include <QStringList>

#include <cstdio>

using namespace std::chrono_literals;

namespace {

constexpr qint64 kGrowthKiB = 2048;
constexpr auto kStallLimit = 100ms;
/// What a file dialog, a cut connection or a line that has just been closed may still hold.
constexpr int kHandlesMore = 8;
constexpr int kThreadsMore = 2;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kCostCounts = false; // it keeps freed memory for a while, and is slow
#else
constexpr bool kCostCounts = true;
#endif

void row(const char *what, const QString &value)
{
    std::printf("  %-50s %s\n", what, qUtf8Printable(value));
}

void row(const char *what, qint64 value)
{
    row(what, QString::number(value));
}

/// One of the numbers of all weighings.
QString course(const std::vector<Vitals> &vitals, qint64 (*number)(const Vitals &))
{
    QStringList numbers;
    for (const Vitals &each : vitals)
        numbers += QString::number(number(each));
    return numbers.join(QStringLiteral(", "));
}

} // namespace

bool SoakReport::print(const SoakCounts &counts) const
{
    std::printf("%s, %lld s:\n", qUtf8Printable(link), static_cast<long long>(duration.count()));
    row("samples made by known sensors", counts.made);
    row("samples taken by the worker", counts.arrived);
    row("samples delivered to panels", counts.delivered);
    row("  of these to be recorded", counts.wanted);
    row("  recorded", counts.recorded);
    row("  not recorded, as the log says", counts.toldLost);
    row("records that the TCP peer read", sent);
    row("commands asked", counts.asked);
    row("  answered", counts.answered);
    row("  failed by rule", counts.failed);
    row("cables pulled, disks filled, peers reset",
        QStringLiteral("%1, %2, %3").arg(pulls).arg(disksFilled).arg(resets));
    row("longest stall of the window",
        QStringLiteral("%1 ms (after \"%2\")").arg(stall.count()).arg(stallAfter));
    row("  where a rule makes it wait", QStringLiteral("%1 ms").arg(stallByRule.count()));
    row("  of a bare thread beside it", QStringLiteral("%1 ms").arg(stallOfMachine.count()));
    // By half time all kinds of panels, lists and letters have been drawn once, and what is kept is there.
    const Vitals early = vitals.size() > 2 ? vitals.at(2) : Vitals();
    const Vitals late = vitals.empty() ? Vitals() : vitals.back();
    row("memory in use at start, after 2 min, half, end",
        course(vitals, [](const Vitals &each) { return each.memoryKiB; }) + QStringLiteral(" KiB"));
    row("  with the program and what cannot be given back",
        course(vitals, [](const Vitals &each) { return each.residentKiB; }) + QStringLiteral(" KiB"));
    row("file handles", course(vitals, [](const Vitals &each) { return qint64{each.handles}; }));
    row("threads", course(vitals, [](const Vitals &each) { return qint64{each.threads}; }));

    QStringList faults;
    if (counts.recorded + counts.toldLost != counts.wanted)
        faults += QStringLiteral("%1 samples are not recorded and nothing says so")
                      .arg(counts.wanted - counts.recorded - counts.toldLost);
    if (counts.broken > 0)
        faults +=
            QStringLiteral("%1 recorded lines are broken; %2").arg(counts.broken).arg(counts.firstBroken);
    if (torn > 0)
        faults += QStringLiteral("%1 torn TCP records").arg(torn);
    if (kCostCounts && late.memoryKiB - early.memoryKiB > kGrowthKiB)
        faults += QStringLiteral("memory has grown by %1 KiB").arg(late.memoryKiB - early.memoryKiB);
    if (kCostCounts && stall > kStallLimit + stallOfMachine)
        faults += QStringLiteral("the window stood still for %1 ms").arg(stall.count());
    if (late.handles > early.handles + kHandlesMore || late.threads > early.threads + kThreadsMore)
        faults += QStringLiteral("handles or threads are left");
    if (counts.delivered == 0)
        faults += QStringLiteral("no sample has come");
    for (const QString &fault : qAsConst(faults))
        std::printf("  FAILED: %s\n", qUtf8Printable(fault));
    std::fflush(stdout);
    return faults.isEmpty();
}
