#pragma once

#include <QByteArray>

/// Bytes of a text of hexadecimal digits, as they stand on the wire.
inline QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}
