#pragma once

#include <QtGlobal>

/// What a stream held besides good records, counted by reason.
struct StreamFaults
{
    quint64 notNumbers = 0; ///< lines with a field that is no number
    quint64 tooLong = 0;    ///< records without an end, or with more values than anyone sends
    quint64 otherWidth = 0; ///< records with more or fewer values than those around them
    quint64 cut = 0;        ///< records of which a part is missing
    quint64 gaps = 0;       ///< values that are infinite or not a number, in records that stand

    quint64 refused() const { return notNumbers + tooLong + otherWidth + cut; }
};
