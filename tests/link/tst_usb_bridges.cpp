// The bridge operations on libusb, down to the transfers that an emulated chip sees.

#include "link/class_ch341.h"
#include "link/class_ch347.h"
#include "link/providers/ch341dll.h"
#include "link/providers/ch347dll.h"
#include "tests/link/usb/FakeBridgeChips.h"
#include "tests/link/usb/usb_test.h"
#include "tests/support/log_capture.h"

#include <QElapsedTimer>

namespace {

std::atomic<int> arrivals{0};
std::atomic<int> removals{0};

/// True unless it is what opening a device returns on failure.
bool isHandle(const void *handle)
{
    return handle != reinterpret_cast<void *>(UINTPTR_MAX);
}

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

/// What a whole transfer has read, "failed" when it did.
QByteArray transfer(uint32_t index, const QByteArray &hex, int readLength)
{
    const QByteArray toSend = QByteArray::fromHex(hex);
    QByteArray buffer(readLength, '\x55');
    const uint32_t result = CH347StreamI2C(index, static_cast<uint32_t>(toSend.size()), toSend.constData(),
                                           static_cast<uint32_t>(readLength), buffer.data());
    return result != 0 ? buffer.toHex().toUpper() : QByteArray("failed");
}

struct Ch341
{
    using Chip = FakeCh341Chip;
    using Link = class_ch341;
    static constexpr unsigned kOut = 0x02;
    static constexpr auto kFailed = "";
    static bool open() { return isHandle(CH341OpenDevice(0)); }
    static void close() { CH341CloseDevice(0); }
    /// Two bytes of the sensor.
    static QByteArray read() { return readStream(0, "AA748151C1C07500"); }
};

struct Ch347
{
    using Chip = FakeCh347Chip;
    using Link = class_ch347;
    static constexpr unsigned kOut = 0x06;
    static constexpr auto kFailed = "failed";
    static bool open() { return isHandle(CH347OpenDevice(0)); }
    static void close() { CH347CloseDevice(0); }
    static QByteArray read() { return transfer(0, "51", 2); }
};

/// A chip in port 1, plugged in and open on index 0; closed again also when the test fails.
template<typename Family>
struct OpenChip
{
    explicit OpenChip(FakeUsbBus &bus)
        : device(bus, "1-1", 12, chip)
    {
        device.plug();
        Family::open();
    }
    ~OpenChip() { Family::close(); }
    OpenChip(const OpenChip &) = delete;
    OpenChip &operator=(const OpenChip &) = delete;

    typename Family::Chip chip;
    FakeUsbDevice device;
};

} // namespace

class tst_usb_bridges : public QObject
{
    Q_OBJECT

public:
    explicit tst_usb_bridges(FakeUsbBus &bus)
        : m_bus(bus)
    {}

private Q_SLOTS:
    void initTestCase() { m_bus.addHub("1-2", 2); }

    void ch341Names()
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
        FakeUsbDevice onHubPort10(m_bus, "1-2.10", 16, chip);
        for (FakeUsbDevice *device :
             {&onHubPort3, &other, &onPort22, &onHubPort10, &onHubPort1, &onPort21, &onRootPort})
            device->plug();
        QCOMPARE(CH341GetDeviceName(0), "usb#VID_1A86&PID_5512#1&0&0&1#/dev/bus/usb/001/012");
        QCOMPARE(CH341GetDeviceName(1), "usb#VID_1A86&PID_5512#1&0&0&21#/dev/bus/usb/001/011");
        QCOMPARE(CH341GetDeviceName(2), "usb#VID_1A86&PID_5512#1&0&0&23#/dev/bus/usb/001/010");
        QVERIFY(CH341GetDeviceName(6) == nullptr);
        QVERIFY(CH341GetDeviceName(16) == nullptr);

        LogCapture log;
        class_ch341 link;
        link.scan();
        // Port 21 has the digits of port 1 of the hub in port 2, and leaves those of others alone.
        QCOMPARE(log.lines().constLast(), QStringLiteral("QVector(1001, 1021, 1023, 1210, 1024, 1022)"));
        onHubPort1.unplug();
        link.scan();
        QCOMPARE(log.lines().constLast(), QStringLiteral("QVector(1001, 1023, 1210, 1021, 1022)"));
    }

    void ch347List()
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

    void ch341Streams()
    {
        OpenChip<Ch341> bridge(m_bus);
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

    void ch347Transfers()
    {
        OpenChip<Ch347> bridge(m_bus);
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

    void linkReadsAndWrites()
    {
        FakeCh341Chip ch341;
        FakeCh347Chip highSpeed(0x55DB, 512);
        FakeCh347Chip fullSpeed(0x55DB, 64);
        for (const int length : {1, 30, 31, 60, 189, 500})
            checkLink<Ch341>(ch341, length, 32);
        for (const int length : {1, 64, 189, 500, 507, 4097}) {
            checkLink<Ch347>(highSpeed, length, 510);
            checkLink<Ch347>(fullSpeed, length, 60);
        }
    }

    void ch341Pins()
    {
        OpenChip<Ch341> bridge(m_bus);
        auto &[chip, device] = bridge;
        uint32_t status = 0;
        QVERIFY(CH341GetInput(0, &status) != 0);
        QCOMPARE(status, 0x1312U);
        chip.transfers.clear();
        QVERIFY(CH341SetOutput(0, 3, 0xFF00, 0x00123456) != 0);
        QCOMPARE(hexOf(chip.transfers), QList<QByteArray>{"A16A0334FF560012000000"});
    }

    void ch347Pins()
    {
        OpenChip<Ch347> bridge(m_bus);
        auto &[chip, device] = bridge;
        chip.transfers.clear();
        QVERIFY(CH347GPIO_Set(0, 0x83, 0x81, 0x01) != 0);
        QCOMPARE(hexOf(chip.transfers[0]), QByteArray("CC0800F8C00000000000F0"));
    }

    void ch347Settings()
    {
        OpenChip<Ch347> bridge(m_bus);
        auto &[chip, device] = bridge;
        QCOMPARE(hexOf(chip.transfers[0]), QByteArray("CC08000000000000000000"));
        const size_t transfersBefore = chip.transfers.size();
        LogCapture log;
        for (int round = 0; round < 2; ++round) {
            QVERIFY(CH347I2C_SetStretch(0, 1) != 0);
            QVERIFY(CH347I2C_SetDriverMode(0, 1) != 0);
            QVERIFY(CH347I2C_Set(0, 6) != 0);
        }
        QCOMPARE(log.lines().size(), 3);
        QCOMPARE(chip.transfers.size(), transfersBefore);
        QVERIFY(CH347I2C_Set(0, 3) != 0);
        QCOMPARE(hexOf(chip.transfers.back()), QByteArray("AA6300"));
        QCOMPARE(CH347I2C_SetStretch(1, 1), 0U);
    }

    void ch341ResetFlushAndTimeOut()
    {
        OpenChip<Ch341> bridge(m_bus);
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

    void permissionRefused()
    {
        checkPermission<Ch341>();
        checkPermission<Ch347>();
    }

    void kernelDriver()
    {
        OpenChip<Ch341> bridge(m_bus);
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

    void unusable()
    {
        OpenChip<Ch347> bridge(m_bus);
        Ch347::close();
        const LogCapture log;
        // One that the system has not configured, and one whose packets would have no bytes.
        umockdev_testbed_set_attribute(m_bus.testbed(), FakeUsbBus::sysPath("1-1").c_str(),
                                       "bConfigurationValue", "");
        QVERIFY(!Ch347::open());
        QVERIFY(log.lines()[0].endsWith(QLatin1String("001/012 cannot be used: LIBUSB_ERROR_NOT_FOUND")));
        bridge.device.unplug();
        FakeCh347Chip voiceless(0x55DB, 0);
        FakeUsbDevice empty(m_bus, "1-1", 12, voiceless);
        empty.plug();
        QVERIFY(!Ch347::open());
        QVERIFY(log.lines()[1].endsWith(QLatin1String("001/012 cannot be used: LIBUSB_ERROR_NOT_SUPPORTED")));
    }

    void haltsAndSilence()
    {
        checkHaltsAndSilence<Ch341>();
        checkHaltsAndSilence<Ch347>();
    }

    void ch347DeafWhenOpened()
    {
        OpenChip<Ch347> bridge(m_bus);
        auto &[chip, device] = bridge;
        Ch347::close();
        device.isDeaf = true;
        const LogCapture log;
        QVERIFY(!Ch347::open());
        QCOMPARE(log.lines(),
                 QStringList(QStringLiteral("the bridge at /dev/bus/usb/001/012 does not answer")));
        QCOMPARE(device.claimedInterface, -1);
        device.isCuredByReset = true;
        QVERIFY(Ch347::open());
        QCOMPARE(device.resets, 2);
        QCOMPARE(Ch347::read(), QByteArray("0001"));
    }
    void unplugDuringRead()
    {
        checkUnplugDuringRead<Ch341>();
        QCOMPARE(writeStream(0, "AA7500"), 0U);
        QVERIFY(CH341GetDeviceName(0) == nullptr);
        checkUnplugDuringRead<Ch347>();
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
        OpenChip<Ch341> first(m_bus);
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
    /// Writes and reads that many bytes, through the link down to the sensor and back.
    template<typename Family>
    void checkLink(typename Family::Chip &chip, int length, size_t longestPacket)
    {
        FakeUsbDevice device(m_bus, "1-1", 12, chip);
        device.plug();
        typename Family::Link link;
        link.scan();
        QVERIFY(link.open(1001));
        chip.transfers.clear();
        chip.target.written.clear();
        chip.target.stops = 0;
        const QByteArray sent = counted(length);
        QByteArray received(length + 1, '\x55');
        auto *bytes = reinterpret_cast<uint8_t *>(received.data());
        const auto count = static_cast<uint16_t>(length);
        QCOMPARE(link.write(0x28, reinterpret_cast<const uint8_t *>(sent.constData()), count), count);
        QCOMPARE(hexOf(chip.target.written), sent.toHex().toUpper());
        QCOMPARE(link.read(0x28, bytes, count), count);
        QCOMPARE(received, sent + '\x55');
        // However many packets it took, there was one start and one stop each time.
        QCOMPARE(chip.target.stops, 2);
        for (const Bytes &packet : chip.transfers)
            QVERIFY(packet.size() <= longestPacket);
        // What is absent cannot be told from a device that sends nothing but ones.
        const bool isTold = std::is_same_v<Family, Ch347>;
        QCOMPARE(link.read(0x29, bytes, count), isTold ? uint16_t{0} : count);
        QCOMPARE(received, QByteArray(length, '\xFF') + '\x55');
        link.close();
    }

    template<typename Family>
    void checkPermission()
    {
        OpenChip<Family> bridge(m_bus);
        Family::close();
        const LogCapture log;
        {
            const RefusedAccess refused(m_bus, bridge.device.node());
            QVERIFY(!Family::open());
        }
        QCOMPARE(log.lines(),
                 QStringList(QStringLiteral(
                     "no permission to use the bridge at /dev/bus/usb/001/012: install the rules "
                     "files 60-tactile-bridges.rules and 61-tactile-bridges-uaccess.rules, then "
                     "plug the bridge in again")));
        QVERIFY(Family::open());
    }

    template<typename Family>
    void checkHaltsAndSilence()
    {
        OpenChip<Family> bridge(m_bus);
        auto &[chip, device] = bridge;
        for (const unsigned endpoint : {Family::kOut, Family::kOut | 0x80U}) {
            device.haltedEndpoint = endpoint;
            QCOMPARE(Family::read(), QByteArray(Family::kFailed));
            QCOMPARE(Family::read(), QByteArray("0001"));
        }
        device.isDeaf = true;
        const int sentBefore = device.sent;
        for (int i = 0; i < 20; ++i)
            QCOMPARE(Family::read(), QByteArray(Family::kFailed));
        QVERIFY(device.sent - sentBefore < 10);
        device.isDeaf = false;
        QTRY_COMPARE(Family::read(), QByteArray("0001"));
    }

    template<typename Family>
    void checkUnplugDuringRead()
    {
        OpenChip<Family> bridge(m_bus);
        auto &[chip, device] = bridge;
        device.isDeaf = true;
        QByteArray answer("not yet");
        std::thread reader([&] { answer = Family::read(); });
        QTRY_COMPARE(device.waiting, 1);
        device.unplug();
        reader.join();
        QCOMPARE(answer, QByteArray(Family::kFailed));
        // Whoever goes on polling is slowed down.
        QElapsedTimer clock;
        clock.start();
        for (int i = 0; i < 20; ++i)
            QCOMPARE(Family::read(), QByteArray(Family::kFailed));
        QVERIFY(clock.elapsed() >= 20);
        QVERIFY(!Family::open());
    }

    FakeUsbBus &m_bus;
};

int main(int argc, char **argv)
{
    qRegisterMetaType<QVector<uint16_t>>("QVector<uint16_t>");
    return runUsbTest(argc, argv, [](FakeUsbBus &bus) { return new tst_usb_bridges(bus); });
}

#include "tst_usb_bridges.moc"
