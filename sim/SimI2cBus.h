#pragma once

#include "sim/SimJournal.h"
#include "sim/SimPca9548.h"
#include "sim/SimSensor.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

/// A two-wire bus behind one bridge, with a multiplexer or without, and sensors on it. All operations may be
/// called from any thread; transfers come from one bridge only.
class SimI2cBus
{
public:
    enum class Multiplexer { Absent, Present };
    /// Place of a sensor that hangs on the bus itself, not behind the multiplexer.
    static constexpr int kTrunk = -1;

    explicit SimI2cBus(Multiplexer multiplexer = Multiplexer::Present);
    SimI2cBus(const SimI2cBus &) = delete;
    SimI2cBus &operator=(const SimI2cBus &) = delete;

    /// Plugs a sensor in on a channel of the multiplexer or on the trunk, which powers it up.
    void plug(const std::shared_ptr<SimSensor> &sensor, int channel = kTrunk);
    void unplug(const std::shared_ptr<SimSensor> &sensor);

    /// Control byte of the multiplexer; 0 without one.
    uint8_t selectedChannels() const;
    void setMultiplexerDead(bool dead);
    void setChannelStuck(int channel, SimPca9548::Stuck stuck);
    /// The next `times` transfers to the address are not acknowledged.
    void refuse(uint8_t address, int times = 1);

    /// With time on, transfers last as long as the clock needs for their bits; off at first.
    void setTimed(bool timed);
    /// Time that all transfers so far need on the wire at the clock they had, whether they took it or not.
    std::chrono::nanoseconds busTime() const;

    /// Time by which the machine has ended the waits of timed transfers too late, all together.
    std::chrono::nanoseconds lateness() const;

    SimJournal &journal() { return m_journal; }

    // The side of the bridge.

    void setClockHz(int clockHz);
    /// Level of the pin that is wired to the reset input of the multiplexer.
    void setResetLevel(bool high);
    void start();
    /// Sends one byte, the address byte first; true when somebody acknowledges it.
    bool send(uint8_t byte);
    uint8_t receive();
    void stop();
    void pause(std::chrono::nanoseconds time);
    /// Returns when the bits so far would be through; at once when time is off.
    void settle();

private:
    struct Place
    {
        std::shared_ptr<SimSensor> sensor;
        int channel;
    };
    struct Listener
    {
        std::shared_ptr<SimSensor> sensor;
        QByteArray toRead; ///< empty: the line stays high
    };

    bool address(uint8_t byte);
    bool isRefused();
    void finish();
    void deliver();
    void spendBits(int bits);
    bool reaches(const Place &place) const;
    uint8_t controlByte() const;

    SimJournal m_journal;

    mutable std::mutex m_mutex; // guards everything below
    std::optional<SimPca9548> m_multiplexer;
    std::vector<Place> m_places;
    std::map<uint8_t, int> m_refusals;

    bool m_expectsAddress = false;
    bool m_inTransfer = false;
    bool m_acknowledged = false;
    uint8_t m_addressByte = 0;
    std::vector<Listener> m_listeners;
    QByteArray m_bytes; // sent or received since the address byte

    bool m_timed = false;
    std::chrono::nanoseconds m_bitTime{10000};
    std::chrono::nanoseconds m_busTime{0};
    std::chrono::nanoseconds m_unsettled{0};
    std::chrono::nanoseconds m_lateness{0};
    SimTime m_busFree;
};
