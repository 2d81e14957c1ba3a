// The whole road: worker, link, libusb, an emulated chip, a simulated bus with multiplexer and sensors.

#include "sim/SimI2cBus.h"
#include "sim/SimSensor.h"
#include "tests/engine/worker_harness.h"
#include "tests/link/usb/FakeBridgeChips.h"
#include "tests/link/usb/usb_test.h"

namespace {

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

} // namespace

class tst_usb_worker : public QObject
{
    Q_OBJECT

public:
    explicit tst_usb_worker(FakeUsbBus &bus)
        : m_bus(bus)
    {}

private Q_SLOTS:
    void samplesUntilItIsPulled()
    {
        SimulatedBus sensors;
        // Two sensors of one address on the boards of the first two bus entries.
        for (const int channel : {4, 5})
            sensors.sim.plug(std::make_shared<SimSensor>(0x1F, 0x61), channel);
        FakeCh341Chip chip;
        chip.bus = &sensors;
        FakeUsbDevice device(m_bus, "1-1", 12, chip);
        FakeUsbDevice deviceAgain(m_bus, "1-1", 14, chip);
        device.plug();
        WorkerHarness worker(fingerThread::kCh341);
        QVERIFY(worker.connectTo(QStringLiteral("1001")));
        const auto bothSampled = [&] {
            return worker.sampleCount(0, 0x61) > 5 && worker.sampleCount(1, 0x61) > 5;
        };
        QTRY_VERIFY_WITH_TIMEOUT(bothSampled(), 40000);
        QVERIFY(worker.log.contains(QStringLiteral("find pca")));

        // Pulled out while streaming: everything goes, and comes back after plugging in and connecting.
        worker.events.clear();
        // That another is in its port at once does not keep it.
        device.unplug();
        deviceAgain.plug();
        QVERIFY(worker.waitForEvent(QStringLiteral("down")));
        QCOMPARE(worker.events, (QStringList{QStringLiteral("gone 0/0x61"), QStringLiteral("gone 1/0x61"),
                                             QStringLiteral("down")}));
        QVERIFY(worker.connectTo(QStringLiteral("1001")));
        QVERIFY(worker.waitForEvent(QStringLiteral("found 1/0x61")));
    }

private:
    FakeUsbBus &m_bus;
};

int main(int argc, char **argv)
{
    return runUsbTest(argc, argv, [](FakeUsbBus &bus) { return new tst_usb_worker(bus); });
}

#include "tst_usb_worker.moc"
