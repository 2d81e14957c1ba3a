// class_uart on a pseudo-terminal, and the poller that keeps port lists fresh.

#include "link/SerialPortPoller.h"
#include "link/class_uart.h"
#include "tests/link/fake_vendor.h"
#include "tests/support/log_capture.h"

#include <QSignalSpy>
#include <QTest>

#include <cstdlib>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace {

/// The far end of a serial line; the near end has a name that QSerialPort opens.
class Terminal
{
public:
    Terminal()
        : m_descriptor(posix_openpt(O_RDWR | O_NOCTTY))
    {
        grantpt(m_descriptor);
        unlockpt(m_descriptor);
    }
    ~Terminal() { ::close(m_descriptor); }
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    QString name() const { return QString::fromLocal8Bit(ptsname(m_descriptor)); }

    termios settings() const
    {
        termios found = {};
        tcgetattr(m_descriptor, &found);
        return found;
    }

    void write(const QByteArray &bytes)
    {
        QCOMPARE(::write(m_descriptor, bytes.constData(), static_cast<size_t>(bytes.size())),
                 static_cast<ssize_t>(bytes.size()));
    }

    QByteArray read(int count)
    {
        QByteArray bytes(count, 0);
        const ssize_t got = ::read(m_descriptor, bytes.data(), static_cast<size_t>(count));
        return bytes.left(static_cast<int>(got));
    }

private:
    int m_descriptor;
};

} // namespace

class tst_class_uart : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { vendor().reset(); }

    void lineSettingsAndTraffic()
    {
        Terminal terminal;
        LogCapture log;
        {
            class_uart link;
            QVERIFY(link.open(terminal.name(), 460800));
            QCOMPARE(link.port->baudRate(), 460800);
            const termios settings = terminal.settings();
            QCOMPARE(cfgetispeed(&settings), speed_t{B460800});
            QCOMPARE(cfgetospeed(&settings), speed_t{B460800});
            QCOMPARE(settings.c_cflag & tcflag_t{CSIZE | PARENB | CSTOPB | CRTSCTS}, tcflag_t{CS8});

            const QByteArray pair = QByteArray::fromHex("619E");
            link.port->write(pair);
            QVERIFY(link.port->waitForBytesWritten(5000));
            QCOMPARE(terminal.read(2), pair);
            terminal.write(QByteArray::fromHex("55AA000D0A1113FF"));
            QByteArray received;
            QTRY_COMPARE((received += link.port->readAll()), QByteArray::fromHex("55AA000D0A1113FF"));
        }
        QCOMPARE(log.lines(), (QStringList{QStringLiteral("uart init"), QStringLiteral("uart deinit")}));
    }

    void openAndCloseSignals()
    {
        Terminal first;
        Terminal second;
        class_uart link;
        QStringList order;
        connect(&link, &class_uart::si_openSuccess, [&] { order.append(QStringLiteral("opened")); });
        connect(&link, &class_uart::si_openFail, [&] { order.append(QStringLiteral("failed")); });
        connect(&link, &class_uart::si_close, [&] { order.append(QStringLiteral("closed")); });
        link.close();
        QVERIFY(link.open(first.name(), 115200));
        QVERIFY(link.open(second.name(), 921600));
        QCOMPARE(link.port->portName(), second.name().mid(5));
        link.close();
        QVERIFY(!link.port->isOpen());
        QVERIFY(!link.open(QStringLiteral("/dev/no-such-port"), 115200));
        QCOMPARE(order.join(QLatin1Char(' ')), QLatin1String("closed opened opened closed failed"));
    }

    void lists()
    {
        Terminal terminal;
        class_uart link;
        QSignalSpy lists(&link, &class_uart::si_scanEnd);
        vendor().portNames = QStringList{QStringLiteral("zz"), terminal.name(), QStringLiteral("aa")};
        link.scan(false);
        link.scan(true);
        QCOMPARE(lists.size(), 2);
        QCOMPARE(lists[0][0].toStringList(), vendor().portNames);
        QCOMPARE(lists[1][0].toStringList(), QStringList(terminal.name()));
        QVERIFY(!link.port->isOpen());
        // What has not been opened is not closed, a port in use least of all.
        QCOMPARE(link.port->error(), QSerialPort::DeviceNotFoundError);
        QVERIFY(link.open(terminal.name(), 115200));
        link.scan(true);
        QVERIFY(link.port->isOpen());
    }

    void lossByPermissionErrorOnly()
    {
        Terminal terminal;
        class_uart link;
        QVERIFY(link.open(terminal.name(), 115200));
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
        Terminal terminal;
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

        link.open(terminal.name(), 115200);
        QVERIFY(!lists.wait(700));
        link.close();
        QVERIFY(lists.wait(5000));
        wanted = false;
        QVERIFY(!lists.wait(700));
    }
};

QTEST_GUILESS_MAIN(tst_class_uart)
#include "tst_class_uart.moc"
