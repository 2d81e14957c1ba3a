#include "engine/fingerThread.h"

#include "protocol/frames.h"

#include <QDebug>
#include <QThread>

#include <algorithm>
#include <array>

namespace {

constexpr int kHighestAddress = 0x6F;
constexpr int kProbeLength = 4;
constexpr int kLongestFrame = 500;
constexpr int kLeastSerialAnswer = 6;
constexpr int kProbePasses = 10;

constexpr int kSettleAfterProbeMs = 50;
constexpr int kSettleAfterSendTypeMs = 100;

constexpr int kBridgePasses = 5;
constexpr int kBridgePassMs = 10;
constexpr int kSerialPasses = 50;

constexpr uint8_t kFrameSync1 = 0x55;
constexpr uint8_t kFrameSync2 = 0xAA;
constexpr uint8_t kSampleCommand = 0x85;
/// Sent instead by a sensor that does not wait to be polled yet.
constexpr uint8_t kUnpolledSampleCommand = 0xF2;

constexpr uint8_t kUnknownPrg = 0xFF;
/// On I2C the bus address alone selects the sensor, and every sensor takes frames for this one.
constexpr uint8_t kBridgeFrameAddress = 0x03;

using FrameBuffer = std::array<uint8_t, kLongestFrame>;

bool hasSampleSync(const FrameBuffer &frame)
{
    return frame[0] == kFrameSync1 && frame[1] == kFrameSync2;
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

} // namespace

/// One of the requests of discovery.
struct fingerThread::Exchange
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

struct fingerThread::Reply
{
    QByteArray request;
    /// Always of the exchange's length, filled up with zeros.
    QByteArray response;
    bool isGood;
};

void fingerThread::scanSensor(uint8_t infIdx)
{
    if (sensorNum != 0 && pcaFind == 0)
        return;
    const auto addr = static_cast<uint8_t>(infoList[infIdx].scanAddr + 1);
    if (answersProbe(addr))
        discover(infIdx, addr);
    advanceSweep(infoList[infIdx]);
}

bool fingerThread::answersProbe(uint8_t addr)
{
    FrameBuffer frame{};
    getCap(addr, frame.data(), kProbeLength);
    return hasSampleSync(frame) && (frame[3] == kSampleCommand || frame[3] == kUnpolledSampleCommand);
}

void fingerThread::discover(uint8_t infIdx, uint8_t addr)
{
    QThread::msleep(kSettleAfterProbeMs);
    if (setSensorSendType(addr, 0) == 0) {
        logFailure("setSensorSendType err");
        return;
    }
    QThread::msleep(kSettleAfterSendTypeMs);

    FrameBuffer frame{};
    getCap(addr, frame.data(), kLongestFrame);
    const bool isSample = hasSampleSync(frame) && frame[3] == kSampleCommand;
    const int length = isSample ? getSensorPackLen(frame.data(), kLongestFrame) : 0;
    if (length == 0) {
        logFailure("chk err");
        return;
    }
    qDebug("pack len2:%d", length);

    setOffset(addr, conversionOffset(infIdx));
    sensor_ts sensor = identify(infIdx, addr, length);
    sensor.type = frame[2];
    if (!m_tickIsVoid)
        announce(sensor);
}

sensor_ts fingerThread::identify(uint8_t infIdx, uint8_t addr, int frameLength)
{
    sensor_ts sensor;
    sensor.infIdx = infIdx;
    sensor.addr = addr;
    sensor.pack.fill(0, frameLength);
    sensor.sn = getSN(addr);
    if (sensor.sn.isEmpty())
        sensor.sn = QStringLiteral("KV-000000000");
    sensor.prg = getSensorPrg(addr);
    return sensor;
}

void fingerThread::announce(const sensor_ts &sensor)
{
    sensorList.append(sensor);
    qDebug("find sensor：%d inf:%d addr:0x%02x pack:%d sn:%s", sensor.prg, sensor.infIdx, sensor.addr,
           sensor.pack.size(), sensor.sn.toUtf8().constData());
    ++sensorNum;
    Q_EMIT si_connectedSensor(sensor);
    infoList[sensor.infIdx].sensors.append(sensor);
}

/// `buf` holds zeros where nothing came.
void fingerThread::getCap(uint8_t addr, uint8_t *buf, int len)
{
    if (inf != kSerial) {
        readBridge(addr, buf, len);
        return;
    }
    QByteArray received;
    pollSensor(addr);
    collectFromPort(received, len, kProbePasses, SleepOrder::AfterTaking);
    std::fill_n(buf, len, uint8_t{0});
    if (m_tickIsVoid || received.size() < std::min(len, kLeastSerialAnswer))
        return;
    received.truncate(len);
    std::copy_n(frameBytes(received), received.size(), buf);
    qDebug("%s", received.toHex().constData());
}

uint8_t fingerThread::setSensorSendType(uint8_t addr, uint8_t type)
{
    const Reply reply = exchange(addr, {0x7F, type, 11, true});
    const bool logsFrames = inf == kSerial && !m_tickIsVoid;
    if (logsFrames)
        qDebug("req:%s", reply.request.toHex().constData());
    if (reply.isGood)
        return 1;
    logFailure("set send type err");
    if (logsFrames)
        qDebug("req:%s rsp:%s", reply.request.toHex().constData(), reply.response.toHex().constData());
    return 0;
}

/// 0 when done, 1 on failure.
uint8_t fingerThread::setOffset(uint8_t addr, uint8_t offset)
{
    qDebug("set offset:%d", offset);
    if (exchange(addr, {0x73, offset, 6, true}).isGood)
        return 0;
    logFailure("set offset err");
    return 1;
}

uint8_t fingerThread::getSensorPrg(uint8_t addr)
{
    const Reply reply = exchange(addr, {0xA6, 0, 11, true});
    if (reply.isGood)
        return frameBytes(reply.response)[7];
    logFailure("set addr err");
    return kUnknownPrg;
}

QString fingerThread::getSN(uint8_t addr)
{
    const Reply reply = exchange(addr, {0xA4, 0, 50, false});
    if (!reply.isGood) {
        logFailure("set send type err");
        return {};
    }
    QString text = serialNumberOf(reply.response);
    qDebug("%s", text.toUtf8().constData());
    return text;
}

uint8_t fingerThread::setSync()
{
    qDebug("sync");
    const QByteArray frame = requestFrame(discoveryFrameAddress(0), 0x72);
    writeInf(0, frameBytes(frame), frame.size());
    return 0;
}

uint8_t fingerThread::discoveryFrameAddress(uint8_t serialAddress) const
{
    return inf == kSerial ? serialAddress : kBridgeFrameAddress;
}

fingerThread::Reply fingerThread::exchange(uint8_t addr, const Exchange &what)
{
    Reply reply{};
    reply.request = requestFrame(discoveryFrameAddress(addr), what.command, {0, 0, 0, what.parameter, 0});
    // The link may have gone and come again during an exchange before this one.
    if (m_tickIsVoid)
        return reply;
    writeInf(addr, frameBytes(reply.request), reply.request.size());
    reply.response = inf == kSerial ? awaitOnPort(what) : awaitOnBridge(addr, what);
    reply.isGood = !m_tickIsVoid && what.isAnsweredBy(reply.response);
    return reply;
}

QByteArray fingerThread::awaitOnBridge(uint8_t addr, const Exchange &what)
{
    QByteArray response(what.responseLength, '\0');
    for (int pass = 0; pass < kBridgePasses; ++pass) {
        QThread::msleep(kBridgePassMs);
        response.fill('\0');
        readInf(addr, response, what.responseLength, 0);
        if (what.isAnsweredBy(response))
            break;
    }
    return response;
}

QByteArray fingerThread::awaitOnPort(const Exchange &what)
{
    QByteArray received;
    collectFromPort(received, what.responseLength, kSerialPasses);
    return received.leftJustified(what.responseLength, '\0', true);
}

/// Silent when the exchange failed only because the link went away.
void fingerThread::logFailure(const char *words) const
{
    if (!m_tickIsVoid)
        qDebug("%s", words);
}
