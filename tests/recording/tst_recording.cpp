// The bytes of a recording, and what becomes of it when disk, folder or process fail.

#include "protocol/sample.h"
#include "recording/SampleRecorder.h"
#include "recording/recording_folder.h"
#include "tests/support/log_capture.h"

#include <QtTest>

#include <csignal>
#include <sys/resource.h>

namespace {

const QByteArray kValues = "3,-2,1.25,0.50,90,7,8,42";

Sample sample(uint8_t counter)
{
    const auto number = [](const char *text) { return SampleNumber{0, QString::fromLatin1(text)}; };
    Sample made;
    made.counter = counter;
    made.channels = {number("3"), number("-2")};
    made.blocks = {{0, 0, 0, QStringLiteral("1.25"), QStringLiteral("0.50"), QStringLiteral("90")}};
    made.selfProximity = {number("7")};
    made.mutualProximity = {number("8")};
    made.status = {number("42")};
    return made;
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
}

/// The lines of a file without their times, "half a line" for a last one without an end.
QList<QByteArray> lines(const QString &path)
{
    QList<QByteArray> all = contents(path).split('\n');
    if (!all.takeLast().isEmpty())
        all.append(",half a line");
    for (int i = 1; i < all.size(); ++i)
        all[i] = all.at(i).mid(all.at(i).indexOf(',') + 1);
    return all;
}

/// From now on no file of this process grows beyond so many bytes, as on a full disk.
void limitFiles(rlim_t bytes)
{
    const rlimit limit = {bytes, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &limit);
}

/// A recorder on a folder of its own.
struct Bench
{
    QTemporaryDir parent;
    QString folder = parent.path();
    SampleRecorder recorder{folder, 5, 0x07};
    LogCapture log;

    QString file() const
    {
        const QStringList names = QDir(folder).entryList({QStringLiteral("*.csv")}, QDir::Files);
        return names.size() == 1 ? folder + QLatin1Char('/') + names.first() : QString();
    }
};

} // namespace

class TestRecording : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Q_INIT_RESOURCE(translations); }

    void headsColumnsInBothLanguages()
    {
        QTranslator english;
        QVERIFY(english.load(QStringLiteral(":/en.qm")));
        for (const auto *header :
             {"??,??0,??1,???0_???,???0_???,???0_??,?????0,?????0,??42",
              "Index,Ch0,Ch1,0Normal Force,0Tangential Force,0Angle,Self Proximity0,Mutual Proximity0,"
              "Status42"}) {
            Bench bench;
            const qint64 begin = QDateTime::currentMSecsSinceEpoch();
            QVERIFY(bench.recorder.append(sample(255)));
            QVERIFY(bench.recorder.append(sample(0)));
            QCOMPARE(lines(bench.file()), (QList<QByteArray>{header, "255," + kValues, "0," + kValues}));
            const qint64 time = contents(bench.file()).split('\n').at(1).split(',').first().toLongLong();
            QVERIFY(time >= begin && time <= QDateTime::currentMSecsSinceEpoch());
            const QRegularExpression name(QStringLiteral("/\\d{8}_\\d{6}_\\d{3}__6__0x07\\.csv$"));
            QVERIFY2(name.match(bench.file()).hasMatch(), qPrintable(bench.file()));
            QCOMPARE(bench.log.lines(), QStringList{QStringLiteral("creat save file")});
            QCoreApplication::installTranslator(&english);
        }
    }

    void bearsAFolderThatGoes()
    {
        Bench bench;
        QVERIFY(QDir().rmdir(bench.folder));
        QVERIFY(!bench.recorder.append(sample(1)));
        QCOMPARE(bench.log.lines(), QStringList{QStringLiteral("文件夹打开失败")});
        QVERIFY(QDir().mkdir(bench.folder));
        for (int i = 0; i < 2; ++i)
            QVERIFY(bench.recorder.append(sample(1)));
        const QString file = bench.file();
        QCOMPARE(lines(file).size(), 3);
        QVERIFY(QFile::remove(file));
        QVERIFY(bench.recorder.append(sample(1)));
        QCOMPARE(bench.file(), file);
        QCOMPARE(lines(file).size(), 2);
    }

    void writesWholeLinesOrNone()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        Bench bench;
        // Room for a part of the first two lines, which go out together.
        limitFiles(70);
        const bool first = bench.recorder.append(sample(1));
        limitFiles(RLIM_INFINITY);
        QVERIFY(!first);
        QCOMPARE(contents(bench.file()), QByteArray());
        QVERIFY(bench.recorder.append(sample(1)));
        const QByteArray before = contents(bench.file());
        QCOMPARE(lines(bench.file()).size(), 2);
        limitFiles(static_cast<rlim_t>(before.size()) + 20);
        const bool second = bench.recorder.append(sample(2));
        limitFiles(RLIM_INFINITY);
        QVERIFY(!second);
        QCOMPARE(contents(bench.file()), before);
        QCOMPARE(bench.log.count(QStringLiteral("文件夹打开失败")), 2);
        QVERIFY(bench.recorder.append(sample(3)));
        QCOMPARE(lines(bench.file()).mid(2), QList<QByteArray>{"3," + kValues});
    }

    void triesWhereRecordingsGo()
    {
        const QTemporaryDir folder;
        QVERIFY(canRecord(folder.path()));
        QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("data")));
        QVERIFY(canRecord(folder.path()));
        QCOMPARE(QDir(folder.filePath(QStringLiteral("data"))).count(), 2U); // nothing is left in it
        QVERIFY(!canRecord(QStringLiteral("/proc/self")));                   // not even by root
    }
};

QTEST_GUILESS_MAIN(TestRecording)
#include "tst_recording.moc"
