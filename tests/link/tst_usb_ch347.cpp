// The CH347 operations on libusb, down to the transfers that an emulated chip sees.

#include "link/class_ch347.h"
#include "link/providers/ch347dll.h"
#include "tests/link/usb/FakeBridgeChips.h"
#include "tests/link/usb/usb_test.h"
#include "tests/support/log_capture.h"

#include <QElapsedTimer>

namespace {

using Bridge = OpenChip<FakeCh347Chip, &CH347OpenDevice, uint32_t, &CH347CloseDevice>;

/// What a whole transfer has read, "failed" when it did.
QByteArray transfer(uint32_t index, const QByteArray &hex, int readLength)
{
    const QByteArray toSend = QByteArray::fromHex(hex);
    QByteArray buffer(readLength, '\x55');
    const uint32_t result = CH347StreamI2C(index, static_cast<uint32_t>(toSend.size()), toSend.constData(),
                                           static_cast<uint32_t>(readLength), buffer.data());
    return result != 0 ? buffer.toHex().toUpper() : QByteArray("failed");
}

} // namespace

class tst_usb_ch347 : public QObject
{
    Q_OBJECT

public:
    explicit tst_usb_ch347(FakeUsbBus &bus)
        : m_bus(bus)
    {}

private Q_SLOTS:
    void initTestCase() { m_bus.addHub("1-2", 2); }

    void listsBridges()
    {
        FakeCh347Chip jtagI2c(0x55DD);
        FakeCh347Chip uartSpiI2c(0x55DB);
        FakeCh347Chip everything(0x55DE);
        FakeCh347Chip twoSerialPorts(0x55DA);
        FakeCh341Chip otherFamily;
        FakeUsbDevice first(m_bus, "1-2.1", 10, jtagI2c);
        FakeUsbDevice second(m_bus, "1-2.2", 11, uartSpiI2c);
        FakeUsbDevice third(m_bus, "1-4", 12, everything);
        FakeUsbDevice noBridge(m_bus, "1-1", 13, twoSerialPorts);
        FakeUsbDevice other(m_bus, "1-3", 14, otherFamily);
        for (FakeUsbDevice *device : {&third, &noBridge, &second, &other, &first})
            device->plug();

        LogCapture log;
        class_ch347 link;
        link.scan();
        QCOMPARE(log.lines().constLast(), QStringLiteral("ch347: QVector(1021, 1022, 1004)"));
        QCOMPARE(first.claimedInterface, -1);
        // In one mode the clock line is a pin, which is made high; the pins of the others are left alone.
        QCOMPARE(hexOf(jtagI2c.transfers[0]), QByteArray("CC0800000000F800000000"));
        for (const FakeCh347Chip *chip : {&uartSpiI2c, &everything})
            QCOMPARE(hexOf(chip->transfers[0]), QByteArray("CC08000000000000000000"));
        QVERIFY(link.open(1022));
        QCOMPARE(second.claimedInterface, 2);
        // A list in between takes the bridge away from the link that has it open, and names it also where it
        // has moved.
        first.unplug();
        link.scan();
        QCOMPARE(log.lines().constLast(), QStringLiteral("ch347: QVector(1022, 1004)"));
        uint8_t byte = 0;
        QCOMPARE(link.read(0x28, &byte, 1), uint16_t{0});
        link.close();
    }

    void settings()
    {
        Bridge bridge(m_bus);
        auto &[chip, device] = bridge;
        QCOMPARE(hexOf(chip.transfers[0]), QByteArray("CC08000000000000000000"));
        const size_t transfersBefore = chip.transfers.size();
        LogCapture log;
        QElapsedTimer pause;
        pause.start();
        for (int round = 0; round < 2; ++round) {
            QVERIFY(CH347I2C_SetStretch(0, 1) != 0);
            QVERIFY(CH347I2C_SetDriverMode(0, 1) != 0);
            QVERIFY(CH347I2C_SetDelaymS(0, 15) != 0);
            QVERIFY(CH347I2C_Set(0, 6) != 0);
        }
        QVERIFY(pause.elapsed() >= 30);
        QCOMPARE(log.lines().size(), 4);
        QCOMPARE(chip.transfers.size(), transfersBefore);
        QVERIFY(CH347I2C_Set(0, 3) != 0);
        QCOMPARE(hexOf(chip.transfers.back()), QByteArray("AA6300"));
        QCOMPARE(CH347I2C_SetStretch(1, 1), 0U);
    }

    void transfers()
    {
        Bridge bridge(m_bus);
        auto &[chip, device] = bridge;
        chip.transfers.clear();
        QCOMPARE(transfer(0, "50DEAD", 0), QByteArray());
        QCOMPARE(hexOf(chip.target.written), QByteArray("DEAD"));
        QCOMPARE(transfer(0, "51", 4), QByteArray("00010203"));
        QCOMPARE(transfer(0, "5007", 1), QByteArray("00"));
        QCOMPARE(hexOf(chip.transfers),
                 (QList<QByteArray>{"AA748350DEAD7500", "AA748151C3C07500", "AA74825007748151C07500"}));
        QCOMPARE(chip.target.stops, 3);

        // Nobody at that address, for a write and for a read.
        QCOMPARE(transfer(0, "52DEAD", 0), QByteArray("failed"));
        QCOMPARE(transfer(0, "53", 4), QByteArray("failed"));
        QCOMPARE(chip.target.stops, 5);
        chip.target.acceptedBytes = chip.target.written.size() + 1;
        QCOMPARE(transfer(0, "500102", 0), QByteArray("failed"));
        QCOMPARE(transfer(0, "51", 1), QByteArray("00"));
        // After a refusal in a long write the rest is not sent, and the bus is set free.
        chip.transfers.clear();
        QCOMPARE(transfer(0, QByteArray("50") + counted(1200).toHex(), 0), QByteArray("failed"));
        QCOMPARE(chip.transfers.size(), size_t{2});
        QCOMPARE(hexOf(chip.transfers[1]), QByteArray("AA7500"));
        QCOMPARE(transfer(1, "51", 1), QByteArray("failed"));
    }

    void longTransfers_data()
    {
        QTest::addColumn<int>("packetSize");
        QTest::addColumn<int>("longest");
        QTest::addColumn<int>("length");
        for (const int length : {1, 64, 189, 500, 507, 4097}) {
            QTest::addRow("%d at high speed", length) << 512 << 510 << length;
            QTest::addRow("%d at full speed", length) << 64 << 60 << length;
        }
    }

    void longTransfers()
    {
        QFETCH(int, packetSize);
        QFETCH(int, longest);
        QFETCH(int, length);
        FakeCh347Chip chip(0x55DB, static_cast<uint16_t>(packetSize));
        FakeUsbDevice device(m_bus, "1-1", 12, chip);
        device.plug();
        class_ch347 link;
        link.scan();
        QVERIFY(link.open(1001));
        chip.transfers.clear();
        const QByteArray sent = counted(length);
        const auto count = static_cast<uint16_t>(length);
        QCOMPARE(int(link.write(0x28, reinterpret_cast<const uint8_t *>(sent.constData()), count)), length);
        QCOMPARE(hexOf(chip.target.written), sent.toHex().toUpper());
        QByteArray received(length + 1, '\x55');
        QCOMPARE(int(link.read(0x28, reinterpret_cast<uint8_t *>(received.data()), count)), length);
        QCOMPARE(received, sent + '\x55');
        // However many packets it took, there was one start and one stop each time.
        QCOMPARE(chip.target.stops, 2);
        for (const Bytes &packet : chip.transfers)
            QVERIFY(static_cast<int>(packet.size()) <= longest);
        link.close();
    }

    void pins()
    {
        Bridge bridge(m_bus);
        auto &[chip, device] = bridge;
        chip.transfers.clear();
        QVERIFY(CH347GPIO_Set(0, 0x83, 0x81, 0x01) != 0);
        QCOMPARE(hexOf(chip.transfers[0]), QByteArray("CC0800F8C00000000000F0"));
        uint8_t direction = 0;
        uint8_t levels = 0;
        QVERIFY(CH347GPIO_Get(0, &direction, &levels) != 0);
        QCOMPARE(direction, uint8_t{0x81});
        QCOMPARE(levels, uint8_t{0x7D});
        QCOMPARE(CH347GPIO_Get(1, &direction, &levels), 0U);
    }

    void refusals()
    {
        Bridge bridge(m_bus);
        auto &[chip, device] = bridge;
        CH347CloseDevice(0);
        LogCapture log;
        {
            const RefusedAccess refused(m_bus, device.node());
            QVERIFY(!isHandle(CH347OpenDevice(0)));
        }
        QVERIFY(log.lines()[0].startsWith(
            QLatin1String("no permission to use the bridge at /dev/bus/usb/001/012: ")));

        // One that the system has not configured, and one whose packets would have no bytes.
        umockdev_testbed_set_attribute(m_bus.testbed(), FakeUsbBus::sysPath("1-1").c_str(),
                                       "bConfigurationValue", "");
        QVERIFY(!isHandle(CH347OpenDevice(0)));
        QVERIFY(log.lines()[1].endsWith(QLatin1String("001/012 cannot be used: LIBUSB_ERROR_NOT_FOUND")));
        device.unplug();
        FakeCh347Chip voiceless(0x55DB, 0);
        FakeUsbDevice empty(m_bus, "1-1", 12, voiceless);
        empty.plug();
        QVERIFY(!isHandle(CH347OpenDevice(0)));
        QVERIFY(log.lines()[2].endsWith(QLatin1String("001/012 cannot be used: LIBUSB_ERROR_NOT_SUPPORTED")));
    }

    void haltsAndDeafOpens()
    {
        Bridge bridge(m_bus);
        auto &[chip, device] = bridge;
        for (const unsigned endpoint : {0x06U, 0x86U}) {
            device.haltedEndpoint = endpoint;
            QCOMPARE(transfer(0, "51", 1), QByteArray("failed"));
            QCOMPARE(transfer(0, "51", 1), QByteArray("00"));
        }
        CH347CloseDevice(0);
        device.isDeaf = true;
        LogCapture log;
        QVERIFY(!isHandle(CH347OpenDevice(0)));
        QCOMPARE(log.lines(),
                 QStringList(QStringLiteral("the bridge at /dev/bus/usb/001/012 does not answer")));
        QCOMPARE(device.claimedInterface, -1);
        device.isCuredByReset = true;
        QVERIFY(isHandle(CH347OpenDevice(0)));
        QCOMPARE(device.resets, 2);
        QCOMPARE(transfer(0, "51", 1), QByteArray("00"));
    }

    void silenceAndUnplugDuringRead()
    {
        Bridge bridge(m_bus);
        auto &[chip, device] = bridge;
        device.isDeaf = true;
        const int sentBefore = device.sent;
        for (int i = 0; i < 20; ++i)
            QCOMPARE(transfer(0, "51", 4), QByteArray("failed"));
        QVERIFY(device.sent - sentBefore < 10);
        device.isDeaf = false;
        QTRY_COMPARE(transfer(0, "51", 1), QByteArray("00"));

        device.isDeaf = true;
        QByteArray answer;
        std::thread reader([&] { answer = transfer(0, "51", 4); });
        QTRY_COMPARE(device.waiting, 1);
        device.unplug();
        reader.join();
        QCOMPARE(answer, QByteArray("failed"));
        // Whoever goes on polling is slowed down.
        QElapsedTimer clock;
        clock.start();
        for (int i = 0; i < 20; ++i)
            QCOMPARE(transfer(0, "51", 4), QByteArray("failed"));
        QVERIFY(clock.elapsed() >= 20);
        QVERIFY(!isHandle(CH347OpenDevice(0)));
    }

private:
    FakeUsbBus &m_bus;
};

int main(int argc, char **argv)
{
    qRegisterMetaType<QVector<uint16_t>>("QVector<uint16_t>");
    return runUsbTest(argc, argv, [](FakeUsbBus &bus) { return new tst_usb_ch347(bus); });
}

#include "tst_usb_ch347.moc"
