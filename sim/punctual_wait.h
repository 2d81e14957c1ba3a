#pragma once

#include "sim/SimClock.h"

/// Lets the waits of the calling thread end when they should rather than when it suits the system.
void makeThreadPunctual();

/// Waits until that time to a few microseconds. Sleeps for most of it and waits actively at the end, for a
/// sleep alone would add its wake-up time to every transfer.
void waitPunctually(SimTime end);
