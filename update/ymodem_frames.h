#pragma once

#include <QByteArray>

#include <cstdint>

/// Frames of the firmware transfer. Header and blocks end in a CRC-16 (polynomial 0x1021, from 0, high byte
/// first) over their data field and three zero bytes.
namespace YmodemFrames {

constexpr char kSoh = 0x01;
constexpr char kStx = 0x02;
constexpr char kEot = 0x04;
constexpr char kAck = 0x06;
constexpr char kNak = 0x15;
constexpr char kCan = 0x18;
constexpr char kRequest = 'C';

constexpr int kSmallPayload = 128;
constexpr int kLargePayload = 1024;

/// 136 bytes: the first 20 bytes of the name, and the size in decimal. No name and no size give the null
/// header that ends a transfer.
QByteArray header(const QByteArray &name, uint32_t size);
/// 136 bytes: payload of at most 128 bytes, filled up with 0x1A.
QByteArray smallBlock(uint8_t sequence, const QByteArray &payload);
/// 1032 bytes: payload of at most 1024 bytes, filled up with filler.
QByteArray largeBlock(uint8_t sequence, const QByteArray &payload, char filler = 0x1A);
/// 4 bytes.
QByteArray endOfFile();
/// 8 bytes.
QByteArray cancel();

} // namespace YmodemFrames
