#pragma once

#include "protocol/finger_info.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <cstdint>

/// A number of a sample frame and its decimal text.
struct SampleNumber
{
    uint32_t value = 0;
    QString text;
};

/// A three-dimensional force block: newtons and their texts with two decimals, degrees.
struct SampleBlock
{
    float normal = 0;
    float tangential = 0;
    uint16_t direction = 0;
    QString normalText;
    QString tangentialText;
    QString directionText;
};

/// What a sample frame says, in the order of the frame. One object serves many frames, so that its lists keep
/// their room.
struct Sample
{
    uint8_t counter = 0;
    QVector<SampleNumber> channels; ///< the text shows the value as signed
    QVector<float> forces;          ///< newtons of the force channels
    QVector<SampleBlock> blocks;
    QVector<SampleNumber> selfProximity;
    QVector<SampleNumber> mutualProximity;
    QVector<SampleNumber> status; ///< one element, or none for a model without a status byte
};

/// Why a frame is no sample.
enum class SampleRefusal : uint8_t {
    None,
    Length, ///< not the length of the model
    Frame,  ///< wrong sync bytes, command or sum
};

/// Bytes of a block of this format; 0 for an unknown one.
uint8_t sampleBlockLength(uint8_t format);

/// Length that the frames of a row should have, cut to 16 bits. `blockBytes` counts for every format but the
/// one that carries a proximity value.
uint16_t sampleLength(const finger_info_ts &row, uint8_t blockBytes);

/// Decodes a frame of a row whose blocks have `blockBytes` bytes; blocks of an unknown format are skipped.
/// The frame is read as the row says, which must fit its own length. A refused frame leaves `sample` alone.
SampleRefusal decodeSample(const QByteArray &data, const finger_info_ts &row, uint8_t blockBytes,
                           Sample &sample);
