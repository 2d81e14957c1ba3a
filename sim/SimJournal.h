#pragma once

#include "sim/SimClock.h"

#include <QByteArray>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <vector>

/// One event on a line or bus.
struct SimRecord
{
    enum class Kind {
        Poll,       ///< a poll pair of the host (serial line)
        Request,    ///< a request frame of the host (serial line)
        BootLoader, ///< bytes of the host for a boot loader (serial line)
        Rubbish,    ///< bytes of the host that are neither (serial line)
        Sample,     ///< a sample frame as it left a sensor for the host
        Answer,     ///< an answer as it left a sensor for the host
        Write,      ///< bytes written to an I2C address, without the address byte
        Read,       ///< bytes read from an I2C address
        Refused,    ///< an I2C transfer that nobody acknowledged
    };

    Kind kind;
    uint8_t address; ///< of the sensor or chip; 0 for Rubbish and Request
    QByteArray bytes;
    SimTime time;
    uint8_t channels; ///< control byte of the multiplexer at that time (I2C only)
};

/// What came over the wire, newest last. Holds the last `limit` records only. All operations may be called
/// from any thread.
class SimJournal
{
public:
    void add(SimRecord::Kind kind, uint8_t address, const QByteArray &bytes, uint8_t channels = 0);
    void setLimit(std::size_t limit);
    void clear();

    std::vector<SimRecord> records() const;
    std::vector<SimRecord> records(SimRecord::Kind kind) const;
    /// Records of these bytes, in the journal now.
    int count(SimRecord::Kind kind, const QByteArray &bytes) const;
    int count(SimRecord::Kind kind) const;

    /// Blocks until a record that is in the journal or comes fulfils the condition; false after the timeout.
    bool waitFor(const std::function<bool(const SimRecord &)> &condition,
                 std::chrono::milliseconds timeout) const;
    bool waitFor(SimRecord::Kind kind, const QByteArray &bytes, std::chrono::milliseconds timeout) const;

private:
    static constexpr std::size_t kDefaultLimit = 20000;

    mutable std::mutex m_mutex; // guards everything below
    mutable std::condition_variable m_grown;
    std::deque<SimRecord> m_records;
    uint64_t m_dropped = 0;
    std::size_t m_limit = kDefaultLimit;
};
