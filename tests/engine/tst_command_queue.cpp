#include "tests/engine/serial_rig.h"

#include <QtTest>

namespace {

const QByteArray kReadAddress = hex("aa5561710000000000d101");
const QByteArray kReadChannels = hex("aa5561620000000000c201");
const QByteArray kReadSerial = hex("aa5561a400000000000402");
const QByteArray kSetMode = hex("aa5561560100000000b701");

} // namespace

class tst_command_queue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersInOrder();
    void triesThreeTimes_data();
    void triesThreeTimes();
    void goesOnAfterALostLink();
};

void tst_command_queue::answersInOrder()
{
    SerialRig line;
    const auto sensor = line.plug(0x02, 0x61);
    QVERIFY(line.connectAndFind());
    const QByteArray toNobody = hex("aa5562710000000000d201");
    line.harness.request(0, 0x61, kSetMode, 0);
    line.harness.request(0, 0x62, toNobody, 11);
    line.harness.request(0, 0x61, kReadAddress, 11);
    line.harness.request(0, 0x61, kReadSerial, 0xFFFF);
    QTRY_COMPARE(line.harness.responses.size(), 2);
    const WorkerHarness::Response address = line.harness.responses.at(0);
    QVERIFY(address.good);
    QCOMPARE(int(address.infIdx), 0);
    QCOMPARE(int(address.addr), 0x61);
    QCOMPARE(address.req, kReadAddress);
    QCOMPARE(address.rsp.toHex(), QByteArrayLiteral("55aa61f10000006100b202"));
    // Of an answer of unknown length all that came is read, and cut to its frame.
    const WorkerHarness::Response serial = line.harness.responses.at(1);
    QVERIFY(serial.good);
    QCOMPARE(serial.req, kReadSerial);
    QCOMPARE(serial.rsp.mid(5), sensor->settings().serialNumber + serial.rsp.right(2));

    QCOMPARE(line.sent(kSetMode), 1);
    QCOMPARE(int(sensor->settings().measuringMode), 1);
    QCOMPARE(line.sent(toNobody), 0);
    QCOMPARE(line.sent(kReadAddress), 1);
    for (const char *logged :
         {"add cmd:aa5561710000000000d101", "appendCmdList:1", "req 3:aa5561710000000000d101", "rsp len:11",
          "rsp:55aa61f10000006100b202", "rsp len:500"})
        QVERIFY2(line.harness.log.contains(QString::fromLatin1(logged)), logged);
}

void tst_command_queue::triesThreeTimes_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<int>("rspLen");
    QTest::addColumn<int>("fault");
    QTest::addColumn<int>("times");
    QTest::addColumn<QByteArray>("rsp");
    QTest::addColumn<QString>("log");
    const QByteArray good = hex("55aa61f10000006100b202");
    const auto unsound = QStringLiteral("chk err");
    const auto given = QStringLiteral("cmdList:2");
    QTest::newRow("too short") << kReadAddress << 11 << int(SimFault::WrongLength) << 2 << good << unsound;
    QTest::newRow("to another command")
        << kReadAddress << 11 << int(SimFault::WrongEcho) << 2 << good << QStringLiteral("try:1");
    QTest::newRow("always spoilt") << kReadAddress << 11 << int(SimFault::BadSum) << 3
                                   << hex("55aa61f10000006100b302") << unsound;
    QTest::newRow("glued, where the length is unknown")
        << kReadAddress << 0xFFFF << int(SimFault::GluedFrame) << 3 << good + good << given;
    QTest::newRow("a request too short to be matched")
        << hex("aa5561") << 6 << int(SimFault::Silence) << 3 << QByteArray() << given;
}

void tst_command_queue::triesThreeTimes()
{
    QFETCH(QByteArray, frame);
    QFETCH(int, rspLen);
    QFETCH(int, fault);
    QFETCH(int, times);
    QFETCH(QString, log);
    SerialRig line;
    const auto sensor = line.plug(0x02, 0x61);
    QVERIFY(line.connectAndFind());
    sensor->faults().schedule(static_cast<SimFault>(fault), SimTarget::answersTo(0x71), times);
    line.harness.request(0, 0x61, frame, static_cast<uint16_t>(rspLen));
    line.harness.request(0, 0x61, kReadChannels, 11);
    QTRY_COMPARE_WITH_TIMEOUT(line.harness.responses.size(), 2, 20000);
    QCOMPARE(line.harness.responses.at(0).good, times < 3);
    QCOMPARE(line.harness.responses.at(0).req, frame);
    QTEST(line.harness.responses.at(0).rsp, "rsp");
    QVERIFY(line.harness.responses.at(1).good);
    QVERIFY(line.harness.log.contains(log));
    const QString lastAttempt = QStringLiteral("req 1:") + QString::fromLatin1(frame.toHex());
    QCOMPARE(line.harness.log.count(lastAttempt), 1);
    QCOMPARE(line.harness.log.count(QStringLiteral("try:0")), times < 3 ? 0 : 1);
}

void tst_command_queue::goesOnAfterALostLink()
{
    // Opened again while the tick is still waiting, or later.
    for (const bool atOnce : {true, false}) {
        SerialRig line;
        const auto sensor = line.plug(0x02, 0x61);
        QVERIFY(line.connectAndFind());
        sensor->setUnknown(0x71);
        line.harness.request(0, 0x61, kReadAddress, 11);
        QTRY_COMPARE(line.sent(kReadAddress), 2);
        sensor->setUnknown(0x71, false);
        line.harness.disconnectLink();
        QVERIFY(atOnce || line.harness.waitForEvent(QStringLiteral("down")));
        QVERIFY(line.harness.responses.isEmpty());
        QVERIFY(line.connect());

        QTRY_COMPARE(line.harness.responses.size(), 1);
        QVERIFY(line.harness.responses.at(0).good);
        QCOMPARE(line.sent(kReadAddress), 3);
        // The second attempt was cut short, so it is not counted.
        QVERIFY(!line.harness.log.contains(QStringLiteral("try:1")));
    }
}

QTEST_GUILESS_MAIN(tst_command_queue)
#include "tst_command_queue.moc"
