#pragma once

#include <QByteArray>
#include <QString>

/// The flat image that is sent for a file of the given name and content: Intel HEX text when the suffix is "hex" in any
/// case, the bytes as they are otherwise, then padded and, when merge is set, masked. Empty when there is nothing to send.
QByteArray firmwareImage(const QString &fileName, const QByteArray &content, bool merge);
