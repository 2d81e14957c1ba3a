#pragma once

#include <QtGlobal>

#include <functional>

/// While it lives, the signals by which a user or the system ends a program call a function in the event loop
/// instead of ending it at once. Only one may live at a time.
class EndSignals
{
public:
    /// Needs the application object. The function runs in this thread, and only once.
    explicit EndSignals(std::function<void()> whenAsked);
    ~EndSignals();
    Q_DISABLE_COPY(EndSignals)
};
