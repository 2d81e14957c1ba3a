#pragma once

#include "plotting/stream_faults.h"

#include <QString>

/// What is wrong with a stream, for the status bar; empty if nothing is.
QString faultText(const StreamFaults &faults);
