#include "update/firmware_image.h"

#include "update/hex2bin.h"

#include <QFile>
#include <QFileInfo>

#include <array>

namespace {

/// Boot loaders store in units of 16 bytes and get a half unit filled up.
void pad(QByteArray &image)
{
    if (image.size() % 16 == 8)
        image.append(8, '\xFF');
}

/// Masks every whole word with 0x5E27C1B3, low byte first.
void mask(QByteArray &image)
{
    constexpr std::array<unsigned char, 4> kMask{0xB3, 0xC1, 0x27, 0x5E};
    const int maskedSize = image.size() / 4 * 4;
    char *bytes = image.data();
    for (int i = 0; i < maskedSize; ++i)
        bytes[i] =
            static_cast<char>(static_cast<unsigned char>(bytes[i]) ^ kMask[static_cast<unsigned>(i) % 4]);
}

} // namespace

QByteArray firmwareImage(const QString &fileName, const QByteArray &content, bool merge)
{
    const bool isHex = QFileInfo(fileName).suffix().toLower() == QLatin1String("hex");
    QByteArray image = isHex ? hex2bin::hexToBin(content) : content;
    if (image.isEmpty())
        return image;
    pad(image);
    if (merge) {
        qDebug("merge");
        mask(image);
    }
    return image;
}

FirmwareFile loadFirmware(const QString &path, bool merge)
{
    QFile file(path);
    if (!file.exists())
        return {FirmwareFile::Missing, {}, {}};
    QByteArray content;
    if (file.open(QIODevice::ReadOnly))
        content = file.readAll();
    // A file that breaks off while it is read must not be sent as if it were whole.
    if (!file.isOpen() || file.error() != QFileDevice::NoError)
        return {FirmwareFile::Unreadable, {}, {}};
    file.close();
    const QString name = QFileInfo(path).fileName();
    const QByteArray image = firmwareImage(name, content, merge);
    if (image.isEmpty())
        return {FirmwareFile::Empty, {}, {}};
    return {0, name, image};
}
