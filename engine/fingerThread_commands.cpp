#include "engine/fingerThread.h"

#include "protocol/frames.h"

#include <QDebug>
#include <QThread>

#include <algorithm>

namespace {

constexpr uint8_t kAttempts = 3;
constexpr int kLongestResponse = 500;

constexpr int kBridgePasses = 10;
constexpr int kBridgePassMs = 10;
constexpr int kSerialPasses = 100;
constexpr int kPauseMs = 50;

constexpr uint8_t kSetAddress = 0x70;

/// Byte of a frame that may be too short for it.
uint8_t byteAt(const QByteArray &frame, int index)
{
    return index < frame.size() ? static_cast<uint8_t>(frame.at(index)) : uint8_t{0};
}

int bytesToRead(const cmd_ts &command)
{
    return command.rspLen == kUnknownResponse ? kLongestResponse : command.rspLen;
}

/// A sensor that was told a new address answers from there.
uint8_t responseAddress(const cmd_ts &command)
{
    return byteAt(command.cmd, 3) == kSetAddress ? byteAt(command.cmd, 7) : command.addr;
}

/// Length of the response at the start of what was read, or 0 when there is none that is whole.
int wholeLength(const cmd_ts &command, const QByteArray &received)
{
    if (command.rspLen == kUnknownResponse)
        return getPackLen(frameBytes(received), received.size());
    if (received.size() >= command.rspLen && frameSumFits(frameBytes(received), command.rspLen))
        return command.rspLen;
    qDebug("chk err");
    return 0;
}

/// Length of the response if it is whole and belongs to the command, else 0.
int responseLength(const cmd_ts &command, const QByteArray &received)
{
    const int length = wholeLength(command, received);
    const bool echoes = byteAt(received, 3) == (byteAt(command.cmd, 3) | kResponseBit);
    return echoes ? length : 0;
}

} // namespace

uint8_t fingerThread::tryCnt = kAttempts;

void fingerThread::sl_cmdReq1(uint8_t infIdx, uint8_t addr, QByteArray cmd, uint16_t rspLen)
{
    qDebug("add cmd:%s", cmd.toHex().constData());
    appendCmdList.append({infIdx, addr, cmd, rspLen});
    qDebug("appendCmdList:%d", appendCmdList.size());
}

void fingerThread::wrCmdSensor(uint8_t infIdx)
{
    cmdList.append(appendCmdList);
    appendCmdList.clear();
    if (cmdList.isEmpty())
        return;
    const cmd_ts command = cmdList.constFirst();
    if (tryCnt == kAttempts && !isTurnOf(command, infIdx))
        return;

    writeInf(command.addr, frameBytes(command.cmd), command.cmd.size());
    qDebug("req %d:%s", tryCnt, command.cmd.toHex().constData());
    if (command.rspLen == kNoResponse) {
        cmdList.removeFirst();
        return;
    }
    qDebug("rsp len:%d", bytesToRead(command));

    QByteArray response;
    const int length = awaitResponse(command, response);
    if (m_tickIsVoid)
        return;
    if (length != 0)
        finishCommand(infIdx, command, response.left(length));
    else
        failAttempt(infIdx, command, response);
}

/// Asked before the first attempt only: retries go out on whatever bus has its turn. Drops a command whose sensor has gone.
bool fingerThread::isTurnOf(const cmd_ts &command, uint8_t infIdx)
{
    if (command.infIdx != infIdx)
        return false;
    const QVector<sensor_ts> &sensors = infoList.at(infIdx).sensors;
    const bool isLive = std::any_of(sensors.cbegin(), sensors.cend(), [&command](const sensor_ts &sensor) {
        return sensor.addr == command.addr;
    });
    if (!isLive)
        cmdList.removeFirst();
    return isLive;
}

/// Length of the good response at the start of `response`, or 0; then `response` holds what came instead.
int fingerThread::awaitResponse(const cmd_ts &command, QByteArray &response)
{
    return inf == kSerial ? awaitResponseOnPort(command, response) : awaitResponseOnBridge(command, response);
}

int fingerThread::awaitResponseOnBridge(const cmd_ts &command, QByteArray &response)
{
    response.resize(bytesToRead(command));
    int length = 0;
    for (int pass = 0; pass < kBridgePasses && length == 0; ++pass) {
        QThread::msleep(kBridgePassMs);
        response.fill('\0');
        readInf(responseAddress(command), response, response.size(), 0);
        length = responseLength(command, response);
    }
    return length;
}

int fingerThread::awaitResponseOnPort(const cmd_ts &command, QByteArray &response)
{
    collectFromPort(response, bytesToRead(command), kSerialPasses);
    return m_tickIsVoid ? 0 : responseLength(command, response);
}

void fingerThread::finishCommand(uint8_t infIdx, const cmd_ts &command, const QByteArray &response)
{
    Q_EMIT si_cmdRsp1(infIdx, command.addr, command.cmd, response);
    tryCnt = kAttempts;
    qDebug("rsp:%s", response.toHex().constData());
    cmdList.removeFirst();
    QThread::msleep(kPauseMs);
}

void fingerThread::failAttempt(uint8_t infIdx, const cmd_ts &command, const QByteArray &response)
{
    --tryCnt;
    qDebug("try:%d", tryCnt);
    if (tryCnt == 0)
        Q_EMIT si_cmdRspErr1(infIdx, command.addr, command.cmd, response);
    QThread::msleep(kPauseMs);
    if (tryCnt != 0)
        return;
    qDebug("cmdList:%d", cmdList.size());
    tryCnt = kAttempts;
    cmdList.removeFirst();
    QThread::msleep(kPauseMs);
}
