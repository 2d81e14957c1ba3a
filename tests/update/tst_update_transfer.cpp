// Whole updates over every link, left alone, held up and broken off, and that the next try succeeds.

#include "tests/support/log_capture.h"
#include "tests/update/UpdateBench.h"

#include <QtTest>

#include <functional>
#include <memory>
#include <optional>
#include <tuple>

namespace {

const QString kTimeout = QStringLiteral("更新超时");
const QString kCancelled = QStringLiteral("更新取消");

} // namespace

class tst_update_transfer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log.emplace(); }
    void cleanup() { m_log.reset(); }
    void everyLink()
    {
        for (const auto &[kind, size] :
             {std::pair(Kind::Ch341, 129), {Kind::Ch347, 1000}, {Kind::Serial, 1000}}) {
            UpdateBench bench(kind);
            UpdateTab tab;
            QSignalSpy successes(&tab.form, &fwUpdateForm::si_updateSuccess);
            checkNextTry(bench, tab, size);
            QCOMPARE(successes.count(), 1);
            QCOMPARE(tab.progress->value(), 100);
            QCOMPARE(bench.loader().imageName(), QByteArray("app.bin"));
            if (bench.line)
                continue;
            // Deselected at the opening, selected, deselected at the end.
            QCOMPARE(bench.writesTo(0x70).join(QLatin1Char(' ')), QStringLiteral("00 10 00"));
            QVERIFY(m_log->contains(QStringLiteral("write:11--aa5500a10000000000a001")));
            QVERIFY(m_log->contains(QStringLiteral("read:1--43")));
            m_log->clear();
        }
    }

    void resetOnTheSerialLine()
    {
        const UpdateBench bench(Kind::Serial);
        UpdateTab tab(bench);
        tab.resetAddress->setValue(0x61);
        SimSettings settings = bench.sensor->settings();
        settings.address = 0x61;
        bench.sensor->setSettings(settings);
        tab.chooseFile(testBytes(100));
        QVERIFY(tab.runToEnd());
        QVERIFY(bench.sensor->bootLoader().image() == testBytes(100));
        QStringList rates;
        for (const QString &line : m_log->lines()) {
            if (line.startsWith(QLatin1String("set ")) || line == QLatin1String("11"))
                rates.append(line);
        }
        QCOMPARE(rates.join(QLatin1Char(' ')),
                 QStringLiteral("set baudrate:115200 11 set baudrate:460800 11 set baudrate:576000 11 "
                                "set baudrate:921600 11 set rate:460800"));

        // The address that was put in stays, on a bridge too.
        UpdateBench bridge(Kind::Ch341);
        QVERIFY(tab.enter(bridge));
        QVERIFY(tab.runToEnd());
        QCOMPARE(bridge.writesTo(UpdateBench::kAddress).first(), QStringLiteral("aa5561a100000000000102"));
    }
    void maskedHexFileWithoutMultiplexer()
    {
        UpdateBench bench(Kind::Ch341);
        bench.bus->unplug(bench.sensor);
        bench.bus->plug(bench.sensor);
        UpdateTab tab(bench);
        tab.board->setCurrentIndex(0);
        tab.chooseFile(":0500000000000000FFFC\n:00000001FF\n", QStringLiteral("APP.HEX"), true);
        QVERIFY(tab.runToEnd());
        QCOMPARE(bench.loader().image().toHex(), QByteArray("b3c1275eff"));
        QCOMPARE(bench.loader().imageName(), QByteArray("APP.HEX"));
        QCOMPARE(bench.writesTo(0x70).join(QLatin1Char(' ')), QStringLiteral("00 00"));
    }
    void ended()
    {
        const std::tuple<Kind, SimBootAct, int, QString> ends[] = {
            {Kind::Ch341, SimBootAct::PowerCut, 1, kTimeout},
            {Kind::Ch347, SimBootAct::Cancel, 2, kTimeout}, // a poll of one byte never sees five of them
            {Kind::Serial, SimBootAct::Cancel, 0, kCancelled},
            {Kind::Serial, SimBootAct::PowerCut, 3, kTimeout}};
        for (const auto &[kind, act, frame, result] : ends) {
            UpdateBench bench(kind);
            bench.loader().schedule(act, frame);
            UpdateTab tab(bench);
            tab.chooseFile(testBytes(1300));
            QSignalSpy failures(&tab.form, &fwUpdateForm::si_updateFail);
            QVERIFY(tab.runToEnd());
            QCOMPARE(tab.result->text(), result);
            QCOMPARE(failures.count(), 1);
            checkIdle(bench, tab);
            checkNextTry(bench, tab);
        }
    }
    void cableIsPulled()
    {
        UpdateBench bench(Kind::Ch341);
        UpdateTab tab(bench);
        tab.chooseFile(testBytes(1300));
        bench.bridge->pullOutAfter(1000);
        QVERIFY(tab.runToEnd());
        QCOMPARE(tab.result->text(), kTimeout);
        QCOMPARE(tab.start->text(), QStringLiteral("开始"));
        bench.restore();
        checkNextTry(bench, tab);
    }
    void portGoesAway()
    {
        UpdateBench bench(Kind::Serial);
        UpdateTab tab(bench);
        startAndWaitForTheMiddle(tab);
        bench.pull();
        QTRY_COMPARE_WITH_TIMEOUT(tab.result->text(), kTimeout, 20000);
        checkIdle(bench, tab);
        // Without its cable the sensor had no power either; its boot loader asks by itself.
        bench.unplug(bench.sensor);
        bench.restore();
        bench.line->plug(bench.sensor);
        tab.reset->setCurrentIndex(2);
        checkNextTry(bench, tab);
    }
    void brokenOffByTheUser()
    {
        using Act = std::function<void(UpdateTab &)>;
        const Act cancel = [](UpdateTab &tab) {
            tab.start->click();
            QVERIFY(!tab.isBusy());
        };
        const Act leave = [](UpdateTab &tab) {
            tab.form.stop();
            QVERIFY(tab.isBusy());
        };
        const Act change = [](UpdateTab &tab) {
            tab.ch347->click();
            QVERIFY(tab.isBusy());
        };
        const std::tuple<Kind, Act, QString> breaks[] = {{Kind::Ch341, cancel, kCancelled},
                                                         {Kind::Serial, cancel, kCancelled},
                                                         {Kind::Ch347, leave, kTimeout},
                                                         {Kind::Ch341, change, kTimeout}};
        for (const auto &[kind, act, result] : breaks) {
            m_log->clear();
            UpdateBench bench(kind);
            UpdateTab tab(bench);
            QSignalSpy failures(&tab.form, &fwUpdateForm::si_updateFail);
            startAndWaitForTheMiddle(tab);
            act(tab);
            QVERIFY(bench.line || !bench.bridge->isOpen());
            QTRY_COMPARE_WITH_TIMEOUT(tab.result->text(), result, 20000);
            QCOMPARE(failures.count(), 1);
            QTRY_VERIFY(m_log->contains(QStringLiteral("ymodem delete")));
            // The cancel bytes come too late on a bridge.
            QCOMPARE(bench.writesTo(UpdateBench::kAddress).filter(QStringLiteral("1818181818181818")),
                     QStringList());
            checkNextTry(bench, tab);
        }
    }
    void startedAgainRightAfterACancel()
    {
        UpdateBench bench(Kind::Ch341);
        UpdateTab tab(bench);
        startAndWaitForTheMiddle(tab);
        tab.start->click();
        tab.chooseFile(testBytes(1300));
        tab.start->click(); // the cancelled sender still lives, and must not end this one
        QTRY_VERIFY_WITH_TIMEOUT(!tab.isBusy(), 20000);
        QVERIFY2(tab.result->text().startsWith(QStringLiteral("更新成功")), qPrintable(tab.result->text()));
        QVERIFY(bench.loader().image() == testBytes(1300));
    }
    void formDiesInTheMiddle()
    {
        UpdateBench bench(Kind::Ch347);
        auto tab = std::make_unique<UpdateTab>(bench);
        startAndWaitForTheMiddle(*tab);
        tab.reset();
        QVERIFY(m_log->contains(QStringLiteral("ymodem delete")));
        QVERIFY(!bench.bridge->isOpen());
    }

private:
    static void checkIdle(const UpdateBench &bench, UpdateTab &tab)
    {
        QCOMPARE(tab.start->text(), QStringLiteral("开始"));
        QVERIFY(bench.line || !bench.bridge->isOpen());
        QCOMPARE(bench.bus->selectedChannels(), uint8_t{0});
    }
    static void checkNextTry(const UpdateBench &bench, UpdateTab &tab, int size = 1300)
    {
        tab.chooseFile(testBytes(size));
        QVERIFY(tab.enter(bench));
        QVERIFY(tab.runToEnd());
        static const QRegularExpression success(QStringLiteral("^更新成功,用时：\\d+\\.\\d{1,3}秒$"));
        QVERIFY2(success.match(tab.result->text()).hasMatch(), qPrintable(tab.result->text()));
        QVERIFY(bench.loader().hasImage());
        const QByteArray padding(size % 16 == 8 ? 8 : 0, '\xFF');
        QVERIFY(bench.loader().image() == testBytes(size) + padding);
        checkIdle(bench, tab);
    }
    static void startAndWaitForTheMiddle(UpdateTab &tab)
    {
        tab.chooseFile(testBytes(30000));
        tab.start->click();
        QTRY_VERIFY(tab.progress->value() > 10);
        QCOMPARE(tab.result->text(), QStringLiteral("开始更新"));
    }

    std::optional<LogCapture> m_log;
};

QTEST_MAIN(tst_update_transfer)
#include "tst_update_transfer.moc"
