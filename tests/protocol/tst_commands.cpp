#include "protocol/class_sensorCmd.h"

#include <QtTest>

#include <numeric>

namespace {

/// An argument of whatever width the builder takes.
struct Argument
{
    template<typename Value>
    operator Value() const // NOLINT(google-explicit-constructor)
    {
        return static_cast<Value>(number);
    }

    uint32_t number;
};

template<typename Builder, typename... Arguments>
void check(const char *frame, int rspLen, Builder build, Arguments... arguments)
{
    QByteArray buffer(12, '\x5a'); // one more than a builder may fill
    QCOMPARE(int(build(0x61, Argument{static_cast<uint32_t>(arguments)}..., nullptr)), rspLen);
    QCOMPARE(int(build(0x61, Argument{static_cast<uint32_t>(arguments)}...,
                       reinterpret_cast<uint8_t *>(buffer.data()))),
             rspLen);
    QCOMPARE(buffer.toHex(), QByteArray(frame) + "5a");
}

} // namespace

class tst_commands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void catalogue()
    {
        const auto add = [](int sum, const sensor_cmd_ts &row) { return sum + row.rspLen; };
        QCOMPARE(std::accumulate(cmds.begin(), cmds.end(), 0, add), 709);
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
        check("aa5561790000000000d901", 6, C::SC_ChannelResetAll);
        check("aa5561a000000000000002", 25, C::SC_GetVersion);
        check("aa5561a100000000000102", 6, C::SC_Reset);
        check("aa55617d0000000000dd01", 94, C::SC_GetCali);
        check("aa5561760000000000d601", 11, C::SC_Factor);
        check("aa55617a0000000000da01", 27, C::SC_SetYddsUnif);
        check("aa5561710000000000d101", 11, C::SC_GetAddr);
        check("aa5561a200000000000202", 11, C::SC_GetType);
        check("aa5561630000000000c301", 6, C::SC_AutoDac);
        check("aa5561680000000000c801", 6, C::SC_GetAutoThreshold);
        check("aa5561620000000000c201", 11, C::SC_GetSensorChannel);
        check("aa5561640000000000c401", 11, C::SC_GetErrCode);
        check("aa55617c0500000000e101", 11, C::SC_ChannelResetSingle, 0x05);
        check("aa55617b02800301006102", 11, C::SC_ChannelEnable, 0x02, 0x01, 0x0180);
        check("aa55617803efcdab89cb04", 11, C::SC_SetCali, 0x03, 0x89ABCDEF);
        check("aa55617f0000000400e301", 11, C::SC_SetSendType, 0x04);
        check("aa55617000000062003202", 11, C::SC_SetAddr, 0x62);
        check("aa5561670a03020100d701", 6, C::SC_AutoThreshold, 0x0A, 0x00010203);
        check("aa5561650102efcdab2f04", 11, C::SC_SetChannelCali, 0x01, 0x02, 0x89ABCDEF);
        check("aa5561690700010000d101", 11, C::SC_SetChannelThreshold, 0x07, 0x00000100);
        check("aa5561660600000000cc01", 94, C::SC_GetChannelCali, 0x06);
        check("aa5561730000000500d801", 6, C::SC_SetCapOffset, 0x05);
    }
};

QTEST_APPLESS_MAIN(tst_commands)
#include "tst_commands.moc"
