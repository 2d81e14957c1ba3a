#include "link/class_ch341.h"
#include "tests/engine/WorkerBench.h"

using namespace std::chrono_literals;
using Kind = LinkBench::Kind;
using Multiplexer = SimI2cBus::Multiplexer;

namespace {

Kind currentKind()
{
    QFETCH(Kind, kind);
    return kind;
}

/// A bridge, of the kind of the row unless another is given.
struct Rig : WorkerBench
{
    explicit Rig(Multiplexer multiplexer = Multiplexer::Present, Kind link = currentKind())
        : WorkerBench(link, multiplexer)
    {}
    Sensor plug(uint8_t address, int channel) { return plugSensor(address, channel, 0x1F); }
};

} // namespace

class tst_worker_bridges : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void selectsBusesInTurn_data() { LinkBench::addRows(true); }
    void selectsBusesInTurn()
    {
        Rig rig;
        QVERIFY(rig.connect());
        QTRY_VERIFY(rig.writesTo(0x70).size() > 80);
        QStringList masks = rig.writesTo(0x70);
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

    void tellsEqualAddressesApart_data() { LinkBench::addRows(true); }
    void tellsEqualAddressesApart()
    {
        Rig rig;
        const auto first = rig.plug(0x61, Rig::kBoard1);
        const auto second = rig.plug(0x61, Rig::kBoard2);
        QVERIFY(rig.connect());
        QVERIFY(rig.waitFor("found 0/0x61"));
        QVERIFY(rig.waitFor("found 1/0x61"));
        // Frame address 03 on the bus, and offsets that differ from entry to entry.
        QStringList requests = rig.writesTo(0x61);
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
        rig.bus->plug(first, Rig::kBoard1);
        QVERIFY(rig.waitFor("found 0/0x61"));
    }

    void bearsFailuresUntilItIsStopped_data() { LinkBench::addRows(true); }
    void bearsFailuresUntilItIsStopped()
    {
        Rig rig;
        const auto sensor = rig.plug(0x61, Rig::kBoard1);
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
        Rig rig(Multiplexer::Present, Kind::Ch341);
        const auto sensor = rig.plug(0x61, Rig::kBoard1);
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
        Rig rig(Multiplexer::Present, Kind::Ch341);
        rig.bus->setTimed(true); // so that the worker is busy all the time
        for (int i = 0; i < 12; ++i)
            rig.plug(static_cast<uint8_t>(0x61 + i / 2), i % 2 == 0 ? Rig::kBoard1 : Rig::kBoard2);
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
            Rig rig(Multiplexer::Present, Kind::Ch341);
            QVERIFY(rig.connect());
            QTRY_VERIFY(rig.writesTo(0x70).size() > 20);
        }
        WorkerBench serial(Kind::Serial);
        serial.plugSensor(0x61);
        QVERIFY(serial.connectAndFind());
    }
};

QTEST_GUILESS_MAIN(tst_worker_bridges)
#include "tst_worker_bridges.moc"
