#include "engine/CommandQueue.h"
#include "tests/engine/StepRig.h"

#include <QtTest>

using Kind = SensorLink::Kind;

namespace {

constexpr uint8_t kEntry = 1; // where the sensor is

const QByteArray kReadAddress = hex("aa5561710000000000d101");
const QByteArray kReadChannels = hex("aa5561620000000000c201");
const QByteArray kReadSerial = hex("aa5561a400000000000402");
const QByteArray kSetMode = hex("aa5561560100000000b701");
const QByteArray kAddressAnswer = hex("55aa61f10000006100b202");

/// A queue before one live sensor that keeps what comes of the commands.
struct Queue : StepRig
{
    explicit Queue(Kind kind)
        : StepRig(kind)
    {
        sensor_ts live;
        live.addr = 0x61;
        entries[kEntry].sensors.append(live);
        const auto keep = [this](const char *how) {
            return [this, how](uint8_t infIdx, uint8_t addr, const QByteArray &req, const QByteArray &rsp) {
                results += QString::asprintf("%s %d/0x%02x ", how, infIdx, addr) +
                           QString::fromLatin1(req.toHex() + " > " + rsp.toHex());
            };
        };
        QObject::connect(&commands, &CommandQueue::answered, &commands, keep("ok"));
        QObject::connect(&commands, &CommandQueue::failed, &commands, keep("failed"));
    }

    void request(const QByteArray &frame, uint16_t rspLen, uint8_t addr = 0x61)
    {
        commands.append({kEntry, addr, frame, rspLen});
    }
    Outcome step(uint8_t infIdx = kEntry)
    {
        bus.setPcaState(entries[infIdx].pca);
        return commands.wrCmdSensor(infIdx);
    }
    void steps(int count)
    {
        while (count-- > 0)
            step();
    }
    int sentTimes(const QByteArray &frame) const { return sent().count(QString::fromLatin1(frame.toHex())); }

    CommandQueue commands{bus, entries};
    QStringList results;
};

} // namespace

class tst_command_queue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersInOrder_data() { StepRig::addKinds(); }
    void answersInOrder()
    {
        QFETCH(Kind, kind);
        Queue queue(kind);
        const QByteArray toNobody = hex("aa5562710000000000d201");
        queue.request(toNobody, 11, 0x62);
        queue.request(kReadAddress, 11);
        queue.request(kReadSerial, 0xFFFF);
        queue.request(kSetMode, 0);
        QCOMPARE(queue.step(0), Outcome::Done); // another bus has its turn
        queue.steps(3);
        const auto before = queue.now;
        QCOMPARE(queue.step(), Outcome::Done);
        QCOMPARE(queue.now.count(), before.count()); // nothing is awaited
        const QByteArray serial = queue.sensor->settings().serialNumber;
        QCOMPARE(queue.results.size(), 2);
        QCOMPARE(queue.results.at(0),
                 QStringLiteral("ok 1/0x61 aa5561710000000000d101 > 55aa61f10000006100b202"));
        // Of an answer of unknown length all that came is read, and cut to its frame.
        QVERIFY(queue.results.at(1).startsWith(QStringLiteral("ok 1/0x61 aa5561a400000000000402 > 55aa61")));
        QVERIFY(queue.results.at(1).chopped(4).endsWith(QString::fromLatin1(serial.toHex())));

        QByteArray acknowledgement;
        queue.bus.collect(acknowledgement, 11, 5); // lets it go out on the serial line
        QCOMPARE(int(queue.sensor->settings().measuringMode), 1);
        QCOMPARE(queue.sentTimes(toNobody), 0);
        for (const char *logged :
             {"add cmd:aa5561710000000000d101", "appendCmdList:4", "req 3:aa5561710000000000d101",
              "rsp len:11", "rsp:55aa61f10000006100b202", "rsp len:500"})
            QVERIFY2(queue.log.contains(QString::fromLatin1(logged)), logged);
    }

    void triesThreeTimes()
    {
        struct Trial
        {
            QByteArray frame;
            uint16_t rspLen;
            SimFault fault;
            int times;
            QByteArray rsp;
            const char *log;
        };
        // An answer that is too short, one to another command, one that is always spoilt, one twice where the
        // length is unknown; a request too short to be matched.
        const Trial trials[] = {
            {kReadAddress, 11, SimFault::WrongLength, 2, kAddressAnswer, "chk err"},
            {kReadAddress, 11, SimFault::WrongEcho, 2, kAddressAnswer, "try:1"},
            {kReadAddress, 11, SimFault::BadSum, 3, hex("55aa61f10000006100b302"), "chk err"},
            {kReadAddress, 0xFFFF, SimFault::GluedFrame, 3, kAddressAnswer + kAddressAnswer, "cmdList:2"},
            {hex("aa5561"), 6, SimFault::Silence, 3, {}, "cmdList:2"}};
        for (const Trial &trial : trials) {
            Queue queue(Kind::Serial);
            queue.sensor->faults().schedule(trial.fault, SimTarget::answersTo(0x71), trial.times);
            queue.request(trial.frame, trial.rspLen);
            queue.request(kReadChannels, 11);
            queue.steps(4);
            QCOMPARE(queue.results.size(), 2);
            const bool failed = trial.times == 3;
            const QString frame = QString::fromLatin1(trial.frame.toHex());
            QCOMPARE(queue.results.at(0), QLatin1String(failed ? "failed" : "ok") +
                                              QStringLiteral(" 1/0x61 ") + frame + QStringLiteral(" > ") +
                                              QString::fromLatin1(trial.rsp.toHex()));
            QVERIFY(queue.results.at(1).startsWith(QStringLiteral("ok")));
            QVERIFY(queue.log.contains(QLatin1String(trial.log)));
            QCOMPARE(queue.log.count(QStringLiteral("req 1:") + frame), 1);
            QCOMPARE(queue.log.count(QStringLiteral("try:0")), failed ? 1 : 0);
        }
    }

    void retriesOnTheBusesThatFollow()
    {
        Queue queue(Kind::Ch347);
        queue.sensor->setUnknown(0x71);
        queue.request(kReadAddress, 11);
        queue.step(1);
        QCOMPARE(queue.now.count(), 10 * 10 + 50);
        queue.step(2);
        queue.step(3);
        QCOMPARE(queue.now.count(), 3 * 150 + 50);
        QCOMPARE(queue.results.size(), 1);
        QVERIFY(queue.results.at(0).startsWith(QStringLiteral("failed 3/0x61")));
        // Only the first attempt was made where the sensor is; nobody hears the others.
        QCOMPARE(queue.sentTimes(kReadAddress), 1);
        QCOMPARE(queue.log.count(QStringLiteral("req 1:aa5561710000000000d101")), 1);
    }

    void readsFromTheNewAddress()
    {
        Queue queue(Kind::Ch347);
        queue.request(hex("aa55617000000065003502"), 11);
        queue.step();
        QCOMPARE(queue.results.size(), 1);
        QVERIFY(queue.results.at(0).startsWith(QStringLiteral("ok 1/0x61")));
        QCOMPARE(int(queue.sensor->address()), 0x65);
    }

    void countsNoAttemptThatBecameVoid()
    {
        Queue queue(Kind::Serial);
        QObject::connect(&queue.link, &SensorLink::closed, &queue.commands, [&] { queue.bus.invalidate(); });
        queue.sensor->setUnknown(0x71);
        queue.request(kReadAddress, 11);
        QCOMPARE(queue.step(), Outcome::Failed);
        queue.onEvents = [&queue] {
            if (queue.sentTimes(kReadAddress) == 2)
                queue.link.close();
        };
        QCOMPARE(queue.step(), Outcome::Void);
        queue.onEvents = [] {};

        queue.sensor->setUnknown(0x71, false);
        QVERIFY(queue.link.open(queue.pty.portName()));
        queue.bus.beginTick();
        QCOMPARE(queue.step(), Outcome::Done);
        QVERIFY(queue.log.contains(QStringLiteral("req 2:aa5561710000000000d101")));
        QVERIFY(!queue.log.contains(QStringLiteral("try:1")));
    }
};

QTEST_GUILESS_MAIN(tst_command_queue)
#include "tst_command_queue.moc"
