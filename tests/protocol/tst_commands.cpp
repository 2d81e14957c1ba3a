#include "protocol/class_sensorCmd.h"

#include <QtTest>

#include <functional>
#include <numeric>

using Builder = std::function<uint8_t(uint8_t *)>;
Q_DECLARE_METATYPE(Builder)

class tst_commands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lengths();
    void lookup_data();
    void lookup();
    void builder_data();
    void builder();
};

void tst_commands::lengths()
{
    const auto add = [](int sum, const sensor_cmd_ts &row) { return sum + row.rspLen; };
    QCOMPARE(std::accumulate(cmds.begin(), cmds.end(), 0, add), 709);
}

void tst_commands::lookup_data()
{
    QTest::addColumn<int>("cmd");
    QTest::addColumn<int>("rspLen");
    QTest::addColumn<QString>("name");
    QTest::newRow("first row") << 0x40 << 11 << QStringLiteral("设置上电执行自动dac");
    QTest::newRow("no fixed length") << 0x6D << 0 << QStringLiteral("读取标定列表");
    QTest::newRow("longest") << 0x7D << 94 << QStringLiteral("读取法向力标定参数");
    QTest::newRow("last row") << 0xA7 << 14 << QStringLiteral("读取芯片信息");
    QTest::newRow("works, but has no row") << 0xA6 << 0 << QString();
    QTest::newRow("between two rows") << 0x49 << 0 << QString();
}

void tst_commands::lookup()
{
    QFETCH(int, cmd);
    QFETCH(int, rspLen);
    QFETCH(QString, name);
    QCOMPARE(int(class_sensorCmd::getRspLen(static_cast<uint8_t>(cmd))), rspLen);
    QCOMPARE(class_sensorCmd::getStr(static_cast<uint8_t>(cmd)), name);
    QCOMPARE(class_sensorCmd::getStr(static_cast<uint8_t>(cmd)).isNull(), name.isNull());
}

void tst_commands::builder_data()
{
    using C = class_sensorCmd;
    QTest::addColumn<Builder>("build");
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<int>("rspLen");
    const auto row = [](const char *name, const char *frame, int rspLen, const Builder &build) {
        QTest::newRow(name) << build << QByteArray::fromHex(frame) << rspLen;
    };
    const auto plain = [&row](const char *name, const char *frame, int rspLen, auto build) {
        row(name, frame, rspLen, [build](uint8_t *buf) { return build(0x61, buf); });
    };
    plain("ChannelResetAll", "aa5561790000000000d901", 6, C::SC_ChannelResetAll);
    plain("GetVersion", "aa5561a000000000000002", 25, C::SC_GetVersion);
    plain("Reset", "aa5561a100000000000102", 6, C::SC_Reset);
    plain("GetCali", "aa55617d0000000000dd01", 94, C::SC_GetCali);
    plain("Factor", "aa5561760000000000d601", 11, C::SC_Factor);
    plain("SetYddsUnif", "aa55617a0000000000da01", 27, C::SC_SetYddsUnif);
    plain("GetAddr", "aa5561710000000000d101", 11, C::SC_GetAddr);
    plain("GetType", "aa5561a200000000000202", 11, C::SC_GetType);
    plain("AutoDac", "aa5561630000000000c301", 6, C::SC_AutoDac);
    plain("GetAutoThreshold", "aa5561680000000000c801", 6, C::SC_GetAutoThreshold);
    plain("GetSensorChannel", "aa5561620000000000c201", 11, C::SC_GetSensorChannel);
    plain("GetErrCode", "aa5561640000000000c401", 11, C::SC_GetErrCode);
    row("ChannelResetSingle", "aa55617c0500000000e101", 11,
        [](uint8_t *buf) { return C::SC_ChannelResetSingle(0x61, 0x05, buf); });
    row("ChannelEnable", "aa55617b02800301006102", 11,
        [](uint8_t *buf) { return C::SC_ChannelEnable(0x61, 0x02, 0x01, 0x0180, buf); });
    row("SetCali", "aa55617803efcdab89cb04", 11,
        [](uint8_t *buf) { return C::SC_SetCali(0x61, 0x03, 0x89ABCDEF, buf); });
    row("SetSendType", "aa55617f0000000400e301", 11,
        [](uint8_t *buf) { return C::SC_SetSendType(0x61, 0x04, buf); });
    row("SetAddr", "aa55617000000062003202", 11, [](uint8_t *buf) { return C::SC_SetAddr(0x61, 0x62, buf); });
    row("AutoThreshold", "aa5561670a03020100d701", 6,
        [](uint8_t *buf) { return C::SC_AutoThreshold(0x61, 0x0A, 0x00010203, buf); });
    row("SetChannelCali", "aa5561650102efcdab2f04", 11,
        [](uint8_t *buf) { return C::SC_SetChannelCali(0x61, 0x01, 0x02, 0x89ABCDEF, buf); });
    row("SetChannelThreshold", "aa5561690700010000d101", 11,
        [](uint8_t *buf) { return C::SC_SetChannelThreshold(0x61, 0x07, 0x00000100, buf); });
    row("GetChannelCali", "aa5561660600000000cc01", 94,
        [](uint8_t *buf) { return C::SC_GetChannelCali(0x61, 0x06, buf); });
    row("SetCapOffset", "aa5561730000000500d801", 6,
        [](uint8_t *buf) { return C::SC_SetCapOffset(0x61, 0x05, buf); });
}

void tst_commands::builder()
{
    QFETCH(Builder, build);
    QFETCH(QByteArray, frame);
    QFETCH(int, rspLen);
    QByteArray buffer(12, '\x5a');
    QCOMPARE(int(build(nullptr)), rspLen);
    QCOMPARE(int(build(reinterpret_cast<uint8_t *>(buffer.data()))), rspLen);
    QCOMPARE(buffer.left(11), frame);
    QCOMPARE(buffer[11], '\x5a');
}

QTEST_APPLESS_MAIN(tst_commands)
#include "tst_commands.moc"
