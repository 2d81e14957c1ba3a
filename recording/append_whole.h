#pragma once

class QByteArray;
class QFileDevice;

/// Appends all the bytes or none: what a full disk let through is cut off again. The file is open, without a
/// buffer of its own, and at its end.
bool appendWhole(QFileDevice &file, const QByteArray &bytes);
