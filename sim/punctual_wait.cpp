#include "sim/punctual_wait.h"

#include <sys/prctl.h>

#include <thread>

void makeThreadPunctual()
{
    // The default slack is 50 us, half a byte at 100 kHz.
    thread_local const int done = prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);
    static_cast<void>(done);
}

void waitPunctually(SimTime end)
{
    constexpr std::chrono::microseconds wakeUp{45};
    makeThreadPunctual();
    if (end - SimClock::now() > wakeUp)
        std::this_thread::sleep_until(end - wakeUp);
    while (SimClock::now() < end) {
    }
}
