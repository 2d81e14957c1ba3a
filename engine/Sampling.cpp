#include "engine/Sampling.h"

#include "protocol/frames.h"

#include <QDebug>

#include <algorithm>

namespace {

constexpr int kCounterAt = 4;

/// Room for two of the longest frames and some noise, kept from read to read.
constexpr int kReceiveCapacity = 512;
/// A sensor without a new frame for longer than this is gone.
constexpr uint16_t kLongestSilenceMs = 3000;
constexpr uint16_t kIdlePeriodMs = 50;
constexpr int kSamplePasses = 100;

bool isSample(const QVector<uint8_t> &pack)
{
    return pack[0] == kResponseSync1 && pack[1] == kResponseSync2 &&
           frameSumFits(pack.constData(), pack.size());
}

} // namespace

Sampling::Sampling(SensorBus &bus, QVector<info_ts> &entries, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
    , m_entries(entries)
{
    m_received.reserve(kReceiveCapacity);
}

Outcome Sampling::readSensors()
{
    for (info_ts &entry : m_entries) {
        m_bus.setPcaState(entry.pca);
        if (readEntry(entry) == Outcome::Void)
            return Outcome::Void;
    }
    return Outcome::Done;
}

Outcome Sampling::readEntry(info_ts &entry)
{
    for (int i = 0; i < entry.sensors.size(); ++i) {
        sensor_ts &sensor = entry.sensors[i];
        sensor.tick = 0;
        const Outcome outcome = getSensorData(sensor);
        if (outcome == Outcome::Void)
            return Outcome::Void;
        if (sensor.silentMs > kLongestSilenceMs) {
            // What stands behind the erased one waits for the next pass.
            Q_EMIT lost(entry.sensors.takeAt(i));
            return Outcome::Done;
        }
        if (outcome == Outcome::Done && sensor.pack.at(kCounterAt) != sensor.lastSeq)
            takeSample(sensor);
    }
    return Outcome::Done;
}

void Sampling::takeSample(sensor_ts &sensor)
{
    const uint8_t counter = sensor.pack.at(kCounterAt);
    const auto step = static_cast<uint8_t>(counter - sensor.lastSeq);
    sensor.silentMs = 0;
    sensor.hz = static_cast<uint16_t>(sensor.hz + step);
    ++sensor.rHz;
    sensor.spare = 0;
    sensor.lastSeq = counter;
    Q_EMIT sampled(sensor.infIdx, sensor.addr, sensor.pack);
}

/// Done when a frame stands in `sensor.pack`, which holds zeros otherwise. When it is void the sensor is no
/// more and was not touched.
Outcome Sampling::getSensorData(sensor_ts &sensor)
{
    sensor.pack.fill(0);
    if (!m_bus.isSerial()) {
        m_bus.read(sensor.addr, sensor.pack.data(), sensor.pack.size());
    } else if (const Outcome outcome = fetchFromPort(sensor.addr, sensor.pack); outcome != Outcome::Done) {
        return outcome;
    }
    if (isSample(sensor.pack))
        return Outcome::Done;
    sensor.pack.fill(0);
    return Outcome::Failed;
}

Outcome Sampling::fetchFromPort(uint8_t addr, QVector<uint8_t> &pack)
{
    const int length = pack.size();
    m_received.resize(0);
    m_bus.poll(addr);
    const auto [outcome, pass] = m_bus.collect(m_received, length, kSamplePasses);
    if (outcome == Outcome::Void)
        return Outcome::Void;
    // A frame is as good as its low eight bits of length say, and one that is whole only in the last pass is
    // late.
    const int found = getSensorPackLen(frameBytes(m_received), m_received.size()) & 0xFF;
    if (pass == kSamplePasses || found != length) {
        qDebug("err");
        return Outcome::Failed;
    }
    std::copy_n(frameBytes(m_received), length, pack.begin());
    return Outcome::Done;
}

template<typename Action>
void Sampling::forEachSensor(Action action)
{
    for (info_ts &entry : m_entries) {
        for (sensor_ts &sensor : entry.sensors)
            action(sensor);
    }
}

void Sampling::publishRates()
{
    forEachSensor([this](sensor_ts &sensor) {
        Q_EMIT rates(sensor.infIdx, sensor.addr, sensor.hz, sensor.rHz);
        sensor.periodMs = sensor.hz == 0 ? kIdlePeriodMs : static_cast<uint16_t>(1000 / sensor.hz);
        sensor.hz = 0;
        sensor.rHz = 0;
    });
}

void Sampling::advanceTicks(std::chrono::milliseconds interval)
{
    forEachSensor([interval](sensor_ts &sensor) {
        if (sensor.tick < sensor.periodMs)
            sensor.tick = static_cast<uint16_t>(sensor.tick + interval.count());
    });
}

void Sampling::ageSensors(std::chrono::milliseconds interval)
{
    forEachSensor([interval](sensor_ts &sensor) {
        sensor.silentMs = static_cast<uint16_t>(sensor.silentMs + interval.count());
    });
}
