#include "link/forms/hex_text.h"

QByteArray bytesFromHexText(const QString &text)
{
    QByteArray bytes;
    bytes.reserve((text.size() + 1) / 2);
    for (int i = 0; i < text.size(); i += 2)
        bytes.append(static_cast<char>(text.midRef(i, 2).toUShort(nullptr, 16)));
    return bytes;
}
