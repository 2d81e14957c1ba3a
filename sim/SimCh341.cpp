#include "sim/SimCh341.h"

#include <algorithm>

namespace {

constexpr int kSegmentSize = 32;
constexpr int kReadsPerSegment = 32;
constexpr uint32_t kResetPin = 1U << 10;
constexpr uint32_t kPulledUp = 0xFFFF;

enum StreamByte : uint8_t {
    kEnd = 0x00,
    kMicroseconds = 0x40,
    kMilliseconds = 0x50,
    kClock = 0x60,
    kStart = 0x74,
    kStop = 0x75,
    kSend = 0x80,
    kStream = 0xAA,
    kReceive = 0xC0,
};

/// The bits of `mask` come from `to`, the others stay.
uint32_t replaced(uint32_t from, uint32_t to, uint32_t mask)
{
    return (from & ~mask) | (to & mask);
}

} // namespace

/// One segment of a packet on its way through the chip.
class SimCh341::Segment
{
public:
    Segment(const QByteArray &bytes, QByteArray &received)
        : m_bytes(bytes)
        , m_received(received)
        , m_room(received.size() + kReadsPerSegment)
    {}

    int left() const { return m_bytes.size() - m_position; }
    uint8_t take() { return static_cast<uint8_t>(m_bytes.at(m_position++)); }
    bool store(uint8_t byte)
    {
        m_received.append(static_cast<char>(byte));
        return m_received.size() <= m_room;
    }

private:
    const QByteArray &m_bytes;
    QByteArray &m_received;
    int m_room;
    int m_position = 0;
};

SimCh341::SimCh341(std::shared_ptr<SimI2cBus> bus, int hub, int port)
    : SimBridge(Family::Ch341, simDevicePath("5512", hub, port), std::move(bus))
{}

int SimCh341::malformedPackets() const
{
    const Lock lock(m_mutex);
    return m_malformed;
}

bool SimCh341::transfer(const QByteArray &packet, QByteArray *received)
{
    const Lock lock(m_mutex);
    if (!beginTransfer(packet.size()))
        return false;
    QByteArray bytes;
    for (int start = 0; start < packet.size(); start += kSegmentSize) {
        if (!runSegment(packet.mid(start, kSegmentSize), bytes)) {
            if (!isPlugged())
                return false;
            ++m_malformed;
            break;
        }
    }
    endTransfer(&bytes);
    if (received != nullptr)
        *received = bytes;
    return isPlugged() && (received == nullptr || !bytes.isEmpty());
}

bool SimCh341::pins(uint32_t *status) const
{
    const Lock lock(m_mutex);
    if (!isUsable())
        return false;
    *status = replaced(kPulledUp, m_outputs, m_directions);
    return true;
}

bool SimCh341::setPins(uint32_t enable, uint32_t direction, uint32_t data)
{
    const Lock lock(m_mutex);
    if (!isUsable())
        return false;
    constexpr uint32_t high = 0xFF00;
    constexpr uint32_t low = 0x00FF;
    const auto mask = [enable](unsigned int highBit) {
        return ((enable >> highBit & 1U) != 0 ? high : 0U) | ((enable >> (highBit + 2) & 1U) != 0 ? low : 0U);
    };
    m_outputs = replaced(m_outputs, data, mask(0));
    m_directions = replaced(m_directions, direction, mask(1));
    drivePins();
    return true;
}

void SimCh341::powerUp()
{
    SimBridge::powerUp();
    const Lock lock(m_mutex);
    m_outputs = 0;
    m_directions = 0;
}

bool SimCh341::runSegment(const QByteArray &bytes, QByteArray &received)
{
    Segment segment(bytes, received);
    if (segment.take() != kStream)
        return false;
    while (segment.left() > 0) {
        if (bytes.at(bytes.size() - segment.left()) == kEnd)
            return true;
        if (!runCommand(segment))
            return false;
    }
    return false;
}

bool SimCh341::runCommand(Segment &segment)
{
    const uint8_t command = segment.take();
    if (!carryByte())
        return false;
    if (command >= kReceive)
        return receiveBytes(segment, command - kReceive);
    if (command == kSend)
        return sendByteForStatus(segment);
    if (command > kSend)
        return sendBytes(segment, command - kSend);
    return runBusCommand(command);
}

bool SimCh341::sendBytes(Segment &segment, int count)
{
    if (count > segment.left())
        return false;
    for (int i = 0; i < count; ++i) {
        if (!carryByte())
            return false;
        bus().send(segment.take());
    }
    return true;
}

bool SimCh341::sendByteForStatus(Segment &segment)
{
    constexpr uint8_t acknowledged = 0x6F;
    constexpr uint8_t refused = 0xEF;
    if (segment.left() == 0 || !carryByte())
        return false;
    return segment.store(bus().send(segment.take()) ? acknowledged : refused);
}

bool SimCh341::receiveBytes(Segment &segment, int count)
{
    // A lone receive command takes one byte without acknowledging it.
    for (int i = 0; i < std::max(1, count); ++i) {
        if (!carryByte() || !segment.store(bus().receive()))
            return false;
    }
    return true;
}

bool SimCh341::runBusCommand(uint8_t command)
{
    using namespace std::chrono_literals;
    constexpr uint8_t argument = 0x0F;
    if (command >= kClock && command < kClock + 4)
        return applyClockMode(command - kClock);
    switch (command & ~argument) {
    case kMicroseconds:
        bus().pause((command & argument) * 1us);
        return true;
    case kMilliseconds:
        bus().pause((command & argument) * 1ms);
        return true;
    default:
        break;
    }
    if (command == kStart)
        bus().start();
    else if (command == kStop)
        bus().stop();
    return command == kStart || command == kStop;
}

void SimCh341::drivePins()
{
    const bool drivenLow = (m_directions & ~m_outputs & kResetPin) != 0;
    bus().setResetLevel(!drivenLow);
}
