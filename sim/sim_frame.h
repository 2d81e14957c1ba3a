#pragma once

#include "protocol/finger_info.h"

#include <QByteArray>

#include <cstdint>
#include <vector>

/// The frames of a sensor, composed from the sensor's own side.

/// One three-dimensional force.
struct SimForce
{
    float normalNewtons = 0.0F;
    float tangentialNewtons = 0.0F;
    uint16_t directionDegrees = 0; ///< clockwise from up
};

/// What one sample frame says, in raw values. The sizes are those of the model.
struct SimValues
{
    explicit SimValues(const finger_info_ts &model);

    std::vector<uint32_t> channels; ///< thousandths of a newton, bit 0 is the touch flag
    std::vector<SimForce> forces;
    std::vector<uint32_t> selfProximity;
    std::vector<uint32_t> mutualProximity;
    uint8_t status = 0;
};

/// The frame with its 16-bit sum behind it, low byte first.
QByteArray simSealed(QByteArray frame);
/// True when the last two bytes are the sum of all others.
bool simSumFits(const QByteArray &frame);
/// Appends the lowest `count` bytes of the value, low byte first.
void simAppend(QByteArray &frame, uint32_t value, int count);
/// Little-endian value of `count` bytes from `offset` on; bytes behind the end count as 0.
uint32_t simValue(const QByteArray &frame, int offset, int count);
uint32_t simFloatBits(float value);
float simFloat(uint32_t bits);

/// A channel value for a force: whole thousandths of a newton, odd when the channel is touched at all.
uint32_t simChannelValue(double newtons);

/// A whole sample frame of the model. The mark is byte 3, 0x85 in normal work.
QByteArray simSampleFrame(const finger_info_ts &model, const SimValues &values, uint8_t type, uint8_t mark,
                          uint8_t counter);
/// A whole answer to a command.
QByteArray simAnswerFrame(uint8_t type, uint8_t command, const QByteArray &payload);
