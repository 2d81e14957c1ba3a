#include "engine/Discovery.h"
#include "tests/engine/StepRig.h"

#include <QtTest>

using Kind = SensorLink::Kind;

namespace {

constexpr uint8_t kEntry = 1; // where the sensor is

/// A discovery that keeps what it finds.
struct Sweep : StepRig
{
    explicit Sweep(Kind kind)
        : StepRig(kind)
    {
        SimSettings settings = sensor->settings();
        settings.serialNumber = QByteArrayLiteral("SN-7");
        sensor->setSettings(settings);
        QObject::connect(&discovery, &Discovery::found, &discovery,
                         [this](const sensor_ts &record) { found.append(record); });
    }

    Outcome step(uint8_t infIdx = kEntry)
    {
        bus.setPcaState(entries[infIdx].pca);
        return discovery.scanSensor(infIdx);
    }

    Discovery discovery{bus, entries};
    QVector<sensor_ts> found;
};

} // namespace

class tst_discovery : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksInOrder_data() { StepRig::addKinds(); }
    void asksInOrder()
    {
        QFETCH(Kind, kind);
        const bool isSerial = kind == Kind::Serial;
        // The serial number has no length, so the serial line waits all its passes for it.
        const int sleptMs = 150 + (isSerial ? 50 : 40);
        const QString asked = isSerial
                                  ? QStringLiteral("619e aa55617f0000000000df01 619e aa5561730000000300d601 "
                                                   "aa5561a400000000000402 aa5561a600000000000602")
                                  : QStringLiteral("aa55037f00000000008101 aa55037300000003007801 "
                                                   "aa5503a40000000000a601 aa5503a60000000000a801");
        Sweep sweep(kind);
        sweep.sensor->setFrameType(uint8_t(0x09));
        QCOMPARE(sweep.step(), Outcome::Done);
        QCOMPARE(sweep.sent().join(QLatin1Char(' ')), asked);
        QVERIFY2(sweep.now.count() >= sleptMs && sweep.now.count() < sleptMs + 40,
                 qPrintable(QString::number(sweep.now.count())));

        QCOMPARE(sweep.found.size(), 1);
        const sensor_ts record = sweep.found.constFirst();
        QCOMPARE(int(record.infIdx), 1);
        QCOMPARE(int(record.addr), 0x61);
        QCOMPARE(int(record.prg), 0x1F);
        QCOMPARE(int(record.type), 0x09);
        QCOMPARE(record.pack.size(), 27);
        QCOMPARE(record.sn, QStringLiteral("SN-7"));
        QCOMPARE(int(record.periodMs), 50);
        QVERIFY(sweep.log.contains(QStringLiteral("pack len2:27")));
        QVERIFY(sweep.log.contains(QStringLiteral("set offset:3")));
    }

    void findsOrLeavesOut()
    {
        struct Trial
        {
            std::function<void(SimSensor &)> prepare;
            const char *found; ///< number of the model and serial number
            const char *log;
        };
        const auto deaf = [](uint8_t command) {
            return [command](SimSensor &sensor) { sensor.setUnknown(command); };
        };
        const auto faulty = [](SimFault fault, const SimTarget &target, int count) {
            return [=](SimSensor &sensor) { sensor.faults().schedule(fault, target, count); };
        };
        const auto unpolled = [](SimSensor::FirstLook look) {
            return [look](SimSensor &sensor) { sensor.setFirstLook(0xF2, look); };
        };
        const auto zeroInSerial = [](SimSensor &sensor) {
            SimSettings settings = sensor.settings();
            settings.serialNumber = QByteArray("SN-8\0x", 6);
            sensor.setSettings(settings);
        };
        const Trial trials[] = {
            {deaf(0xA6), "255 SN-7", "set addr err"},
            {deaf(0xA4), "31 KV-000000000", "set send type err"},
            {deaf(0x73), "31 SN-7", "set offset err"},
            {faulty(SimFault::WrongLength, SimTarget::answersTo(0xA6), 1), "255 SN-7", "set addr err"},
            {zeroInSerial, "31 SN-8", "SN-8"},
            {unpolled(SimSensor::FirstLook::UntilSendType), "31 SN-7", "pack len2:27"},
            {unpolled(SimSensor::FirstLook::Always), "", "chk err"},
            {faulty(SimFault::WrongEcho, SimTarget::answersTo(0x7F), 1), "", "setSensorSendType err"},
            {faulty(SimFault::BadSum, SimTarget::samples(), 2), "", "chk err"}};
        for (const Trial &trial : trials) {
            Sweep sweep(Kind::Serial);
            trial.prepare(*sweep.sensor);
            sweep.step();
            QCOMPARE(sweep.log.count(QLatin1String(trial.log)), 1);
            QString seen;
            for (const sensor_ts &record : qAsConst(sweep.found))
                seen += QString::number(record.prg) + QLatin1Char(' ') + record.sn;
            QCOMPARE(seen, QLatin1String(trial.found));
            QCOMPARE(int(sweep.entries[kEntry].scanAddr), 0x61);
        }
    }

    void stepsOverAddressesInUse()
    {
        Sweep sweep(Kind::Serial);
        sweep.entries[0].scanAddr = 0x6D;
        sensor_ts live;
        live.addr = 0x6F;
        sweep.entries[0].sensors.append(live);
        for (int i = 0; i < 3; ++i)
            QCOMPARE(sweep.step(0), Outcome::Failed);
        QCOMPARE(sweep.sent().join(QLatin1Char(' ')), QStringLiteral("6e91 01fe 02fd"));

        for (int addr = 1; addr <= 0x6E; ++addr) {
            live.addr = static_cast<uint8_t>(addr);
            sweep.entries[0].sensors.append(live);
        }
        const int before = sweep.entries[0].scanAddr;
        QCOMPARE(sweep.step(0), Outcome::Failed);
        QCOMPARE(int(sweep.entries[0].scanAddr), before);
    }

    void holdsOneSensorWithoutMultiplexer()
    {
        Sweep sweep(Kind::Ch347);
        sweep.i2c->setMultiplexerDead(true);
        sweep.bus.probeMultiplexer();
        QVERIFY(sweep.log.contains(QStringLiteral("not find pca")));
        sweep.entries[0].sensors.append(sensor_ts());
        QCOMPARE(sweep.step(), Outcome::Done);
        QCOMPARE(int(sweep.entries[kEntry].scanAddr), 0x60);
        sweep.entries[0].sensors.clear();
        QCOMPARE(sweep.step(), Outcome::Failed);
        QCOMPARE(int(sweep.entries[kEntry].scanAddr), 0x61);
    }

    void isVoidWhenTheLinkGoes()
    {
        Sweep whole(Kind::Serial);
        QCOMPARE(whole.step(), Outcome::Done);
        const QStringList all = whole.sent();
        for (int asked = 1; asked < all.size(); ++asked) {
            Sweep sweep(Kind::Serial);
            QObject::connect(&sweep.link, &SensorLink::closed, &sweep.discovery,
                             [&] { sweep.bus.invalidate(); });
            sweep.onEvents = [&] {
                if (sweep.sent().size() == asked)
                    sweep.link.close();
            };
            QCOMPARE(sweep.step(), Outcome::Void);
            QCOMPARE(sweep.sent(), all.mid(0, asked));
            QVERIFY(sweep.found.isEmpty());
            for (const QString &line : sweep.log.lines())
                QVERIFY2(!line.endsWith(QStringLiteral("err")), qPrintable(line));
        }
    }
};

QTEST_GUILESS_MAIN(tst_discovery)
#include "tst_discovery.moc"
