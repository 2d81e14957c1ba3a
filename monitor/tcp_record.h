#pragma once

#include <QByteArray>

class class_finger;

/// The formats of a record, in the order of the user's box.
enum class TcpFormat { FireWater = 0, JustFloat = 1 };

/// What the decoder holds as one record: all channels, the blocks' normal force, tangential force and
/// direction, the proximity values, the status. FireWater is a line of text with commas between the values;
/// JustFloat is 32-bit floats without separators and an infinity as end mark, little-endian. Any other format
/// gives an empty record.
QByteArray tcpRecord(TcpFormat format, const class_finger &decoder);
