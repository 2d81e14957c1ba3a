#include "engine/CommandQueue.h"

#include "protocol/frames.h"

#include <QDebug>

#include <algorithm>

using namespace std::chrono_literals;

namespace {

constexpr uint8_t kAttempts = 3;
constexpr int kLongestResponse = 500;

constexpr int kBridgePasses = 10;
constexpr auto kBridgePass = 10ms;
constexpr int kSerialPasses = 100;
constexpr auto kPause = 50ms;

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

/// Cuts what was read to the response if that is whole and belongs to the command.
Outcome cutToResponse(const cmd_ts &command, QByteArray &received)
{
    const int length = wholeLength(command, received);
    const bool echoes = byteAt(received, 3) == (byteAt(command.cmd, 3) | kResponseBit);
    if (length == 0 || !echoes)
        return Outcome::Failed;
    received.truncate(length);
    return Outcome::Done;
}

} // namespace

uint8_t CommandQueue::tryCnt = kAttempts;

CommandQueue::CommandQueue(SensorBus &bus, const QVector<info_ts> &entries, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
    , m_entries(entries)
{}

void CommandQueue::append(const cmd_ts &command)
{
    qDebug("add cmd:%s", command.cmd.toHex().constData());
    m_arrived.append(command);
    qDebug("appendCmdList:%d", m_arrived.size());
}

Outcome CommandQueue::wrCmdSensor(uint8_t infIdx)
{
    m_commands.append(m_arrived);
    m_arrived.clear();
    if (m_commands.isEmpty())
        return Outcome::Done;
    const cmd_ts command = m_commands.constFirst();
    if (tryCnt == kAttempts && !isTurnOf(command, infIdx))
        return Outcome::Done;

    m_bus.write(command.addr, command.cmd);
    qDebug("req %d:%s", tryCnt, command.cmd.toHex().constData());
    if (command.rspLen == kNoResponse) {
        m_commands.removeFirst();
        return Outcome::Done;
    }
    qDebug("rsp len:%d", bytesToRead(command));

    QByteArray response;
    const Outcome outcome = awaitResponse(command, response);
    if (outcome == Outcome::Done)
        finish(infIdx, command, response);
    else if (outcome == Outcome::Failed)
        failAttempt(infIdx, command, response);
    return outcome;
}

/// Asked before the first attempt only: retries go out on whatever bus has its turn. Drops a command whose
/// sensor has gone.
bool CommandQueue::isTurnOf(const cmd_ts &command, uint8_t infIdx)
{
    if (command.infIdx != infIdx)
        return false;
    const QVector<sensor_ts> &sensors = m_entries.at(infIdx).sensors;
    const bool isLive = std::any_of(sensors.cbegin(), sensors.cend(), [&command](const sensor_ts &sensor) {
        return sensor.addr == command.addr;
    });
    if (!isLive)
        m_commands.removeFirst();
    return isLive;
}

/// `response` is the good response, or what came instead.
Outcome CommandQueue::awaitResponse(const cmd_ts &command, QByteArray &response)
{
    return m_bus.isSerial() ? awaitOnPort(command, response) : awaitOnBridge(command, response);
}

Outcome CommandQueue::awaitOnBridge(const cmd_ts &command, QByteArray &response)
{
    response.resize(bytesToRead(command));
    Outcome outcome = Outcome::Failed;
    for (int pass = 0; pass < kBridgePasses && outcome == Outcome::Failed; ++pass) {
        m_bus.sleep(kBridgePass);
        response.fill('\0');
        m_bus.read(responseAddress(command), reinterpret_cast<uint8_t *>(response.data()), response.size());
        outcome = cutToResponse(command, response);
    }
    return outcome;
}

Outcome CommandQueue::awaitOnPort(const cmd_ts &command, QByteArray &response)
{
    const auto collected = m_bus.collect(response, bytesToRead(command), kSerialPasses);
    return collected.outcome == Outcome::Void ? Outcome::Void : cutToResponse(command, response);
}

void CommandQueue::finish(uint8_t infIdx, const cmd_ts &command, const QByteArray &response)
{
    Q_EMIT answered(infIdx, command.addr, command.cmd, response);
    tryCnt = kAttempts;
    qDebug("rsp:%s", response.toHex().constData());
    m_commands.removeFirst();
    m_bus.sleep(kPause);
}

void CommandQueue::failAttempt(uint8_t infIdx, const cmd_ts &command, const QByteArray &response)
{
    --tryCnt;
    qDebug("try:%d", tryCnt);
    if (tryCnt == 0)
        Q_EMIT failed(infIdx, command.addr, command.cmd, response);
    m_bus.sleep(kPause);
    if (tryCnt != 0)
        return;
    qDebug("cmdList:%d", m_commands.size());
    tryCnt = kAttempts;
    m_commands.removeFirst();
    m_bus.sleep(kPause);
}
