#pragma once

#include <QMetaType>
#include <QString>
#include <QVector>

#include <cstdint>

/// One live sensor. Travels by value in the worker's signals.
struct sensor_ts
{
    uint8_t infIdx = 0;     ///< bus entry that holds it, 0 to 5
    uint8_t addr = 0;       ///< its address on the bus, 0x01 to 0x6F
    QVector<uint8_t> pack;  ///< latest sample frame; its length is the model's and never changes
    uint8_t lastSeq = 0;    ///< counter of the last frame taken as new
    QString sn;             ///< serial number
    uint8_t prg = 0xFF;     ///< program id; 0xFF when the sensor did not tell it
    uint8_t type = 0;       ///< frame address that the sensor gave in its sample frame
    uint16_t hz = 0;        ///< samples that the sensor made in the current second
    uint16_t rHz = 0;       ///< new frames that arrived in the current second
    uint8_t spare = 0;      ///< zeroed with every new frame
    uint16_t tick = 0;      ///< milliseconds since the last read attempt, counted up to periodMs
    uint16_t periodMs = 50; ///< sample period of the last second
    uint16_t silentMs = 0;  ///< milliseconds since the last new frame, in steps of 200
};
Q_DECLARE_METATYPE(sensor_ts)

/// Registers every type that travels in queued signals between the worker and its users. May be called more
/// than once.
void registerSensorTypes();
