#include "link/class_ch341.h"

#include "link/Ch341Packet.h"
#include "link/providers/ch341dll.h"

#include <QStringList>
#include <QTimer>

#include <thread>

using namespace std::chrono_literals;

namespace {

constexpr uint32_t kIndexCount = 16;
constexpr auto kFirstScanDelay = 100ms;
/// How long an instance may be deaf after the end of another one.
constexpr auto kNoticeInterval = 200ms;

constexpr uint8_t kSendChunk = 20;
constexpr uint8_t kReceiveChunk = 30;
constexpr uint32_t kReadStep = 63;
constexpr uint32_t kReadTimes = 1;

constexpr uint32_t kResetPin = 1U << 10;
constexpr uint32_t kHighPinsValid = 3;
constexpr uint32_t kHighPinsAreOutputs = 0xFF00;
constexpr auto kPinSettleTime = 10ms;

bool isCh341(const QString &path)
{
    const QLatin1String tag("PID_");
    const int position = path.toUpper().indexOf(tag);
    return position >= 0 && path.mid(position + tag.size(), 4).toUpper() == QLatin1String("5512");
}

/// Missing and non-numeric fields count as 0.
uint16_t idOfPath(const QString &path)
{
    const QStringList instance = path.split(QLatin1Char('#')).value(2).split(QLatin1Char('&'));
    return static_cast<uint16_t>(instance.value(0).toUInt() * 1000 + instance.value(3).toUInt());
}

/// Ids of all bridges that are plugged in.
QVector<uint16_t> listBridges()
{
    QVector<uint16_t> ids;
    for (uint32_t index = 0; index < kIndexCount; ++index) {
        const char *name = CH341GetDeviceName(index);
        if (name == nullptr)
            continue;
        qDebug("%s", name);
        const QString path = QString::fromLocal8Bit(name);
        if (isCh341(path))
            ids.append(idOfPath(path));
    }
    qDebug() << ids;
    return ids;
}

bool sendPacket(uint8_t index, const Ch341Packet &packet)
{
    uint32_t sent = packet.size();
    return CH341WriteData(index, packet.data(), &sent) != 0 && sent != 0;
}

bool receivePacket(uint8_t index, const Ch341Packet &packet, uint8_t *buffer)
{
    uint32_t received = 0;
    const uint32_t done =
        CH341WriteRead(index, packet.size(), packet.data(), kReadStep, kReadTimes, &received, buffer);
    return done != 0 && received != 0;
}

} // namespace

std::atomic<class_ch341 *> class_ch341::s_notified{nullptr};

class_ch341::class_ch341(QObject *parent)
    : QObject(parent)
{
    qDebug("ch341 new");
    qRegisterMetaType<QVector<uint16_t>>("QVector<uint16_t>");
    connect(this, &class_ch341::bridgeNoticed, this, &class_ch341::takeNotice);
    s_notified = this;
    CH341SetDeviceNotify(0, nullptr, &class_ch341::CH341_NOTIFY_ROUTINE);
    QTimer::singleShot(kFirstScanDelay, this, &class_ch341::getScanSignal);
    auto *timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &class_ch341::keepNoticed);
    timer->start(kNoticeInterval);
}

class_ch341::~class_ch341()
{
    qDebug("ch341 delete");
    close();
    // A routine that is running still uses the instance; the library returns only when it has ended.
    CH341SetDeviceNotify(0, nullptr, nullptr);
    s_notified = nullptr;
}

bool class_ch341::open(uint16_t id)
{
    // A bridge that left and came back before the instance is told again would be dead and look open.
    keepNoticed();
    const int8_t position = openListedBridge(m_state, id, kIndexCount, CH341OpenDevice, CH341CloseDevice);
    if (position < 0)
        return false;
    const auto index = static_cast<uint8_t>(position);
    CH341ResetDevice(index);
    CH341FlushBuffer(index);
    m_state.openIndex = index;
    m_state.openedId = id;
    Q_EMIT si_connected();
    qDebug("connect success:%d, idx:%d", id, index);
    return true;
}

uint8_t class_ch341::close()
{
    if (isOpen()) {
        CH341CloseDevice(m_state.openIndex);
        m_state.openIndex = BridgeState::kClosed;
        Q_EMIT si_disconnected();
    }
    return 1;
}

int class_ch341::scan()
{
    m_state.deviceList = listBridges();
    return m_state.deviceList.size();
}

void class_ch341::getScanSignal()
{
    scan();
    Q_EMIT si_updateList(m_state.deviceList);
}

uint16_t class_ch341::write(uint8_t address, const uint8_t *data, uint16_t length)
{
    if (!isOpen() || data == nullptr || length == 0)
        return 0;
    Ch341Packet packet = Ch341Packet::first(static_cast<uint8_t>(address << 1), m_speed);
    for (int chunk = 0; chunk < length / kSendChunk; ++chunk) {
        packet.send(data + chunk * kSendChunk, kSendChunk);
        packet.end();
        if (!sendPacket(m_state.openIndex, packet))
            return 0;
        packet = Ch341Packet::next();
    }
    const auto rest = static_cast<uint8_t>(length % kSendChunk);
    if (rest != 0)
        packet.send(data + length - rest, rest);
    packet.stop();
    packet.end();
    return sendPacket(m_state.openIndex, packet) ? length : 0;
}

uint16_t class_ch341::read(uint8_t address, uint8_t *buffer, uint16_t length)
{
    if (!isOpen() || buffer == nullptr || length == 0)
        return 0;
    auto fullChunks = static_cast<uint8_t>(length / kReceiveChunk);
    auto rest = static_cast<uint8_t>(length % kReceiveChunk);
    if (rest == 0) {
        --fullChunks;
        rest = kReceiveChunk;
    }
    Ch341Packet packet = Ch341Packet::first(static_cast<uint8_t>((address << 1) | 1), m_speed);
    for (uint8_t chunk = 0; chunk < fullChunks; ++chunk) {
        packet.receive(kReceiveChunk);
        packet.end();
        if (!receivePacket(m_state.openIndex, packet, buffer))
            return 0;
        buffer += kReceiveChunk;
        packet = Ch341Packet::next();
    }
    packet.receiveLast(rest);
    packet.stop();
    packet.end();
    return receivePacket(m_state.openIndex, packet, buffer) ? length : 0;
}

uint32_t class_ch341::setIICSpeed(ch341_iic_speed_te speed)
{
    if (!isOpen() || speed > ch341_iic_speed_te::Khz750)
        return 0;
    m_speed = speed;
    return CH341SetStream(m_state.openIndex, static_cast<uint32_t>(speed));
}

void class_ch341::setInt(uint8_t level)
{
    if (!isOpen())
        return;
    uint32_t status = 0;
    CH341GetInput(m_state.openIndex, &status);
    std::this_thread::sleep_for(kPinSettleTime);
    status = level != 0 ? status | kResetPin : status & ~kResetPin;
    CH341SetOutput(m_state.openIndex, kHighPinsValid, kHighPinsAreOutputs, status);
}

uint8_t class_ch341::getInt()
{
    if (!isOpen())
        return 255;
    uint32_t status = 0;
    CH341GetInput(m_state.openIndex, &status);
    return (status & kResetPin) != 0 ? 1 : 0;
}

void TACTILE_VENDOR_CALL class_ch341::CH341_NOTIFY_ROUTINE(uint32_t status)
{
    class_ch341 *link = s_notified;
    if (link == nullptr)
        return;
    ++link->m_noticesUnderway;
    Q_EMIT link->bridgeNoticed(status, listBridges());
}

void class_ch341::takeNotice(unsigned int status, const QVector<uint16_t> &ids)
{
    const bool isLatest = --m_noticesUnderway == 0;
    m_state.deviceList = ids;
    Q_EMIT si_updateList(ids);
    followOpenBridge(*this, m_state, status, isLatest);
}

void class_ch341::keepNoticed()
{
    class_ch341 *nobody = nullptr;
    if (!s_notified.compare_exchange_strong(nobody, this))
        return;
    CH341SetDeviceNotify(0, nullptr, &class_ch341::CH341_NOTIFY_ROUTINE);
    getScanSignal();
    followOpenBridge(*this, m_state, kBridgeRemoved);
}
