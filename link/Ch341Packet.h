#pragma once

#include "link/class_ch341.h"

#include <array>
#include <cstddef>
#include <cstdint>

/// One stream packet of the CH341, built in place. No packet of ours is longer than the 32 bytes that the
/// chip takes in one go.
class Ch341Packet
{
public:
    /// First packet of a transfer: opens the stream, start condition, address byte, pause as the speed wants
    /// it.
    static Ch341Packet first(uint8_t addressByte, ch341_iic_speed_te speed);
    /// Any further packet of a transfer.
    static Ch341Packet next();

    /// Sends 1 to 20 bytes.
    void send(const uint8_t *data, uint8_t count);
    /// Receives 1 to 30 bytes, each acknowledged.
    void receive(uint8_t count);
    /// Receives 1 to 30 bytes of which the last is not acknowledged.
    void receiveLast(uint8_t count);
    void stop();
    void end();

    const uint8_t *data() const { return m_bytes.data(); }
    uint32_t size() const { return static_cast<uint32_t>(m_size); }

private:
    void append(uint8_t byte) { m_bytes[m_size++] = byte; }

    std::array<uint8_t, 32> m_bytes;
    size_t m_size = 0;
};
