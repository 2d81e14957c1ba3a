// The firmware page as its user meets it.

#include "app/class_settings.h"
#include "tests/support/log_capture.h"
#include "tests/update/UpdateBench.h"
#include "update/success_text.h"

#include <QFileDialog>
#include <QtTest>

namespace {

const QStringList kBoards =
    QStringLiteral("无PCA9548 转接板-1(PCA9548-4) 转接板-2(PCA9548-5) 转接板-3(PCA9548-6) "
                   "转接板-4(PCA9548-3) 转接板-5(PCA9548-2) PCA9548-0 PCA9548-1 PCA9548-2 "
                   "PCA9548-3 PCA9548-4 PCA9548-5 PCA9548-6 PCA9548-7")
        .split(QLatin1Char(' '));

QStringList items(const QComboBox *box)
{
    QStringList texts;
    for (int i = 0; i < box->count(); ++i)
        texts.append(box->itemText(i));
    return texts;
}

QString joined(const QComboBox *box)
{
    return items(box).join(QLatin1Char(' '));
}

} // namespace

class tst_update_tab : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_log.emplace();
        class_settings::set(QStringLiteral("UPDATE/FILE_PATH"), QString());
    }
    void cleanup() { m_log.reset(); }
    void boxesFollowTheInterface()
    {
        UpdateTab tab;
        QCOMPARE(joined(tab.version), QStringLiteral("加密 不加密"));
        QCOMPARE(joined(tab.reset), QStringLiteral("默认 定制 无"));
        QCOMPARE(tab.board->currentIndex(), 1);
        tab.form.show();
        UpdateBench bench(Kind::Ch341);
        QVERIFY(tab.enter(bench));
        QCOMPARE(items(tab.devices), QStringList{bench.id()});
        QCOMPARE(joined(tab.speed), QStringLiteral("100k 400k"));
        QVERIFY(!tab.board->isEditable() && tab.speed->isVisible());
        const auto ch347 = std::make_shared<SimCh347>(bench.bus, 7001);
        bench.usb.plug(ch347);
        bench.usb.unplug(bench.bridge);
        QTRY_COMPARE(tab.devices->count(), 0);

        tab.ch347->click();
        QTRY_COMPARE(items(tab.devices), QStringList{QStringLiteral("7001")});

        const SimSerialBus line;
        tab.uart->click();
        QVERIFY(tab.devices->findText(line.portName()) >= 0);
        QCOMPARE(joined(tab.board), QStringLiteral("115200 460800 921600"));
        QVERIFY(tab.board->isEditable() && tab.address->isVisible() && !tab.speed->isVisible());

        tab.ch341->click();
        QCOMPARE(tab.devices->count(), 0);
        QCOMPARE(items(tab.board), kBoards);
        QVERIFY(!tab.board->isEditable() && !tab.speed->isVisible()); // it stays hidden
    }
    void boardIsRememberedWhileABridgeIsChosen()
    {
        UpdateTab tab;
        tab.form.stop(); // of a page that never started
        tab.form.start();
        QCOMPARE(tab.board->currentIndex(), 1);
        tab.board->setCurrentIndex(7);
        tab.form.stop();
        tab.form.start();
        QCOMPARE(tab.board->currentIndex(), 7);
        tab.uart->click();
        tab.board->setCurrentIndex(2);
        tab.form.stop();
        tab.form.start();
        QVERIFY(tab.uart->isChecked());
        tab.ch347->click();
        QCOMPARE(tab.board->currentIndex(), 7);

        UpdateTab neverStopped;
        neverStopped.form.start();
        QCOMPARE(neverStopped.board->currentIndex(), 0);
    }
    void resetFieldsFollowTheChoice()
    {
        UpdateTab tab;
        const auto enabled = [&tab](int choice) {
            tab.reset->setCurrentIndex(choice);
            return std::make_pair(tab.resetAddress->isEnabled(), tab.resetText->isEnabled());
        };
        QCOMPARE(enabled(1), std::make_pair(true, true));
        QCOMPARE(enabled(2), std::make_pair(false, false));
        QCOMPARE(enabled(0), std::make_pair(true, false));
        tab.reset->setCurrentIndex(1);
        QTest::keyClicks(tab.resetText, QStringLiteral("aG5 x5Z"));
        QCOMPARE(tab.resetText->text(), QStringLiteral("a55"));
    }
    void fileIsChosenInADialog()
    {
        QTemporaryDir folder;
        QFile file(folder.filePath(QStringLiteral("new.bin")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        UpdateTab tab;
        tab.path->setText(folder.filePath(QStringLiteral("old.bin")));
        QTimer::singleShot(0, &tab.form, [&] {
            auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            QVERIFY(dialog != nullptr);
            QCOMPARE(dialog->windowTitle(), QStringLiteral("选择app文件"));
            QCOMPARE(dialog->directory().canonicalPath(), QDir(folder.path()).canonicalPath());
            QVERIFY(dialog->selectedNameFilter().startsWith(QLatin1String("*.bin;*.hex")));
            dialog->selectFile(file.fileName());
            QMetaObject::invokeMethod(dialog, "accept");
        });
        child<QPushButton>(tab.form, "pbtnUpdateFileSelect")->click();
        QCOMPARE(tab.path->text(), QDir::toNativeSeparators(file.fileName()));
        QCOMPARE(class_settings::get(QStringLiteral("UPDATE/FILE_PATH")), tab.path->text());
        QCOMPARE(UpdateTab().form.getFile(), tab.path->text());
    }
    void loadResults()
    {
        QTemporaryDir folder;
        QFile(folder.filePath(QStringLiteral("empty.bin"))).open(QIODevice::WriteOnly);
        UpdateTab tab;
        const auto load = [&](const char *fileName) {
            QString name;
            QByteArray image;
            return tab.form.loadAppFile(folder.filePath(QLatin1String(fileName)), false, &name, &image);
        };
        QCOMPARE(load("none.bin"), -1);
        QCOMPARE(tab.result->text(), QString());
        QCOMPARE(load("."), -2);
        QCOMPARE(tab.result->text(), QStringLiteral("文件打开失败"));
        QCOMPARE(load("empty.bin"), -3);
        QCOMPARE(tab.result->text(), QStringLiteral("用户程序文件为空文件"));
    }

    void refusals()
    {
        UpdateTab tab;
        for (const Kind kind : {Kind::Ch341, Kind::Serial}) {
            UpdateBench bench(kind);
            QVERIFY(tab.enter(bench));
            for (const char *file : {"/no/such/file.bin", "/", ""}) {
                tab.path->setText(QLatin1String(file));
                QVERIFY(tab.runToEnd());
                QCOMPARE(tab.result->text(), QStringLiteral("文件加载失败"));
                QVERIFY(bench.line || !bench.bridge->isOpen());
            }
            // The reset went out each time before the file was looked at, on a serial line at four rates.
            QCOMPARE(bench.writesTo(bench.line ? 0 : UpdateBench::kAddress).size(), bench.line ? 12 : 3);
        }
    }
    void noDevice()
    {
        const UpdateBench serial(Kind::Serial);
        UpdateBench bench(Kind::Ch347);
        UpdateTab tab;
        const auto pressed = [&tab] {
            tab.start->click();
            return tab.isBusy() ? QStringLiteral("busy") : tab.result->text();
        };
        const QString none = QStringLiteral("通信接口未选择");
        const QString refused = QStringLiteral("通信接口打开失败");
        QCOMPARE(pressed(), none); // a page without any link
        tab.form.start();
        QCOMPARE(pressed(), none); // the list has not come yet
        QVERIFY(tab.enter(serial));
        tab.board->setEditText(QString());
        QCOMPARE(pressed(), none);
        tab.board->setEditText(QStringLiteral("115200"));
        // Not the port of a line that is gone: its name soon belongs to somebody else.
        tab.devices->setItemText(tab.devices->currentIndex(), QStringLiteral("/no/such/port"));
        QCOMPARE(pressed(), refused);
        tab.ch347->click();
        QTRY_COMPARE(tab.devices->count(), 1);
        bench.usb.unplug(bench.bridge);
        QCOMPARE(pressed(), refused);
    }

    void multiplexerFails()
    {
        UpdateTab tab;
        for (const Kind kind : {Kind::Ch341, Kind::Ch347}) {
            const UpdateBench bench(kind);
            QVERIFY(tab.enter(bench));
            tab.chooseFile("U");
            bench.bus->setMultiplexerDead(true);
            tab.start->click();
            QCOMPARE(tab.result->text(), QStringLiteral("IIC总线芯片(PCA9548)设置失败"));
            QCOMPARE(tab.start->text(), QStringLiteral("开始"));
            QVERIFY(m_log->contains(QStringLiteral("state:ff")));
            QVERIFY(!bench.bridge->isOpen());
            bench.bus->setMultiplexerDead(false);
            QVERIFY(tab.runToEnd());
            QVERIFY(tab.result->text().startsWith(QStringLiteral("更新成功")));
        }
    }
    void speedOneLowerWhenChangedWhileOpen()
    {
        UpdateBench bench(Kind::Ch341);
        UpdateTab tab(bench);
        tab.reset->setCurrentIndex(2);
        tab.chooseFile(testBytes(5000));
        const auto runsAt = [&](int khz) {
            constexpr int kBytes = 100;
            const std::chrono::nanoseconds before = bench.bus->busTime();
            QByteArray received;
            tab.form.sensorRead(UpdateBench::kAddress, &received, kBytes, 0);
            const std::chrono::duration<double, std::milli> took = bench.bus->busTime() - before;
            const double measured = (kBytes + 1) * 9 / took.count();
            return measured > khz * 0.8 && measured < khz * 1.1;
        };
        tab.speed->setCurrentIndex(1);
        tab.start->click();
        QVERIFY(runsAt(400));
        tab.speed->setCurrentIndex(0);
        QVERIFY(runsAt(20));
        tab.speed->setCurrentIndex(1);
        QVERIFY(runsAt(100));
        tab.start->click();
        tab.speed->setCurrentIndex(0);
        tab.start->click();
        QVERIFY(runsAt(100));
        tab.start->click();
    }
    void doubleClickStartsAndGoesOn()
    {
        UpdateBench bench(Kind::Ch341);
        UpdateTab tab(bench);
        tab.chooseFile(testBytes(5000));
        QTest::mouseClick(tab.start, Qt::LeftButton);
        QTest::mouseDClick(tab.start, Qt::LeftButton);
        QTest::mouseRelease(tab.start, Qt::LeftButton);
        QCOMPARE(tab.start->text(), QStringLiteral("停止"));
        QTest::mouseClick(tab.start, Qt::LeftButton);
        QCOMPARE(tab.start->text(), QStringLiteral("开始"));
        QTRY_COMPARE(tab.result->text(), QStringLiteral("更新取消"));
    }
    void resetCommands()
    {
        UpdateBench bench(Kind::Ch347);
        UpdateTab tab(bench);
        tab.path->clear(); // so that nothing but the reset goes out
        QStringList sent;
        const auto check = [&](int choice, const char *text, const char *expected) {
            tab.resetText->setText(QLatin1String(text));
            tab.reset->setCurrentIndex(choice);
            QVERIFY(tab.runToEnd());
            if (*expected != '\0')
                sent.append(QLatin1String(expected));
            QCOMPARE(bench.writesTo(UpdateBench::kAddress), sent);
        };
        check(0, "1122", "aa5500a10000000000a001");
        check(2, "1122", "");
        QVERIFY(m_log->lines().filter(QStringLiteral("reset cmd:")).isEmpty());
        check(1, "1122", "1122");
        check(1, "AbC", "ab0c");
        check(1, "", "");
        QCOMPARE(m_log->lines().filter(QStringLiteral("reset cmd:")).size(), 3);
    }
    void shortResetOnTheSerialLineStaysAsTyped()
    {
        UpdateBench bench(Kind::Serial);
        UpdateTab tab(bench);
        tab.reset->setCurrentIndex(1);
        tab.path->clear();
        tab.resetText->setText(QStringLiteral("AA5500A1000000000000"));
        QVERIFY(tab.runToEnd());
        tab.resetText->setText(QStringLiteral("AA5500A101000000000000FF"));
        QVERIFY(tab.runToEnd());
        QVERIFY(m_log->count(QStringLiteral("10")) == 4);
        QVERIFY(m_log->count(QStringLiteral("12")) == 4);
        const auto requests = bench.journal().records(SimRecord::Kind::Request);
        QVERIFY(!requests.empty());
        QCOMPARE(requests.back().bytes.toHex(), QByteArray("aa5505a10100000000a601"));
    }
    void timeOfASuccess()
    {
        QCOMPARE(updateSuccessText(std::chrono::milliseconds(5007)), QStringLiteral("更新成功,用时：5.7秒"));
        QCOMPARE(updateSuccessText(std::chrono::milliseconds(5070)), QStringLiteral("更新成功,用时：5.70秒"));
    }

private:
    std::optional<LogCapture> m_log;
};

QTEST_MAIN(tst_update_tab)
#include "tst_update_tab.moc"
