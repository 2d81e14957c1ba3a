#pragma once

#include "sim/SimClock.h"

#include <QByteArray>

#include <chrono>
#include <optional>
#include <vector>

/// The sensors' half of a serial line: bytes come out no faster than the baud rate lets them.
class SimWire
{
public:
    /// 0 means that bytes take no time.
    void setByteTime(std::chrono::nanoseconds byteTime) { m_byteTime = byteTime; }
    std::chrono::nanoseconds byteTime() const { return m_byteTime; }

    /// Sends bytes from that time on, or when the line is free.
    void schedule(const QByteArray &bytes, SimTime start);
    /// Bytes that have come through whole. They are handed over in bursts, as the buffers of serial adapters
    /// do.
    QByteArray takeDue(SimTime now);
    /// When takeDue() will have something.
    std::optional<SimTime> nextDue() const;
    void clear();

private:
    struct Pending
    {
        QByteArray bytes;
        SimTime start;
    };

    void startDue(SimTime now);

    std::chrono::nanoseconds m_byteTime{0};
    std::vector<Pending> m_pending; // by time of start
    QByteArray m_sending;
    SimTime m_sendingSince; // when the first byte of m_sending began
};
