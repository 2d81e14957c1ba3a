#pragma once

#include "soak/vitals.h"

#include <QString>

#include <chrono>
#include <vector>

struct SoakCounts;

/// What a soak has found, beside the counts.
struct SoakReport
{
    QString link;
    std::chrono::seconds duration{0};
    /// At the start, after two minutes, at half time and at the end, each time with everything let go.
    std::vector<Vitals> vitals;
    int pulls = 0;
    int disksFilled = 0;
    qint64 sent = 0; ///< records that the TCP peer read whole
    qint64 torn = 0;
    int resets = 0;
    std::chrono::milliseconds stall{0};
    QString stallAfter; ///< the line of the log before the longest stall
    std::chrono::milliseconds stallByRule{0};
    std::chrono::milliseconds stallOfMachine{0};

    /// Prints a table and what is wrong with it; false when something is.
    bool print(const SoakCounts &counts) const;
};
