// class_uart on a pseudo-terminal, and the poller that keeps port lists fresh.

#include "link/SerialPortPoller.h"
#include "link/class_uart.h"
#include "sim/SimPty.h"
#include "tests/link/fake_vendor.h"
#include "tests/support/log_capture.h"

#include <QSignalSpy>
#include <QTest>

#include <termios.h>

class tst_class_uart : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { vendor().reset(); }

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

QTEST_GUILESS_MAIN(tst_class_uart)
#include "tst_class_uart.moc"
