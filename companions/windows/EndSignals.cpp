#include "companions/EndSignals.h"

#include <QCoreApplication>

#include <utility>
#include <windows.h>

namespace {

std::function<void()> whenAskedToEnd;

// Runs on a thread of the system.
BOOL WINAPI onControl(DWORD)
{
    return QMetaObject::invokeMethod(
        qApp, [] { std::exchange(whenAskedToEnd, [] {})(); }, Qt::QueuedConnection);
}

} // namespace

EndSignals::EndSignals(std::function<void()> whenAsked)
{
    whenAskedToEnd = std::move(whenAsked);
    SetConsoleCtrlHandler(onControl, TRUE);
}

EndSignals::~EndSignals()
{
    SetConsoleCtrlHandler(onControl, FALSE);
}
