// class_ch347 against a recording stand-in for the bridge library: every call that reaches the bridge.

#include "link/class_ch347.h"
#include "tests/link/fake_vendor.h"
#include "tests/support/log_capture.h"

#include <QSignalSpy>
#include <QTest>

namespace {

FakeVendor &vendor()
{
    return FakeVendor::instance();
}

constexpr auto kEnable = ch347_gpio_en_te::Enable;
constexpr auto kOutput = ch347_gpio_dir_te::Output;
constexpr auto kInput = ch347_gpio_dir_te::Input;

ch347_gpio_te pin(int number)
{
    return static_cast<ch347_gpio_te>(number);
}

} // namespace

class tst_class_ch347 : public QObject
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
        vendor().setDevices({{0, "usb#x&3EA"}, {1, "usb#x&3EB"}});
        {
            class_ch347 link;
            QCOMPARE(vendor().takeCalls(), QString());
            QSignalSpy lists(&link, &class_ch347::si_updateList);
            QVERIFY(lists.wait());
            QCOMPARE(lists[0][0].value<QVector<uint16_t>>(), (QVector<uint16_t>{1002, 1003}));
            QSignalSpy disconnected(&link, &class_ch347::si_disconnected);
            QVERIFY(link.open(1003));
            link.close();
            link.close();
            QCOMPARE(disconnected.size(), 1);
            QVERIFY(link.open(1003));
            vendor().takeCalls();
        }
        QCOMPARE(vendor().takeCalls(), QLatin1String("notify off 0"));
        QCOMPARE(log.lines().join(QLatin1Char('|')),
                 QLatin1String("CH347 new|ch347: QVector(1002, 1003)|connect success:1003, idx:1|"
                               "connect success:1003, idx:1|CH347 delete"));
    }

    void ids_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<int>("id");
        QTest::newRow("usual") << QByteArray("USB#6&1A2B&0&2#{5446}") << 0x1A2B;
        QTest::newRow("one less than the modulus") << QByteArray("USB#6&FFFE") << 65534;
        QTest::newRow("the modulus") << QByteArray("USB#6&ffff") << 0;
        QTest::newRow("32 bits") << QByteArray("USB#6&1B0D2C3F") << int(0x1B0D2C3FU % 65535);
        QTest::newRow("more than 32 bits") << QByteArray("USB#6&123456789") << 0;
        QTest::newRow("not hexadecimal") << QByteArray("USB#vid_1a86&pid_55db") << 0;
        QTest::newRow("one field") << QByteArray("USB#6") << 0;
        QTest::newRow("no text of that kind") << QByteArray("USB 6&1A2B") << 0;
    }

    void ids()
    {
        QFETCH(QByteArray, text);
        QFETCH(int, id);
        vendor().setDevices({{31, text.toStdString()}});
        class_ch347 link;
        QSignalSpy lists(&link, &class_ch347::si_updateList);
        link.getScanSignal();
        QCOMPARE(lists[0][0].value<QVector<uint16_t>>(), QVector<uint16_t>{static_cast<uint16_t>(id)});
    }

    void scanClosesEveryIndex()
    {
        class_ch347 link;
        openOn(link);
        QCOMPARE(link.scan(), 1);
        QStringList expected;
        for (int index = 0; index < 32; ++index)
            expected << QStringLiteral("open %1").arg(index) << QStringLiteral("close %1").arg(index);
        QCOMPARE(vendor().takeCalls(), expected.join(QLatin1Char('|')));
        QVERIFY(link.isOpen());
    }

    void openFails()
    {
        class_ch347 link;
        vendor().setDevices({{0, "usb#x&3EA"}});
        link.scan();
        vendor().takeCalls();
        LogCapture log;
        QVERIFY(!link.open(7));
        vendor().opens = false;
        QVERIFY(!link.open(1002));
        QCOMPARE(vendor().takeCalls(), QLatin1String("open 0|close 0"));
        QCOMPARE(log.lines().join(QLatin1Char('|')),
                 QLatin1String("connect param err:0,-1|connect fail:1002, idx:0"));
    }

    void transfers()
    {
        class_ch347 link;
        openOn(link);
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

    void failures()
    {
        class_ch347 link;
        QByteArray data(4098, '\x11');
        auto *bytes = reinterpret_cast<uint8_t *>(data.data());
        LogCapture log;
        QCOMPARE(link.read(0x61, bytes, 1), uint16_t{0});
        QCOMPARE(log.lines().constLast(),
                 QString::asprintf("ch347 read err:%p, 1", static_cast<const void *>(bytes)));
        openOn(link);
        log.clear();
        QCOMPARE(link.write(0x61, bytes, 0), uint16_t{0});
        QCOMPARE(link.write(0x61, bytes, 4098), uint16_t{0});
        QCOMPARE(link.read(0x61, bytes, 0), uint16_t{0});
        QCOMPARE(log.lines()[0],
                 QString::asprintf("ch347 write err,1, 0,%p", static_cast<const void *>(bytes)));
        QCOMPARE(log.lines()[1],
                 QString::asprintf("ch347 write err,1, 4098,%p", static_cast<const void *>(bytes)));
        QCOMPARE(vendor().takeCalls(), QString());

        log.clear();
        vendor().successes = 0;
        QCOMPARE(link.write(0x61, bytes, 11), uint16_t{0});
        QCOMPARE(log.lines(), QStringList(QStringLiteral("ch347 write err")));
        QCOMPARE(link.read(0x61, bytes, 600), uint16_t{0});
        QCOMPARE(data.left(601), QByteArray(600, '\xFF') + '\x11');
    }

    void writeDelayRead()
    {
        class_ch347 link;
        openOn(link);
        const uint8_t request[] = {0xAA, 0x55};
        uint8_t answer[3] = {};
        // The host waits itself when the bridge does not.
        for (const uint32_t result : {1U, 0U}) {
            vendor().result = result;
            QElapsedTimer pause;
            pause.start();
            QCOMPARE(link.wdr(0x61, request, 2, 12, answer, 3), uint16_t{3});
            QVERIFY(result != 0 || pause.elapsed() >= 12);
            QCOMPARE(vendor().takeCalls(), QLatin1String("i2c 0 C2AA55 +0|delay 0 12|i2c 0 C3 +3"));
        }
        vendor().successes = 0;
        QCOMPARE(link.wdr(0x61, request, 2, 12, answer, 3), uint16_t{0});
        QCOMPARE(vendor().takeCalls(), QLatin1String("i2c 0 C2AA55 +0"));
    }

    void busSettings()
    {
        class_ch347 link;
        openOn(link);
        QCOMPARE(link.setIICSpeed(static_cast<ch347_iic_speed_te>(7)), 0U);
        vendor().result = 5;
        QCOMPARE(link.setIICSpeed(ch347_iic_speed_te::Mode6), 5U);
        QCOMPARE(link.setIICStretch(3), 5U);
        QCOMPARE(link.setIICStretch(2), 5U);
        QCOMPARE(link.setIICDriverMode(1), 5U);
        QCOMPARE(vendor().takeCalls(), QLatin1String("speed 0 6|stretch 0 1|stretch 0 0|driver 0 1"));
    }

    void pinHistory()
    {
        class_ch347 link;
        openOn(link);
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

    void readPin()
    {
        class_ch347 link;
        openOn(link);
        ch347_gpio_dir_te direction = kOutput;
        uint8_t level = 0x55;
        QCOMPARE(link.getGPIO(pin(2), &direction, &level), 0U);
        QCOMPARE(level, uint8_t{0x55});

        link.setGPIO(pin(2), kEnable, kInput, 0);
        vendor().gpioLevels = 0x04;
        QCOMPARE(link.getGPIO(pin(2), &direction, &level), 1U);
        QCOMPARE(direction, kInput);
        QCOMPARE(level, uint8_t{1});
        vendor().gpioDirection = 0x04;
        vendor().gpioLevels = 0xFB;
        QCOMPARE(link.getGPIO(pin(2), &direction, &level), 1U);
        QCOMPARE(direction, kOutput);
        QCOMPARE(level, uint8_t{0});
    }

    void routine()
    {
        class_ch347 link;
        openOn(link);
        QSignalSpy lists(&link, &class_ch347::si_updateList);
        QVERIFY(lists.wait());
        LogCapture log;
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

private:
    /// A link open on index 0 with id 1002, calls forgotten.
    static void openOn(class_ch347 &link)
    {
        vendor().setDevices({{0, "usb#x&3EA"}});
        link.scan();
        QVERIFY(link.open(1002));
        vendor().takeCalls();
    }
};

QTEST_GUILESS_MAIN(tst_class_ch347)
#include "tst_class_ch347.moc"
