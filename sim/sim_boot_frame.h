#pragma once

#include <QByteArray>

/// Frames that a host sends to a boot loader.
namespace SimBootFrame {

constexpr char kSmall = 0x01; ///< header, or a block of 128 bytes
constexpr char kLarge = 0x02; ///< a block of 1024 bytes
constexpr char kEnd = 0x04;
constexpr char kCancel = 0x18;

/// Length of the frame that begins with this byte; 0 when no frame does.
int length(char first);
/// True when number, CRC and trailing zeros of a header or block are right.
bool isIntact(const QByteArray &frame);
/// What a header or block carries.
QByteArray data(const QByteArray &frame);

} // namespace SimBootFrame
