// What is sent for a file. Independent truth for Intel HEX comes from objcopy.

#include "tests/support/log_capture.h"
#include "tests/support/test_bytes.h"
#include "update/firmware_image.h"
#include "update/hex2bin.h"

#include <QtTest>

#include <tuple>

namespace {

/// A HEX line for a record with the right check byte.
QByteArray record(int type, int offset, const QByteArray &data)
{
    QByteArray raw = hex(qPrintable(QString::asprintf("%02X%04X%02X", data.size(), offset, type))) + data;
    int sum = 0;
    for (const char byte : raw)
        sum += byte;
    raw.append(static_cast<char>(-sum & 0xFF));
    return ':' + raw.toHex().toUpper() + '\n';
}

/// What objcopy writes as Intel HEX for the image; empty when it fails.
QByteArray objcopied(const QByteArray &image)
{
    const QTemporaryDir dir;
    QFile in(dir.filePath(QStringLiteral("in")));
    QFile out(dir.filePath(QStringLiteral("out")));
    if (!in.open(QIODevice::WriteOnly) || in.write(image) != image.size() || !in.flush())
        return {};
    QProcess::execute(QStringLiteral("objcopy"),
                      {QStringLiteral("-I"), QStringLiteral("binary"), QStringLiteral("-O"),
                       QStringLiteral("ihex"), in.fileName(), out.fileName()});
    return out.open(QIODevice::ReadOnly) ? out.readAll() : QByteArray();
}

const QByteArray kEnd = QByteArrayLiteral(":00000001FF\n");

} // namespace

class tst_firmware_image : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hexText()
    {
        const QByteArray data = ":0400000001020304F2\n";
        const QByteArray four = "\x01\x02\x03\x04";
        const std::tuple<const char *, QByteArray, QByteArray> texts[] = {
            {"nothing", {}, {}},
            {"data and end", data + kEnd, four},
            {"no end record", data, four},
            {"carriage returns", QByteArray(":0400000001020304F2\r\n:00000001FF\r\n"), four},
            {"text and blank lines before", QByteArray("firmware 1.0\n\n \n") + data, four},
            {"colon not first is no record", " " + data + data, four},
            {"nothing counts after the end record", data + kEnd + data, four},
            {"zero byte ends the text", data + '\0' + ":zz\n", four},
            {"zero byte within a record", data + data.left(10) + '\0' + data, {}},
            {"out of order stays so", record(0, 0x10, "B") + record(0, 0, "A") + kEnd, QByteArray("BA")},
            {"gap is closed", record(0, 0, "A") + record(0, 0x1000, "B") + kEnd, QByteArray("AB")},
            {"bases carry no data",
             record(2, 0, hex("1000")) + record(0, 0, "A") + record(3, 0, hex("12345678")) +
                 record(4, 0, hex("0800")) + record(0, 0, "B") + kEnd,
             QByteArray("AB")},
            {"255 bytes in a record", record(0, 0, testBytes(255)) + kEnd, testBytes(255)},
            {"only an end record", kEnd, {}},
            {"bad sum in the last line", data + ":00000001FE\n", {}},
            {"start linear address", data + record(5, 0, "1234") + kEnd, {}},
            {"lower case", ":01000000aa55\n", "\xAA"},
            {"unreadable data", QByteArray(":04000000010x0304F2\n"), {}},
            {"missing check", QByteArray(":0400000001020304\n"), {}},
            {"shorter than it says", QByteArray(":0500000001020304F1\n"), {}}};
        const LogCapture quiet;
        for (const auto &[name, text, image] : texts)
            QVERIFY2(hex2bin::hexToBin(text) == image, name);
    }
    void hexLog()
    {
        const std::pair<QByteArray, QString> texts[] = {
            {":0400000001020304F3\n", QStringLiteral("Checksum error at line::0400000001020304F3")},
            {record(5, 0, "1234"), QStringLiteral("Unsupported record type:5")},
            {{}, QStringLiteral("QMap()")},
            // No end record: by address, the last one stands.
            {record(0, 16, "B") + record(0, 0, "A") + record(0, 16, "C"),
             QStringLiteral("QMap((0, \"A\")(16, \"C\"))")},
            // A start segment moves the base; a linear base comes out sixteen times too high.
            {record(3, 0, hex("10005678")) + record(0, 1, "A"), QStringLiteral("QMap((65537, \"A\"))")},
            {record(4, 0, hex("0001")) + record(0, 1, "A"), QStringLiteral("QMap((1048577, \"A\"))")}};
        for (const auto &[text, line] : texts) {
            const LogCapture log;
            hex2bin::hexToBin(text);
            QCOMPARE(log.lines(), QStringList{line});
        }
    }
    void asObjcopyMakesIt()
    {
        for (const int size : {1, 15, 16, 17, 65536, 65537, 200001}) {
            const QByteArray text = objcopied(testBytes(size));
            QVERIFY2(text.startsWith(':'), "install binutils");
            QVERIFY(hex2bin::hexToBin(text) == testBytes(size));
        }
    }
    void padding()
    {
        for (const int size : {1, 7, 8, 9, 16, 23, 24, 25, 40}) {
            const QByteArray image = firmwareImage(QStringLiteral("app.bin"), testBytes(size), false);
            const bool isPadded = size == 8 || size == 24 || size == 40;
            QCOMPARE(image, testBytes(size) + QByteArray(isPadded ? 8 : 0, '\xFF'));
        }
    }
    void masking()
    {
        LogCapture log;
        const auto masked = [](const char *hex) {
            return firmwareImage(QStringLiteral("app.bin"), QByteArray::fromHex(hex), true).toHex();
        };
        QCOMPARE(masked("00000000"), QByteArray("b3c1275e"));
        QCOMPARE(masked("B3C1275EFFFFFFFF112233"), QByteArray("000000004c3ed8a1112233"));
        QCOMPARE(masked("010203"), QByteArray("010203"));
        QCOMPARE(masked("0000000000000000"), QByteArray("b3c1275eb3c1275e4c3ed8a14c3ed8a1"));
        QCOMPARE(log.lines().join(QLatin1Char(' ')), QStringLiteral("merge merge merge merge"));
    }
    void suffix()
    {
        const QByteArray text = record(0, 0, "A") + kEnd;
        for (const char *name : {"app.hex", "APP.HEX", "app.bin.Hex"})
            QCOMPARE(firmwareImage(QLatin1String(name), text, false), QByteArray("A"));
        for (const char *name : {"app.bin", "app.hex.bin", "hex"})
            QCOMPARE(firmwareImage(QLatin1String(name), text, false), text);
    }
    void files()
    {
        const std::tuple<QString, QByteArray, int> files[] = {
            {QStringLiteral("a.bin"), "firmware", 0},
            {QStringLiteral("none.bin"), {}, -1},
            {QStringLiteral("."), {}, -2},
            {QStringLiteral("empty.bin"), "", -3},
            {QStringLiteral("end.hex"), kEnd, -3},
            {QStringLiteral("bad.HEX"), ":0100000041BE\n:0100000041BF\n", -3}};
        const LogCapture quiet;
        const QTemporaryDir folder;
        for (const auto &[name, content, error] : files) {
            QFile file(folder.filePath(name));
            QVERIFY(content.isNull() || (file.open(QIODevice::WriteOnly) && file.write(content) >= 0));
            file.close();
            const FirmwareFile loaded = loadFirmware(file.fileName(), false);
            QCOMPARE(loaded.error, error);
            QCOMPARE(loaded.name, error == 0 ? name : QString());
            QCOMPARE(loaded.image, error == 0 ? content + QByteArray(8, '\xFF') : QByteArray());
        }
    }
};

QTEST_GUILESS_MAIN(tst_firmware_image)
#include "tst_firmware_image.moc"
