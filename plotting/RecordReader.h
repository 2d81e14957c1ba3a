#pragma once

#include "plotting/stream_faults.h"

#include <QByteArray>
#include <QVector>

#include <functional>

/// Cuts a stream into records of values: bytes in, in pieces of any size, records out. Whatever comes, it
/// holds no more than one record and finds back to the next good one.
class RecordReader
{
public:
    using Sink = std::function<void(const QVector<double> &values)>;

    /// The most values in a record.
    static constexpr int kMaxWidth = 512;

    explicit RecordReader(Sink sink);
    virtual ~RecordReader() = default;
    RecordReader(const RecordReader &) = delete;
    RecordReader &operator=(const RecordReader &) = delete;

    virtual void feed(const QByteArray &bytes) = 0;
    /// The stream has ended: what is left over is half a record.
    virtual void finish() = 0;

    const StreamFaults &faults() const { return m_faults; }

protected:
    /// Hands a record on. One of another width is a fault until some follow each other: then the sender has
    /// changed to another sensor.
    void deliver(const QVector<double> &values);
    /// Values in the records that are handed on; 0 before the first.
    int width() const { return m_width; }

    StreamFaults m_faults;

private:
    bool isNewWidth(int width);

    Sink m_sink;
    int m_width = 0;
    int m_otherWidth = 0; ///< of the last records, if they all differ from m_width
    int m_otherCount = 0;
};
