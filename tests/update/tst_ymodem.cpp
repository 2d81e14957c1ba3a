// The sender without a port: frames in hex, whole transfers, and each way to hold one up or end it.

#include "tests/support/log_capture.h"
#include "tests/support/test_bytes.h"
#include "tests/update/SenderBench.h"

#include <QtTest>

#include <memory>
#include <optional>
#include <tuple>

namespace {

void advance(int ms)
{
    VirtualTime::current().advance(ms);
}

} // namespace

class tst_ymodem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        // Every step forward clears the shared count of misses.
        SenderBench(QByteArray("x")).sendHeader();
        m_log.emplace();
    }
    void cleanup() { m_log.reset(); }
    void framesOfATransfer()
    {
        using Blocks = QList<QByteArray>;
        const auto block = [](const char *head, int filled, int size, char filler, const char *crc) {
            return hex(head) + QByteArray(filled, 'U').leftJustified(size, filler) + hex(crc) + hex("000000");
        };
        const auto headerFrame = [](const QByteArray &data, const char *crc) {
            return hex("0100FF") + data.leftJustified(128, '\0') + hex(crc) + hex("000000");
        };
        const QByteArray first = block("0201FE", 1024, 1024, 0, "407C");
        // Nothing ends with its header. The tail of the first large block is zeros.
        const std::tuple<int, const char *, Blocks> images[] = {
            {0, "4312", {}},
            {1, "0047", {block("0101FE", 1, 128, 0x1A, "20B2")}},
            {128, "198F", {block("0101FE", 128, 128, 0, "5B67")}},
            {500, "899C", {block("0201FE", 500, 1024, 0, "2525")}},
            {1024, "BC73", {first}},
            {1100, "6172", {first, block("0102FD", 76, 128, 0x1A, "C30F")}},
            {1300, "8549", {first, block("0202FD", 276, 1024, 0x1A, "6A60")}}};
        for (const auto &[size, header, blocks] : images) {
            SimBootLoader loader;
            SenderBench bench(QByteArray(size, 'U'), &loader);
            QVERIFY(bench.runToEnd());
            Blocks frames{headerFrame(hex("612E62696E00") + QByteArray::number(size), header)};
            if (size > 0)
                frames += blocks + Blocks{hex("04000000"), headerFrame({}, "0000")};
            QCOMPARE(bench.writes, frames);
        }
    }

    void wholeImages()
    {
        // The last one has more than 256 blocks, so that their numbers wrap.
        for (const int size : {0, 1, 128, 129, 500, 1023, 1024, 1025, 1100, 1300, 65536, 300000}) {
            for (const bool isSerial : {false, true}) {
                SimBootLoader loader;
                SenderBench bench(testBytes(size), &loader, QStringLiteral("abcdefghijklmnopqrstuvwxyz.bin"));
                bench.isSerial = isSerial;
                QVERIFY(bench.runToEnd());
                QCOMPARE(bench.successes.count(), 1);
                QVERIFY(loader.hasImage());
                QCOMPARE(loader.imageName(), QByteArray("abcdefghijklmnopqrst"));
                QVERIFY(loader.image() == testBytes(size));
                QCOMPARE(bench.readLengths.count(1), bench.readLengths.size());
                QCOMPARE(bench.progress.first(), 0);
                QCOMPARE(bench.progress.last(), 100);
                QCOMPARE(bench.progress.count(100), 1);
            }
        }
    }
    void paceAndLogOfATransfer()
    {
        {
            SimBootLoader loader;
            SenderBench bench(testBytes(1100), &loader);
            QVERIFY(bench.runToEnd());
            QCOMPARE(bench.progress, (QList<int>{0, 93, 99, 0, 100}));
            // Header with the first poll; its ACK, then "C", then 10 ms; ACK and 10 ms twice; ACK, "C" and
            // null header at once.
            QCOMPARE(bench.writesAtMs, (QList<qint64>{10, 40, 60, 80, 100}));
        }
        const QString expected =
            QStringLiteral("ymodem create|name:a.bin|size:1100|update start|"
                           "<--------------------FILE C|FILE INFO--------------->|"
                           "<--------------------FILE ACK|<--------------------CONTENT C|"
                           "DATA:1--------------->|<--------------------CONTENT ACK|1024 / 1100|"
                           "send:128|DATA--------------->|<--------------------CONTENT ACK|"
                           "1100 / 1100|EOT--------------->|<--------------------EOT ACK|"
                           "<--------------------FILE C|NULL FILE INFO--------------->|"
                           "<--------------------NULL FILE ACK|ymodem delete");
        QCOMPARE(m_log->lines().join(QLatin1Char('|')), expected);
    }
    void progressOfLargeImages()
    {
        SenderBench small(QByteArray(129, 'U'));
        small.sendHeader();
        small.receive({"\x06", "C", "\x06"});
        QVERIFY(m_log->contains(QStringLiteral("1024 / 129")));
        QCOMPARE(small.progress, (QList<int>{0, 99}));

        constexpr int kBlocks = 50 * 1024;
        SenderBench large(QByteArray(kBlocks * 1024, 'U'));
        large.sendHeader();
        large.receive({"\x06", "C"});
        for (int i = 0; i < kBlocks * 9 / 10; ++i) {
            large.receive({"\x06"});
            advance(10);
            large.writes.clear();
        }
        QCOMPARE(large.progress.last(), 90);
    }
    void firstByteCounts()
    {
        // While the answer to the header is awaited a twentieth miss makes the sender write.
        const std::pair<QByteArray, int> reads[] = {{QByteArray(1, '\0'), 1},
                                                    {QByteArray(), 1},
                                                    {QByteArray("\0\x06", 2), 1},
                                                    {"C", 1},
                                                    {"\x06\x15\x15", 0},
                                                    {"\xFF", 0},
                                                    {"\xFF\x06", 0},
                                                    {"\x01", 0}};
        for (const auto &[bytes, writes] : reads) {
            SenderBench bench(testBytes(100));
            bench.sendHeader();
            bench.miss(19);
            bench.writes.clear();
            bench.receive({bytes});
            advance(10);
            QVERIFY2(bench.writes.size() == writes, bytes.toHex().constData());
        }
    }
    void twentyMissesSendAgain()
    {
        SenderBench bench(testBytes(100));
        bench.sender.update_start();
        bench.miss(20);
        QCOMPARE(bench.writes, QList<QByteArray>{QByteArray()}); // nothing has been built yet
        bench.receive({"C", "\x06", "C"});
        advance(10);
        QCOMPARE(bench.writes.size(), 3);
        bench.miss(20);
        QCOMPARE(bench.writes.size(), 4);
        QCOMPARE(bench.writes.at(3), bench.writes.at(2));
        bench.miss(20);
        QCOMPARE(bench.writes.size(), 5);
    }
    void missesAreSharedByTransfers()
    {
        SenderBench first(testBytes(100));
        first.sender.update_start();
        first.miss(15);
        SenderBench second(testBytes(100));
        second.sender.update_start();
        second.miss(5);
        QCOMPARE(second.writes.size(), 1);

        // The end-of-file frame does not clear the count, every other frame does.
        SenderBench third(testBytes(100));
        third.sendHeader();
        third.receive({"\x06", "C"});
        third.miss(15);
        third.receive({"\x06"});
        advance(10);
        QCOMPARE(third.writes.size(), 3);
        third.miss(5);
        QCOMPARE(third.writes.size(), 4);
        QCOMPARE(third.writes.last().toHex(), QByteArray("04000000"));
    }
    void missesWhileDataIsAwaitedGoBackToTheHeader()
    {
        SenderBench bench(testBytes(100));
        bench.sendHeader();
        bench.receive({"\x06"});
        bench.miss(20);
        QCOMPARE(bench.writes.size(), 2);
        QCOMPARE(bench.writes.at(1), bench.writes.at(0));
        const QString content = QStringLiteral("<--------------------CONTENT C");
        bench.receive({"C"}); // a miss again, since the header is to be answered first
        QCOMPARE(m_log->count(content), 0);
        bench.receive({"\x06", "C"});
        QCOMPARE(m_log->count(content), 1);
    }
    void nakSendsAgainButTheGuardRunsOn()
    {
        SimBootLoader loader;
        loader.setWindow(std::chrono::minutes(1));
        loader.schedule(SimBootAct::Nak, 0, 1000);
        SenderBench bench(testBytes(100), &loader);
        bench.sender.update_start();
        advance(10 + 1999); // the header goes out at the first poll and starts the guard anew
        QCOMPARE(bench.timeouts.count(), 0);
        advance(1);
        QCOMPARE(bench.timeouts.count(), 1);
        // A write every 20 ms: 10 ms until the refusal is read, 10 ms until the frame goes out again.
        QCOMPARE(bench.writes.size(), 101);
        QCOMPARE(bench.writes.count(bench.writes.first()), bench.writes.size());
        QCOMPARE(m_log->count(QStringLiteral("retry write")), 100);
    }
    void silenceEndsInATimeout()
    {
        SenderBench bench(testBytes(100));
        bench.sender.update_start();
        advance(1999);
        QCOMPARE(bench.timeouts.count(), 0);
        QCOMPARE(bench.readLengths.size(), 199);
        advance(1);
        QCOMPARE(bench.timeouts.count(), 1);
        QVERIFY(m_log->contains(QStringLiteral("ymodem timeout")));
        advance(5000); // polling is the owner's to end
        QCOMPARE(bench.readLengths.size(), 700);
        QCOMPARE(bench.timeouts.count(), 1);

        SenderBench answered(testBytes(100)); // every answer starts the guard anew
        answered.sendHeader();
        for (const char *answer : {"\x06", "C", "\x06"}) {
            advance(1900);
            answered.receive({answer});
        }
        QCOMPARE(answered.timeouts.count(), 0);
    }
    void receiverCancels()
    {
        const QByteArray five(5, 0x18);
        const std::pair<QByteArray, int> reads[] = {
            {five, 1},         {five + five, 1},        {five + "C", 1},
            {five.left(4), 0}, {five.left(4) + "C", 0}, {"C" + five, 0}};
        for (const auto &[bytes, cancels] : reads) {
            m_log->clear();
            SenderBench bench(testBytes(100));
            bench.sender.update_start();
            bench.receive({bytes});
            QCOMPARE(bench.cancels.count(), cancels);
            QCOMPARE(m_log->count(QStringLiteral("update stop")), cancels);
        }
    }
    void ownerCancels()
    {
        SenderBench bench(testBytes(100));
        bench.sendHeader();
        bench.sender.update_cancel();
        advance(10);
        QCOMPARE(bench.writes.last().toHex(), QByteArray("1818181818181818"));
        advance(89);
        QCOMPARE(bench.cancels.count(), 0);
        advance(1);
        QCOMPARE(bench.cancels.count(), 1);
        QVERIFY(m_log->contains(QStringLiteral("update cancel")));
        advance(3000);
        QCOMPARE(bench.timeouts.count(), 0);
        QVERIFY(bench.readLengths.size() > 300);
    }
    void heldUpAtEveryFrame()
    {
        const auto holdUp = [](SimBootAct act, int at, bool isSerial) {
            SimBootLoader loader;
            loader.schedule(act, at);
            SenderBench bench(testBytes(1300), &loader);
            bench.isSerial = isSerial;
            QVERIFY(bench.runToEnd());
            QCOMPARE(bench.successes.count(), 1);
            QVERIFY(loader.image() == testBytes(1300));
            QCOMPARE(bench.writes.size(), 6);
            QCOMPARE(bench.writes.at(at + 1), bench.writes.at(at));
        };
        for (int at = 0; at < 5; ++at) {
            for (const SimBootAct act :
                 {SimBootAct::Nak, SimBootAct::Silence, SimBootAct::LostAck, SimBootAct::Rubbish}) {
                holdUp(act, at, false);
                holdUp(act, at, true);
            }
        }
    }
    void endedAtEveryFrame()
    {
        struct Fault
        {
            SimBootAct act;
            int times;
            int firstFrame;
            bool isSerial;
        };
        // Of a cancel at the header nothing is seen by a poll of one byte but that the header goes out again.
        const Fault faults[] = {{SimBootAct::Silence, 10, 0, false}, {SimBootAct::Nak, 100, 0, false},
                                {SimBootAct::Rubbish, 10, 0, false}, {SimBootAct::PowerCut, 1, 0, false},
                                {SimBootAct::Cancel, 1, 1, false},   {SimBootAct::Cancel, 1, 0, true}};
        for (const Fault &fault : faults) {
            for (int at = fault.firstFrame; at < 5; ++at) {
                SimBootLoader loader;
                loader.schedule(fault.act, at, fault.times);
                auto bench = std::make_unique<SenderBench>(testBytes(1300), &loader);
                bench->isSerial = fault.isSerial;
                QVERIFY(bench->runToEnd());
                QCOMPARE(bench->cancels.count(), fault.isSerial ? 1 : 0);
                QCOMPARE(bench->timeouts.count(), fault.isSerial ? 0 : 1);
                bench = std::make_unique<SenderBench>(testBytes(1300), &loader);
                QVERIFY(bench->runToEnd());
                QCOMPARE(bench->successes.count(), 1);
                QVERIFY(loader.image() == testBytes(1300));
            }
        }
    }
    void cutAtEveryByte()
    {
        constexpr int allBytes = 136 + 1032 + 136 + 4 + 136; // header, two blocks, end, empty header
        // What a CH341, a CH347 and a serial line give when nobody answers.
        for (const auto &[isSerial, silence] : {std::pair(false, hex("FF")), {false, {}}, {true, {}}}) {
            for (int bytes = 0; bytes <= allBytes; ++bytes) {
                SimBootLoader loader;
                SenderBench cut(testBytes(1030), &loader);
                cut.isSerial = isSerial;
                cut.bytesUntilCut = bytes;
                cut.silence = silence;
                QVERIFY(cut.runToEnd());
                QCOMPARE(cut.timeouts.count(), 1);
                SenderBench next(testBytes(1030), &loader);
                next.isSerial = isSerial;
                QVERIFY(next.runToEnd());
                QVERIFY2(next.successes.count() == 1, qPrintable(QString::number(bytes)));
                QVERIFY(loader.image() == testBytes(1030));
            }
        }
    }

private:
    std::optional<LogCapture> m_log;
};

int main(int argc, char *argv[])
{
    VirtualTime::install();
    const QCoreApplication application(argc, argv);
    tst_ymodem test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ymodem.moc"
