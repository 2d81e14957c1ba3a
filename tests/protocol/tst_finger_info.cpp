#include "protocol/finger_info.h"
#include "protocol/sample.h"

#include <QCryptographicHash>
#include <QString>
#include <QtTest>

class tst_finger_info : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsAreConsistent()
    {
        for (const finger_info_ts &row : finger_infos) {
            QVERIFY(row.yddsFmt >= 2 && row.yddsFmt <= 5);
            QVERIFY(row.chBytes == 3 || row.chBytes == 4);
            QVERIFY(row.forceChNum + row.sProxNum + row.mProxNum == row.chNum);
            QCOMPARE(sampleLength(row, sampleBlockLength(row.yddsFmt)), row.packLen);
            QVERIFY(row.packLen <= 189 && row.range > 0 && row.caliNum > 0);
        }
    }

    void knownRowsStand()
    {
        // The first 76 rows as lines of text, all fields in their order; new ones come behind them.
        QString text;
        for (const finger_info_ts *row = finger_infos; row != finger_infos + 76; ++row) {
            for (const int number :
                 {int(row->prg), int(row->packLen), int(row->chNum), int(row->forceChNum), int(row->yddsNum),
                  int(row->sProxNum), int(row->mProxNum), int(row->chBytes), int(row->yddsFmt),
                  int(row->hasStatus), int(row->caliNum)})
                text += QString::number(number) + QLatin1Char(' ');
            text += QStringLiteral("%1 %2 %3\n")
                        .arg(QString::number(double(row->range), 'f', 2), QString::fromUtf8(row->name),
                             QString::fromUtf8(row->model));
        }
        const QByteArray digest = QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha1);
        QVERIFY2(digest.toHex() == "0585d63c4a9ebcc4c3a291a4fb5c14be60cbc2de", qPrintable(text));
    }

    void searches()
    {
        QCOMPARE(findFingerInfoByPrg(0x6C), &finger_infos[34]); // the first of two
        QCOMPARE(findFingerInfoByPrg(0x66), nullptr);
        const finger_info_ts *palm = findFingerInfoByPrg(0x2A);
        QVERIFY(palm != nullptr);
        QCOMPARE(palm->range, 6.25F);
        QCOMPARE(QString::fromUtf8(palm->name), QStringLiteral("岚峰-手掌"));

        QCOMPARE(int(findFingerInfoByPackLen(62)->prg), 0x02);
        QCOMPARE(int(findFingerInfoByPackLen(36)->prg), 0x1C);
        QCOMPARE(int(findFingerInfoByPackLen(189)->prg), 0x2B);
        QCOMPARE(findFingerInfoByPackLen(40), nullptr);
    }
};

QTEST_APPLESS_MAIN(tst_finger_info)
#include "tst_finger_info.moc"
