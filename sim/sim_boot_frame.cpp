#include "sim/sim_boot_frame.h"

#include <cstdint>

namespace {

constexpr int kHead = 3;
constexpr int kTail = 5; // the CRC and three zeros

uint16_t crcOf(const QByteArray &data)
{
    unsigned int crc = 0;
    for (const char byte : data) {
        crc ^= static_cast<unsigned int>(static_cast<uint8_t>(byte)) << 8;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x8000U) != 0 ? (crc << 1) ^ 0x1021U : crc << 1;
    }
    return static_cast<uint16_t>(crc);
}

unsigned int byteAt(const QByteArray &bytes, int index)
{
    return static_cast<uint8_t>(bytes.at(index));
}

} // namespace

int SimBootFrame::length(char first)
{
    switch (first) {
    case kSmall:
        return kHead + 128 + kTail;
    case kLarge:
        return kHead + 1024 + kTail;
    case kEnd:
        return 4;
    case kCancel:
        return 8;
    default:
        return 0;
    }
}

bool SimBootFrame::isIntact(const QByteArray &frame)
{
    if ((byteAt(frame, 1) ^ byteAt(frame, 2)) != 0xFF || !frame.endsWith(QByteArray(3, '\0')))
        return false;
    const int size = frame.size();
    const unsigned int crc = byteAt(frame, size - kTail) << 8 | byteAt(frame, size - kTail + 1);
    return crc == crcOf(data(frame));
}

QByteArray SimBootFrame::data(const QByteArray &frame)
{
    return frame.mid(kHead, frame.size() - kHead - kTail);
}
