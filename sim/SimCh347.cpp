#include "sim/SimCh347.h"

namespace {

constexpr uint8_t kResetPin = 1;

QByteArray idText(int number)
{
    return "CH347#5&" + QByteArray::number(number, 16) + "&0&2#{5446f048-98b4-4ef0-96e8-27994bac0d00}";
}

uint8_t replaced(uint8_t from, uint8_t to, uint8_t mask)
{
    return static_cast<uint8_t>((from & ~mask) | (to & mask));
}

} // namespace

SimCh347::SimCh347(std::shared_ptr<SimI2cBus> bus, int number)
    : SimBridge(Family::Ch347, idText(number), std::move(bus))
{}

SimCh347::BusMode SimCh347::busMode() const
{
    const Lock lock(m_mutex);
    return m_mode;
}

bool SimCh347::transfer(const QByteArray &written, int readLength, QByteArray *received)
{
    const Lock lock(m_mutex);
    if (written.isEmpty() || !beginTransfer(written.size()))
        return false;
    bus().start();
    bool done = sendAll(written);
    if (done && readLength > 0 && written.size() > 1) {
        bus().start();
        done = bus().send(static_cast<uint8_t>(written.at(0) | 1));
    }
    done = done && receiveAll(readLength, received);
    if (!isPlugged())
        return false;
    bus().stop();
    endTransfer(received);
    return done;
}

bool SimCh347::setStretch(uint32_t on)
{
    const Lock lock(m_mutex);
    m_mode.stretch = on;
    return isUsable();
}

bool SimCh347::setDriverMode(uint8_t mode)
{
    const Lock lock(m_mutex);
    m_mode.driver = mode;
    return isUsable();
}

bool SimCh347::setPins(uint8_t enable, uint8_t direction, uint8_t data)
{
    const Lock lock(m_mutex);
    if (!isUsable())
        return false;
    m_directions = replaced(m_directions, direction, enable);
    m_outputs = replaced(m_outputs, data, enable);
    bus().setResetLevel((m_directions & ~m_outputs & kResetPin) == 0);
    return true;
}

bool SimCh347::pins(uint8_t *direction, uint8_t *data) const
{
    const Lock lock(m_mutex);
    constexpr uint8_t pulledUp = 0xFF;
    *direction = m_directions;
    *data = replaced(pulledUp, m_outputs, m_directions);
    return isUsable();
}

void SimCh347::powerUp()
{
    SimBridge::powerUp();
    const Lock lock(m_mutex);
    m_mode = BusMode();
    m_directions = 0;
    m_outputs = 0;
}

bool SimCh347::sendAll(const QByteArray &bytes)
{
    for (const char byte : bytes) {
        if (!carryByte() || !bus().send(static_cast<uint8_t>(byte)))
            return false;
    }
    return true;
}

bool SimCh347::receiveAll(int count, QByteArray *received)
{
    for (int i = 0; i < count; ++i) {
        if (!carryByte())
            return false;
        received->append(static_cast<char>(bus().receive()));
    }
    return true;
}
