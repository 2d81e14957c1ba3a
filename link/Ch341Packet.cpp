#include "link/Ch341Packet.h"

#include <algorithm>

namespace {

constexpr uint8_t kStream = 0xAA;
constexpr uint8_t kStart = 0x74;
constexpr uint8_t kStop = 0x75;
constexpr uint8_t kSend = 0x80;
constexpr uint8_t kReceive = 0xC0;
constexpr uint8_t kPause15us = 0x4F;
constexpr uint8_t kEnd = 0x00;

constexpr std::array<uint8_t, 4> kPausesOfSpeed = {0, 2, 3, 5};

} // namespace

Ch341Packet Ch341Packet::first(uint8_t addressByte, ch341_iic_speed_te speed)
{
    Ch341Packet packet = next();
    packet.append(kStart);
    packet.append(kSend + 1);
    packet.append(addressByte);
    for (uint8_t i = 0; i < kPausesOfSpeed[static_cast<size_t>(speed)]; ++i)
        packet.append(kPause15us);
    return packet;
}

Ch341Packet Ch341Packet::next()
{
    Ch341Packet packet;
    packet.append(kStream);
    return packet;
}

void Ch341Packet::send(const uint8_t *data, uint8_t count)
{
    append(static_cast<uint8_t>(kSend + count));
    std::copy_n(data, count, m_bytes.data() + m_size);
    m_size += count;
}

void Ch341Packet::receive(uint8_t count)
{
    append(static_cast<uint8_t>(kReceive + count));
}

void Ch341Packet::receiveLast(uint8_t count)
{
    if (count > 1)
        receive(static_cast<uint8_t>(count - 1));
    append(kReceive);
}

void Ch341Packet::stop()
{
    append(kStop);
}

void Ch341Packet::end()
{
    append(kEnd);
}
