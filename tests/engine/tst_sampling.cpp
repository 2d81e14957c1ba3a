#include "tests/engine/WorkerBench.h"

#include <QtTest>

namespace {

const auto kGone = QStringLiteral("gone 0/0x61");

int counterOf(const WorkerHarness::Sample &sample)
{
    return static_cast<uint8_t>(sample.frame.at(4));
}

/// Sync, length and sum, worked out apart from the product.
bool isSound(const QByteArray &frame, int length)
{
    unsigned int sum = 0;
    for (int i = 0; i < frame.size() - 2; ++i)
        sum += static_cast<uint8_t>(frame.at(i));
    const auto low = static_cast<char>(sum & 0xFF);
    const auto high = static_cast<char>((sum >> 8) & 0xFF);
    return frame.size() == length && frame.startsWith("\x55\xAA") && frame.at(length - 2) == low &&
           frame.at(length - 1) == high;
}

} // namespace

class tst_sampling : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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
            QVERIFY(isSound(harness.samples.at(i).frame, 62));
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

QTEST_GUILESS_MAIN(tst_sampling)
#include "tst_sampling.moc"
