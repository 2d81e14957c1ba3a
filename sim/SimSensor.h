#pragma once

#include "sim/SimBootLoader.h"
#include "sim/SimClock.h"
#include "sim/SimCounter.h"
#include "sim/SimFaults.h"
#include "sim/SimSettings.h"
#include "sim/sim_frame.h"

#include <QByteArray>

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>

/// Values of a sensor as a function of the seconds since it was made.
using SimMotion = std::function<void(double seconds, const finger_info_ts &model, SimValues &values)>;

/// One sensor, which can be reached over a serial line and over I2C. Make it by std::make_shared and plug it
/// into a bus. All operations may be called from any thread, also while the sensor is plugged in.
class SimSensor
{
public:
    /// A sensor of the catalogue's first row of this program id; an id without a row gets the frames of a
    /// plain fingertip of 36 bytes. The address is 0x01 to 0x6F.
    SimSensor(uint8_t programId, uint8_t address);
    /// A sensor of a row of one's own.
    SimSensor(const finger_info_ts &model, uint8_t address);
    SimSensor(const SimSensor &) = delete;
    SimSensor &operator=(const SimSensor &) = delete;

    const finger_info_ts &model() const { return m_model; }
    uint8_t address() const;
    /// A copy of what the sensor keeps without power.
    SimSettings settings() const;
    void setSettings(const SimSettings &settings);

    /// Values stay until they are set again. Channels, blocks and indices outside the model are ignored.
    void setForce(int channel, double newtons);
    void setRaw(int channel, uint32_t value);
    void setBlock(int block, const SimForce &force);
    void setSelfProximity(int index, uint32_t value);
    void setMutualProximity(int index, uint32_t value);
    void setStatus(uint8_t status);
    /// Values that move by themselves and overrule what was set; null goes back to the values set. They are
    /// taken afresh for every step of the frame counter. Until the send type is set the sensor rests, counter
    /// included.
    void setMotion(SimMotion motion);

    /// Rate at which the frame counter runs. At 0 it moves by step() alone. 200 at first.
    void setSampleRateHz(double hz);
    void step(int samples = 1);
    void setFrameCounter(uint8_t counter);
    /// While frozen the counter stands still and frames repeat.
    void setFrozen(bool frozen);
    uint8_t frameCounter() const;
    /// The frame that a poll would bring now, without faults.
    QByteArray sampleFrame() const;

    /// Byte 3 of sample frames until the send type is set after power-up, or for ever.
    enum class FirstLook { UntilSendType, Always };
    void setFirstLook(uint8_t mark, FirstLook until = FirstLook::UntilSendType);
    /// Byte 2 of all frames; the bus address when not set.
    void setFrameType(std::optional<uint8_t> type);
    /// Baud rate at which the sensor hears; 0 hears at any.
    void setBaudRate(int baud);
    int baudRate() const;
    /// Time from a request to its answer.
    void setAnswerDelay(std::chrono::milliseconds delay);
    /// Status with which the sensor refuses a set command; 0 obeys again.
    void setRefusal(uint8_t command, uint8_t status);
    /// A command that the sensor does not know.
    void setUnknown(uint8_t command, bool unknown = true);

    SimFaults &faults() { return m_faults; }
    /// Entered by the reset commands.
    SimBootLoader &bootLoader() { return m_bootLoader; }

    /// Takes the power away and gives it back: settings stay, everything else begins afresh.
    void powerCycle();

    // The side of the buses.

    /// Frame for a serial poll of an address, 0 being meant for every sensor; no bytes when the sensor keeps
    /// silent.
    SimDelivery answerPoll(uint8_t address);
    /// Answer to a request frame from the serial line; byte 2 is the address, 0 being meant for every sensor.
    SimDelivery answerRequest(const QByteArray &request);
    /// I2C: true when the sensor acknowledges the address, the general call 0 included.
    bool acknowledges(uint8_t address) const;
    void writeI2c(const QByteArray &bytes);
    /// What a read of the sensor brings, zeros following: the oldest answer that waits, else a sample frame.
    /// No bytes when the sensor leaves the line alone.
    QByteArray beginReadI2c();

private:
    struct Waiting
    {
        QByteArray bytes;
        SimTime due;
    };

    template<typename Change>
    void change(Change change);
    SimDelivery answer(const QByteArray &request);
    const QByteArray &sample() const;
    QByteArray compose(uint8_t counter) const;
    SimValues currentValues() const;
    void applySendType(SimValues &values) const;
    bool isResting() const { return m_motion && !m_sendTypeSet; }
    uint8_t type() const;
    bool inBootLoader() const;
    void startAfresh();

    const finger_info_ts m_model;
    const SimTime m_made = SimClock::now();
    SimFaults m_faults;
    mutable SimBootLoader m_bootLoader;

    mutable std::mutex m_mutex; // guards everything below
    SimSettings m_settings;
    SimValues m_values;
    SimMotion m_motion;
    SimCounter m_counter;
    uint8_t m_firstMark = 0x85;
    FirstLook m_firstLook = FirstLook::UntilSendType;
    bool m_sendTypeSet = false;
    std::optional<uint8_t> m_type;
    int m_baudRate = 0;
    std::chrono::milliseconds m_answerDelay{0};
    std::map<uint8_t, uint8_t> m_refusals;
    std::map<uint8_t, bool> m_unknown;
    SimTime m_poweredAt = SimClock::now();
    std::deque<Waiting> m_waiting;
    mutable QByteArray m_sample; // of m_sampleCounter; empty when something has changed since
    mutable uint8_t m_sampleCounter = 0;
};
