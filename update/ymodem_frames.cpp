#include "update/ymodem_frames.h"

#include <array>

namespace {

constexpr int kMaxNameLength = 20;
constexpr int kTrailingZeros = 3;

constexpr std::array<uint16_t, 256> makeCrcTable()
{
    std::array<uint16_t, 256> table{};
    for (unsigned byte = 0; byte < table.size(); ++byte) {
        unsigned crc = byte << 8U;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x8000U) != 0 ? crc << 1U ^ 0x1021U : crc << 1U;
        table[byte] = static_cast<uint16_t>(crc);
    }
    return table;
}

uint16_t crc16(const QByteArray &data)
{
    static constexpr std::array<uint16_t, 256> kTable = makeCrcTable();
    unsigned crc = 0;
    for (const char byte : data)
        crc = (crc << 8U & 0xFFFFU) ^ kTable[crc >> 8U ^ static_cast<unsigned char>(byte)];
    return static_cast<uint16_t>(crc);
}

QByteArray frame(char start, uint8_t sequence, const QByteArray &data)
{
    const uint16_t crc = crc16(data);
    QByteArray bytes;
    bytes.reserve(5 + data.size() + kTrailingZeros);
    bytes.append(start);
    bytes.append(static_cast<char>(sequence));
    bytes.append(static_cast<char>(0xFF - sequence));
    bytes.append(data);
    bytes.append(static_cast<char>(crc >> 8U));
    bytes.append(static_cast<char>(crc & 0xFFU));
    bytes.append(kTrailingZeros, '\0');
    return bytes;
}

} // namespace

QByteArray YmodemFrames::header(const QByteArray &name, uint32_t size)
{
    QByteArray data;
    if (!name.isEmpty() || size != 0)
        data = name.left(kMaxNameLength) + '\0' + QByteArray::number(size);
    return frame(kSoh, 0, data + QByteArray(kSmallPayload - data.size(), '\0'));
}

QByteArray YmodemFrames::smallBlock(uint8_t sequence, const QByteArray &payload)
{
    return frame(kSoh, sequence, payload.leftJustified(kSmallPayload, 0x1A));
}

QByteArray YmodemFrames::largeBlock(uint8_t sequence, const QByteArray &payload, char filler)
{
    return frame(kStx, sequence, payload.leftJustified(kLargePayload, filler));
}

QByteArray YmodemFrames::endOfFile()
{
    return QByteArray(1, kEot) + QByteArray(3, '\0');
}

QByteArray YmodemFrames::cancel()
{
    return {8, kCan};
}
