#include "tests/fuzz/fuzz_inputs.h"
#include "update/firmware_image.h"
#include "update/hex2bin.h"

namespace {

/// The image written out again, 255 bytes a record.
QByteArray asHexText(const QByteArray &image)
{
    QByteArray text;
    for (int at = 0; at < image.size(); at += 255) {
        const QByteArray bytes = image.mid(at, 255);
        QByteArray record(1, static_cast<char>(bytes.size()));
        record += QByteArray(3, '\0') + bytes;
        unsigned sum = 0;
        for (const char byte : record)
            sum += static_cast<unsigned char>(byte);
        record += static_cast<char>(0U - sum);
        text += ':' + record.toHex() + '\n';
    }
    return text + ":00000001FF";
}

} // namespace

void fuzzHexToBin(const uint8_t *input, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(input), static_cast<int>(size));
    const QByteArray image = hex2bin::hexToBin(text);
    fuzzCheck(image.size() * 2 <= text.size(), "two digits a byte");
    fuzzCheck(hex2bin::hexToBin(text + '\0' + ":zz") == image, "nothing counts after a zero byte");
    fuzzCheck(hex2bin::hexToBin(asHexText(image)) == image, "an image written out reads as it was");

    const QByteArray masked = firmwareImage(QStringLiteral("a.hex"), text, true);
    const bool isPadded = image.size() % 16 == 8;
    fuzzCheck(masked.size() == image.size() + (isPadded ? 8 : 0), "padded by half a unit or not at all");
    const QByteArray plain = firmwareImage(QStringLiteral("a.bin"), masked, true);
    fuzzCheck(plain.startsWith(image), "masked twice is not masked");
}
