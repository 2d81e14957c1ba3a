// What each kind of link makes of one and the same use, and the serial one on a pseudo-terminal.

#include "link/SensorLink.h"
#include "link/SerialPortPoller.h"
#include "link/class_uart.h"
#include "sim/SimPty.h"
#include "tests/link/fake_vendor.h"
#include "tests/support/log_capture.h"

#include <QtTest>

#include <memory>
#include <tuple>

#include <termios.h>

namespace {

const char *const kCh341Reset = "getInput 0|setOutput 0 3 ff00 f1a5|getInput 0|"
                                "setOutput 0 3 ff00 f5a5|write 0 AA7481E04F4F4F81007500";

} // namespace

class tst_sensor_link : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { vendor().reset(); }

    void bridges()
    {
        // Opened, on the usual bus, on the bus at 400 kHz, reset, written, read.
        const std::tuple<SensorLink::Kind, const char *, QByteArrayList> links[] = {
            {SensorLink::Kind::Ch341,
             "ch341",
             {"open 0|reset 0|flush 0", "speed 0 1", "speed 0 2", kCh341Reset,
              "write 0 AA7481A04F4F4F82AA557500", "read 0 63x1 AA7481A14F4F4FC1C07500"}},
            {SensorLink::Kind::Ch347,
             "ch347",
             {"open 0", "speed 0 1|driver 0 1|stretch 0 1", "speed 0 2|stretch 0 1",
              "gpio 0 01 01 00|gpio 0 01 01 01|i2c 0 E000 +0", "i2c 0 A0AA55 +0", "i2c 0 A1 +2"}}};
        for (const auto &[kind, name, calls] : links) {
            vendor().reset();
            vendor().setIds({1002});
            vendor().pins = 0x0000F5A5;
            auto link = std::make_unique<SensorLink>(kind);
            QCOMPARE(link->name(), name);
            QVERIFY(link->isBridge() && link->port() == nullptr);
            QSignalSpy opened(link.get(), &SensorLink::opened);
            QSignalSpy closed(link.get(), &SensorLink::closed);
            QSignalSpy lists(link.get(), &SensorLink::devicesListed);
            link->scan();
            QCOMPARE(lists[0][0].toStringList(), QStringList(QStringLiteral("1002")));
            vendor().takeCalls();

            QByteArray buffer(3, '\x55');
            auto *bytes = reinterpret_cast<uint8_t *>(buffer.data());
            QCOMPARE(link->write(0x50, "\xAA") + link->read(0x50, bytes, 2), 0);
            QVERIFY(link->open(QStringLiteral("1002")) && link->isOpen());
            link->setUpSensorBus();
            link->setUpBusAtSpeed(BusSpeed::Khz400);
            link->pcaReset();
            QCOMPARE(link->write(0x50, "\xAA\x55"), 2);
            QCOMPARE(link->read(0x50, bytes, 2), 2);
            QCOMPARE(vendor().takeCalls().toLatin1(), calls.join('|'));
            QCOMPARE(buffer, QByteArray("\x00\x01\x55", 3));

            link->close();
            QVERIFY(!link->isOpen());
            QVERIFY(link->open(QStringLiteral("1002")));
            vendor().takeCalls();
            // Its end closes the device, of which nobody hears.
            link.reset();
            QCOMPARE(vendor().takeCalls(), QLatin1String("close 0|notify off 0"));
            QCOMPARE(opened.size(), 2);
            QCOMPARE(closed.size(), 1);
        }
    }

    void unwantedLists()
    {
        for (const auto kind : {SensorLink::Kind::Ch341, SensorLink::Kind::Ch347}) {
            bool wanted = false;
            SensorLink link(kind, nullptr, [&wanted] { return wanted; });
            QSignalSpy lists(&link, &SensorLink::devicesListed);
            link.scan();
            QCOMPARE(lists.size(), 0);
            wanted = true;
            link.scan();
            QCOMPARE(lists.size(), 1);
        }
    }

    void serialLine()
    {
        SensorLink link(SensorLink::Kind::Serial);
        QCOMPARE(link.name(), "uart");
        QVERIFY(!link.isBridge() && link.port() != nullptr);
        QSignalSpy closed(&link, &SensorLink::closed);
        QVERIFY(!link.open(QStringLiteral("no such port")));
        uint8_t byte = 0;
        QByteArray received;
        QCOMPARE(link.write(0x50, "\xAA") + link.read(0x50, &byte, 1) + link.takeReceived(received), 0);
        link.setUpSensorBus();
        link.setUpBusAtSpeed(BusSpeed::Khz400);
        link.pcaReset();
        QCOMPARE(vendor().takeCalls(), QString());
        const int closedBefore = closed.size();
        link.close();
        QCOMPARE(closed.size(), closedBefore + 1);
    }

    void lineSettingsAndTraffic()
    {
        SimPty terminal;
        LogCapture log;
        {
            class_uart link;
            QVERIFY(link.open(terminal.portName(), 460800));
            QCOMPARE(link.port->baudRate(), 460800);
            QCOMPARE(terminal.baudRate(), 460800);
            termios settings = {};
            tcgetattr(terminal.descriptor(), &settings);
            QCOMPARE(settings.c_cflag & tcflag_t{CSIZE | PARENB | CSTOPB | CRTSCTS}, tcflag_t{CS8});

            const QByteArray pair = QByteArray::fromHex("619E");
            link.port->write(pair);
            QVERIFY(link.port->waitForBytesWritten(5000));
            QCOMPARE(terminal.readAll(), pair);
            terminal.write(QByteArray::fromHex("55AA000D0A1113FF"));
            QByteArray received;
            QTRY_COMPARE((received += link.port->readAll()), QByteArray::fromHex("55AA000D0A1113FF"));
        }
        QCOMPARE(log.lines(), (QStringList{QStringLiteral("uart init"), QStringLiteral("uart deinit")}));
    }

    void openAndCloseSignals()
    {
        SimPty first;
        SimPty second;
        class_uart link;
        QStringList order;
        connect(&link, &class_uart::si_openSuccess, [&] { order.append(QStringLiteral("opened")); });
        connect(&link, &class_uart::si_openFail, [&] { order.append(QStringLiteral("failed")); });
        connect(&link, &class_uart::si_close, [&] { order.append(QStringLiteral("closed")); });
        link.close();
        QVERIFY(link.open(first.portName(), 115200));
        QVERIFY(link.open(second.portName(), 921600));
        QCOMPARE(link.port->portName(), second.portName());
        link.close();
        QVERIFY(!link.port->isOpen());
        QVERIFY(!link.open(QStringLiteral("/dev/no-such-port"), 115200));
        QCOMPARE(order.join(QLatin1Char(' ')), QLatin1String("closed opened opened closed failed"));
    }

    void lists()
    {
        SimPty terminal;
        class_uart link;
        QSignalSpy lists(&link, &class_uart::si_scanEnd);
        vendor().portNames = QStringList{QStringLiteral("zz"), terminal.portName(), QStringLiteral("aa")};
        link.scan(false);
        link.scan(true);
        QCOMPARE(lists.size(), 2);
        QCOMPARE(lists[0][0].toStringList(), vendor().portNames);
        QCOMPARE(lists[1][0].toStringList(), QStringList(terminal.portName()));
        QVERIFY(!link.port->isOpen());
        // What has not been opened is not closed, a port in use least of all.
        QCOMPARE(link.port->error(), QSerialPort::DeviceNotFoundError);
        QVERIFY(link.open(terminal.portName(), 115200));
        link.scan(true);
        QVERIFY(link.port->isOpen());
    }

    void lossByPermissionErrorOnly()
    {
        SimPty terminal;
        class_uart link;
        QVERIFY(link.open(terminal.portName(), 115200));
        QSignalSpy close(&link, &class_uart::si_close);
        Q_EMIT link.port->errorOccurred(QSerialPort::ResourceError);
        QCOMPARE(close.size(), 0);
        QVERIFY(link.port->isOpen());
        Q_EMIT link.port->errorOccurred(QSerialPort::PermissionError);
        QVERIFY(!link.port->isOpen());
        Q_EMIT link.port->errorOccurred(QSerialPort::PermissionError);
        QCOMPARE(close.size(), 1);
    }

    void pollsWhileClosedAndWanted()
    {
        SimPty terminal;
        class_uart link;
        bool wanted = true;
        auto *poller = new SerialPortPoller(&link, [&] { return wanted; });
        QSignalSpy lists(poller, &SerialPortPoller::portsListed);
        // However many ask, there is one list every 500 ms.
        link.scan(false);
        link.scan(false);
        QCOMPARE(lists.size(), 2);
        QElapsedTimer clock;
        clock.start();
        QTRY_COMPARE(lists.size(), 4);
        QVERIFY2(clock.elapsed() >= 950, qPrintable(QString::number(clock.elapsed())));

        link.open(terminal.portName(), 115200);
        QVERIFY(!lists.wait(700));
        link.close();
        QVERIFY(lists.wait(5000));
        wanted = false;
        QVERIFY(!lists.wait(700));
    }
};

QTEST_GUILESS_MAIN(tst_sensor_link)
#include "tst_sensor_link.moc"
