// What the fuzzers have found worth keeping, run once more: see tests/fuzz/README.md.

#include "tests/fuzz/fuzz_inputs.h"
#include "tests/support/log_capture.h"
#include "tests/update/VirtualTime.h"

#include <QApplication>
#include <QtTest>

class tst_fuzz_corpus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void devicePath() { replay(QStringLiteral("device_path"), fuzzDevicePath); }
    void frame() { replay(QStringLiteral("frame"), fuzzFrame); }
    void hexToBin() { replay(QStringLiteral("hex_to_bin"), fuzzHexToBin); }
    void packet() { replay(QStringLiteral("packet"), fuzzPacket); }
    void panel() { replay(QStringLiteral("panel"), fuzzPanel); }
    void recording() { replay(QStringLiteral("recording"), fuzzRecording); }
    void settings() { replay(QStringLiteral("settings"), fuzzSettings); }
    void stream() { replay(QStringLiteral("stream"), fuzzStream); }
    void worker() { replay(QStringLiteral("worker"), fuzzWorker); }
    void ymodem() { replay(QStringLiteral("ymodem"), fuzzYmodem); }

private:
    static void replay(const QString &corpus, void (*one)(const uint8_t *, std::size_t))
    {
        const LogCapture quiet;
        const QDir dir(QStringLiteral(TACTILE_FUZZ_CORPUS) + QLatin1Char('/') + corpus);
        const QFileInfoList inputs = dir.entryInfoList(QDir::Files);
        QVERIFY(!inputs.isEmpty());
        for (const QFileInfo &info : inputs) {
            QFile file(info.filePath());
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QByteArray bytes = file.readAll();
            one(reinterpret_cast<const uint8_t *>(bytes.constData()), static_cast<std::size_t>(bytes.size()));
        }
    }
};

int main(int argc, char *argv[])
{
    VirtualTime::install();
    const QApplication application(argc, argv);
    tst_fuzz_corpus test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_fuzz_corpus.moc"
