#include "soak/vitals.h"

#include <QDir>
#include <QFile>
#include <QPixmapCache>

#include <malloc.h>
#include <unistd.h>

namespace {

int entriesOf(const QString &folder)
{
    return static_cast<int>(
        QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size());
}

} // namespace

Vitals takeVitals()
{
    QPixmapCache::clear();
    ::malloc_trim(0);
    QFile pages(QStringLiteral("/proc/self/statm"));
    Vitals vitals;
    const auto heap = ::mallinfo2();
    vitals.memoryKiB = static_cast<qint64>((heap.uordblks + heap.hblkhd) / 1024);
    if (pages.open(QIODevice::ReadOnly))
        vitals.residentKiB =
            pages.readAll().split(' ').value(1).toLongLong() * ::sysconf(_SC_PAGESIZE) / 1024;
    // The list is read through a handle that is in it.
    vitals.handles = entriesOf(QStringLiteral("/proc/self/fd")) - 1;
    vitals.threads = entriesOf(QStringLiteral("/proc/self/task"));
    return vitals;
}
