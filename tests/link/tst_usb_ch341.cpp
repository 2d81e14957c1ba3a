// The CH341 operations on libusb, down to the transfers that an emulated chip sees.

#include "link/class_ch341.h"
#include "link/providers/ch341dll.h"
#include "link/providers/ch347dll.h"
#include "tests/link/usb/FakeBridgeChips.h"
#include "tests/link/usb/usb_test.h"
#include "tests/support/log_capture.h"

#include <QElapsedTimer>

namespace {

using Bridge = OpenChip<FakeCh341Chip, &CH341OpenDevice, void, &CH341CloseDevice>;

std::atomic<int> arrivals{0};
std::atomic<int> removals{0};

uint32_t writeStream(uint32_t index, const QByteArray &hex)
{
    const QByteArray stream = QByteArray::fromHex(hex);
    auto length = static_cast<uint32_t>(stream.size());
    const uint32_t result = CH341WriteData(index, stream.constData(), &length);
    return result != 0 ? length : 0;
}

QByteArray readStream(uint32_t index, const QByteArray &hex, uint32_t step = 63, uint32_t times = 1)
{
    const QByteArray stream = QByteArray::fromHex(hex);
    QByteArray buffer(1024, '\x55');
    uint32_t length = 999;
    CH341WriteRead(index, static_cast<uint32_t>(stream.size()), stream.constData(), step, times, &length,
                   buffer.data());
    return buffer.left(static_cast<int>(length)).toHex().toUpper();
}

} // namespace

class tst_usb_ch341 : public QObject
{
    Q_OBJECT

public:
    explicit tst_usb_ch341(FakeUsbBus &bus)
        : m_bus(bus)
    {}

private Q_SLOTS:
    void initTestCase() { m_bus.addHub("1-2", 2); }

    void names()
    {
        QVERIFY(CH341GetDeviceName(0) == nullptr);
        FakeCh341Chip chip;
        FakeCh347Chip otherChip;
        FakeUsbDevice onHubPort3(m_bus, "1-2.3", 10, chip);
        FakeUsbDevice onHubPort1(m_bus, "1-2.1", 11, chip);
        FakeUsbDevice onRootPort(m_bus, "1-1", 12, chip);
        FakeUsbDevice other(m_bus, "1-3", 13, otherChip);
        FakeUsbDevice onPort21(m_bus, "1-21", 14, chip);
        FakeUsbDevice onPort22(m_bus, "1-22", 15, chip);
        for (FakeUsbDevice *device : {&onHubPort3, &other, &onPort22, &onHubPort1, &onPort21, &onRootPort})
            device->plug();
        QCOMPARE(CH341GetDeviceName(0), "usb#VID_1A86&PID_5512#1&0&0&1#/dev/bus/usb/001/012");
        QCOMPARE(CH341GetDeviceName(1), "usb#VID_1A86&PID_5512#1&0&0&21#/dev/bus/usb/001/011");
        QCOMPARE(CH341GetDeviceName(2), "usb#VID_1A86&PID_5512#1&0&0&23#/dev/bus/usb/001/010");
        QVERIFY(CH341GetDeviceName(5) == nullptr);
        QVERIFY(CH341GetDeviceName(16) == nullptr);

        LogCapture log;
        class_ch341 link;
        link.scan();
        // Port 21 has the digits of port 1 of the hub in port 2, and leaves those of others alone.
        QCOMPARE(log.lines().constLast(), QStringLiteral("QVector(1001, 1021, 1023, 1024, 1022)"));
        onHubPort1.unplug();
        link.scan();
        QCOMPARE(log.lines().constLast(), QStringLiteral("QVector(1001, 1023, 1021, 1022)"));
    }

    void streams()
    {
        Bridge bridge(m_bus);
        auto &[chip, device] = bridge;
        for (const uint32_t mode : {0U, 2U, 3U})
            QVERIFY(CH341SetStream(0, mode) != 0);
        QCOMPARE(CH341SetStream(0, 4), 0U);
        // The speed that the chip starts with is not known, so it is told one at once.
        QCOMPARE(hexOf(chip.transfers), (QList<QByteArray>{"AA6100", "AA6000", "AA6200", "AA6300"}));

        QCOMPARE(writeStream(0, "AA748350DEAD7500"), 8U);
        QCOMPARE(hexOf(chip.target.written), QByteArray("DEAD"));
        QCOMPARE(readStream(0, "AA748151C3C07500"), QByteArray("00010203"));
        // Acknowledge bits count as bytes read, and data that looks like a command is none.
        QCOMPARE(readStream(0, "AA748050C07500"), QByteArray("6FFF"));
        QCOMPARE(readStream(0, "AA7480A07500"), QByteArray("EF"));
        QCOMPARE(readStream(0, "AA748450C8C8C0748151C0C07500"), QByteArray("0001"));
        // Two segments of 32 bytes give two packets, gathered as far as there is room.
        const QByteArray segments = QByteArray("AA748151E0") + QByteArray(54, '0') + "AAC3C07500";
        QCOMPARE(readStream(0, segments, 32, 2).size(), 2 * 36);
        QCOMPARE(readStream(0, segments, 32, 1).size(), 2 * 32);
        QCOMPARE(readStream(0, "AA7500"), QByteArray());
    }

    void linkReadsAndWrites_data()
    {
        QTest::addColumn<int>("length");
        for (const int length : {1, 30, 31, 60, 189, 500})
            QTest::addRow("%d", length) << length;
    }

    void linkReadsAndWrites()
    {
        QFETCH(int, length);
        FakeCh341Chip chip;
        FakeUsbDevice device(m_bus, "1-1", 12, chip);
        device.plug();
        class_ch341 link;
        link.scan();
        QVERIFY(link.open(1001));
        link.setIICSpeed(ch341_iic_speed_te::Khz400);
        const QByteArray sent = counted(length);
        QCOMPARE(int(link.write(0x28, reinterpret_cast<const uint8_t *>(sent.constData()), uint16_t(length))),
                 length);
        QCOMPARE(hexOf(chip.target.written), sent.toHex().toUpper());

        QByteArray received(length + 1, '\x55');
        QCOMPARE(int(link.read(0x28, reinterpret_cast<uint8_t *>(received.data()), uint16_t(length))),
                 length);
        QCOMPARE(received, sent + '\x55');
        // What is absent cannot be told from a device that sends nothing but ones.
        QCOMPARE(int(link.read(0x29, reinterpret_cast<uint8_t *>(received.data()), uint16_t(length))),
                 length);
        QCOMPARE(received, QByteArray(length, '\xFF') + '\x55');
    }

    void pins()
    {
        Bridge bridge(m_bus);
        auto &[chip, device] = bridge;
        uint32_t status = 0;
        QVERIFY(CH341GetInput(0, &status) != 0);
        QCOMPARE(status, 0x1312U);
        chip.transfers.clear();
        QVERIFY(CH341SetOutput(0, 3, 0xFF00, 0x00123456) != 0);
        QCOMPARE(hexOf(chip.transfers), QList<QByteArray>{"A16A0334FF560012000000"});
    }

    void resetFlushAndTimeOut()
    {
        Bridge bridge(m_bus);
        auto &[chip, device] = bridge;
        CH341SetStream(0, 3);
        // An answer that nobody has fetched does not turn up in the next one.
        writeStream(0, "AA748151C3C07500");
        QVERIFY(CH341FlushBuffer(0) != 0);
        QCOMPARE(readStream(0, "AA7481A1C07500"), QByteArray("FF"));
        writeStream(0, "AA748151C3C0");
        chip.transfers.clear();
        QVERIFY(CH341ResetDevice(0) != 0);
        QCOMPARE(hexOf(chip.transfers), (QList<QByteArray>{"AA7500", "A0", "AA6300"}));
        QCOMPARE(device.resets, 0);

        device.isDeaf = true;
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(readStream(0, "AA748151C3C07500"), QByteArray());
        CH341ResetDevice(0);
        QCOMPARE(device.resets, 1);
        QVERIFY(clock.elapsed() < 20000);
        device.isDeaf = false;
        QCOMPARE(readStream(0, "AA748151C0C07500"), QByteArray("0001"));

        // A reset that leaves the handle dead: the bridge is opened anew, at the speed it had.
        device.isDeaf = true;
        device.reappears = true;
        chip.transfers.clear();
        QVERIFY(CH341ResetDevice(0) != 0);
        QCOMPARE(hexOf(chip.transfers), (QList<QByteArray>{"AA6100", "AA6300"}));
        QCOMPARE(readStream(0, "AA748151C0C07500"), QByteArray("0001"));
    }

    void haltsAndSilence()
    {
        Bridge bridge(m_bus);
        auto &[chip, device] = bridge;
        for (const unsigned endpoint : {0x02U, 0x82U}) {
            device.haltedEndpoint = endpoint;
            QCOMPARE(readStream(0, "AA748151C0C07500"), QByteArray());
            QCOMPARE(readStream(0, "AA748151C0C07500"), QByteArray("0001"));
        }
        device.isDeaf = true;
        const int sentBefore = device.sent;
        for (int i = 0; i < 20; ++i)
            QCOMPARE(readStream(0, "AA748151C0C07500"), QByteArray());
        QVERIFY(device.sent - sentBefore < 10);
        device.isDeaf = false;
        QTRY_COMPARE(readStream(0, "AA748151C0C07500"), QByteArray("0001"));
    }

    void permissionRefused()
    {
        Bridge bridge(m_bus);
        CH341CloseDevice(0);
        LogCapture log;
        {
            const RefusedAccess refused(m_bus, bridge.device.node());
            QVERIFY(!isHandle(CH341OpenDevice(0)));
        }
        QCOMPARE(log.lines(),
                 QStringList(QStringLiteral(
                     "no permission to use the bridge at /dev/bus/usb/001/012: install the rules "
                     "files 60-tactile-bridges.rules and 61-tactile-bridges-uaccess.rules, then "
                     "plug the bridge in again")));
        QVERIFY(isHandle(CH341OpenDevice(0)));
    }

    void kernelDriver()
    {
        Bridge bridge(m_bus);
        CH341CloseDevice(0);
        QCOMPARE(bridge.device.claimedInterface, -1);
        QCOMPARE(writeStream(0, "AA7500"), 0U);
        bridge.device.kernelOwns = true;
        QVERIFY(isHandle(CH341OpenDevice(0)));
        QCOMPARE(bridge.device.claimedInterface, 0);
        QVERIFY(!bridge.device.kernelOwns);
        CH341CloseDevice(0);
        QVERIFY(bridge.device.kernelOwns);
    }

    void unplugDuringRead()
    {
        Bridge bridge(m_bus);
        auto &[chip, device] = bridge;
        device.isDeaf = true;
        QByteArray answer("not yet");
        std::thread reader([&] { answer = readStream(0, "AA748151C3C07500"); });
        QTRY_COMPARE(device.waiting, 1);
        device.unplug();
        reader.join();
        QCOMPARE(answer, QByteArray());
        QCOMPARE(writeStream(0, "AA7500"), 0U);
        QVERIFY(CH341GetDeviceName(0) == nullptr);
    }

    void notices()
    {
        FakeCh341Chip chip;
        FakeCh347Chip otherChip;
        FakeUsbDevice device(m_bus, "1-1", 12, chip);
        FakeUsbDevice other(m_bus, "1-3", 13, otherChip);
        QVERIFY(passFence(other, CH347SetDeviceNotify));
        QVERIFY(CH341SetDeviceNotify(0, nullptr,
                                     [](uint32_t status) { ++(status == 0 ? removals : arrivals); }) != 0);
        for (int round = 1; round <= 3; ++round) {
            device.plug();
            QTRY_COMPARE(arrivals, round);
            device.unplug();
            QTRY_COMPARE(removals, round);
        }
        QVERIFY(passFence(other, CH347SetDeviceNotify));
        CH341SetDeviceNotify(0, nullptr, nullptr);
        device.plug();
        device.unplug();
        QVERIFY(passFence(other, CH347SetDeviceNotify));
        QCOMPARE(arrivals, 3);
        QCOMPARE(removals, 3);
    }

    void twoBridges()
    {
        Bridge first(m_bus);
        FakeCh341Chip secondChip;
        FakeUsbDevice second(m_bus, "1-2.2", 11, secondChip);
        second.plug();
        QVERIFY(isHandle(CH341OpenDevice(1)));
        writeStream(1, "AA748250227500");
        writeStream(0, "AA748250117500");
        QCOMPARE(hexOf(first.chip.target.written), QByteArray("11"));
        QCOMPARE(hexOf(secondChip.target.written), QByteArray("22"));
        // With the first gone the second keeps the index under which it was opened.
        first.device.unplug();
        QCOMPARE(writeStream(0, "AA7500"), 0U);
        QVERIFY(writeStream(1, "AA748250337500") != 0);
        CH341CloseDevice(1);
        QCOMPARE(hexOf(secondChip.target.written), QByteArray("2233"));
    }

private:
    FakeUsbBus &m_bus;
};

int main(int argc, char **argv)
{
    qRegisterMetaType<QVector<uint16_t>>("QVector<uint16_t>");
    return runUsbTest(argc, argv, [](FakeUsbBus &bus) { return new tst_usb_ch341(bus); });
}

#include "tst_usb_ch341.moc"
