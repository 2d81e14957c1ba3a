#pragma once

#include "engine/Outcome.h"
#include "engine/SensorBus.h"
#include "engine/info_ts.h"

#include <QObject>

/// The sweep: tries one address of one bus entry a time, and asks a sensor that answers who it is.
class Discovery : public QObject
{
    Q_OBJECT

public:
    Discovery(SensorBus &bus, QVector<info_ts> &entries, QObject *parent = nullptr);

    /// One step of the sweep of an entry, whose channel is selected. Emits found() before the entry's
    /// position moves on.
    Outcome scanSensor(uint8_t infIdx);

    /// Tells all sensors to start a conversion.
    void setSync();

Q_SIGNALS:
    void found(const sensor_ts &sensor);

private:
    struct Question;
    struct Reply;

    Outcome probe(uint8_t infIdx, uint8_t addr);
    Outcome identify(uint8_t infIdx, uint8_t addr);
    Outcome getCap(uint8_t addr, uint8_t *frame, int length);
    Outcome setSensorSendType(uint8_t addr, uint8_t type);
    Outcome setOffset(uint8_t addr, uint8_t offset);
    Outcome getSN(uint8_t addr, QString &text);
    Outcome getSensorPrg(uint8_t addr, uint8_t &program);
    uint8_t frameAddress(uint8_t serialAddress) const;
    Reply ask(uint8_t addr, const Question &question);
    Reply awaitOnBridge(uint8_t addr, const Question &question);
    Reply awaitOnPort(const Question &question);

    SensorBus &m_bus;
    QVector<info_ts> &m_entries;
};
