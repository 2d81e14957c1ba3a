#pragma once

#include "engine/Outcome.h"

#include <QByteArray>

#include <chrono>
#include <cstdint>
#include <functional>

class SensorLink;

/// How the steps of the worker wait. A test puts its own time in.
struct Waits
{
    std::function<void(std::chrono::milliseconds)> sleep;
    std::function<void()> deliverEvents;
};

/// Those of the calling thread.
Waits realWaits();

/// What the steps of the worker share: the link, the choice of a multiplexer channel, the waits for bytes,
/// and the news that the tick they belong to is void. Used in the thread of the link.
class SensorBus
{
public:
    /// Where in a pass of a serial wait the millisecond of sleep lies.
    enum class SleepOrder { BeforeTaking, AfterTaking };

    struct Collected
    {
        Outcome outcome;
        int pass; ///< in which there were enough bytes, from 1 on; 0 when that never was
    };

    explicit SensorBus(SensorLink &link, Waits waits = realWaits());

    bool isSerial() const;
    /// Whether channels are to be selected. True until a probe says otherwise.
    bool hasMultiplexer() const { return m_pcaFind; }
    void setPcaState(uint8_t mask);
    void probeMultiplexer();

    int write(uint8_t address, const QByteArray &frame);
    /// From a bridge; a serial line gives nothing.
    int read(uint8_t address, uint8_t *buffer, int length);
    /// The two bytes that make a sensor on a serial line send a sample.
    void poll(uint8_t address);
    /// Waits on a serial line until `received` holds enough bytes from the first sync byte on. Delivers
    /// events meanwhile.
    Collected collect(QByteArray &received, int enough, int passes,
                      SleepOrder order = SleepOrder::BeforeTaking);
    void sleep(std::chrono::milliseconds duration) const { m_waits.sleep(duration); }

    /// From here to the next call everything is one tick, which invalidate() makes void.
    void beginTick() { m_tickIsVoid = false; }
    void invalidate() { m_tickIsVoid = true; }

private:
    SensorLink &m_link;
    Waits m_waits;
    bool m_pcaFind = true;
    bool m_tickIsVoid = false;
};
