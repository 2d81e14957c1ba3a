#pragma once

#include "protocol/frames.h"

#include <QtGlobal>

#include <cstring>

/// The shapes that the payload of a request has, and what the answers are read with. Byte numbers count from
/// the start of the frame, so a payload is bytes 4 to 8. Everything is little-endian.

/// The send type with which samples carry forces.
constexpr uint8_t kForceSendType = 4;

/// A channel or a switch in byte 4, 32 bits behind it.
constexpr RequestPayload payloadByteAndWord(uint8_t byte4, uint32_t word)
{
    return {byte4, static_cast<uint8_t>(word), static_cast<uint8_t>(word >> 8U),
            static_cast<uint8_t>(word >> 16U), static_cast<uint8_t>(word >> 24U)};
}

/// 32 bits in bytes 4 to 7, a byte behind them.
constexpr RequestPayload payloadWordAndByte(uint32_t word, uint8_t byte8)
{
    return {static_cast<uint8_t>(word), static_cast<uint8_t>(word >> 8U), static_cast<uint8_t>(word >> 16U),
            static_cast<uint8_t>(word >> 24U), byte8};
}

/// A value of one byte that belongs to no channel.
constexpr RequestPayload payloadByte7(uint8_t value)
{
    return {0, 0, 0, value, 0};
}

/// The bytes of an IEEE float as they go over the wire.
inline uint32_t floatBits(float value)
{
    uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// Appends 32 bits to a payload of a length of its own.
inline void appendWord(QByteArray &payload, uint32_t word)
{
    for (unsigned int shift = 0; shift < 32; shift += 8)
        payload += static_cast<char>(static_cast<uint8_t>(word >> shift));
}

/// Reads a frame that may be shorter than it should be: what is missing reads as 0.
class FrameReader
{
public:
    explicit FrameReader(const QByteArray &frame)
        : m_frame(frame)
    {}

    uint8_t byteAt(int position) const
    {
        return position < m_frame.size() ? static_cast<uint8_t>(m_frame.at(position)) : uint8_t{0};
    }
    int8_t signedAt(int position) const { return static_cast<int8_t>(byteAt(position)); }
    uint16_t u16At(int position) const
    {
        return static_cast<uint16_t>(byteAt(position) | byteAt(position + 1) << 8);
    }
    uint32_t u32At(int position) const
    {
        return u16At(position) | static_cast<uint32_t>(u16At(position + 2)) << 16U;
    }
    float floatAt(int position) const
    {
        const uint32_t bits = u32At(position);
        float value = 0;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

private:
    const QByteArray &m_frame;
};
