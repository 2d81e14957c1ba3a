#include "engine/Discovery.h"

#include "protocol/frames.h"

#include <QDebug>

#include <algorithm>
#include <array>

using namespace std::chrono_literals;

namespace {

constexpr int kHighestAddress = 0x6F;
constexpr int kProbeLength = 4;
constexpr int kLongestFrame = 500;
constexpr int kLeastSerialAnswer = 6;
constexpr int kProbePasses = 10;

constexpr auto kSettleAfterProbe = 50ms;
constexpr auto kSettleAfterSendType = 100ms;

constexpr int kBridgePasses = 5;
constexpr auto kBridgePass = 10ms;
constexpr int kSerialPasses = 50;

/// Sent instead by a sensor that does not wait to be polled yet.
constexpr uint8_t kUnpolledSampleCommand = 0xF2;

constexpr uint8_t kUnknownPrg = 0xFF;
/// On I2C the bus address alone selects the sensor, and every sensor takes frames for this one.
constexpr uint8_t kBridgeFrameAddress = 0x03;

using FrameBuffer = std::array<uint8_t, kLongestFrame>;

bool hasSampleSync(const FrameBuffer &frame)
{
    return frame[0] == kResponseSync1 && frame[1] == kResponseSync2;
}

/// Sensors of different buses shall start their conversions at different positions.
uint8_t conversionOffset(uint8_t infIdx)
{
    return static_cast<uint8_t>((infIdx * 3) % 7);
}

bool isTaken(const info_ts &entry, int addr)
{
    return std::any_of(entry.sensors.cbegin(), entry.sensors.cend(),
                       [addr](const sensor_ts &sensor) { return sensor.addr == addr; });
}

void advanceSweep(info_ts &entry)
{
    int position = entry.scanAddr;
    for (int step = 0; step < kHighestAddress; ++step) {
        position = (position + 1) % kHighestAddress;
        if (!isTaken(entry, position + 1))
            break;
    }
    entry.scanAddr = static_cast<uint8_t>(position);
}

/// The text of a serial number response: byte 4 says how long it is, bounded by what the frame holds.
QString serialNumberOf(const QByteArray &response)
{
    constexpr int textAt = 5;
    const int frameLength = getPackLen(frameBytes(response), response.size());
    const int room = std::max(0, frameLength - textAt - 2);
    const QByteArray text = response.mid(textAt, std::min(int(frameBytes(response)[4]), room));
    return QString::fromLatin1(text.constData(),
                               static_cast<int>(qstrnlen(text.constData(), uint(text.size()))));
}

/// Hands a step's outcome on; a failure that nobody's going away explains is worth a line in the log.
Outcome logged(Outcome outcome, const char *words)
{
    if (outcome == Outcome::Failed)
        qDebug("%s", words);
    return outcome;
}

} // namespace

struct Discovery::Question
{
    uint8_t command;
    uint8_t parameter;
    int responseLength;
    /// False for a frame that is found inside `responseLength` bytes.
    bool hasFixedLength;

    bool isAnsweredBy(const QByteArray &response) const
    {
        const uint8_t *bytes = frameBytes(response);
        if (bytes[3] != (command | kResponseBit))
            return false;
        return hasFixedLength ? frameSumFits(response) : getPackLen(bytes, response.size()) != 0;
    }
};

struct Discovery::Reply
{
    Outcome outcome;
    QByteArray request;
    /// Always of the question's length, filled up with zeros.
    QByteArray response;
};

Discovery::Discovery(SensorBus &bus, QVector<info_ts> &entries, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
    , m_entries(entries)
{}

Outcome Discovery::scanSensor(uint8_t infIdx)
{
    const bool anyLive = std::any_of(m_entries.cbegin(), m_entries.cend(),
                                     [](const info_ts &entry) { return !entry.sensors.isEmpty(); });
    if (anyLive && !m_bus.hasMultiplexer())
        return Outcome::Done;
    const Outcome outcome = probe(infIdx, static_cast<uint8_t>(m_entries[infIdx].scanAddr + 1));
    advanceSweep(m_entries[infIdx]);
    return outcome;
}

Outcome Discovery::probe(uint8_t infIdx, uint8_t addr)
{
    FrameBuffer frame{};
    if (const Outcome outcome = getCap(addr, frame.data(), kProbeLength); outcome != Outcome::Done)
        return outcome;
    if (!hasSampleSync(frame) || (frame[3] != kSampleCommand && frame[3] != kUnpolledSampleCommand))
        return Outcome::Failed;
    m_bus.sleep(kSettleAfterProbe);
    if (const Outcome outcome = setSensorSendType(addr, 0); outcome != Outcome::Done)
        return logged(outcome, "setSensorSendType err");
    m_bus.sleep(kSettleAfterSendType);
    return identify(infIdx, addr);
}

Outcome Discovery::identify(uint8_t infIdx, uint8_t addr)
{
    FrameBuffer frame{};
    if (getCap(addr, frame.data(), kLongestFrame) == Outcome::Void)
        return Outcome::Void;
    const bool isSample = hasSampleSync(frame) && frame[3] == kSampleCommand;
    const int length = isSample ? getSensorPackLen(frame.data(), kLongestFrame) : 0;
    if (length == 0)
        return logged(Outcome::Failed, "chk err");
    qDebug("pack len2:%d", length);

    sensor_ts sensor;
    sensor.infIdx = infIdx;
    sensor.addr = addr;
    sensor.pack.fill(0, length);
    sensor.type = frame[2];
    const bool isVoid = setOffset(addr, conversionOffset(infIdx)) == Outcome::Void ||
                        getSN(addr, sensor.sn) == Outcome::Void ||
                        getSensorPrg(addr, sensor.prg) == Outcome::Void;
    if (isVoid)
        return Outcome::Void;
    if (sensor.sn.isEmpty())
        sensor.sn = QStringLiteral("KV-000000000");
    Q_EMIT found(sensor);
    return Outcome::Done;
}

/// `frame` holds zeros where nothing came.
Outcome Discovery::getCap(uint8_t addr, uint8_t *frame, int length)
{
    if (!m_bus.isSerial()) {
        m_bus.read(addr, frame, length);
        return Outcome::Done;
    }
    QByteArray received;
    m_bus.poll(addr);
    const auto collected = m_bus.collect(received, length, kProbePasses, SensorBus::SleepOrder::AfterTaking);
    std::fill_n(frame, length, uint8_t{0});
    if (collected.outcome == Outcome::Void)
        return Outcome::Void;
    if (received.size() < std::min(length, kLeastSerialAnswer))
        return Outcome::Failed;
    received.truncate(length);
    std::copy_n(frameBytes(received), received.size(), frame);
    qDebug("%s", received.toHex().constData());
    return Outcome::Done;
}

Outcome Discovery::setSensorSendType(uint8_t addr, uint8_t type)
{
    const Reply reply = ask(addr, {0x7F, type, 11, true});
    const bool logsFrames = m_bus.isSerial() && reply.outcome != Outcome::Void;
    if (logsFrames)
        qDebug("req:%s", reply.request.toHex().constData());
    logged(reply.outcome, "set send type err");
    if (logsFrames && reply.outcome == Outcome::Failed)
        qDebug("req:%s rsp:%s", reply.request.toHex().constData(), reply.response.toHex().constData());
    return reply.outcome;
}

Outcome Discovery::setOffset(uint8_t addr, uint8_t offset)
{
    qDebug("set offset:%d", offset);
    return logged(ask(addr, {0x73, offset, 6, true}).outcome, "set offset err");
}

Outcome Discovery::getSN(uint8_t addr, QString &text)
{
    const Reply reply = ask(addr, {0xA4, 0, 50, false});
    if (reply.outcome != Outcome::Done)
        return logged(reply.outcome, "set send type err");
    text = serialNumberOf(reply.response);
    qDebug("%s", text.toUtf8().constData());
    return Outcome::Done;
}

Outcome Discovery::getSensorPrg(uint8_t addr, uint8_t &program)
{
    const Reply reply = ask(addr, {0xA6, 0, 11, true});
    program = reply.outcome == Outcome::Done ? frameBytes(reply.response)[7] : kUnknownPrg;
    return logged(reply.outcome, "set addr err");
}

void Discovery::setSync()
{
    qDebug("sync");
    m_bus.write(0, requestFrame(frameAddress(0), 0x72));
}

uint8_t Discovery::frameAddress(uint8_t serialAddress) const
{
    return m_bus.isSerial() ? serialAddress : kBridgeFrameAddress;
}

Discovery::Reply Discovery::ask(uint8_t addr, const Question &question)
{
    const QByteArray request =
        requestFrame(frameAddress(addr), question.command, {0, 0, 0, question.parameter, 0});
    m_bus.write(addr, request);
    Reply reply = m_bus.isSerial() ? awaitOnPort(question) : awaitOnBridge(addr, question);
    reply.request = request;
    return reply;
}

Discovery::Reply Discovery::awaitOnBridge(uint8_t addr, const Question &question)
{
    QByteArray response(question.responseLength, '\0');
    for (int pass = 0; pass < kBridgePasses; ++pass) {
        m_bus.sleep(kBridgePass);
        response.fill('\0');
        m_bus.read(addr, reinterpret_cast<uint8_t *>(response.data()), question.responseLength);
        if (question.isAnsweredBy(response))
            return {Outcome::Done, {}, response};
    }
    return {Outcome::Failed, {}, response};
}

Discovery::Reply Discovery::awaitOnPort(const Question &question)
{
    QByteArray received;
    const auto collected = m_bus.collect(received, question.responseLength, kSerialPasses);
    const QByteArray response = received.leftJustified(question.responseLength, '\0', true);
    if (collected.outcome == Outcome::Void)
        return {Outcome::Void, {}, response};
    return {question.isAnsweredBy(response) ? Outcome::Done : Outcome::Failed, {}, response};
}
