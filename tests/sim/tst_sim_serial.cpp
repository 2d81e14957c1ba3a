#include "sim/SimSerialBus.h"
#include "tests/support/test_bytes.h"

#include <QSerialPort>
#include <QtTest>

#include <memory>
#include <random>

using namespace std::chrono_literals;

namespace {

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

class tst_sim_serial : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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

    void randomBytesAreRubbish()
    {
        std::mt19937 random(7);
        SimRequestParser parser;
        const SimTime now = SimClock::now();
        int bytesIn = 0;
        int bytesOut = 0;
        for (int burst = 0; burst < 20000; ++burst) {
            QByteArray bytes;
            for (auto count = random() % 30; count > 0; --count)
                bytes.append(static_cast<char>(random() % 3 == 0   ? 0xAA
                                               : random() % 2 == 0 ? 0x55
                                                                   : random()));
            bytesIn += bytes.size();
            for (const auto &item : parser.feed(bytes, now))
                bytesOut += item.bytes.size();
        }
        QVERIFY(bytesIn - bytesOut < 300); // no more than an unfinished frame is held back
        const auto items = parser.feed(hex("619E"), now + 100ms);
        QCOMPARE(items.back().kind, SimRecord::Kind::Poll);
    }
};

QTEST_GUILESS_MAIN(tst_sim_serial)
#include "tst_sim_serial.moc"
