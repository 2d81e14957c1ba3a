#include "protocol/frames.h"
#include "tests/engine/WorkerBench.h"

#include <QtTest>

using namespace std::chrono_literals;

namespace {

const auto kGone = QStringLiteral("gone 0/0x61");

int counterOf(const WorkerHarness::Sample &sample)
{
    return static_cast<uint8_t>(sample.frame.at(4));
}

} // namespace

class tst_worker_serial : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void opensWhatIsListedOnceOnly()
    {
        const SimSerialBus other;
        WorkerBench rig(LinkBench::Kind::Serial);
        QVERIFY(rig.connect());
        Q_EMIT rig.harness.si_connectCh341(other.portName());
        rig.harness.disconnectLink();
        QVERIFY(rig.waitFor("down"));
        Q_EMIT rig.harness.si_connectCh341(QStringLiteral("pts/none"));
        rig.harness.stop();
        QCOMPARE(rig.harness.story(), QStringLiteral("up, down"));
        QCOMPARE(rig.harness.log.lines().join(QLatin1Char('|')),
                 QStringLiteral("fingerThread new|uart init|uart init|uart connect|uart connected|start:1|"
                                "uart disconnect|stop:2|fingerThread stop|stop:0|fingerThread exit|"
                                "fingerThread stop|stop:0|fingerThread delete|stop:0|uart deinit"));
    }

    void disconnectReportsSensorsFirst()
    {
        WorkerBench rig(LinkBench::Kind::Serial);
        rig.plugSensor(0x61, 0, 0x02);
        rig.plugSensor(0x62, 0, 0x1C);
        QVERIFY(rig.connectAndFind("found 0/0x62"));
        rig.harness.disconnectLink();
        QVERIFY(rig.waitFor("down"));
        QCOMPARE(rig.harness.story(),
                 QStringLiteral("up, found 0/0x61, found 0/0x62, gone 0/0x61, gone 0/0x62, down"));

        // The sweep goes on where it was, so what lies ahead is found first.
        rig.harness.events.clear();
        rig.plugSensor(0x67, 0, 0x1C);
        QVERIFY(rig.connectAndFind("found 0/0x67"));
        QCOMPARE(rig.harness.story(), QStringLiteral("up, found 0/0x67"));

        // A port that is lost takes its sensors with it, and can be opened again when it is back.
        const QString name = rig.id();
        rig.pull();
        QVERIFY(rig.waitFor("gone 0/0x67"));
        rig.harness.disconnectLink();
        QTRY_VERIFY(!rig.harness.devices.contains(name));
        rig.restore();
        QVERIFY(rig.connect());
    }

    void stopReportsEverySensorOnce()
    {
        for (const bool quitFirst : {false, true}) {
            WorkerBench rig(LinkBench::Kind::Serial);
            rig.plugSensor(0x61, 0, 0x02);
            QVERIFY(rig.connectAndFind());
            QTRY_VERIFY(rig.harness.sampleCount(0, 0x61) > 5);
            rig.harness.stop(quitFirst);
            // An open link is closed without a word.
            QCOMPARE(rig.harness.story(), QStringLiteral("up, found 0/0x61, gone 0/0x61"));
            QCOMPARE(rig.harness.log.count(QStringLiteral("fingerThread exit")), 1);
            QCOMPARE(rig.harness.log.count(QStringLiteral("fingerThread stop")), 2);

            rig.harness.start();
            QVERIFY(rig.connect());
        }
    }

    void stopInTheMiddleOfADiscovery()
    {
        WorkerBench rig(LinkBench::Kind::Serial);
        rig.plugSensor(0x61, 0, 0x02)->faults().schedule(SimFault::Silence, SimTarget::answersTo(0xA4), 1);
        QVERIFY(rig.connect());
        // The answer to this never comes, so the worker is waiting for it when the stop arrives.
        const QByteArray question = QByteArray::fromHex("AA5561A400000000000402");
        QVERIFY(rig.journal().waitFor(SimRecord::Kind::Request, question, 40s));
        rig.harness.stop();
        QCOMPARE(rig.harness.story(), QStringLiteral("up"));
        QVERIFY(!rig.harness.log.contains(QStringLiteral("set send type err")));
    }

    void opensAgainInTheMiddleOfACommand()
    {
        WorkerBench rig(LinkBench::Kind::Serial);
        const auto sensor = rig.plugSensor(0x61, 0, 0x02);
        QVERIFY(rig.connectAndFind());
        const QByteArray readAddress = hex("aa5561710000000000d101");
        sensor->setUnknown(0x71);
        rig.harness.request(0, 0x61, readAddress, 11);
        QTRY_COMPARE(rig.journal().count(SimRecord::Kind::Request, readAddress), 2);
        sensor->setUnknown(0x71, false);
        rig.harness.disconnectLink();
        QVERIFY(rig.connect());
        QTRY_COMPARE(rig.harness.responses.size(), 1);
        QVERIFY(rig.harness.responses.at(0).good);
        QCOMPARE(rig.journal().count(SimRecord::Kind::Request, readAddress), 3);
    }

    void countsStepsOfTheFrameCounter()
    {
        WorkerBench rig(LinkBench::Kind::Serial);
        WorkerHarness &harness = rig.harness;
        const auto sensor = rig.plugSensor(0x61, 0, 0x2B);
        sensor->setSampleRateHz(0);
        sensor->setForce(3, 12.5);
        QVERIFY(rig.connectAndFind());

        // Counter 0 is taken for an old frame until it moves.
        QTRY_VERIFY(!harness.rates.isEmpty());
        QCOMPARE(harness.samples.size(), 0);

        sensor->setFrameCounter(250);
        QTRY_COMPARE(harness.samples.size(), 1);
        QCOMPARE(harness.samples.at(0).frame.toHex(), sensor->sampleFrame().toHex());
        QCOMPARE(harness.samples.at(0).frame.size(), 189);
        sensor->setFrameCounter(3);
        QTRY_COMPARE(harness.samples.size(), 2);
        QCOMPARE(counterOf(harness.samples.at(1)), 3);

        const int rateCount = harness.rates.size();
        QTRY_VERIFY(harness.rates.size() > rateCount + 1);
        int steps = 0;
        int frames = 0;
        for (const WorkerHarness::Rate &rate : harness.rates) {
            steps += rate.hz;
            frames += rate.rHz;
        }
        QCOMPARE(steps, 250 + 9);
        QCOMPARE(frames, 2);
    }

    void keepsSamplingThroughNoise()
    {
        WorkerBench rig(LinkBench::Kind::Serial);
        WorkerHarness &harness = rig.harness;
        const auto sensor = rig.plugSensor(0x61, 0, 0x02);
        QVERIFY(rig.connectAndFind());
        sensor->faults().seed(20);
        for (const SimFault fault :
             {SimFault::FlippedBit, SimFault::BadSum, SimFault::CutFrame, SimFault::GluedFrame,
              SimFault::LeadingNoise, SimFault::Silence, SimFault::WrongLength, SimFault::Late})
            sensor->faults().setChance(fault, SimTarget::samples(), 0.03);
        QTRY_VERIFY_WITH_TIMEOUT(harness.samples.size() > 150, 30000);
        for (int i = 0; i < harness.samples.size(); ++i) {
            QVERIFY(harness.samples.at(i).frame.size() == 62 && frameSumFits(harness.samples.at(i).frame));
            QVERIFY(i == 0 || counterOf(harness.samples.at(i)) != counterOf(harness.samples.at(i - 1)));
        }
        QVERIFY(!harness.events.contains(kGone));
        QVERIFY(harness.log.contains(QStringLiteral("err")));
    }

    void losesAFrozenSensorOnly()
    {
        WorkerBench rig(LinkBench::Kind::Serial);
        const auto frozen = rig.plugSensor(0x61, 0, 0x02);
        rig.plugSensor(0x62, 0, 0x1C);
        QVERIFY(rig.connectAndFind("found 0/0x62"));
        QTRY_VERIFY(rig.harness.sampleCount(0, 0x61) > 0);

        frozen->setFrozen(true);
        QElapsedTimer silence;
        silence.start();
        QVERIFY(rig.harness.waitForEvent(kGone));
        // 3.2 s after its last frame, which may have come before this, and far from the time of any other
        // rule.
        QVERIFY2(silence.elapsed() > 2500 && silence.elapsed() < 6000,
                 qPrintable(QString::number(silence.elapsed())));
        QVERIFY(!rig.harness.events.contains(QStringLiteral("gone 0/0x62")));
        const int before = rig.harness.sampleCount(0, 0x62);
        QTRY_VERIFY(rig.harness.sampleCount(0, 0x62) > before + 5);
    }
};

QTEST_GUILESS_MAIN(tst_worker_serial)
#include "tst_worker_serial.moc"
