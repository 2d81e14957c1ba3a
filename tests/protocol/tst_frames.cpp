#include "protocol/frames.h"
#include "tests/support/log_capture.h"

#include <QtTest>

namespace {

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

// A whole answer to 0x7F.
const char *const kAnswer = "55aa61ff00000000005f02";

} // namespace

class tst_frames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sums();
    void requests();
    void packLen_data();
    void packLen();
    void sensorPackLen_data();
    void sensorPackLen();
};

void tst_frames::sums()
{
    QCOMPARE(frameSum(QByteArray(300, '\xff')), uint16_t(300 * 255 - 65536));
    QVERIFY(frameSumFits(hex(kAnswer)));
    QVERIFY(!frameSumFits(hex("55aa61ff0000000000025f")));
    QVERIFY(!frameSumFits(hex("00")));
}

void tst_frames::requests()
{
    QCOMPARE(longRequestFrame(0x61, 0x59, hex("0203040000803f")), hex("aa55615902030400 00803f8102"));

    QByteArray changed = hex("aa5500a10000000000a001");
    changed[2] = '\x61';
    sealFrame(changed);
    QCOMPARE(changed, hex("aa5561a100000000000102"));
}

void tst_frames::packLen_data()
{
    QTest::addColumn<QByteArray>("buffer");
    QTest::addColumn<int>("expected");
    const QByteArray answer = hex(kAnswer);
    QByteArray spoilt = answer + QByteArray(39, '\0');
    spoilt[20] = '\x01';
    QTest::newRow("six bytes, nothing behind") << hex("55aa61f35302") << 6;
    QTest::newRow("zeros behind") << answer + QByteArray(39, '\0') << 11;
    QTest::newRow("a byte behind the zeros") << spoilt << 0;
    QTest::newRow("five bytes") << hex("55aa61f353") << 0;
    QTest::newRow("a fit in the middle is passed over") << hex("55aaff00010203040802") << 10;
    QTest::newRow("all zeros") << QByteArray(50, '\0') << 3;
    QTest::newRow("no frame") << QByteArray(50, '\xff') << 0;
}

void tst_frames::packLen()
{
    QFETCH(QByteArray, buffer);
    QFETCH(int, expected);
    QCOMPARE(getPackLen(frameBytes(buffer), buffer.size()), expected);
}

void tst_frames::sensorPackLen_data()
{
    QTest::addColumn<QByteArray>("buffer");
    QTest::addColumn<int>("expected");
    QTest::addColumn<QString>("log");
    const QString twelve = QStringLiteral("pack len1:12");
    QTest::newRow("exactly a frame") << hex("55aa6185010001020304f001") << 12 << twelve;
    QTest::newRow("lower bound just passed") << hex("55aa6185010201020304f201") << 12 << twelve;
    QTest::newRow("lower bound just missed") << hex("55aa6185010301020304f301") << 0 << QString();
    QTest::newRow("sum one off") << hex("55aa6185010001020304f101") << 0 << QString();
    QTest::newRow("five bytes") << hex("55aa618501") << 0 << QString();
    QTest::newRow("all zeros") << QByteArray(500, '\0') << 10 << QStringLiteral("pack len1:10");
}

void tst_frames::sensorPackLen()
{
    QFETCH(QByteArray, buffer);
    QFETCH(int, expected);
    QFETCH(QString, log);
    const LogCapture logged;
    QCOMPARE(getSensorPackLen(frameBytes(buffer), buffer.size()), expected);
    QCOMPARE(logged.lines(), log.isNull() ? QStringList() : QStringList{log});
}

QTEST_APPLESS_MAIN(tst_frames)
#include "tst_frames.moc"
