#pragma once

#include <QByteArray>
#include <QString>

/// The flat image that is sent for a file of the given name and content: Intel HEX text when the suffix is
/// "hex" in any case, the bytes as they are otherwise, then padded and, when merge is set, masked. Empty when
/// there is nothing to send.
QByteArray firmwareImage(const QString &fileName, const QByteArray &content, bool merge);

/// What has come of a file: name and image, or why there is none.
struct FirmwareFile
{
    enum Error { Missing = -1, Unreadable = -2, Empty = -3 };

    int error = 0; ///< 0 or an Error
    QString name;  ///< without its folder
    QByteArray image;
};

FirmwareFile loadFirmware(const QString &path, bool merge);
