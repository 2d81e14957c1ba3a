#pragma once

#include "protocol/frame_layout.h"

#include <QByteArray>

#include <array>
#include <cstdint>

/// What every frame of the sensors has in common: two sync bytes, a frame address, a command, and at the end
/// the 16-bit sum of everything before it, low byte first. Nothing here looks at more than the bytes it is
/// given.

using RequestPayload = std::array<uint8_t, kRequestPayloadLength>;

/// The bytes of an array as the protocol counts them, without a sign.
inline const uint8_t *frameBytes(const QByteArray &frame)
{
    return reinterpret_cast<const uint8_t *>(frame.constData());
}

/// Sum of `count` unsigned bytes, cut to 16 bits.
uint16_t frameSum(const uint8_t *bytes, int count);
uint16_t frameSum(const QByteArray &bytes);

/// True when the last two bytes are the sum of all bytes before them; false for fewer than two bytes.
bool frameSumFits(const uint8_t *frame, int length);
bool frameSumFits(const QByteArray &frame);

/// Overwrites the last two bytes with the sum of all bytes before them. The frame has two bytes at least.
void sealFrame(uint8_t *frame, int length);
void sealFrame(QByteArray &frame);

/// A sealed request of kRequestLength bytes.
QByteArray requestFrame(uint8_t frameAddress, uint8_t command, const RequestPayload &payload = {});

/// A sealed request whose payload has a length of its own: payload.size() + 6 bytes in all.
QByteArray longRequestFrame(uint8_t frameAddress, uint8_t command, const QByteArray &payload);

/// Length of a response of unknown length at the start of a buffer that may have been read too long: the
/// first place where the sum fits and nothing but zeros follows. 0 when there is none. Sync bytes are the
/// caller's to test.
int getPackLen(const uint8_t *buf, int len);

/// Length of a sample frame at the start of a buffer in which bytes of a next frame may follow: the first
/// place where the sum fits, beyond the lower bound that byte 5 gives. 0 when there is none. Sync bytes are
/// the caller's to test.
int getSensorPackLen(const uint8_t *buf, int len);
