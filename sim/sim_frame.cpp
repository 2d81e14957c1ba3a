#include "sim/sim_frame.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

uint16_t sumOf(const QByteArray &bytes, int count)
{
    unsigned int sum = 0;
    for (int i = 0; i < count; ++i)
        sum += static_cast<uint8_t>(bytes.at(i));
    return static_cast<uint16_t>(sum);
}

uint32_t scaled(float newtons, float unitsPerNewton)
{
    return static_cast<uint32_t>(std::lround(std::max(0.0F, newtons) * unitsPerNewton));
}

// The two words that nobody reads carry the same values as scaled integers, as real boards send them.
void appendLongForce(QByteArray &frame, const SimForce &force, uint32_t selfProximity)
{
    simAppend(frame, simFloatBits(force.normalNewtons), 4);
    simAppend(frame, scaled(force.normalNewtons, 1000.0F), 4);
    simAppend(frame, simFloatBits(force.tangentialNewtons), 4);
    simAppend(frame, scaled(force.tangentialNewtons, 1000.0F), 4);
    simAppend(frame, force.directionDegrees, 2);
    simAppend(frame, selfProximity, 4);
}

void appendForce(QByteArray &frame, uint8_t format, const SimForce &force, uint32_t selfProximity)
{
    switch (format) {
    case 2:
        appendLongForce(frame, force, selfProximity);
        break;
    case 3:
        simAppend(frame, scaled(force.normalNewtons, 10.0F), 1);
        simAppend(frame, scaled(force.tangentialNewtons, 10.0F), 1);
        simAppend(frame, force.directionDegrees, 2);
        break;
    case 4:
        simAppend(frame, scaled(force.normalNewtons, 100.0F), 2);
        simAppend(frame, scaled(force.tangentialNewtons, 100.0F), 2);
        simAppend(frame, force.directionDegrees, 2);
        break;
    default:
        simAppend(frame, simFloatBits(force.normalNewtons), 4);
        simAppend(frame, simFloatBits(force.tangentialNewtons), 4);
        simAppend(frame, force.directionDegrees, 2);
        break;
    }
}

} // namespace

SimValues::SimValues(const finger_info_ts &model)
    : channels(model.chNum)
    , forces(model.yddsNum)
    , selfProximity(model.sProxNum)
    , mutualProximity(model.mProxNum)
{}

QByteArray simSealed(QByteArray frame)
{
    simAppend(frame, sumOf(frame, frame.size()), 2);
    return frame;
}

bool simSumFits(const QByteArray &frame)
{
    const int size = frame.size() - 2;
    return size > 0 && sumOf(frame, size) == simValue(frame, size, 2);
}

void simAppend(QByteArray &frame, uint32_t value, int count)
{
    for (int i = 0; i < count; ++i)
        frame.append(static_cast<char>(value >> (8 * i)));
}

uint32_t simValue(const QByteArray &frame, int offset, int count)
{
    uint32_t value = 0;
    const int end = std::min({count, 4, static_cast<int>(frame.size()) - offset});
    for (int i = 0; i < end; ++i)
        value |= static_cast<uint32_t>(static_cast<uint8_t>(frame.at(offset + i))) << (8 * i);
    return value;
}

uint32_t simFloatBits(float value)
{
    uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

float simFloat(uint32_t bits)
{
    float value = 0.0F;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

uint32_t simChannelValue(double newtons)
{
    const auto thousandths = static_cast<uint32_t>(std::lround(std::max(0.0, newtons) * 1000.0));
    return thousandths == 0 ? 0 : thousandths | 1U;
}

QByteArray simSampleFrame(const finger_info_ts &model, const SimValues &values, uint8_t type, uint8_t mark,
                          uint8_t counter)
{
    QByteArray frame = QByteArrayLiteral("\x55\xAA");
    frame.reserve(model.packLen);
    for (const uint8_t byte : {type, mark, counter, static_cast<uint8_t>(model.chBytes * model.chNum)})
        frame.append(static_cast<char>(byte));
    for (const uint32_t channel : values.channels)
        simAppend(frame, channel, model.chBytes);
    const uint32_t embedded = values.selfProximity.empty() ? 0 : values.selfProximity.front();
    for (const SimForce &force : values.forces)
        appendForce(frame, model.yddsFmt, force, embedded);
    if (model.yddsFmt != 2) {
        for (const uint32_t proximity : values.selfProximity)
            simAppend(frame, proximity, 3);
    }
    for (const uint32_t proximity : values.mutualProximity)
        simAppend(frame, proximity, 3);
    if (model.hasStatus != 0)
        simAppend(frame, values.status, 1);
    return simSealed(frame);
}

QByteArray simAnswerFrame(uint8_t type, uint8_t command, const QByteArray &payload)
{
    QByteArray frame = QByteArrayLiteral("\x55\xAA");
    frame.append(static_cast<char>(type));
    frame.append(static_cast<char>(command | 0x80));
    return simSealed(frame + payload);
}
