// What the recorder without a window writes, beside what the window writes of the same samples.

#include "companions/tactile-log/LogRun.h"
#include "engine/fingerThread.h"
#include "recording/recording_folder.h"
#include "sim/SimCh341.h"
#include "sim/SimUsb.h"
#include "tests/panel/panel_bench.h"

#include <QtTest>

#include <csignal>
#include <sys/resource.h>

namespace {

/// Told by this program id the window shows a view of longer frames, which refuses what the sensor sends.
constexpr uint8_t kWindowReadsAnotherModel = 0x3C;

QVector<uint8_t> sampleOf(const finger_info_ts &row, uint8_t counter)
{
    SimValues values(row);
    for (std::size_t i = 0; i < values.channels.size(); ++i)
        values.channels[i] = static_cast<uint32_t>(1000 * counter + 7 * i);
    for (SimForce &force : values.forces)
        force = {1.25F * counter, 0.5F, 90};
    const QByteArray made = simSampleFrame(row, values, 0x61, 0x85, counter);
    return {made.begin(), made.end()};
}

sensor_ts sensor(uint8_t prg, uint8_t addr = 0x61)
{
    sensor_ts made;
    made.addr = addr;
    made.prg = prg;
    made.sn = QStringLiteral("A\"1");
    made.pack = PanelBench::frame(0);
    return made;
}

/// The names of the files without their moments, and what stands in them without the times.
QStringList files(const QString &folder)
{
    QStringList all;
    for (const QFileInfo &info : QDir(folder).entryInfoList(QDir::Files, QDir::Name)) {
        QFile file(info.filePath());
        if (file.open(QIODevice::ReadOnly))
            all += info.fileName().mid(19) + QLatin1Char('\n') +
                   QString::fromLatin1(file.readAll())
                       .replace(QRegularExpression(QStringLiteral("\\d{13}")), QStringLiteral("T"));
    }
    return all;
}

QStringList logged(LogFormat format, const QVector<QVector<uint8_t>> &packs, uint8_t prg = 2)
{
    const QTemporaryDir folder;
    SampleLog log(format, folder.path());
    log.addSensor(sensor(prg));
    for (const auto &pack : packs)
        log.take(0, 0x61, pack);
    return files(folder.path());
}

} // namespace

class TestSampleLog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordsWhatTheWindowRecords()
    {
        Q_INIT_RESOURCE(translations);
        QTranslator english;
        QVERIFY(english.load(QStringLiteral(":/en.qm")));
        QCoreApplication::installTranslator(&english);
        for (const finger_info_ts &row : finger_infos) {
            if (findFingerInfoByPrg(row.prg) != &row || row.prg == kWindowReadsAnotherModel)
                continue;
            // The second one is cut, and recorded like the one before.
            const QVector<QVector<uint8_t>> packs{sampleOf(row, 1), sampleOf(row, 2).mid(1),
                                                  sampleOf(row, 3)};
            QDir(recordingFolder()).removeRecursively();
            PanelBench window(row.prg);
            window.get<QCheckBox>("chkbtnSave")->setChecked(true);
            for (const auto &pack : packs)
                window.panel->sl_updateData(0, 0x61, pack);
            const QStringList recorded = files(recordingFolder());
            QCOMPARE(recorded.size(), 1);
            QCOMPARE(recorded.first().count(QLatin1Char('\n')), 5);
            QCOMPARE(logged(LogFormat::Recording, packs, row.prg), recorded);
        }
    }

    void writesCleanLines()
    {
        const QVector<QVector<uint8_t>> packs{PanelBench::frame(255), PanelBench::frame(0, 61),
                                              PanelBench::frame(1)};
        const QString table = QStringLiteral(
            "__1__0x61.csv\n"
            "time_ms,counter,ch0,ch1,ch2,ch3,ch4,ch5,ch6,ch7,normal_force_n_0,tangential_force_n_0,"
            "direction_deg_0,self_proximity_0\n"
            "T,255,3,2,-3,0,1,1000001,6,7,1.25,0.50,90,7\n"
            "T,1,3,2,-3,0,1,1000001,6,7,1.25,0.50,90,7\n");
        QCOMPARE(logged(LogFormat::Csv, packs), QStringList{table});
        for (const uint8_t prg : {uint8_t(0xFF), uint8_t(0x68)}) // known by its length
            QCOMPARE(logged(LogFormat::Csv, packs, prg), QStringList{table});
        const QString object = QStringLiteral(
            "{\"time_ms\":T,\"bus\":1,\"address\":97,\"model\":\"KV-N1\",\"serial_number\":\"A\\\"1\","
            "\"counter\":%1,"
            "\"ch0\":3,\"ch1\":2,\"ch2\":-3,\"ch3\":0,\"ch4\":1,\"ch5\":1000001,\"ch6\":6,\"ch7\":7,"
            "\"normal_force_n_0\":1.25,\"tangential_force_n_0\":0.50,\"direction_deg_0\":90,"
            "\"self_proximity_0\":7}\n");
        QCOMPARE(logged(LogFormat::JsonLines, packs),
                 QStringList{QStringLiteral("__1__0x61.jsonl\n") + object.arg(255) + object.arg(1)});
    }

    void countsAndKeepsApart()
    {
        const QTemporaryDir folder;
        SampleLog log(LogFormat::Csv, folder.path());
        log.addSensor(sensor(2));
        log.addSensor(sensor(2, 0x62));
        QVERIFY(log.take(0, 0x61, PanelBench::frame(254)));
        QVERIFY(log.take(0, 0x62, PanelBench::frame(7)));
        QVERIFY(log.take(0, 0x61, PanelBench::frame(1)));
        QVERIFY(log.take(1, 0x61, PanelBench::frame(2))); // of another bus
        QCOMPARE(log.sensorCount(), 2);
        QCOMPARE(log.samples(), 3ULL);
        QCOMPARE(log.lost(), 2ULL);
        QVERIFY(log.lastFile().endsWith(QLatin1String("__1__0x61.csv")));
        // A sensor that comes back begins another file, named by its moment, and nothing was lost meanwhile.
        const qint64 before = QDateTime::currentMSecsSinceEpoch();
        log.removeSensor(sensor(2));
        QTRY_VERIFY(QDateTime::currentMSecsSinceEpoch() > before);
        log.addSensor(sensor(2));
        QVERIFY(log.take(0, 0x61, PanelBench::frame(100)));
        QCOMPARE(log.lost(), 2ULL);
        QCOMPARE(files(folder.path()).size(), 3);
    }

    // Over a bridge that is pulled and plugged again.
    void asksForForcesAndComesBack()
    {
        const auto finger = std::make_shared<SimSensor>(2, 0x61);
        const auto other = std::make_shared<SimSensor>(2, 0x62);
        const auto bridge = std::make_shared<SimCh341>(std::make_shared<SimI2cBus>(), 5, 2);
        bridge->bus().plug(finger, 4);
        bridge->bus().plug(other, 4);
        SimUsb usb;
        usb.plug(bridge);
        const QTemporaryDir folder;
        LogOptions options;
        options.link = fingerThread::kCh341;
        options.folder = folder.path();
        options.addresses = {0x61};
        LogRun run(options);
        LogEnd why = LogEnd::NoSample;
        connect(&run, &LogRun::ended, &run, [&why](LogEnd end) { why = end; });
        for (const int count : {1, 2}) {
            QTRY_COMPARE_WITH_TIMEOUT(files(folder.path()).size(), count, 30000);
            QTRY_COMPARE(int(finger->settings().sendType), 4);
            usb.unplug(bridge);
            QTRY_VERIFY(run.status().startsWith(QLatin1String("waiting for the device, sensors: 0, ")));
            usb.plug(bridge);
        }
        QVERIFY(int(other->settings().sendType) != 4);
        run.end();
        QCOMPARE(why, LogEnd::Done);
        QVERIFY(run.log().samples() > 0);
    }

    void tellsOfAFullDisk()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        for (const LogFormat format : {LogFormat::Csv, LogFormat::JsonLines, LogFormat::Recording}) {
            const QTemporaryDir folder;
            SampleLog log(format, folder.path());
            log.addSensor(sensor(2));
            QVERIFY(log.take(0, 0x61, PanelBench::frame(1)));
            const QStringList before = files(folder.path());
            const rlimit limit = {static_cast<rlim_t>(QFileInfo(log.lastFile()).size()) + 20, RLIM_INFINITY};
            const rlimit none = {RLIM_INFINITY, RLIM_INFINITY};
            setrlimit(RLIMIT_FSIZE, &limit);
            const bool taken = log.take(0, 0x61, PanelBench::frame(2));
            setrlimit(RLIMIT_FSIZE, &none);
            QVERIFY(!taken);
            QCOMPARE(log.error(), QStringLiteral("File too large"));
            QCOMPARE(files(folder.path()), before);
            QCOMPARE(log.samples(), 1ULL);
        }
    }
};

QTEST_MAIN(TestSampleLog)
#include "tst_sample_log.moc"
