#include "soak/soak_report.h"

#include "soak/Ledger.h"

#include <QStringList>

#include <algorithm>
#include <cstdio>

using namespace std::chrono_literals;

namespace {

constexpr qint64 kGrowthKiB = 2048;
constexpr auto kStallLimit = 100ms;
constexpr int kHandlesMore = 2;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kCostCounts = false; // it keeps freed memory for a while, and is slow
#else
constexpr bool kCostCounts = true;
#endif

void row(const char *what, const QString &value)
{
    std::printf("  %-44s %s\n", what, qUtf8Printable(value));
}

void row(const char *what, qint64 value)
{
    row(what, QString::number(value));
}

/// The least memory from one share of the run to another: what panels come and go with is left out.
qint64 leastMemory(const std::vector<Vitals> &vitals, double from, double to)
{
    const auto at = [&vitals](double share) {
        return vitals.begin() + static_cast<long>(share * static_cast<double>(vitals.size()));
    };
    if (at(from) == at(to))
        return 0;
    return std::min_element(at(from), at(to),
                            [](const Vitals &a, const Vitals &b) { return a.memoryKiB < b.memoryKiB; })
        ->memoryKiB;
}

} // namespace

bool SoakReport::print(const SoakCounts &counts) const
{
    const double minute = std::min(1.0, 60.0 / static_cast<double>(duration.count()));
    const qint64 early = leastMemory(vitals, minute, std::min(1.0, minute * 3));
    const qint64 half = leastMemory(vitals, 0.4, 0.6);
    const qint64 late = leastMemory(vitals, 1.0 - std::min(0.5, 2 * minute), 1.0);
    const Vitals first = vitals.empty() ? Vitals() : vitals.front();

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
    row("memory at start, early, half, late",
        QStringLiteral("%1, %2, %3, %4 KiB").arg(first.memoryKiB).arg(early).arg(half).arg(late));
    row("file handles at start and end", QStringLiteral("%1, %2").arg(first.handles).arg(last.handles));
    row("threads at start and end", QStringLiteral("%1, %2").arg(first.threads).arg(last.threads));

    QStringList faults;
    if (counts.recorded + counts.toldLost != counts.wanted)
        faults += QStringLiteral("%1 samples are not recorded and nothing says so")
                      .arg(counts.wanted - counts.recorded - counts.toldLost);
    if (counts.broken > 0)
        faults +=
            QStringLiteral("%1 recorded lines are broken; %2").arg(counts.broken).arg(counts.firstBroken);
    if (torn > 0)
        faults += QStringLiteral("%1 torn TCP records").arg(torn);
    if (kCostCounts && early > 0 && late - early > kGrowthKiB)
        faults += QStringLiteral("memory has grown by %1 KiB").arg(late - early);
    if (kCostCounts && stall > kStallLimit + stallOfMachine)
        faults += QStringLiteral("the window stood still for %1 ms").arg(stall.count());
    if (last.handles > first.handles + kHandlesMore || last.threads > first.threads + kHandlesMore)
        faults += QStringLiteral("handles or threads are left");
    if (counts.delivered == 0)
        faults += QStringLiteral("no sample has come");
    for (const QString &fault : qAsConst(faults))
        std::printf("  FAILED: %s\n", qUtf8Printable(fault));
    std::fflush(stdout);
    return faults.isEmpty();
}
