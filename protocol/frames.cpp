#include "protocol/frames.h"

#include <QDebug>

#include <algorithm>

namespace {

uint16_t storedSum(const uint8_t *bytes)
{
    return static_cast<uint16_t>(bytes[0] | (bytes[1] << 8));
}

uint16_t addByte(uint16_t sum, uint8_t byte)
{
    return static_cast<uint16_t>(sum + byte);
}

bool allZero(const uint8_t *begin, const uint8_t *end)
{
    return std::all_of(begin, end, [](uint8_t byte) { return byte == 0; });
}

} // namespace

uint16_t frameSum(const uint8_t *bytes, int count)
{
    uint16_t sum = 0;
    for (int i = 0; i < count; ++i)
        sum = addByte(sum, bytes[i]);
    return sum;
}

uint16_t frameSum(const QByteArray &bytes)
{
    return frameSum(frameBytes(bytes), bytes.size());
}

bool frameSumFits(const uint8_t *frame, int length)
{
    if (length < kSumLength)
        return false;
    const int sumAt = length - kSumLength;
    return frameSum(frame, sumAt) == storedSum(frame + sumAt);
}

bool frameSumFits(const QByteArray &frame)
{
    return frameSumFits(frameBytes(frame), frame.size());
}

void sealFrame(uint8_t *frame, int length)
{
    const int sumAt = length - kSumLength;
    const uint16_t sum = frameSum(frame, sumAt);
    frame[sumAt] = static_cast<uint8_t>(sum & 0xFF);
    frame[sumAt + 1] = static_cast<uint8_t>(sum >> 8);
}

void sealFrame(QByteArray &frame)
{
    sealFrame(reinterpret_cast<uint8_t *>(frame.data()), frame.size());
}

QByteArray requestFrame(uint8_t frameAddress, uint8_t command, const RequestPayload &payload)
{
    return longRequestFrame(
        frameAddress, command,
        QByteArray::fromRawData(reinterpret_cast<const char *>(payload.data()), kRequestPayloadLength));
}

QByteArray longRequestFrame(uint8_t frameAddress, uint8_t command, const QByteArray &payload)
{
    QByteArray frame;
    frame.reserve(payload.size() + kFrameOverhead);
    for (const uint8_t byte : {kRequestSync1, kRequestSync2, frameAddress, command})
        frame.append(static_cast<char>(byte));
    frame.append(payload);
    frame.append(kSumLength, '\0');
    sealFrame(frame);
    return frame;
}

int getPackLen(const uint8_t *buf, int len)
{
    if (len < kFrameOverhead)
        return 0;
    uint16_t sum = 0;
    for (int i = 0; i < len - kSumLength; ++i) {
        sum = addByte(sum, buf[i]);
        const int frameLength = i + 1 + kSumLength;
        if (sum == storedSum(buf + i + 1) && allZero(buf + frameLength, buf + len))
            return frameLength;
    }
    return 0;
}

int getSensorPackLen(const uint8_t *buf, int len)
{
    if (len < kFrameOverhead)
        return 0;
    const int lowerBound = buf[kSampleLowerBoundAt] + kFrameOverhead;
    uint16_t sum = 0;
    for (int i = 0; i < len - kSumLength; ++i) {
        sum = addByte(sum, buf[i]);
        if (i > lowerBound && sum == storedSum(buf + i + 1)) {
            const int frameLength = i + 1 + kSumLength;
            qDebug("pack len1:%d", frameLength);
            return frameLength;
        }
    }
    return 0;
}
