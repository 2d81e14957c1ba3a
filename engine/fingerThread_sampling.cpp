#include "engine/fingerThread.h"

#include "link/class_ch341.h"
#include "link/class_ch347.h"
#include "link/class_uart.h"
#include "protocol/frames.h"

#include <QCoreApplication>
#include <QDebug>
#include <QThread>

#include <algorithm>
#include <array>

namespace {

constexpr uint8_t kFrameSync1 = 0x55;
constexpr uint8_t kFrameSync2 = 0xAA;
constexpr int kCounterAt = 4;

/// A sensor without a new frame for longer than this is gone.
constexpr uint16_t kLongestSilenceMs = 3000;
constexpr int kSamplePasses = 100;
constexpr int kPassMs = 1;

bool isSample(const QVector<uint8_t> &pack)
{
    return pack[0] == kFrameSync1 && pack[1] == kFrameSync2 && frameSumFits(pack.constData(), pack.size());
}

void dropUntilSync(QByteArray &received)
{
    const int syncAt = received.indexOf(static_cast<char>(kFrameSync1));
    received.remove(0, syncAt < 0 ? received.size() : syncAt);
}

} // namespace

/// Reads all buses, whichever has its turn.
void fingerThread::readSensor(uint8_t /*infIdx*/)
{
    for (int i = 0; i < infoList.size() && !m_tickIsVoid; ++i) {
        setPcaState(infoList[i].pca);
        readEntry(infoList[i]);
    }
}

void fingerThread::readEntry(info_ts &entry)
{
    for (int i = 0; i < entry.sensors.size(); ++i) {
        sensor_ts &sensor = entry.sensors[i];
        sensor.tick = 0;
        const int length = getSensorData(sensor.addr, sensor);
        if (m_tickIsVoid)
            return;
        if (sensor.silentMs > kLongestSilenceMs) {
            // What stands behind the erased one waits for the next pass.
            dropSilent(entry, i);
            return;
        }
        if (length != 0 && sensor.pack.at(kCounterAt) != sensor.lastSeq)
            takeSample(sensor);
    }
}

void fingerThread::dropSilent(info_ts &entry, int index)
{
    const sensor_ts gone = entry.sensors.takeAt(index);
    --sensorNum;
    Q_EMIT si_disconnectedSensor(gone);
}

void fingerThread::takeSample(sensor_ts &sensor)
{
    const uint8_t counter = sensor.pack.at(kCounterAt);
    const auto step = static_cast<uint8_t>(counter - sensor.lastSeq);
    sensor.silentMs = 0;
    sensor.hz = static_cast<uint16_t>(sensor.hz + step);
    ++sensor.rHz;
    sensor.spare = 0;
    sensor.lastSeq = counter;
    Q_EMIT si_updateData1(sensor.infIdx, sensor.addr, sensor.pack);
}

/// Length of the frame that now stands in `sensor.pack`, or 0. When the link went away meanwhile the sensor is no more and
/// was not touched.
int fingerThread::getSensorData(uint8_t addr, sensor_ts &sensor)
{
    sensor.pack.fill(0);
    if (inf != kSerial)
        readBridge(addr, sensor.pack.data(), sensor.pack.size());
    else if (!fetchFromPort(addr, sensor.pack))
        return 0;
    if (isSample(sensor.pack))
        return sensor.pack.size();
    sensor.pack.fill(0);
    return 0;
}

bool fingerThread::fetchFromPort(uint8_t addr, QVector<uint8_t> &pack)
{
    const int length = pack.size();
    m_received.resize(0);
    pollSensor(addr);
    const int pass = collectFromPort(m_received, length, kSamplePasses);
    if (m_tickIsVoid)
        return false;
    // A frame is as good as its low eight bits of length say, and one that is whole only in the last pass is late.
    const int found = getSensorPackLen(frameBytes(m_received), m_received.size()) & 0xFF;
    if (pass == kSamplePasses || found != length) {
        qDebug("err");
        return false;
    }
    std::copy_n(frameBytes(m_received), length, pack.begin());
    return true;
}

int fingerThread::readInf(uint8_t addr, QByteArray &out, int len, int /*timeout*/)
{
    if (uart == nullptr)
        return readBridge(addr, reinterpret_cast<uint8_t *>(out.data()), len);
    const int before = out.size();
    const auto waiting = static_cast<int>(uart->port->bytesAvailable());
    out.resize(before + waiting);
    const auto taken = static_cast<int>(uart->port->read(out.data() + before, waiting));
    out.resize(before + std::max(0, taken));
    return std::max(0, taken);
}

int fingerThread::writeInf(uint8_t addr, const uint8_t *data, int len)
{
    if (ch341 != nullptr)
        return ch341->write(addr, data, static_cast<uint16_t>(len));
    if (ch347 != nullptr)
        return ch347->write(addr, data, static_cast<uint16_t>(len));
    if (!linkIsOpen())
        return 0;
    return static_cast<int>(uart->port->write(reinterpret_cast<const char *>(data), len));
}

int fingerThread::readBridge(uint8_t addr, uint8_t *buf, int len)
{
    if (ch341 != nullptr)
        return ch341->read(addr, buf, static_cast<uint16_t>(len));
    if (ch347 != nullptr)
        return ch347->read(addr, buf, static_cast<uint16_t>(len));
    return 0;
}

void fingerThread::pollSensor(uint8_t addr)
{
    const std::array<uint8_t, 2> pair = {addr, static_cast<uint8_t>(addr ^ 0xFF)};
    writeInf(addr, pair.data(), static_cast<int>(pair.size()));
}

/// Number of the pass in which there were enough bytes from the first sync byte on, or 0 when that never was.
int fingerThread::collectFromPort(QByteArray &received, int enough, int passes, SleepOrder order)
{
    for (int pass = 1; pass <= passes && linkIsOpen(); ++pass) {
        QCoreApplication::processEvents();
        if (m_tickIsVoid)
            return 0;
        if (order == SleepOrder::BeforeTaking)
            QThread::msleep(kPassMs);
        readInf(0, received, 0, 0);
        dropUntilSync(received);
        if (received.size() >= enough)
            return pass;
        if (order == SleepOrder::AfterTaking)
            QThread::msleep(kPassMs);
    }
    return 0;
}
