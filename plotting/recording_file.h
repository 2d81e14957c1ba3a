#pragma once

#include "plotting/SampleStore.h"

#include <QStringList>

#include <chrono>
#include <optional>

class QIODevice;

/// Time since 1970, in fractions too.
using RecordingTime = std::chrono::duration<double, std::milli>;

/// A recording as far as it can be drawn.
struct Recording
{
    QStringList columns;              ///< names of the curves
    std::optional<SampleStore> store; ///< empty: the file is no recording, see error
    RecordingTime start{0};           ///< of the first row; the store's times are seconds from then
    quint64 rows = 0;                 ///< that were read; the store may hold only the last of them
    quint64 refused = 0;              ///< lines that are no rows
    QString error;                    ///< what is wrong with the file, as the end of a sentence
};

/// Reads either kind: a recording of the panel, whose heading row has one field less than the others, or a
/// table with a heading for each column of which the first is "time_ms". A line that is cut, too long or of
/// another width is left out.
Recording readRecording(QIODevice &device);
