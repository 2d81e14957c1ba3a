#include "tests/engine/serial_rig.h"

#include <QtTest>

#include <functional>

using namespace std::chrono_literals;

namespace {

using Preparation = std::function<void(SimSensor &)>;

/// What the host sent, as hex, in order.
QString sentByHost(const SimJournal &journal)
{
    QString sent;
    for (const SimRecord &record : journal.records()) {
        if (record.kind == SimRecord::Kind::Poll || record.kind == SimRecord::Kind::Request)
            sent += QString::fromLatin1(record.bytes.toHex()) + QLatin1Char(' ');
    }
    return sent;
}

bool waitForPoll(SimSerialBus &bus, const char *pair)
{
    return bus.journal().waitFor(SimRecord::Kind::Poll, QByteArray::fromHex(pair), 40s);
}

} // namespace
Q_DECLARE_METATYPE(Preparation)

class tst_discovery : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksInOrder();
    void sweepsAllAddressesButTheMultiplexers();
    void findsOrLeavesOut_data();
    void findsOrLeavesOut();
};

void tst_discovery::asksInOrder()
{
    SerialRig rig;
    const auto sensor = rig.plug(0x02, 0x61);
    sensor->setSampleRateHz(0);
    sensor->setFrameType(uint8_t(0x09));
    QVERIFY(rig.connectAndFind());

    const auto asked = QStringLiteral("619e aa55617f0000000000df01 619e aa5561730000000000d301 "
                                      "aa5561a400000000000402 aa5561a600000000000602 ");
    QVERIFY(sentByHost(rig.bus.journal()).contains(asked));

    const sensor_ts record = rig.harness.found.constFirst();
    QCOMPARE(int(record.prg), 0x02);
    QCOMPARE(int(record.type), 0x09);
    QCOMPARE(record.pack.size(), 62);
    QCOMPARE(record.sn, QString::fromLatin1(sensor->settings().serialNumber));
    QCOMPARE(int(record.periodMs), 50);
    QVERIFY(rig.harness.log.contains(QStringLiteral("pack len2:62")));
    QVERIFY(rig.harness.log.contains(QStringLiteral("set offset:0")));
    QVERIFY(
        rig.harness.log.contains(QStringLiteral("find sensor：2 inf:0 addr:0x61 pack:62 sn:") + record.sn));
}

void tst_discovery::sweepsAllAddressesButTheMultiplexers()
{
    SerialRig rig;
    QVERIFY(rig.connect());
    QVERIFY(waitForPoll(rig.bus, "01fe"));
    QString expected;
    for (int address = 0x61; address <= 0x6F; ++address)
        expected += QString::asprintf("%02x%02x ", address, address ^ 0xFF);
    QVERIFY(sentByHost(rig.bus.journal()).startsWith(expected + QStringLiteral("01fe ")));
}

void tst_discovery::findsOrLeavesOut_data()
{
    QTest::addColumn<Preparation>("prepare");
    QTest::addColumn<QString>("found"); // number of the model and serial number
    QTest::addColumn<QString>("log");
    const auto deaf = [](uint8_t command) -> Preparation {
        return [command](SimSensor &sensor) { sensor.setUnknown(command); };
    };
    const auto faulty = [](SimFault fault, const SimTarget &target, int count) -> Preparation {
        return [=](SimSensor &sensor) { sensor.faults().schedule(fault, target, count); };
    };
    const auto unpolled = [](SimSensor::FirstLook look) -> Preparation {
        return [look](SimSensor &sensor) { sensor.setFirstLook(0xF2, look); };
    };
    QTest::newRow("no id") << deaf(0xA6) << QStringLiteral("255 SN-7") << QStringLiteral("set addr err");
    QTest::newRow("no serial number")
        << deaf(0xA4) << QStringLiteral("31 KV-000000000") << QStringLiteral("set send type err");
    QTest::newRow("no offset") << deaf(0x73) << QStringLiteral("31 SN-7") << QStringLiteral("set offset err");
    QTest::newRow("short id") << faulty(SimFault::WrongLength, SimTarget::answersTo(0xA6), 1)
                              << QStringLiteral("255 SN-7") << QStringLiteral("set addr err");
    QTest::newRow("serial number with a zero in it") << Preparation([](SimSensor &sensor) {
        SimSettings settings = sensor.settings();
        settings.serialNumber = QByteArray("SN-8\0x", 6);
        sensor.setSettings(settings);
    }) << QStringLiteral("31 SN-8") << QStringLiteral("SN-8");
    QTest::newRow("sends by itself at first") << unpolled(SimSensor::FirstLook::UntilSendType)
                                              << QStringLiteral("31 SN-7") << QStringLiteral("pack len2:27");
    QTest::newRow("goes on sending by itself")
        << unpolled(SimSensor::FirstLook::Always) << QString() << QStringLiteral("chk err");
    QTest::newRow("wrong echo") << faulty(SimFault::WrongEcho, SimTarget::answersTo(0x7F), 1) << QString()
                                << QStringLiteral("setSensorSendType err");
    QTest::newRow("spoilt frames") << faulty(SimFault::BadSum, SimTarget::samples(), 2) << QString()
                                   << QStringLiteral("chk err");
}

void tst_discovery::findsOrLeavesOut()
{
    QFETCH(Preparation, prepare);
    QFETCH(QString, found);
    QFETCH(QString, log);
    SerialRig rig;
    auto sensor = std::make_shared<SimSensor>(0x1F, 0x61);
    SimSettings settings = sensor->settings();
    settings.serialNumber = QByteArrayLiteral("SN-7");
    sensor->setSettings(settings);
    prepare(*sensor);
    rig.bus.plug(sensor);
    QVERIFY(rig.connect());
    QTRY_COMPARE_WITH_TIMEOUT(rig.harness.log.count(log), 1, 40000);
    QVERIFY(waitForPoll(rig.bus, "629d"));
    rig.harness.stop();
    QString seen;
    for (const sensor_ts &record : rig.harness.found)
        seen += QString::number(record.prg) + QLatin1Char(' ') + record.sn;
    QCOMPARE(seen, found);
}

QTEST_GUILESS_MAIN(tst_discovery)
#include "tst_discovery.moc"
