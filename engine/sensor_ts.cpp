#include "engine/sensor_ts.h"

#include "protocol/finger_info.h"

void registerSensorTypes()
{
    qRegisterMetaType<uint8_t>("uint8_t");
    qRegisterMetaType<uint16_t>("uint16_t");
    qRegisterMetaType<uint32_t>("uint32_t");
    qRegisterMetaType<QVector<uint8_t>>("QVector<uint8_t>");
    qRegisterMetaType<QVector<uint16_t>>("QVector<uint16_t>");
    qRegisterMetaType<QVector<int32_t>>("QVector<int32_t>");
    qRegisterMetaType<QVector<uint32_t>>("QVector<uint32_t>");
    qRegisterMetaType<QVector<QString>>("QVector<QString>");
    qRegisterMetaType<finger_info_ts>("finger_info_ts");
    qRegisterMetaType<sensor_ts>("sensor_ts");
}
