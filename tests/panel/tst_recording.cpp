// Recordings: their bytes, their runs, and what becomes of them when disk, folder or process fail.

#include "tests/panel/panel_bench.h"

#include "recording/recording_folder.h"
#include "tests/support/log_capture.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTranslator>
#include <QtTest>

#include <array>
#include <csignal>
#include <sys/resource.h>

namespace {

const QVector<int32_t> kChannels = {3, 2, -3, 0, 1, 1000001, 6, 7};
const QByteArray kValues = "3,2,-3,0,1,1000001,6,7,1.25,0.50,90,7";
const QByteArray kChineseHeader = "??,??0,??1,??2,??3,??4,??5,??6,??7,???0_???,???0_???,???0_??,?????0";
/// Decoder without a picture, with one sample in it.
struct Decoder : class_finger
{
    explicit Decoder(unsigned char prg = 2)
        : class_finger(prg, nullptr)
    {
        parseData(PanelBench::fingerFrame(1, kChannels));
    }
};

QStringList recordings(const QString &folder)
{
    QStringList paths;
    for (const QString &name : QDir(folder).entryList({QStringLiteral("*.csv")}, QDir::Files, QDir::Name))
        paths += folder + QLatin1Char('/') + name;
    return paths;
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
}

QList<QByteArray> lines(const QString &path)
{
    QList<QByteArray> all = contents(path).split('\n');
    // Every line is ended, so the last piece is empty.
    if (!all.takeLast().isEmpty())
        all.append("half a line");
    return all;
}

/// The fields behind the time.
QByteArray afterTime(const QByteArray &line)
{
    return line.mid(line.indexOf(',') + 1);
}

/// A header and so many samples, whose counters begin at 0.
void verifyRun(const QList<QByteArray> &written, int samples)
{
    QCOMPARE(written.size(), samples + 1);
    QCOMPARE(written.first(), kChineseHeader);
    for (int i = 0; i < samples; ++i)
        QCOMPARE(afterTime(written.at(i + 1)), QByteArray::number(i % 256) + ',' + kValues);
}

/// Runs of one sensor are told apart by their millisecond.
void waitForNextMillisecond()
{
    const qint64 begin = QDateTime::currentMSecsSinceEpoch();
    QVERIFY(QTest::qWaitFor([begin] { return QDateTime::currentMSecsSinceEpoch() > begin; }));
}

/// While it lives no file of this process grows beyond so many bytes, as on a full disk.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit narrow = {bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &narrow);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &m_before); }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    rlimit m_before{};
};

/// Records for ever into a folder, for the test to kill.
int recordForEver(const QString &folder)
{
    Decoder decoder;
    SampleRecorder recorder(folder, 0, 0x61);
    for (uint8_t counter = 0;; ++counter) {
        decoder.parseData(PanelBench::fingerFrame(counter, kChannels));
        recorder.append(decoder.sample());
    }
}

} // namespace

class TestRecording : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Q_INIT_RESOURCE(translations); }
    void init()
    {
        QVERIFY(QDir(recordingFolder()).removeRecursively());
        recordingFolder();
    }
    void cleanupTestCase() { QDir(recordingFolder()).removeRecursively(); }

    void recordsARun()
    {
        PanelBench bench;
        bench.attach(2);
        bench.get<QCheckBox>("chkbtnSave")->click();
        const LogCapture log;
        const qint64 begin = QDateTime::currentMSecsSinceEpoch();
        const QSignalSpy forwarded(bench.panel, &fingerForm::si_sendDataStrList);
        for (const int counter : {254, 255, 0})
            bench.sample(PanelBench::fingerFrame(static_cast<uint8_t>(counter), kChannels));
        // A refused frame is recorded and sent on as what the last good one left.
        bench.sample(PanelBench::fingerFrame(6, kChannels).left(61));
        QCOMPARE(forwarded.size(), 4);
        QCOMPARE(log.count(QStringLiteral("creat save file")), 1);
        const QStringList files = recordings(recordingFolder());
        QCOMPARE(files.size(), 1);
        const QRegularExpression name(QStringLiteral("/\\d{8}_\\d{6}_\\d{3}__1__0x61\\.csv$"));
        QVERIFY2(name.match(files.first()).hasMatch(), qPrintable(files.first()));
        const QList<QByteArray> written = lines(files.first());
        QCOMPARE(written.first(), kChineseHeader);
        QList<QByteArray> samples;
        for (const QByteArray &line : written.mid(1))
            samples += afterTime(line);
        QCOMPARE(samples,
                 (QList<QByteArray>{"254," + kValues, "255," + kValues, "0," + kValues, "0," + kValues}));
        const qint64 time = written.at(1).left(written.at(1).indexOf(',')).toLongLong();
        QVERIFY(time >= begin && time <= QDateTime::currentMSecsSinceEpoch());
    }

    void warnsOfALostSample()
    {
        PanelBench bench;
        bench.attach(2);
        auto *box = bench.get<QCheckBox>("chkbtnSave");
        box->click();
        const auto warning = [&] {
            bench.sample(PanelBench::fingerFrame(1, kChannels));
            return box->icon().isNull() ? QStringLiteral("none") : box->toolTip();
        };
        for (int i = 0; i < 2; ++i) {
            QVERIFY(QDir(recordingFolder()).removeRecursively());
            QCOMPARE(warning(), QStringLiteral("文件夹打开失败"));
            if (i == 0)
                recordingFolder();
            else
                box->click();
            QCOMPARE(warning(), QStringLiteral("none"));
            QVERIFY(box->toolTip().isEmpty());
        }
    }

    void beginsAndEndsRuns()
    {
        PanelBench bench;
        bench.attach(2);
        const auto sampleAfter = [&bench](Qt::CheckState state) {
            waitForNextMillisecond();
            bench.get<QCheckBox>("chkbtnSave")->setCheckState(state);
            bench.sample(PanelBench::fingerFrame(1, kChannels));
            return recordings(recordingFolder()).size();
        };
        QCOMPARE(sampleAfter(Qt::PartiallyChecked), 0);
        QCOMPARE(sampleAfter(Qt::Checked), 1);
        QCOMPARE(sampleAfter(Qt::Unchecked), 1);
        QCOMPARE(sampleAfter(Qt::Checked), 2);
        bench.attach(2);
        QCOMPARE(sampleAfter(Qt::Checked), 3);
    }

    void losesNoSampleOfSeveralPanels()
    {
        constexpr int kSamples = 1500;
        std::array<PanelBench, 4> benches;
        for (PanelBench &bench : benches) {
            bench.attach(2);
            bench.get<QCheckBox>("chkbtnSave")->click();
            waitForNextMillisecond();
            bench.sample(PanelBench::fingerFrame(0, kChannels));
        }
        for (int i = 1; i < kSamples; ++i) {
            for (PanelBench &bench : benches)
                bench.sample(PanelBench::fingerFrame(static_cast<uint8_t>(i), kChannels));
        }
        const QStringList files = recordings(recordingFolder());
        QCOMPARE(files.size(), 4);
        for (const QString &file : files)
            verifyRun(lines(file), kSamples);
    }

    void headsTheStatusWithItsValue()
    {
        const QTemporaryDir folder;
        Decoder decoder(31);
        const QByteArray body = QByteArray::fromHex("55aa03850900010000020000030000ffffff7d0032005a002a");
        QCOMPARE(decoder.parseData(PanelBench::sealed(body)), 0);
        SampleRecorder recorder(folder.path(), 5, 0x07);
        QTranslator english;
        QVERIFY(english.load(QStringLiteral(":/en.qm")));
        QCoreApplication::installTranslator(&english);
        recorder.append(decoder.sample());
        const QStringList files = recordings(folder.path());
        QVERIFY(files.value(0).endsWith(QStringLiteral("__6__0x07.csv")));
        QCOMPARE(lines(files.first()).at(0),
                 QByteArray("Index,Ch0,Ch1,Ch2,Ch3,0Normal Force,0Tangential Force,0Angle,Status42"));
        QCOMPARE(afterTime(lines(files.first()).at(1)), QByteArray("9,1,2,3,16777215,1.25,0.50,90,42"));
    }

    void bearsAFolderThatGoes()
    {
        const QTemporaryDir parent;
        const QString folder = parent.filePath(QStringLiteral("data"));
        Decoder decoder;
        SampleRecorder recorder(folder, 0, 0x61);
        const LogCapture log;
        recorder.append(decoder.sample());
        QCOMPARE(log.lines(), QStringList{QStringLiteral("文件夹打开失败")});
        QVERIFY(QDir(parent.path()).mkdir(QStringLiteral("data")));
        recorder.append(decoder.sample());
        recorder.append(decoder.sample());
        const QString file = recordings(folder).value(0);
        QCOMPARE(lines(file).size(), 3);
        QVERIFY(QFile::remove(file));
        recorder.append(decoder.sample());
        QCOMPARE(recordings(folder), QStringList{file});
        QCOMPARE(lines(file).size(), 2);
    }

    void writesWholeLinesOrNone()
    {
        const QTemporaryDir folder;
        Decoder decoder;
        SampleRecorder recorder(folder.path(), 0, 0x61);
        LogCapture log;
        {
            // Room for a part of the first two lines, which go out together.
            const FullDisk disk(100);
            recorder.append(decoder.sample());
            QCOMPARE(contents(recordings(folder.path()).value(0)), QByteArray());
        }
        recorder.append(decoder.sample());
        const QString file = recordings(folder.path()).value(0);
        const QByteArray before = contents(file);
        QCOMPARE(lines(file).size(), 2);
        log.clear();
        {
            const FullDisk disk(static_cast<rlim_t>(before.size()) + 20);
            recorder.append(decoder.sample());
            recorder.append(decoder.sample());
        }
        QCOMPARE(contents(file), before);
        QCOMPARE(log.count(QStringLiteral("文件夹打开失败")), 2);
        recorder.append(decoder.sample());
        QCOMPARE(lines(file).size(), 3);
        QCOMPARE(afterTime(lines(file).last()), "1," + kValues);
    }

    void survivesAKill()
    {
        const QTemporaryDir folder;
        QProcess writer;
        writer.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--record"), folder.path()});
        QTRY_VERIFY_WITH_TIMEOUT(lines(recordings(folder.path()).value(0)).size() > 300, 30000);
        writer.kill();
        QVERIFY(writer.waitForFinished());
        const QList<QByteArray> written = lines(recordings(folder.path()).value(0));
        verifyRun(written, written.size() - 1);
    }
};

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String("--record"))
        return recordForEver(arguments.value(2));
    TestRecording test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_recording.moc"
