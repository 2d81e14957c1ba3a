#include "protocol/frames.h"
#include "sim/SimSerialBus.h"
#include "tests/support/test_bytes.h"

#include <QSerialPort>
#include <QtTest>

#include <memory>

using namespace std::chrono_literals;

namespace {

/// The request with its sum behind it.
QByteArray request(const char *text)
{
    QByteArray frame = hex(text) + QByteArray(2, '\0');
    sealFrame(frame);
    return frame;
}

/// A bus with a sensor at address 0x61, and a host's end of the line.
class Line
{
public:
    explicit Line(uint8_t programId = 0x1F, int baud = 460800)
        : sensor(std::make_shared<SimSensor>(programId, 0x61))
    {
        sensor->setSampleRateHz(0);
        bus.plug(sensor);
        port.setPortName(bus.portName());
        port.setBaudRate(baud);
        port.open(QIODevice::ReadWrite);
    }
    /// What comes until `size` bytes are there or nothing has come for a while.
    QByteArray exchange(const QByteArray &bytes, int size, int quietMs = 2000)
    {
        port.write(bytes);
        QByteArray answer;
        while (answer.size() < size && port.waitForReadyRead(quietMs))
            answer += port.readAll();
        return answer;
    }

    SimSerialBus bus;
    std::shared_ptr<SimSensor> sensor;
    QSerialPort port;
};

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

    void answersRequestsAmongNoise()
    {
        Line line;
        const QByteArray program = hex("AA5561A600000000000602");
        QCOMPARE(line.exchange(hex("0102AA") + program, 11).toHex(),
                 QByteArrayLiteral("55aa61a60104021f002c02"));
        // Half a frame is forgotten when nothing follows.
        QVERIFY(line.exchange(program.left(7), 1, 60).isEmpty());
        QCOMPARE(line.exchange(program, 11).size(), 11);
        QCOMPARE(line.exchange(hex("AA556159010307 0000803F 8302"), 11).mid(3, 1).toHex(),
                 QByteArrayLiteral("d9"));
    }

    void twoAtOneAddressSpoilEachOther()
    {
        Line line;
        line.bus.plug(std::make_shared<SimSensor>(0x1F, 0x02));
        const QByteArray frame = line.exchange(hex("00FF"), 27);
        QCOMPARE(frame.size(), 27);
        QCOMPARE(frame.at(2), '\x00'); // both pull: 61 and 02
    }

    void hearsOnlyItsBaudRate()
    {
        Line line;
        line.sensor->setBaudRate(115200);
        QVERIFY(line.exchange(hex("619E"), 1, 50).isEmpty());
        line.port.setBaudRate(115200);
        QCOMPARE(line.exchange(hex("619E"), 27).size(), 27);
    }
};

QTEST_GUILESS_MAIN(tst_sim_sensor)
#include "tst_sim_sensor.moc"
