#pragma once

#include <chrono>

/// The bench runs in real time, on a clock that nobody sets back.
using SimClock = std::chrono::steady_clock;
using SimTime = SimClock::time_point;

inline double simSeconds(SimTime from, SimTime to)
{
    return std::chrono::duration<double>(to - from).count();
}
