#include "protocol/sample.h"

#include "protocol/frames.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace {

constexpr int kProximityBytes = 3;

// Frames of this block format carry their one self-capacitance value inside the first block.
constexpr uint8_t kFormatWithProximity = 2;
constexpr int kProximityInBlock = 18;

uint32_t littleEndian(const uint8_t *bytes, int count)
{
    uint32_t value = 0;
    for (int i = count - 1; i >= 0; --i)
        value = (value << 8) | bytes[i];
    return value;
}

uint16_t word(const uint8_t *bytes)
{
    return qFromLittleEndian<uint16_t>(bytes);
}

float real(const uint8_t *bytes)
{
    const auto bits = qFromLittleEndian<uint32_t>(bytes);
    float value = 0;
    static_assert(sizeof value == sizeof bits);
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

QString newtonText(float newtons)
{
    return QString::number(static_cast<double>(newtons), 'f', 2);
}

SampleBlock block(float normal, float tangential, uint16_t direction)
{
    return {normal,
            tangential,
            direction,
            newtonText(normal),
            newtonText(tangential),
            QString::number(direction)};
}

SampleBlock decodeBlock(uint8_t format, const uint8_t *bytes)
{
    switch (format) {
    case 2:
        return block(real(bytes), real(bytes + 8), word(bytes + 16));
    case 3:
        return block(static_cast<float>(bytes[0]) / 10.0F, static_cast<float>(bytes[1]) / 10.0F,
                     word(bytes + 2));
    case 4:
        return block(static_cast<float>(word(bytes)) / 100.0F, static_cast<float>(word(bytes + 2)) / 100.0F,
                     word(bytes + 4));
    default:
        return block(real(bytes), real(bytes + 4), word(bytes + 8));
    }
}

/// Newtons of a raw channel value, which counts as signed: one with the top bit set is no force.
float channelForce(int32_t raw)
{
    return raw > 1 ? static_cast<float>(raw) / 1000.0F : 0.0F;
}

bool isSample(const QByteArray &data)
{
    const uint8_t *frame = frameBytes(data);
    return frame[0] == kResponseSync1 && frame[1] == kResponseSync2 && frame[kCommandAt] == kSampleCommand &&
           frameSumFits(data);
}

/// The elements of a list of `count`. What is there is written over, which costs less than building it anew.
template<typename Element>
Element *places(QVector<Element> &list, int count)
{
    list.resize(count);
    return list.data();
}

const uint8_t *decodeChannels(const uint8_t *bytes, const finger_info_ts &row, Sample &sample)
{
    SampleNumber *numbers = places(sample.channels, row.chNum);
    float *forces = places(sample.forces, std::min(row.chNum, row.forceChNum));
    for (int i = 0; i < row.chNum; ++i, bytes += row.chBytes) {
        const uint32_t value = littleEndian(bytes, row.chBytes);
        const auto raw = static_cast<int32_t>(value);
        numbers[i] = {value, QString::number(raw)};
        if (i < row.forceChNum)
            forces[i] = channelForce(raw);
    }
    return bytes;
}

const uint8_t *decodeBlocks(const uint8_t *bytes, const finger_info_ts &row, uint8_t blockBytes,
                            Sample &sample)
{
    const bool known = sampleBlockLength(row.yddsFmt) != 0;
    SampleBlock *blocks = places(sample.blocks, known ? row.yddsNum : 0);
    for (int i = 0; i < sample.blocks.size(); ++i)
        blocks[i] = decodeBlock(row.yddsFmt, bytes + i * blockBytes);
    return bytes + row.yddsNum * blockBytes;
}

const uint8_t *decodeProximity(const uint8_t *bytes, int count, QVector<SampleNumber> &list)
{
    SampleNumber *numbers = places(list, count);
    for (int i = 0; i < count; ++i, bytes += kProximityBytes) {
        const uint32_t value = littleEndian(bytes, kProximityBytes);
        numbers[i] = {value, QString::number(value)};
    }
    return bytes;
}

} // namespace

uint8_t sampleBlockLength(uint8_t format)
{
    switch (format) {
    case 2:
        return 22;
    case 3:
        return 4;
    case 4:
        return 6;
    case 5:
        return 10;
    default:
        return 0;
    }
}

uint16_t sampleLength(const finger_info_ts &row, uint8_t blockBytes)
{
    int length = kSampleValuesAt + row.chBytes * row.chNum + kProximityBytes * row.mProxNum + row.hasStatus +
                 kSumLength;
    if (row.yddsFmt == kFormatWithProximity)
        length += sampleBlockLength(kFormatWithProximity) * row.yddsNum;
    else
        length += blockBytes * row.yddsNum + kProximityBytes * row.sProxNum;
    return static_cast<uint16_t>(length);
}

SampleRefusal decodeSample(const QByteArray &data, const finger_info_ts &row, uint8_t blockBytes,
                           Sample &sample)
{
    if (data.size() != row.packLen)
        return SampleRefusal::Length;
    if (!isSample(data))
        return SampleRefusal::Frame;
    const uint8_t *frame = frameBytes(data);
    sample.counter = frame[kSampleCounterAt];
    const uint8_t *firstBlock = decodeChannels(frame + kSampleValuesAt, row, sample);
    const uint8_t *next = decodeBlocks(firstBlock, row, blockBytes, sample);
    if (row.yddsFmt == kFormatWithProximity) {
        const uint32_t value = littleEndian(firstBlock + kProximityInBlock, 4);
        *places(sample.selfProximity, 1) = {value, QString::number(value)};
    } else {
        next = decodeProximity(next, row.sProxNum, sample.selfProximity);
    }
    next = decodeProximity(next, row.mProxNum, sample.mutualProximity);
    sample.status.clear();
    if (row.hasStatus == 1)
        sample.status.append({*next, QString::number(*next)});
    return SampleRefusal::None;
}
