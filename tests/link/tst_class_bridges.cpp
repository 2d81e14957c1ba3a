// Every byte and call of both links that reaches a vendor library, loaded like one.

#include "link/class_ch341.h"
#include "link/class_ch347.h"
#include "link/providers/ch341dll.h"
#include "link/providers/ch347dll.h"
#include "tests/link/fake_vendor.h"
#include "tests/support/log_capture.h"

#include <QtTest>

#include <tuple>

namespace {

using Ids = QVector<uint16_t>;

constexpr auto kEnable = ch347_gpio_en_te::Enable;
constexpr auto kOutput = ch347_gpio_dir_te::Output;
constexpr auto kInput = ch347_gpio_dir_te::Input;

ch347_gpio_te pin(int number)
{
    return static_cast<ch347_gpio_te>(number);
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

/// A link open on index 0 with id 1002, calls forgotten.
template<typename Link>
struct OpenLink : Link
{
    OpenLink()
    {
        vendor().setIds({1002});
        this->scan();
        this->open(1002);
        vendor().takeCalls();
    }
};

template<typename Link>
Ids idsOf(const QByteArray &text)
{
    vendor().setDevices({{3, text.toStdString()}});
    Link link;
    QSignalSpy lists(&link, &Link::si_updateList);
    link.getScanSignal();
    return lists.size() == 1 ? lists[0][0].value<Ids>() : Ids{0xFFFF};
}

/// One life of a link, and what it logs between the first line and the last.
template<typename Link>
void live(const char *callsAtStart, const char *callsAtEnd, const char *lines)
{
    const LogCapture log;
    vendor().setIds({1002, 1003});
    {
        Link link;
        QSignalSpy lists(&link, &Link::si_updateList);
        QCOMPARE(vendor().takeCalls(), QLatin1String(callsAtStart));
        QVERIFY(lists.wait());
        QCOMPARE(lists[0][0].value<Ids>(), (Ids{1002, 1003}));
        QSignalSpy disconnected(&link, &Link::si_disconnected);
        QVERIFY(link.open(1003));
        link.close();
        link.close();
        QCOMPARE(disconnected.size(), 1);
        QVERIFY(link.open(1003));
        vendor().takeCalls();
    }
    QCOMPARE(vendor().takeCalls(), QLatin1String(callsAtEnd));
    QCOMPARE(log.lines().mid(1).join(QLatin1Char('|')), QLatin1String(lines));
}

template<typename Link>
void refuseThenOpen(const char *callsAfterOpen)
{
    Link link;
    link.scan();
    vendor().takeCalls();
    const LogCapture log;
    QStringList linesBefore;
    QObject::connect(&link, &Link::si_connected, [&] { linesBefore = log.lines(); });
    QVERIFY(!link.open(1009));
    vendor().opens = false;
    QVERIFY(!link.open(1002));
    QVERIFY(!link.isOpen());
    vendor().opens = true;
    QVERIFY(link.open(1002));
    QVERIFY(!link.open(1002));
    QCOMPARE(vendor().takeCalls(), QLatin1String("open 0|close 0|open 0") + QLatin1String(callsAfterOpen));
    // The signal comes before the line.
    QCOMPARE(linesBefore.size(), 2);
    QCOMPARE(log.lines().join(QLatin1Char('|')),
             QLatin1String("connect param err:0,-1|connect fail:1002, idx:0|"
                           "connect success:1002, idx:0|connect param err:1,0"));
}

} // namespace

class tst_class_bridges : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        qRegisterMetaType<Ids>("QVector<uint16_t>");
        vendor().reset();
    }

    void life()
    {
        live<class_ch341>("notify on 0", "close 1|notify off 0",
                          "usb#PID_5512&3EA#1&a&b&2|usb#PID_5512&3EB#1&a&b&3|QVector(1002, 1003)|"
                          "connect success:1003, idx:1|connect success:1003, idx:1|ch341 delete");
        live<class_ch347>("", "notify off 0",
                          "ch347: QVector(1002, 1003)|connect success:1003, idx:1|"
                          "connect success:1003, idx:1|CH347 delete");
    }

    void opening()
    {
        // Another device on index 0: the bridge is first in the list, and that is what goes to the library.
        vendor().setDevices({{0, "usb#PID_5523#1&a&b&1"}, {1, "usb#PID_5512#1&a&b&2"}});
        refuseThenOpen<class_ch341>("|reset 0|flush 0");
        vendor().setIds({1002});
        refuseThenOpen<class_ch347>("");
    }

    void ids()
    {
        // Usual, upper case, another device, cut, letters, few fields, more than 16 bits.
        const std::pair<QByteArray, Ids> ch341[] = {
            {"\\\\?\\usb#vid_1a86&pid_5512#6&1b0d2c3f&0&2#{5446}", {6002}},
            {"USB#VID_1A86&PID_5512#12&0&0&34", {12034}},
            {"usb#vid_1a86&pid_5523#6&1b0d2c3f&0&2", {}},
            {"usb#pid_55", {}},
            {"usb#pid_5512#6a&1&0&2", {2}},
            {"usb#pid_5512#6&1&0", {6000}},
            {"usb#pid_5512", {0}},
            {"usb#pid_5512#70&1&0&1", {70001 - 65536}}};
        // The remainder of a division by 65535; more than 32 bits and what is no number are 0.
        const std::pair<QByteArray, Ids> ch347[] = {{"USB#6&1A2B&0&2#{5446}", {0x1A2B}},
                                                    {"USB#6&FFFE", {65534}},
                                                    {"USB#6&ffff", {0}},
                                                    {"USB#6&1B0D2C3F", {0x1B0D2C3FU % 65535}},
                                                    {"USB#6&123456789", {0}},
                                                    {"USB#vid_1a86&pid_55db", {0}},
                                                    {"USB#6", {0}},
                                                    {"USB 6&1A2B", {0}}};
        const LogCapture log;
        for (const auto &[text, ids] : ch341) {
            QCOMPARE(idsOf<class_ch341>(text), ids);
            QVERIFY(log.contains(QString::fromLatin1(text)));
        }
        for (const auto &[text, ids] : ch347)
            QCOMPARE(idsOf<class_ch347>(text), ids);
    }

    void ch341Packets()
    {
        // H is the head, [n] the next n bytes of the payload, "3*" three packets alike.
        const std::tuple<int, const char *, const char *> transfers[] = {
            {1, "H81[1]7500", "HC07500"},
            {5, "H85[5]7500", "HC4C07500"},
            {19, "H93[19]7500", "HD2C07500"},
            {20, "H94[20]00|AA7500", "HD3C07500"},
            {21, "H94[20]00|AA81[1]7500", "HD4C07500"},
            {29, "H94[20]00|AA89[9]7500", "HDCC07500"},
            {30, "H94[20]00|AA8A[10]7500", "HDDC07500"},
            {31, "H94[20]00|AA8B[11]7500", "HDE00|AAC07500"},
            {60, "H94[20]00|2*AA94[20]00|AA7500", "HDE00|AADDC07500"},
            {189, "H94[20]00|8*AA94[20]00|AA89[9]7500", "HDE00|5*AADE00|AAC8C07500"},
            {600, "H94[20]00|29*AA94[20]00|AA7500", "HDE00|18*AADE00|AADDC07500"}};
        for (const auto &[length, written, read] : transfers) {
            OpenLink<class_ch341> link;
            QByteArray data(length + 1, '\xEE');
            auto *bytes = reinterpret_cast<uint8_t *>(data.data());
            // Before any speed has been set, the pauses are those of 100 kHz.
            for (const int speed : {-1, 0, 1, 2, 3}) {
                if (speed >= 0)
                    link.setIICSpeed(static_cast<ch341_iic_speed_te>(speed));
                vendor().takeCalls();
                vendor().nextByte = 1;
                QCOMPARE(int(link.read(0x50, bytes, static_cast<uint16_t>(length))), length);
                for (int i = 0; i < length; ++i)
                    QCOMPARE(bytes[i], static_cast<uint8_t>(i + 1));
                QCOMPARE(bytes[length], uint8_t{0xEE});
                QCOMPARE(vendor().takeCalls(),
                         expectedCalls(QLatin1String(read), QStringLiteral("read 0 63x1 "),
                                       head(std::abs(speed), true), data));
                QCOMPARE(int(link.write(0x50, bytes, static_cast<uint16_t>(length))), length);
                QCOMPARE(vendor().takeCalls(),
                         expectedCalls(QLatin1String(written), QStringLiteral("write 0 "),
                                       head(std::abs(speed), false), data));
            }
        }
    }

    void ch347Transfers()
    {
        OpenLink<class_ch347> link;
        for (const int speed : {0, 1, 2, 3}) {
            link.setIICSpeed(static_cast<ch347_iic_speed_te>(speed));
            vendor().takeCalls();
            for (const int length : {1, 5, 19, 20, 21, 29, 30, 31, 60, 189, 600, 4097}) {
                QByteArray data(length + 1, '\x55');
                auto *bytes = reinterpret_cast<uint8_t *>(data.data());
                vendor().nextByte = static_cast<uint8_t>(speed);
                QCOMPARE(int(link.read(0x61, bytes, static_cast<uint16_t>(length))), length);
                QCOMPARE(vendor().takeCalls(), QStringLiteral("i2c 0 C3 +%1").arg(length));
                for (int i = 0; i < length; ++i)
                    QCOMPARE(bytes[i], static_cast<uint8_t>(i + speed));
                QCOMPARE(bytes[length], uint8_t{0x55});

                QCOMPARE(int(link.write(0x61, bytes, static_cast<uint16_t>(length))), length);
                const QString hex = QString::fromLatin1(data.left(length).toHex().toUpper());
                QCOMPARE(vendor().takeCalls(), QStringLiteral("i2c 0 C2%1 +0").arg(hex));
            }
        }
    }

    void ch341Failures()
    {
        class_ch341 closed;
        uint8_t byte = 0;
        QCOMPARE(closed.write(0x50, &byte, 1) + closed.read(0x50, &byte, 1), 0);
        QCOMPARE(closed.setIICSpeed(ch341_iic_speed_te::Khz100), 0U);
        closed.setInt(1);
        QCOMPARE(vendor().takeCalls(), QLatin1String("notify on 0"));

        OpenLink<class_ch341> link;
        QCOMPARE(link.write(0x50, nullptr, 1) + link.write(0x50, &byte, 0), 0);
        QCOMPARE(link.read(0x50, nullptr, 1) + link.read(0x50, &byte, 0), 0);
        QCOMPARE(vendor().takeCalls(), QString());

        QByteArray buffer(90, '\x55');
        auto *bytes = reinterpret_cast<uint8_t *>(buffer.data());
        vendor().successes = 2;
        QCOMPARE(link.write(0x50, bytes, 60), uint16_t{0});
        QCOMPARE(vendor().takeCalls().count(QLatin1Char('|')), 2);
        vendor().successes = 1;
        QCOMPARE(link.read(0x50, bytes, 90), uint16_t{0});
        QCOMPARE(vendor().takeCalls().count(QLatin1Char('|')), 1);
        QCOMPARE(buffer.mid(30), QByteArray(60, '\x55'));

        vendor().successes = -1;
        vendor().reportsNothing = true;
        QCOMPARE(link.write(0x50, bytes, 60) + link.read(0x50, bytes, 90), 0);
        QCOMPARE(vendor().takeCalls().count(QLatin1Char('|')), 1);
        vendor().reportsNothing = false;
        vendor().reportedRead = 1;
        QCOMPARE(link.read(0x50, bytes, 90), uint16_t{90});
    }

    void ch347Failures()
    {
        QByteArray data(4098, '\x11');
        auto *bytes = reinterpret_cast<uint8_t *>(data.data());
        const LogCapture log;
        QCOMPARE(class_ch347().read(0x61, bytes, 1), uint16_t{0});
        QVERIFY(log.contains(QString::asprintf("ch347 read err:%p, 1", static_cast<const void *>(bytes))));
        OpenLink<class_ch347> link;
        for (const int length : {0, 4098}) {
            QCOMPARE(link.write(0x61, bytes, static_cast<uint16_t>(length)), uint16_t{0});
            QVERIFY(log.contains(
                QString::asprintf("ch347 write err,1, %d,%p", length, static_cast<const void *>(bytes))));
        }
        QCOMPARE(link.read(0x61, bytes, 0), uint16_t{0});
        QCOMPARE(vendor().takeCalls(), QString());

        vendor().successes = 0;
        QCOMPARE(link.write(0x61, bytes, 11), uint16_t{0});
        QCOMPARE(log.lines().constLast(), QStringLiteral("ch347 write err"));
        QCOMPARE(link.read(0x61, bytes, 600), uint16_t{0});
        QCOMPARE(data.left(601), QByteArray(600, '\xFF') + '\x11');
    }

    void ch341Speeds()
    {
        OpenLink<class_ch341> link;
        vendor().result = 7;
        QCOMPARE(link.setIICSpeed(ch341_iic_speed_te::Khz750), 7U);
        QCOMPARE(link.setIICSpeed(static_cast<ch341_iic_speed_te>(4)), 0U);
        // The refused speed has not been kept.
        const uint8_t byte = 9;
        link.write(0x50, &byte, 1);
        QCOMPARE(vendor().takeCalls(), QLatin1String("speed 0 3|write 0 AA7481A04F4F4F4F4F81097500"));
    }

    void ch347BusSettings()
    {
        OpenLink<class_ch347> link;
        QCOMPARE(link.setIICSpeed(static_cast<ch347_iic_speed_te>(7)), 0U);
        vendor().result = 5;
        QCOMPARE(link.setIICSpeed(ch347_iic_speed_te::Mode6), 5U);
        QCOMPARE(link.setIICStretch(3), 5U);
        QCOMPARE(link.setIICStretch(2), 5U);
        QCOMPARE(link.setIICDriverMode(1), 5U);
        QCOMPARE(vendor().takeCalls(), QLatin1String("speed 0 6|stretch 0 1|stretch 0 0|driver 0 1"));
    }

    void ch347Pins()
    {
        OpenLink<class_ch347> link;
        link.setGPIO(pin(0), kEnable, kOutput, 0);
        link.setGPIO(pin(0), kEnable, kOutput, 1);
        QCOMPARE(vendor().takeCalls(), QLatin1String("gpio 0 01 01 00|gpio 0 01 01 01"));
        link.setGPIO(pin(7), kEnable, kOutput, 1);
        link.setGPIO(pin(7), kEnable, kInput, 0);
        link.setGPIO(pin(3), kEnable, kInput, 1);
        link.setGPIO(pin(0), ch347_gpio_en_te::Disable, kInput, 0);
        link.setGPIO(pin(7), kEnable, kOutput, 0);
        QCOMPARE(vendor().takeCalls(), QLatin1String("gpio 0 81 81 81|gpio 0 81 01 81|gpio 0 89 01 81|"
                                                     "gpio 0 88 01 81|gpio 0 88 81 01"));
        QCOMPARE(link.setGPIO(pin(8), kEnable, kOutput, 1), 0U);
        QCOMPARE(link.setGPIO(pin(0), static_cast<ch347_gpio_en_te>(2), kOutput, 1), 0U);
        QCOMPARE(link.setGPIO(pin(0), kEnable, static_cast<ch347_gpio_dir_te>(2), 1), 0U);
        QCOMPARE(link.setGPIO(pin(0), kEnable, kOutput, 2), 0U);
        QCOMPARE(vendor().takeCalls(), QString());
    }

    void ch347Scan()
    {
        OpenLink<class_ch347> link;
        QCOMPARE(link.scan(), 1);
        QStringList expected;
        for (int index = 0; index < 32; ++index)
            expected << QStringLiteral("open %1").arg(index) << QStringLiteral("close %1").arg(index);
        QCOMPARE(vendor().takeCalls(), expected.join(QLatin1Char('|')));
        QVERIFY(link.isOpen());

        QSignalSpy lists(&link, &class_ch347::si_updateList);
        QVERIFY(lists.wait());
        const LogCapture log;
        vendor().setDevices({});
        class_ch347::CH347_NOTIFY_ROUTINE(0);
        // The list is still the old one when the routine looks for its bridge.
        QCOMPARE(log.lines(), QStringList(QStringLiteral("openIdx:0, idx:0")));
        QVERIFY(link.isOpen());
        QVERIFY(lists.wait());
        class_ch347::CH347_NOTIFY_ROUTINE(0);
        QVERIFY(!link.isOpen());
        QVERIFY(log.contains(QStringLiteral("disconnected:1002")));
    }

    void ch341HotPlug()
    {
        struct Change
        {
            std::vector<int> before;
            std::vector<int> after;
            uint32_t status;
            const char *log;
            const char *signalOrder;
        };
        // The own bridge goes, or is missing at an arrival; another one arrives behind it, arrives before it,
        // goes from before it.
        const Change changes[] = {
            {{1002}, {}, 0, "disconnected:1002|openIdx:255, idx:-1", "list|disconnected"},
            {{1002}, {}, 3, "openIdx:0, idx:-1", "list"},
            {{1002}, {1002, 1005}, 3, "openIdx:0, idx:0", "list"},
            {{1002},
             {1001, 1002},
             3,
             "openIdx:0, idx:1|restart:1002|connect success:1002, idx:1",
             "list|disconnected|connected"},
            {{1001, 1002},
             {1002},
             0,
             "openIdx:1, idx:0|restart:1002|connect success:1002, idx:0",
             "list|disconnected|connected"}};
        for (const Change &change : changes) {
            class_ch341 link;
            vendor().setIds(change.before);
            link.scan();
            QVERIFY(link.open(1002));
            QStringList order;
            const auto note = [&order](const char *signal) {
                return [&order, signal] { order.append(QLatin1String(signal)); };
            };
            connect(&link, &class_ch341::si_updateList, note("list"));
            connect(&link, &class_ch341::si_disconnected, note("disconnected"));
            connect(&link, &class_ch341::si_connected, note("connected"));
            vendor().setIds(change.after);
            const LogCapture log;
            vendor().notify(change.status);
            QCOMPARE(order.join(QLatin1Char('|')), QLatin1String(change.signalOrder));
            const QStringList lines = log.lines().mid(static_cast<int>(change.after.size()) + 1);
            QCOMPARE(lines.join(QLatin1Char('|')), QLatin1String(change.log));

            link.close();
            order.clear();
            vendor().notify(0);
            QCOMPARE(order, QStringList(QStringLiteral("list")));
        }
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

    void noNoticeOnceRoutineIsGone()
    {
        static int notices = 0;
        for (auto *setNotify : {&CH341SetDeviceNotify, &CH347SetDeviceNotify}) {
            setNotify(0, nullptr, [](uint32_t status) { notices += static_cast<int>(status) + 1; });
            vendor().notify(3);
            setNotify(0, nullptr, nullptr);
        }
        QCOMPARE(notices, 8);
    }
};

QTEST_GUILESS_MAIN(tst_class_bridges)
#include "tst_class_bridges.moc"
