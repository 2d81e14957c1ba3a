#include "tests/engine/WorkerBench.h"

#include <QtTest>

using namespace std::chrono_literals;

class tst_worker_life : public QObject
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
};

QTEST_GUILESS_MAIN(tst_worker_life)
#include "tst_worker_life.moc"
