#include "protocol/frames.h"
#include "sim/SimSensor.h"
#include "tests/support/test_bytes.h"

#include <QtTest>

using namespace std::chrono_literals;

namespace {

/// The request with its sum behind it.
QByteArray request(const char *text)
{
    QByteArray frame = hex(text) + QByteArray(2, '\0');
    sealFrame(frame);
    return frame;
}

} // namespace

class tst_sim_sensor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void settingsSurviveLossOfPower()
    {
        SimSensor sensor(0x1F, 0x1F);
        for (const char *command :
             {"AA550069 02 F4010000", "AA550065 03 01 FFFFFF", "AA550065 03 02 FFFFFF7F",
              "AA550059 01 03 07 0000803F", "AA55007B 01 0000 00 00", "AA550070 000000 61 00"})
            QVERIFY(!sensor.answerRequest(request(command)).bytes.isEmpty());
        sensor.powerCycle();
        const SimSettings settings = sensor.settings();
        QCOMPARE(settings.thresholds[2], 500U);
        QCOMPARE(settings.curves[3][1], 0xFFFFFFU);
        QCOMPARE(settings.curves[3][2], 0x7FFFFFFFU);
        QCOMPARE(settings.filterDepths[1], uint8_t(3));
        QCOMPARE(settings.filterFactors[1], 1.0F);
        QCOMPARE(settings.enabled[1], uint8_t(0));
        QCOMPARE(settings.address, uint8_t(0x61));

        sensor.answerRequest(request("AA550076 0000000000"));
        QCOMPARE(sensor.settings().thresholds[2], 100U);
        QCOMPARE(sensor.settings().address, uint8_t(0x61));
    }

    void refusesAndIgnores()
    {
        SimSensor sensor(0x1F, 0x1F);
        sensor.setRefusal(0x69, 5);
        QCOMPARE(sensor.answerRequest(request("AA550069 02 F4010000")).bytes.at(7), '\x05');
        QCOMPARE(sensor.settings().thresholds[2], 100U);
        sensor.setUnknown(0xA6);
        QVERIFY(sensor.answerRequest(request("AA5500A6 0000000000")).bytes.isEmpty());
        QVERIFY(
            sensor.answerRequest(request("AA552069 02 F4010000")).bytes.isEmpty()); // another one's address
        QVERIFY(sensor.answerRequest(request("AA550072 0000000000")).bytes.isEmpty()); // meant for all
        QVERIFY(sensor.answerRequest(hex("AA5500690200000000FFFF")).bytes.isEmpty());  // wrong sum
    }

    void faults()
    {
        const auto check = [](SimFault fault, const char *answer) {
            const QByteArray command = request("AA550073 0000000200");
            SimSensor sensor(0x1F, 0x1F);
            sensor.faults().schedule(fault, SimTarget::answersTo(0x73), 1);
            QVERIFY(!sensor.answerRequest(request("AA55007F 0000000000")).bytes.isEmpty());
            QCOMPARE(sensor.answerRequest(command).bytes, hex(answer));
            QCOMPARE(sensor.answerRequest(command).bytes, hex("55aa1ff31102"));
        };
        check(SimFault::Silence, "");
        check(SimFault::BadSum, "55AA1FF31002");
        check(SimFault::GluedFrame, "55AA1FF3110255AA1FF31102");
        check(SimFault::WrongEcho, "55AA1FF21002");
        check(SimFault::WrongLength, "55AA1F1E01");
    }

    void lateAnswersWaitOnI2c()
    {
        SimSensor sensor(0x1F, 0x1F);
        sensor.setAnswerDelay(50ms);
        sensor.writeI2c(request("AA5500A6 0000000000"));
        QCOMPARE(sensor.beginReadI2c().at(3), '\x85');
        bool answered = false;
        QTRY_VERIFY(answered = answered || sensor.beginReadI2c().at(3) == '\xA6');
        QCOMPARE(sensor.beginReadI2c().at(3), '\x85');
        sensor.faults().schedule(SimFault::Silence, SimTarget::samples());
        QVERIFY(sensor.beginReadI2c().isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_sim_sensor)
#include "tst_sim_sensor.moc"
