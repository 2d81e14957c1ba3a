#pragma once

#include "engine/Outcome.h"
#include "engine/SensorBus.h"
#include "engine/info_ts.h"

#include <QObject>

#include <chrono>

/// Reads the samples of all live sensors, counts their rates and lets those go that have fallen silent.
class Sampling : public QObject
{
    Q_OBJECT

public:
    Sampling(SensorBus &bus, QVector<info_ts> &entries, QObject *parent = nullptr);

    /// One pass over all sensors of all buses, whose channels it selects. Done unless it became void.
    Outcome readSensors();

    /// Emits the rates of the second that has passed and begins a new one.
    void publishRates();
    void advanceTicks(std::chrono::milliseconds interval);
    /// Adds to the silence of every sensor, which only a new frame ends.
    void ageSensors(std::chrono::milliseconds interval);

Q_SIGNALS:
    void rates(uint8_t infIdx, uint8_t addr, uint16_t hz, uint16_t rHz);
    /// A new frame, whole, of the model's length.
    void sampled(uint8_t infIdx, uint8_t addr, const QVector<uint8_t> &pack);
    /// The sensor has been silent for too long and has been taken out of its entry.
    void lost(const sensor_ts &sensor);

private:
    template<typename Action>
    void forEachSensor(Action action);
    Outcome readEntry(info_ts &entry);
    Outcome getSensorData(sensor_ts &sensor);
    Outcome fetchFromPort(uint8_t addr, QVector<uint8_t> &pack);
    void takeSample(sensor_ts &sensor);

    SensorBus &m_bus;
    QVector<info_ts> &m_entries;
    QByteArray m_received; ///< of the serial read in progress
};
