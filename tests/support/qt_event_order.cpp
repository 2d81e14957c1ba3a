// Linked into the tests of the thread sanitizer build only. Qt is not built with the sanitizer, which
// therefore sees neither the lock of an event queue nor what a queued signal hands over, and takes every
// argument for a race. Two hooks of Qt tell it: whatever a thread did before it emitted a signal comes before
// what another thread does once a queued call reaches it.

#include "soak/signal_hooks.h"

#include <QEvent>
#include <QObject>

#include <sanitizer/tsan_interface.h>

namespace {

char handOver = 0;

void beforeSignal(QObject * /*caller*/, int /*index*/, void ** /*arguments*/)
{
    __tsan_release(&handOver);
}

/// For the copies of the arguments, which Qt makes after the hook for the beginning.
void afterSignal(QObject * /*caller*/, int /*index*/)
{
    __tsan_release(&handOver);
}

/// Called with the receiver, the event and room for a result, before the event is delivered.
bool beforeEvent(void **data)
{
    // Only calls that come from a signal: events of the thread's own order nothing.
    if (static_cast<const QEvent *>(data[1])->type() == QEvent::MetaCall)
        __tsan_acquire(&handOver);
    return false;
}

const bool installed = [] {
    static QSignalSpyCallbackSet callbacks{beforeSignal, nullptr, afterSignal, nullptr};
    qt_register_signal_spy_callbacks(&callbacks);
    return QInternal::registerCallback(QInternal::EventNotifyCallback, beforeEvent);
}();

} // namespace
