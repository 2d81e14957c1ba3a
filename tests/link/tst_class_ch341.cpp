// class_ch341 against a recording stand-in for the bridge library: every byte and call that reaches the
// bridge.

#include "link/class_ch341.h"
#include "tests/link/fake_vendor.h"
#include "tests/support/log_capture.h"

#include <QSignalSpy>
#include <QTest>

namespace {

FakeVendor &vendor()
{
    return FakeVendor::instance();
}

/// First packet of a transfer to address 0x50 at speed 0, 1, 2, 3, up to the first command.
QString head(int speed, bool read)
{
    const QStringList pauses = {QString(), QStringLiteral("4F4F"), QStringLiteral("4F4F4F"),
                                QStringLiteral("4F4F4F4F4F")};
    return QStringLiteral("AA7481") + (read ? QStringLiteral("A1") : QStringLiteral("A0")) + pauses[speed];
}

/// The calls that a row of the table stands for, with the next bytes of the payload wherever their number
/// stands in brackets.
QString expectedCalls(const QString &packets, const QString &call, const QString &head,
                      const QByteArray &payload)
{
    QStringList calls;
    int taken = 0;
    for (const QString &packet : packets.split(QLatin1Char('|'))) {
        const QStringList parts = packet.split(QLatin1Char('*'));
        for (int i = parts.size() == 2 ? parts[0].toInt() : 1; i > 0; --i) {
            QString bytes = parts.last();
            bytes.replace(QLatin1Char('H'), head);
            const int open = bytes.indexOf(QLatin1Char('['));
            const int close = bytes.indexOf(QLatin1Char(']'));
            if (open >= 0) {
                const QByteArray part = payload.mid(taken, bytes.mid(open + 1, close - open - 1).toInt());
                bytes.replace(open, close - open + 1, QString::fromLatin1(part.toHex().toUpper()));
                taken += part.size();
            }
            calls.append(call + bytes);
        }
    }
    return calls.join(QLatin1Char('|'));
}

QByteArray payload(int length)
{
    QByteArray bytes;
    for (int i = 0; i < length; ++i)
        bytes.append(static_cast<char>(i * 7 + 1));
    return bytes;
}

const uint8_t *bytesOf(const QByteArray &array)
{
    return reinterpret_cast<const uint8_t *>(array.constData());
}

} // namespace

Q_DECLARE_METATYPE(std::vector<int>)

class tst_class_ch341 : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        qRegisterMetaType<QVector<uint16_t>>("QVector<uint16_t>");
        vendor().reset();
    }

    void life()
    {
        LogCapture log;
        vendor().setCh341Ids({1002, 1003});
        {
            class_ch341 link;
            QSignalSpy lists(&link, &class_ch341::si_updateList);
            QCOMPARE(vendor().takeCalls(), QLatin1String("notify on 0"));
            QVERIFY(lists.wait());
            QCOMPARE(lists[0][0].value<QVector<uint16_t>>(), (QVector<uint16_t>{1002, 1003}));
            QSignalSpy disconnected(&link, &class_ch341::si_disconnected);
            QVERIFY(link.open(1003));
            link.close();
            link.close();
            QCOMPARE(disconnected.size(), 1);
            QVERIFY(link.open(1003));
            vendor().takeCalls();
        }
        QCOMPARE(vendor().takeCalls(), QLatin1String("close 1|notify off 0"));
        QCOMPARE(
            log.lines().join(QLatin1Char('|')),
            QLatin1String("ch341 new|usb#PID_5512#1&a&b&2|usb#PID_5512#1&a&b&3|QVector(1002, 1003)|connect "
                          "success:1003, idx:1|connect success:1003, idx:1|ch341 delete"));
    }

    void packets_data()
    {
        // H is the head, [n] the next n bytes of the payload, "3*" three packets alike.
        QTest::addColumn<int>("length");
        QTest::addColumn<QString>("written");
        QTest::addColumn<QString>("read");
        const auto row = [](int length, const char *written, const char *read) {
            QTest::addRow("%d", length)
                << length << QString::fromLatin1(written) << QString::fromLatin1(read);
        };
        row(1, "H81[1]7500", "HC07500");
        row(5, "H85[5]7500", "HC4C07500");
        row(19, "H93[19]7500", "HD2C07500");
        row(20, "H94[20]00|AA7500", "HD3C07500");
        row(21, "H94[20]00|AA81[1]7500", "HD4C07500");
        row(29, "H94[20]00|AA89[9]7500", "HDCC07500");
        row(30, "H94[20]00|AA8A[10]7500", "HDDC07500");
        row(31, "H94[20]00|AA8B[11]7500", "HDE00|AAC07500");
        row(60, "H94[20]00|2*AA94[20]00|AA7500", "HDE00|AADDC07500");
        row(189, "H94[20]00|8*AA94[20]00|AA89[9]7500", "HDE00|5*AADE00|AAC8C07500");
        row(600, "H94[20]00|29*AA94[20]00|AA7500", "HDE00|18*AADE00|AADDC07500");
    }

    void packets()
    {
        QFETCH(int, length);
        QFETCH(QString, written);
        QFETCH(QString, read);
        class_ch341 link;
        openOn(link);
        const QByteArray data = payload(length);
        // Before any speed has been set, the pauses are those of 100 kHz.
        for (const int speed : {-1, 0, 1, 2, 3}) {
            if (speed >= 0)
                link.setIICSpeed(static_cast<ch341_iic_speed_te>(speed));
            vendor().takeCalls();
            QCOMPARE(int(link.write(0x50, bytesOf(data), static_cast<uint16_t>(length))), length);
            QCOMPARE(vendor().takeCalls(),
                     expectedCalls(written, QStringLiteral("write 0 "), head(std::abs(speed), false), data));

            vendor().nextByte = 0;
            QVector<uint8_t> buffer(length + 1, 0xEE);
            QCOMPARE(int(link.read(0x50, buffer.data(), static_cast<uint16_t>(length))), length);
            for (int i = 0; i < length; ++i)
                QCOMPARE(buffer[i], static_cast<uint8_t>(i));
            QCOMPARE(buffer[length], uint8_t{0xEE});
            QCOMPARE(vendor().takeCalls(),
                     expectedCalls(read, QStringLiteral("read 0 63x1 "), head(std::abs(speed), true), data));
        }
    }

    void failures()
    {
        class_ch341 link;
        openOn(link);
        const QByteArray data = payload(60);

        vendor().successes = 2;
        QCOMPARE(link.write(0x50, bytesOf(data), 60), uint16_t{0});
        QCOMPARE(vendor().takeCalls().count(QLatin1Char('|')), 2);

        vendor().successes = 1;
        QByteArray buffer(90, '\x55');
        auto *bytes = reinterpret_cast<uint8_t *>(buffer.data());
        QCOMPARE(link.read(0x50, bytes, 90), uint16_t{0});
        QCOMPARE(vendor().takeCalls().count(QLatin1Char('|')), 1);
        QCOMPARE(buffer.mid(30), QByteArray(60, '\x55'));

        vendor().successes = -1;
        vendor().reportsNothing = true;
        QCOMPARE(link.write(0x50, bytesOf(data), 60), uint16_t{0});
        QCOMPARE(link.read(0x50, bytes, 90), uint16_t{0});
        QCOMPARE(vendor().takeCalls().count(QLatin1Char('|')), 1);

        vendor().reportsNothing = false;
        vendor().reportedRead = 1;
        QCOMPARE(link.read(0x50, bytes, 90), uint16_t{90});
    }

    void refusedArguments()
    {
        class_ch341 link;
        uint8_t byte = 0;
        QCOMPARE(link.write(0x50, &byte, 1) + link.read(0x50, &byte, 1), 0);
        QCOMPARE(link.setIICSpeed(ch341_iic_speed_te::Khz100), 0U);
        link.setInt(1);
        QCOMPARE(link.getInt(), uint8_t{255});
        QCOMPARE(vendor().takeCalls(), QLatin1String("notify on 0"));

        openOn(link);
        QCOMPARE(link.write(0x50, nullptr, 1) + link.write(0x50, &byte, 0), 0);
        QCOMPARE(link.read(0x50, nullptr, 1) + link.read(0x50, &byte, 0), 0);
        QCOMPARE(vendor().takeCalls(), QString());
    }

    void ids_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QVector<uint16_t>>("ids");
        using Ids = QVector<uint16_t>;
        QTest::newRow("usual") << QByteArray("\\\\?\\usb#vid_1a86&pid_5512#6&1b0d2c3f&0&2#{5446}")
                               << Ids{6002};
        QTest::newRow("upper case") << QByteArray("USB#VID_1A86&PID_5512#12&0&0&34") << Ids{12034};
        QTest::newRow("another device") << QByteArray("usb#vid_1a86&pid_5523#6&1b0d2c3f&0&2") << Ids{};
        QTest::newRow("product at the end") << QByteArray("usb#pid_55") << Ids{};
        QTest::newRow("letters in first field") << QByteArray("usb#pid_5512#6a&1&0&2") << Ids{2};
        QTest::newRow("three fields") << QByteArray("usb#pid_5512#6&1&0") << Ids{6000};
        QTest::newRow("no instance") << QByteArray("usb#pid_5512") << Ids{0};
        QTest::newRow("more than 16 bits") << QByteArray("usb#pid_5512#70&1&0&1") << Ids{70001 - 65536};
    }

    void ids()
    {
        QFETCH(QByteArray, path);
        QFETCH(QVector<uint16_t>, ids);
        LogCapture log;
        vendor().setDevices({{3, path.toStdString()}});
        class_ch341 link;
        QSignalSpy lists(&link, &class_ch341::si_updateList);
        link.getScanSignal();
        QCOMPARE(lists.size(), 1);
        QCOMPARE(lists[0][0].value<QVector<uint16_t>>(), ids);
        QVERIFY(log.contains(QString::fromLatin1(path)));
    }

    void opening()
    {
        // Another device on index 0: the bridge is first in the list, and that is what goes to the library.
        vendor().setDevices({{0, "usb#PID_5523#1&a&b&1"}, {1, "usb#PID_5512#1&a&b&2"}});
        class_ch341 link;
        link.scan();
        vendor().takeCalls();
        LogCapture log;
        QStringList linesBefore;
        connect(&link, &class_ch341::si_connected, [&] { linesBefore = log.lines(); });
        QVERIFY(!link.open(1009));
        vendor().opens = false;
        QVERIFY(!link.open(1002));
        QVERIFY(!link.isOpen());
        vendor().opens = true;
        QVERIFY(link.open(1002));
        QVERIFY(!link.open(1002));
        QCOMPARE(vendor().takeCalls(), QLatin1String("open 0|close 0|open 0|reset 0|flush 0"));
        // The signal comes before the line.
        QCOMPARE(linesBefore.size(), 2);
        QCOMPARE(log.lines().join(QLatin1Char('|')),
                 QLatin1String("connect param err:0,-1|connect fail:1002, idx:0|"
                               "connect success:1002, idx:0|connect param err:1,0"));
    }

    void speeds()
    {
        class_ch341 link;
        openOn(link);
        vendor().result = 7;
        QCOMPARE(link.setIICSpeed(ch341_iic_speed_te::Khz750), 7U);
        QCOMPARE(link.setIICSpeed(static_cast<ch341_iic_speed_te>(4)), 0U);
        // The refused speed has not been kept.
        const uint8_t byte = 9;
        link.write(0x50, &byte, 1);
        QCOMPARE(vendor().takeCalls(), QLatin1String("speed 0 3|write 0 AA7481A04F4F4F4F4F81097500"));
    }

    void resetPin()
    {
        class_ch341 link;
        openOn(link);
        vendor().pins = 0x0000F5A5;
        link.setInt(0);
        QCOMPARE(vendor().takeCalls(), QLatin1String("getInput 0|setOutput 0 3 ff00 f1a5"));
        QCOMPARE(link.getInt(), uint8_t{1});
        vendor().pins = 0x0000F1A5;
        QCOMPARE(link.getInt(), uint8_t{0});
    }

    void hotPlug_data()
    {
        using Ids = std::vector<int>;
        QTest::addColumn<Ids>("before");
        QTest::addColumn<Ids>("after");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("log");
        QTest::addColumn<QString>("signalOrder");
        const auto row = [](const char *name, const Ids &before, const Ids &after, int status,
                            const char *log, const char *signalOrder) {
            QTest::newRow(name) << before << after << status << QString::fromLatin1(log)
                                << QString::fromLatin1(signalOrder);
        };
        row("own bridge gone", {1002}, {}, 0, "disconnected:1002|openIdx:255, idx:-1", "list|disconnected");
        row("own bridge missing at an arrival", {1002}, {}, 3, "openIdx:0, idx:-1", "list");
        row("another one behind it arrives", {1002}, {1002, 1005}, 3, "openIdx:0, idx:0", "list");
        row("another one before it arrives", {1002}, {1001, 1002}, 3,
            "openIdx:0, idx:1|restart:1002|connect success:1002, idx:1", "list|disconnected|connected");
        row("another one before it goes", {1001, 1002}, {1002}, 0,
            "openIdx:1, idx:0|restart:1002|connect success:1002, idx:0", "list|disconnected|connected");
    }

    void hotPlug()
    {
        QFETCH(std::vector<int>, before);
        QFETCH(std::vector<int>, after);
        QFETCH(int, status);
        QFETCH(QString, log);
        QFETCH(QString, signalOrder);
        class_ch341 link;
        vendor().setCh341Ids(before);
        link.scan();
        QVERIFY(link.open(1002));
        QStringList order;
        connect(&link, &class_ch341::si_updateList, [&] { order.append(QStringLiteral("list")); });
        connect(&link, &class_ch341::si_disconnected, [&] { order.append(QStringLiteral("disconnected")); });
        connect(&link, &class_ch341::si_connected, [&] { order.append(QStringLiteral("connected")); });
        vendor().setCh341Ids(after);
        LogCapture capture;
        vendor().notify(static_cast<uint32_t>(status));
        QCOMPARE(order.join(QLatin1Char('|')), signalOrder);
        QCOMPARE(capture.lines().mid(int(after.size()) + 1).join(QLatin1Char('|')), log);

        link.close();
        order.clear();
        vendor().notify(0);
        QCOMPARE(order, QStringList(QStringLiteral("list")));
    }

    void lastInstanceIsNotified()
    {
        class_ch341 first;
        auto second = std::make_unique<class_ch341>();
        QSignalSpy firstLists(&first, &class_ch341::si_updateList);
        QSignalSpy secondLists(second.get(), &class_ch341::si_updateList);
        vendor().notify(3);
        QCOMPARE(firstLists.size(), 0);
        QCOMPARE(secondLists.size(), 1);
        second.reset();
        vendor().notify(3);
        class_ch341::CH341_NOTIFY_ROUTINE(0);
        QCOMPARE(firstLists.size(), 0);
    }

private:
    /// A link open on the bridge with id 1002, calls forgotten.
    static void openOn(class_ch341 &link)
    {
        vendor().setCh341Ids({1002});
        link.scan();
        QVERIFY(link.open(1002));
        vendor().takeCalls();
    }
};

QTEST_GUILESS_MAIN(tst_class_ch341)
#include "tst_class_ch341.moc"
