#pragma once

#include "engine/Outcome.h"
#include "engine/SensorBus.h"
#include "engine/cmd_ts.h"
#include "engine/info_ts.h"

#include <QObject>

/// The requests of all panels in order of arrival, worked off one attempt a tick.
class CommandQueue : public QObject
{
    Q_OBJECT

public:
    CommandQueue(SensorBus &bus, const QVector<info_ts> &entries, QObject *parent = nullptr);

    /// May be called while wrCmdSensor() waits and delivers events.
    void append(const cmd_ts &command);

    /// The next attempt at the head of the queue, on the bus entry whose channel is selected.
    Outcome wrCmdSensor(uint8_t infIdx);

Q_SIGNALS:
    /// `infIdx` is the bus entry of the attempt.
    void answered(uint8_t infIdx, uint8_t addr, const QByteArray &req, const QByteArray &rsp);
    /// The last attempt has failed; `rsp` is what came instead.
    void failed(uint8_t infIdx, uint8_t addr, const QByteArray &req, const QByteArray &rsp);

private:
    bool isTurnOf(const cmd_ts &command, uint8_t infIdx);
    Outcome awaitResponse(const cmd_ts &command, QByteArray &response);
    Outcome awaitOnBridge(const cmd_ts &command, QByteArray &response);
    Outcome awaitOnPort(const cmd_ts &command, QByteArray &response);
    void finish(uint8_t infIdx, const cmd_ts &command, const QByteArray &response);
    void failAttempt(uint8_t infIdx, const cmd_ts &command, const QByteArray &response);

    static uint8_t tryCnt; ///< attempts left for the head command; survives from one worker to the next

    SensorBus &m_bus;
    const QVector<info_ts> &m_entries;
    QList<cmd_ts> m_commands; ///< being worked off, head first
    QList<cmd_ts> m_arrived;  ///< not merged yet
};
