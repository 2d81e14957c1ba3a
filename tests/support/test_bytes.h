#pragma once

#include <QByteArray>

/// Bytes of a text of hexadecimal digits, as they stand on the wire.
inline QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

/// So many bytes without a pattern that a shifted block could hide in.
inline QByteArray testBytes(int size)
{
    QByteArray bytes;
    quint32 state = 1;
    for (int i = 0; i < size; ++i) {
        state = state * 1664525U + 1013904223U;
        bytes.append(static_cast<char>(state >> 24U));
    }
    return bytes;
}
