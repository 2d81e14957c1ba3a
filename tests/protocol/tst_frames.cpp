#include "protocol/frames.h"
#include "tests/support/log_capture.h"
#include "tests/support/test_bytes.h"

#include <QtTest>

class tst_frames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sums()
    {
        QCOMPARE(frameSum(QByteArray(300, '\xff')), uint16_t(300 * 255 - 65536));
        QVERIFY(frameSumFits(hex("55aa61ff00000000005f02")));
        QVERIFY(!frameSumFits(hex("55aa61ff0000000000025f")));
        QVERIFY(!frameSumFits(hex("00")));
    }

    void requests()
    {
        QCOMPARE(longRequestFrame(0x61, 0x59, hex("0203040000803f")), hex("aa55615902030400 00803f8102"));

        QByteArray changed = hex("aa5500a10000000000a001");
        changed[2] = '\x61';
        sealFrame(changed);
        QCOMPARE(changed, hex("aa5561a100000000000102"));
    }

    void packLen()
    {
        const auto length = [](const QByteArray &buffer) {
            return getPackLen(frameBytes(buffer), buffer.size());
        };
        const QByteArray answer = hex("55aa61ff00000000005f02");
        QCOMPARE(length(hex("55aa61f35302")), 6);
        QCOMPARE(length(hex("55aa61f353")), 0);
        QCOMPARE(length(answer + QByteArray(39, '\0')), 11);
        QCOMPARE(length(answer + QByteArray(9, '\0') + '\x01' + QByteArray(29, '\0')), 0);
        QCOMPARE(length(hex("55aaff00010203040802")), 10); // a fit in the middle is passed over
        QCOMPARE(length(QByteArray(50, '\0')), 3);
        QCOMPARE(length(QByteArray(50, '\xff')), 0);
    }

    void sensorPackLen()
    {
        const auto check = [](const QByteArray &buffer, int expected) {
            const LogCapture logged;
            QCOMPARE(getSensorPackLen(frameBytes(buffer), buffer.size()), expected);
            const QString line = QStringLiteral("pack len1:%1").arg(expected);
            QCOMPARE(logged.lines(), expected == 0 ? QStringList() : QStringList{line});
        };
        check(hex("55aa6185010001020304f001"), 12);
        check(hex("55aa6185010201020304f201"), 12); // the lower bound just passed
        check(hex("55aa6185010301020304f301"), 0);  // and just missed
        check(hex("55aa6185010001020304f101"), 0);
        check(hex("55aa618501"), 0);
        check(QByteArray(500, '\0'), 10);
    }
};

QTEST_APPLESS_MAIN(tst_frames)
#include "tst_frames.moc"
