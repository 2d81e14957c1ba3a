#include "protocol/class_sensorCmd.h"
#include "protocol/finger_info.h"
#include "protocol/frames.h"
#include "protocol/sample.h"
#include "tests/support/log_capture.h"
#include "tests/support/test_bytes.h"

#include <QtTest>

#include <numeric>

class tst_protocol : public QObject
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

    void catalogue()
    {
        const auto add = [](QPoint sum, const sensor_cmd_ts &row) {
            return sum + QPoint(row.cmd, row.rspLen);
        };
        QCOMPARE(std::accumulate(cmds.begin(), cmds.end(), QPoint(), add), QPoint(6700, 709));
        const auto lookUp = [](uint8_t cmd, int rspLen, const QString &name) {
            QCOMPARE(int(class_sensorCmd::getRspLen(cmd)), rspLen);
            QCOMPARE(class_sensorCmd::getStr(cmd), name);
            QCOMPARE(class_sensorCmd::getStr(cmd).isNull(), name.isNull());
        };
        lookUp(0x40, 11, QStringLiteral("设置上电执行自动dac"));
        lookUp(0x6D, 0, QStringLiteral("读取标定列表"));
        lookUp(0xA7, 14, QStringLiteral("读取芯片信息"));
        lookUp(0xA6, 0, {}); // works, but has no row
        lookUp(0x49, 0, {});
    }

    void builders()
    {
        using C = class_sensorCmd;
        uint8_t to[kRequestLength];
        const auto built = [&to](int rspLen) {
            return QByteArray(reinterpret_cast<char *>(to), kRequestLength).toHex() + ' ' +
                   QByteArray::number(rspLen);
        };
        QCOMPARE(built(C::SC_ChannelResetAll(0x61, to)), QByteArray("aa5561790000000000d901 6"));
        QCOMPARE(built(C::SC_GetVersion(0x61, to)), QByteArray("aa5561a000000000000002 25"));
        QCOMPARE(built(C::SC_Reset(0x61, to)), QByteArray("aa5561a100000000000102 6"));
        QCOMPARE(built(C::SC_GetCali(0x61, to)), QByteArray("aa55617d0000000000dd01 94"));
        QCOMPARE(built(C::SC_Factor(0x61, to)), QByteArray("aa5561760000000000d601 11"));
        QCOMPARE(built(C::SC_SetYddsUnif(0x61, to)), QByteArray("aa55617a0000000000da01 27"));
        QCOMPARE(built(C::SC_GetAddr(0x61, to)), QByteArray("aa5561710000000000d101 11"));
        QCOMPARE(built(C::SC_GetType(0x61, to)), QByteArray("aa5561a200000000000202 11"));
        QCOMPARE(built(C::SC_AutoDac(0x61, to)), QByteArray("aa5561630000000000c301 6"));
        QCOMPARE(built(C::SC_GetAutoThreshold(0x61, to)), QByteArray("aa5561680000000000c801 6"));
        QCOMPARE(built(C::SC_GetSensorChannel(0x61, to)), QByteArray("aa5561620000000000c201 11"));
        QCOMPARE(built(C::SC_GetErrCode(0x61, to)), QByteArray("aa5561640000000000c401 11"));
        QCOMPARE(built(C::SC_ChannelResetSingle(0x61, 0x05, to)), QByteArray("aa55617c0500000000e101 11"));
        QCOMPARE(built(C::SC_ChannelEnable(0x61, 0x02, 0x01, 0x0180, to)),
                 QByteArray("aa55617b02800301006102 11"));
        QCOMPARE(built(C::SC_SetCali(0x61, 0x03, 0x89ABCDEF, to)), QByteArray("aa55617803efcdab89cb04 11"));
        QCOMPARE(built(C::SC_SetSendType(0x61, 0x04, to)), QByteArray("aa55617f0000000400e301 11"));
        QCOMPARE(built(C::SC_SetAddr(0x61, 0x62, to)), QByteArray("aa55617000000062003202 11"));
        QCOMPARE(built(C::SC_AutoThreshold(0x61, 0x0A, 0x00010203, to)),
                 QByteArray("aa5561670a03020100d701 6"));
        QCOMPARE(built(C::SC_SetChannelCali(0x61, 0x01, 0x02, 0x89ABCDEF, to)),
                 QByteArray("aa5561650102efcdab2f04 11"));
        QCOMPARE(built(C::SC_SetChannelThreshold(0x61, 0x07, 0x00000100, to)),
                 QByteArray("aa5561690700010000d101 11"));
        QCOMPARE(built(C::SC_GetChannelCali(0x61, 0x06, to)), QByteArray("aa5561660600000000cc01 94"));
        QCOMPARE(built(C::SC_SetCapOffset(0x61, 0x05, to)), QByteArray("aa5561730000000500d801 6"));
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

QTEST_APPLESS_MAIN(tst_protocol)
#include "tst_protocol.moc"
