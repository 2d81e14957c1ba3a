#include "link/class_ch341.h"
#include "sim/SimCh341.h"
#include "sim/SimCh347.h"
#include "sim/SimUsb.h"
#include "tests/engine/serial_rig.h"

#include <QtTest>

#include <algorithm>

using namespace std::chrono_literals;
using Multiplexer = SimI2cBus::Multiplexer;

namespace {

// Channels of the multiplexer behind which the first two bus entries lie.
constexpr int kChannelOfEntry0 = 4;
constexpr int kChannelOfEntry1 = 5;

/// A bridge of either kind with a bus behind it, and a worker.
class Rig
{
public:
    explicit Rig(uint8_t kind, Multiplexer multiplexer = Multiplexer::Present)
        : bus(std::make_shared<SimI2cBus>(multiplexer))
        , harness(kind)
    {
        if (kind == fingerThread::kCh341)
            bridge = std::make_shared<SimCh341>(bus, 5, 3);
        else
            bridge = std::make_shared<SimCh347>(bus, 5003);
        usb.plug(bridge);
    }

    std::shared_ptr<SimSensor> plug(uint8_t address, int channel)
    {
        auto sensor = std::make_shared<SimSensor>(0x1F, address);
        bus->plug(sensor, channel);
        return sensor;
    }
    bool connect() { return harness.connectTo(QStringLiteral("5003")); }
    bool waitFor(const char *event) { return harness.waitForEvent(QString::fromLatin1(event)); }

    /// Bytes written to an address so far, as hex.
    QStringList written(uint8_t address) const
    {
        QStringList all;
        for (const SimRecord &record : bus->journal().records(SimRecord::Kind::Write)) {
            if (record.address == address)
                all.append(QString::fromLatin1(record.bytes.toHex()));
        }
        return all;
    }

    /// Transfers to an address that nobody acknowledged so far.
    int refused(uint8_t address) const
    {
        const std::vector<SimRecord> records = bus->journal().records(SimRecord::Kind::Refused);
        const auto isThere = [address](const SimRecord &record) { return record.address == address; };
        return static_cast<int>(std::count_if(records.begin(), records.end(), isThere));
    }

    std::shared_ptr<SimI2cBus> bus;
    std::shared_ptr<SimBridge> bridge;
    SimUsb usb;
    WorkerHarness harness;
};

void addKinds()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("ch341") << int(fingerThread::kCh341);
    QTest::newRow("ch347") << int(fingerThread::kCh347);
}

uint8_t currentKind()
{
    QFETCH(int, kind);
    return static_cast<uint8_t>(kind);
}

} // namespace

class tst_worker_bridges : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void selectsBusesInTurn_data() { addKinds(); }

    void selectsBusesInTurn()
    {
        Rig rig(currentKind());
        QVERIFY(rig.connect());
        QTRY_VERIFY(rig.written(0x70).size() > 80);
        QStringList masks = rig.written(0x70);
        QCOMPARE(masks.takeFirst(), QStringLiteral("00")); // the probe

        const QStringList buses{QStringLiteral("10"), QStringLiteral("20"), QStringLiteral("40"),
                                QStringLiteral("08"), QStringLiteral("04"), QStringLiteral("01")};
        int turn = buses.indexOf(masks.constFirst());
        for (int tick = 0; tick < 8; ++tick) {
            const QString &own = buses.at(turn);
            const QStringList expected = QStringList{own} + buses + QStringList{own, QStringLiteral("00")};
            QCOMPARE(masks.mid(9 * tick, 9), expected);
            turn = (turn + 1) % 6;
        }
    }

    void holdsOneSensorWithoutMultiplexer_data() { addKinds(); }

    void holdsOneSensorWithoutMultiplexer()
    {
        Rig rig(currentKind(), Multiplexer::Absent);
        const auto first = rig.plug(0x61, SimI2cBus::kTrunk);
        rig.plug(0x62, SimI2cBus::kTrunk);
        QVERIFY(rig.connect());
        QTRY_VERIFY(rig.harness.samples.size() > 100);
        QCOMPARE(rig.harness.found.size(), 1);
        QCOMPARE(int(rig.harness.found.at(0).addr), 0x61);
        QVERIFY(rig.harness.log.contains(QStringLiteral("not find pca")));
        QCOMPARE(rig.refused(0x70), 2); // the probe's write and read, and nothing after it
        rig.bus->unplug(first);
        QTRY_COMPARE_WITH_TIMEOUT(rig.harness.found.size(), 2, 20000);
        QCOMPARE(int(rig.harness.found.at(1).addr), 0x62);
    }

    void tellsEqualAddressesApart_data() { addKinds(); }

    void tellsEqualAddressesApart()
    {
        Rig rig(currentKind());
        const auto first = rig.plug(0x61, kChannelOfEntry0);
        const auto second = rig.plug(0x61, kChannelOfEntry1);
        QVERIFY(rig.connect());
        QVERIFY(rig.waitFor("found 0/0x61"));
        QVERIFY(rig.waitFor("found 1/0x61"));
        // Frame address 03 on the bus, and offsets that differ from entry to entry.
        QStringList requests = rig.written(0x61);
        requests.sort();
        QCOMPARE(requests.join(QLatin1Char(' ')),
                 QStringLiteral("aa55037300000000007501 aa55037300000003007801 aa55037f00000000008101 "
                                "aa55037f00000000008101 aa5503a40000000000a601 aa5503a40000000000a601 "
                                "aa5503a60000000000a801 aa5503a60000000000a801"));
        QTRY_VERIFY(rig.harness.sampleCount(0, 0x61) > 10 && rig.harness.sampleCount(1, 0x61) > 10);

        rig.bus->unplug(first);
        QVERIFY(rig.waitFor("gone 0/0x61"));
        QVERIFY(!rig.harness.events.contains(QStringLiteral("gone 1/0x61")));
        rig.harness.events.clear();
        rig.bus->plug(first, kChannelOfEntry0);
        QVERIFY(rig.waitFor("found 0/0x61"));
    }

    void carriesOutCommands_data() { addKinds(); }

    void carriesOutCommands()
    {
        Rig rig(currentKind());
        const auto sensor = rig.plug(0x61, kChannelOfEntry1);
        QVERIFY(rig.connect());
        QVERIFY(rig.waitFor("found 1/0x61"));
        sensor->faults().setLateBy(45ms);
        sensor->faults().schedule(SimFault::Late, SimTarget::answersTo(0x71));
        rig.harness.request(1, 0x61, hex("aa5561710000000000d101"), 11);
        QTRY_COMPARE(rig.harness.responses.size(), 1);
        QVERIFY(rig.harness.responses.at(0).good);
        QCOMPARE(rig.harness.responses.at(0).rsp.toHex(), QByteArrayLiteral("55aa61f10000006100b202"));
    }

    void bearsFailuresUntilItIsStopped_data() { addKinds(); }

    void bearsFailuresUntilItIsStopped()
    {
        Rig rig(currentKind());
        const auto sensor = rig.plug(0x61, kChannelOfEntry0);
        QVERIFY(rig.connect());
        QVERIFY(rig.waitFor("found 0/0x61"));
        for (int i = 0; i < 20; ++i) {
            rig.bus->refuse(0x61, 3);
            rig.bridge->failTransfers(4, 2);
            rig.bridge->shortenReads(2);
            const int before = rig.harness.samples.size();
            QTRY_VERIFY(rig.harness.samples.size() > before + 3);
        }
        QCOMPARE(rig.harness.story(), QStringLiteral("up, found 0/0x61"));
        for (const WorkerHarness::Sample &sample : rig.harness.samples)
            QVERIFY(sample.frame.size() == 27 && sample.frame.startsWith("\x55\xAA"));

        QVERIFY(rig.bridge->isOpen());
        rig.harness.stop();
        QVERIFY(!rig.bridge->isOpen());
        QCOMPARE(rig.harness.story(), QStringLiteral("up, found 0/0x61, gone 0/0x61"));
    }

    void losesAPulledBridge()
    {
        Rig rig(fingerThread::kCh341);
        const auto sensor = rig.plug(0x61, kChannelOfEntry0);
        for (int round = 0; round < 3; ++round) {
            rig.harness.events.clear();
            QVERIFY(rig.connect());
            QVERIFY(rig.waitFor("found 0/0x61"));
            QTRY_VERIFY(rig.harness.samples.size() > 10 * (round + 1));
            rig.usb.unplug(rig.bridge);
            QVERIFY(rig.waitFor("down"));
            QCOMPARE(rig.harness.story(), QStringLiteral("up, found 0/0x61, gone 0/0x61, down"));
            QTRY_VERIFY(rig.harness.devices.isEmpty());
            rig.usb.plug(rig.bridge);
        }
        QCOMPARE(rig.harness.log.count(QStringLiteral("ch341 disconnect")), 3);
    }

    void losesABridgeThatIsBackAtOnce()
    {
        Rig rig(fingerThread::kCh341);
        rig.bus->setTimed(true); // so that the worker is busy all the time
        for (int i = 0; i < 12; ++i)
            rig.plug(static_cast<uint8_t>(0x61 + i / 2), i % 2 == 0 ? kChannelOfEntry0 : kChannelOfEntry1);
        QTRY_VERIFY(!rig.harness.devices.isEmpty());
        std::make_unique<class_ch341>().reset(); // nobody is told any more
        QVERIFY(rig.connect());
        rig.usb.unplug(rig.bridge);
        rig.usb.plug(rig.bridge);
        QVERIFY(rig.waitFor("down"));
        for (const int gapMs : {1, 2, 10, 50}) {
            rig.harness.events.clear();
            QVERIFY(rig.connect());
            const int before = rig.harness.samples.size();
            QTRY_VERIFY_WITH_TIMEOUT(rig.harness.found.size() >= 12 && rig.harness.samples.size() > before,
                                     40000);
            rig.usb.unplug(rig.bridge);
            QThread::msleep(static_cast<unsigned long>(gapMs)); // the gap is the fault that is to be caught
            rig.usb.plug(rig.bridge);
            QVERIFY(rig.waitFor("down"));
        }
    }

    void serialWorkerIgnoresTheTurns()
    {
        {
            // Stopped like this, it leaves the turn anywhere among the entries.
            Rig rig(fingerThread::kCh341);
            QVERIFY(rig.connect());
            QTRY_VERIFY(rig.written(0x70).size() > 20);
        }
        SerialRig serial;
        serial.plug(0x1F, 0x61);
        QVERIFY(serial.connectAndFind(QStringLiteral("found 0/0x61")));
    }
};

QTEST_GUILESS_MAIN(tst_worker_bridges)
#include "tst_worker_bridges.moc"
