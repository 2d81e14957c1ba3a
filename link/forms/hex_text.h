#pragma once

#include <QByteArray>
#include <QString>

/// Bytes of a text of hexadecimal digits: two digits a byte, a lone last digit a byte of its own ("12A" gives
/// 0x12 0x0A). A pair that is not hexadecimal gives 0.
QByteArray bytesFromHexText(const QString &text);
