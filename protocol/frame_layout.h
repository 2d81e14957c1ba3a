#pragma once

#include <cstdint>

/// Where things stand in a frame. A request begins with AA 55, a response and a sample with 55 AA; a frame
/// address and a command follow, then the payload, and at the end the sum of everything before it.
constexpr uint8_t kRequestSync1 = 0xAA;
constexpr uint8_t kRequestSync2 = 0x55;
constexpr uint8_t kResponseSync1 = kRequestSync2;
constexpr uint8_t kResponseSync2 = kRequestSync1;

constexpr int kAddressAt = 2;
constexpr int kCommandAt = 3;
constexpr int kPayloadAt = 4;
constexpr int kSumLength = 2;
constexpr int kFrameOverhead = kPayloadAt + kSumLength; ///< what a frame has besides its payload

/// Length of an ordinary request frame, and of its payload.
constexpr int kRequestPayloadLength = 5;
constexpr int kRequestLength = kRequestPayloadLength + kFrameOverhead;

/// A response echoes the request's command with this bit set.
constexpr uint8_t kResponseBit = 0x80;

/// A sample frame has a counter and one more byte before its values.
constexpr uint8_t kSampleCommand = 0x85;
constexpr int kSampleCounterAt = kPayloadAt;
constexpr int kSampleLowerBoundAt = kPayloadAt + 1;
constexpr int kSampleValuesAt = kPayloadAt + 2;
