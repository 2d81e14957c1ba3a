#include "sim/SimBridge.h"

#include "sim/SimRegistry.h"

#include <array>

namespace {

constexpr std::array<int, 4> kClocksHz = {20000, 100000, 400000, 750000};
constexpr uint32_t kPowerUpClockMode = 1;

} // namespace

QByteArray simDevicePath(const char *product, int hub, int port)
{
    return QByteArray("\\\\?\\usb#vid_1a86&pid_") + product + '#' + QByteArray::number(hub) + "&2b7e1c5d&0&" +
           QByteArray::number(port) + "#{5446f048-98b4-4ef0-96e8-27994bac0d00}";
}

SimBridge::SimBridge(Family family, const QByteArray &path, std::shared_ptr<SimI2cBus> bus)
    : SimUsbDevice(family, path)
    , m_bus(std::move(bus))
{}

SimTraffic SimBridge::traffic() const
{
    const Lock lock(m_mutex);
    return m_traffic;
}

void SimBridge::failTransfers(int times, int goodOnes)
{
    const Lock lock(m_mutex);
    m_goodTransfers = goodOnes;
    m_failures = times;
}

void SimBridge::shortenReads(int times)
{
    const Lock lock(m_mutex);
    m_shortReads = times;
}

void SimBridge::pullOutAfter(int bytes)
{
    const Lock lock(m_mutex);
    m_bytesUntilPulled = bytes;
}

bool SimBridge::open()
{
    const Lock lock(m_mutex);
    m_open = isPlugged();
    return m_open;
}

void SimBridge::close()
{
    const Lock lock(m_mutex);
    m_open = false;
}

bool SimBridge::isOpen() const
{
    const Lock lock(m_mutex);
    return m_open;
}

bool SimBridge::setClockMode(uint32_t mode)
{
    const Lock lock(m_mutex);
    return isUsable() && applyClockMode(mode);
}

bool SimBridge::applyClockMode(uint32_t mode)
{
    if (mode >= kClocksHz.size())
        return false;
    m_bus->setClockHz(kClocksHz.at(mode));
    return true;
}

void SimBridge::powerUp()
{
    const Lock lock(m_mutex);
    m_open = false;
    m_bytesUntilPulled = -1;
    m_bus->setClockHz(kClocksHz.at(kPowerUpClockMode));
    m_bus->setResetLevel(true);
    m_bus->stop();
}

bool SimBridge::beginTransfer(int bytesOut)
{
    if (!isUsable())
        return false;
    ++m_traffic.packets;
    m_traffic.bytesOut += bytesOut;
    if (m_goodTransfers > 0) {
        --m_goodTransfers;
        return true;
    }
    if (m_failures == 0)
        return true;
    --m_failures;
    return false;
}

void SimBridge::endTransfer(QByteArray *received)
{
    m_bus->settle();
    if (received == nullptr || received->isEmpty())
        return;
    m_traffic.bytesIn += received->size();
    if (m_shortReads > 0) {
        --m_shortReads;
        received->chop(1);
    }
}

bool SimBridge::carryByte()
{
    if (m_bytesUntilPulled > 0)
        --m_bytesUntilPulled;
    if (m_bytesUntilPulled == 0)
        SimRegistry::instance().removeUsb(this);
    return isPlugged();
}
