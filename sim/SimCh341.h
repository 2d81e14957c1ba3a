#pragma once

#include "sim/SimBridge.h"

#include <cstdint>

/// A CH341 bridge: interprets stream packets byte by byte. A transfer to an address that nobody acknowledges
/// succeeds all the same and reads as 0xFF; only the single-byte send tells.
class SimCh341 : public SimBridge
{
public:
    /// The hub and port make its device path.
    SimCh341(std::shared_ptr<SimI2cBus> bus, int hub, int port);

    /// Packets that broke the rules of the chip, since ever. It stops working on a packet at the first such
    /// byte.
    int malformedPackets() const;

    // The side of the vendor library.

    /// Works off a packet; the received bytes may be fewer than the packet asks for when it is malformed.
    bool transfer(const QByteArray &packet, QByteArray *received);
    bool pins(uint32_t *status) const;
    bool setPins(uint32_t enable, uint32_t direction, uint32_t data);

protected:
    void powerUp() override;

private:
    class Segment;

    bool runSegment(const QByteArray &bytes, QByteArray &received);
    bool runCommand(Segment &segment);
    bool sendBytes(Segment &segment, int count);
    bool sendByteForStatus(Segment &segment);
    bool receiveBytes(Segment &segment, int count);
    bool runBusCommand(uint8_t command);
    void drivePins();

    int m_malformed = 0;
    uint32_t m_outputs = 0;
    uint32_t m_directions = 0;
};
