// The whole road without hardware: worker, link, libusb, an emulated chip, a simulated bus with multiplexer
// and sensors.

#include "sim/SimI2cBus.h"
#include "sim/SimSensor.h"
#include "tests/engine/worker_harness.h"
#include "tests/link/usb/FakeBridgeChips.h"
#include "tests/link/usb/usb_test.h"

namespace {

constexpr uint8_t kCh341 = 1;
constexpr uint8_t kCh347 = 2;
// The first two bus entries of the worker.
constexpr int kChannelOfEntry0 = 4;
constexpr int kChannelOfEntry1 = 5;

/// Puts the simulated bus behind a fake chip.
class SimulatedBus : public FakeTwoWireBus
{
public:
    void start() override { sim.start(); }
    bool send(uint8_t byte) override { return sim.send(byte); }
    uint8_t receive() override { return sim.receive(); }
    void stop() override { sim.stop(); }
    void setResetLevel(bool high) override { sim.setResetLevel(high); }

    SimI2cBus sim;
};

/// Two sensors of one address on two boards.
void plugSensors(SimI2cBus &bus)
{
    bus.plug(std::make_shared<SimSensor>(0x1F, 0x61), kChannelOfEntry0);
    bus.plug(std::make_shared<SimSensor>(0x1F, 0x61), kChannelOfEntry1);
}

void waitForSamples(WorkerHarness &worker)
{
    QVERIFY(worker.waitForEvent(QStringLiteral("found 0/0x61")));
    QVERIFY(worker.waitForEvent(QStringLiteral("found 1/0x61")));
    QVERIFY(worker.log.contains(QStringLiteral("find pca")));
    QTRY_VERIFY_WITH_TIMEOUT(worker.sampleCount(0, 0x61) > 5 && worker.sampleCount(1, 0x61) > 5, 20000);
}

} // namespace

class tst_usb_worker : public QObject
{
    Q_OBJECT

public:
    explicit tst_usb_worker(FakeUsbBus &bus)
        : m_bus(bus)
    {}

private Q_SLOTS:
    void ch341()
    {
        SimulatedBus sensors;
        plugSensors(sensors.sim);
        FakeCh341Chip chip;
        chip.bus = &sensors;
        FakeUsbDevice device(m_bus, "1-1", 12, chip);
        FakeUsbDevice deviceAgain(m_bus, "1-1", 14, chip);
        device.plug();
        WorkerHarness worker(kCh341);
        QVERIFY(worker.connectTo(QStringLiteral("1001")));
        waitForSamples(worker);

        // Pulled out while streaming: everything goes, and comes back after plugging in and connecting.
        worker.events.clear();
        // That another is in its port at once does not keep it.
        device.unplug();
        deviceAgain.plug();
        QVERIFY(worker.waitForEvent(QStringLiteral("down")));
        QCOMPARE(worker.events, (QStringList{QStringLiteral("gone 0/0x61"), QStringLiteral("gone 1/0x61"),
                                             QStringLiteral("down")}));
        QVERIFY(worker.connectTo(QStringLiteral("1001")));
        QVERIFY(worker.waitForEvent(QStringLiteral("found 0/0x61")));
        QVERIFY(worker.waitForEvent(QStringLiteral("found 1/0x61")));
        worker.stop();
    }

    void ch347()
    {
        SimulatedBus sensors;
        plugSensors(sensors.sim);
        FakeCh347Chip chip;
        chip.bus = &sensors;
        FakeUsbDevice device(m_bus, "1-3", 13, chip);
        device.plug();
        WorkerHarness worker(kCh347);
        QVERIFY(worker.connectTo(QStringLiteral("1003")));
        waitForSamples(worker);
        worker.stop();
        QCOMPARE(device.claimedInterface, -1);
    }

private:
    FakeUsbBus &m_bus;
};

int main(int argc, char **argv)
{
    return runUsbTest(argc, argv, [](FakeUsbBus &bus) { return new tst_usb_worker(bus); });
}

#include "tst_usb_worker.moc"
