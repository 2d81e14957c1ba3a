#pragma once

#include <QtCore/qglobal.h>

class QObject;

/// Hooks of QtCore for tools that watch signals; exported, but declared in no public header. Called in the
/// thread that emits; signals are numbered without the other methods.
struct QSignalSpyCallbackSet
{
    using BeginCallback = void (*)(QObject *caller, int signalOrMethodIndex, void **arguments);
    using EndCallback = void (*)(QObject *caller, int signalOrMethodIndex);
    BeginCallback signalBegin;
    BeginCallback slotBegin;
    EndCallback signalEnd;
    EndCallback slotEnd;
};
void Q_CORE_EXPORT qt_register_signal_spy_callbacks(QSignalSpyCallbackSet *callbacks);
