// Frames in, values and texts out. Frames stand here as hex, sums included.

#include "protocol/sample.h"
#include "tests/support/test_bytes.h"

#include <QtTest>

namespace {

QString text(const Sample &sample)
{
    const auto numbers = [](const char *name, const QVector<SampleNumber> &list) {
        QString part = QLatin1String(name);
        for (const SampleNumber &number : list) {
            part += QLatin1Char(' ') + number.text;
            if (number.text != QString::number(number.value))
                part += QStringLiteral("(%1)").arg(number.value);
        }
        return part;
    };
    QString forces;
    for (const float force : sample.forces)
        forces += QStringLiteral(" %1").arg(double(force));
    QString blocks;
    for (const SampleBlock &each : sample.blocks)
        blocks += QStringLiteral(" %1/%2/%3")
                      .arg(each.normalText, each.tangentialText, each.directionText)
                      .append(QStringLiteral("(%1 %2 %3)")
                                  .arg(double(each.normal))
                                  .arg(double(each.tangential))
                                  .arg(each.direction));
    return QStringLiteral("#%1").arg(sample.counter) + numbers(" channels", sample.channels) +
           QLatin1String(" forces") + forces + QLatin1String(" blocks") + blocks +
           numbers(" self", sample.selfProximity) + numbers(" mutual", sample.mutualProximity) +
           numbers(" status", sample.status);
}

constexpr finger_info_ts kLong{2, 62, 8, 7, 1, 1, 0, 4, 2, 0, 0, 20, "", ""};
constexpr finger_info_ts kBytes{3, 18, 1, 1, 2, 0, 0, 2, 3, 0, 0, 20, "", ""};
constexpr finger_info_ts kWords{4, 33, 4, 2, 1, 1, 1, 3, 4, 1, 0, 50, "", ""};
constexpr finger_info_ts kReals{5, 22, 1, 0, 1, 1, 0, 1, 5, 0, 0, 20, "", ""};
const char *const kGood = "55aa00850900 1027 7d072c01 ff00ffff 7205"; // of kBytes

} // namespace

class tst_sample : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decodes_data()
    {
        QTest::addColumn<finger_info_ts>("row");
        QTest::addColumn<QByteArray>("frame");
        QTest::addColumn<QString>("decoded");
        const auto row = [](const char *name, const finger_info_ts &model, const char *frame,
                            const char *decoded) {
            QTest::newRow(name) << model << hex(frame) << QString(QLatin1String(decoded));
        };
        row("long block with proximity in it", kLong,
            "55aa0085 01 00 00000000 01000000 02000000 01000080 07000000 88130000 ffffff7f 2c000000"
            "00004841 11223344 00005040 55667788 0e01 78563412 f30a",
            "#1 channels 0 1 2 -2147483647(2147483649) 7 5000 2147483647 44 "
            "forces 0 0 0.002 0 0.007 5 2.14748e+06 blocks 12.50/3.25/270(12.5 3.25 270) self 305419896 "
            "mutual "
            "status");
        row("tenths in bytes", kBytes, kGood,
            "#9 channels 10000 forces 10 blocks 12.50/0.70/300(12.5 0.7 300) 25.50/0.00/65535(25.5 0 65535) "
            "self mutual status");
        row("hundredths in words, all kinds of proximity, status", kWords,
            "55aa0785 2a 99 010000 a18601 090000 ffffff d204 3702 5900 e09304 050000 c8 290a",
            "#42 channels 1 100001 9 16777215 forces 0 100.001 blocks 12.34/5.67/89(12.34 5.67 89) "
            "self 300000 mutual 5 status 200");
        row("real numbers", kReals, "55aa00850900 c9 d7a3803f 000020c0 b400 070000 2a06",
            "#9 channels 201 forces blocks 1.00/-2.50/180(1.005 -2.5 180) self 7 mutual status");
    }

    void decodes()
    {
        QFETCH(finger_info_ts, row);
        QFETCH(QByteArray, frame);
        QFETCH(QString, decoded);
        const uint8_t block = sampleBlockLength(row.yddsFmt);
        QCOMPARE(sampleLength(row, block), row.packLen);
        Sample sample;
        QCOMPARE(decodeSample(frame, row, block, sample), SampleRefusal::None);
        QCOMPARE(text(sample), decoded);
        decodeSample(frame, row, block, sample); // into the same lists
        QCOMPARE(text(sample), decoded);
    }

    void refuses()
    {
        const QByteArray good = hex(kGood);
        Sample sample;
        const auto check = [&](const QByteArray &frame, SampleRefusal refusal) {
            QCOMPARE(decodeSample(frame, kBytes, 4, sample), refusal);
        };
        check(good.left(17), SampleRefusal::Length);
        check(good + '\0', SampleRefusal::Length);
        check(good.left(16) + hex("0572"), SampleRefusal::Frame); // the sum with its bytes swapped
        // Head bytes that are wrong while the sum is right: only the look at the byte itself finds them.
        check(hex("54ab") + good.mid(2), SampleRefusal::Frame);
        check(hex("55a901") + good.mid(3), SampleRefusal::Frame);
        check(hex("55aa0184") + good.mid(4), SampleRefusal::Frame);
        QVERIFY(sample.channels.isEmpty());
        // Address and byte 5 may be any.
        check(hex("55aa63850901") + good.mid(6, 10) + hex("d605"), SampleRefusal::None);
        // Blocks of an unknown format take their room all the same.
        finger_info_ts unknown = kReals;
        unknown.yddsFmt = 7;
        QCOMPARE(decodeSample(hex("55aa00850900 c9 d7a3803f 000020c0 b400 070000 2a06"), unknown, 10, sample),
                 SampleRefusal::None);
        QCOMPARE(text(sample), QStringLiteral("#9 channels 201 forces blocks self 7 mutual status"));
    }
};

QTEST_APPLESS_MAIN(tst_sample)
#include "tst_sample.moc"
