#pragma once

#include "plotting/RecordReader.h"

#include <memory>

enum class StreamFormat { Automatic, FireWater, JustFloat };

/// Reads a stream of either format. Automatic tells them by the first bytes: text that reads as a line of
/// numbers is FireWater, and JustFloat is known by the first byte that no text holds, at the latest by its
/// first end mark.
class StreamReader
{
public:
    StreamReader(StreamFormat format, RecordReader::Sink sink);

    void feed(const QByteArray &bytes);
    void finish();

    /// Automatic as long as it is not known.
    StreamFormat format() const { return m_format; }
    StreamFaults faults() const;

private:
    void settle(StreamFormat format);
    StreamFormat recognised();

    StreamFormat m_format;
    RecordReader::Sink m_sink;
    QByteArray m_undecided;
    int m_seen = 0;   ///< bytes of it that tell nothing
    int m_lineAt = 0; ///< where the last line in them begins
    std::unique_ptr<RecordReader> m_reader;
};
