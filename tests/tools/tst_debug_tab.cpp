// The debug tab against the bench on every link: what goes over the wire, and what stands in the log for it.

#include "sim/SimPty.h"
#include "tests/support/LinkBench.h"
#include "tests/support/log_capture.h"
#include "tools/debug_entry.h"
#include "tools/sensorDebugForm.h"

#include <QtWidgets>

#include <functional>
#include <tuple>

namespace {

using Kind = LinkBench::Kind;

// In the order of the kinds of links.
constexpr const char *kRadioButtons[] = {"rbtnUart", "rbtnIIC", "rbtnIICCh347"};

/// The tab with its widgets by name, as a user has them before him.
struct DebugTab
{
    sensorDebugForm form;
    QComboBox *device = child<QComboBox>(form, "cbbDevInf");
    QComboBox *speed = child<QComboBox>(form, "cbbDevSpeed");
    QPushButton *connection = child<QPushButton>(form, "pbtnInfConnect");
    QSpinBox *address = child<QSpinBox>(form, "spbCh341Addr");
    QLineEdit *typed = child<QLineEdit>(form, "leCh341Write");
    QCheckBox *check = child<QCheckBox>(form, "chkbtnChk");
    QSpinBox *length = child<QSpinBox>(form, "spbCh341Read");
    QSpinBox *delay = child<QSpinBox>(form, "spbDelay");
    QPlainTextEdit *log = child<QPlainTextEdit>(form, "txtDebugLog");

    // The fading of this button would outlive the form.
    DebugTab() { typed->setClearButtonEnabled(false); }
    explicit DebugTab(const LinkBench &bench, int speedRow = 0)
        : DebugTab()
    {
        open(bench, speedRow);
    }

    void press(const char *button) { child<QPushButton>(form, button)->click(); }
    void choose(Kind kind) { child<QRadioButton>(form, kRadioButtons[static_cast<int>(kind)])->click(); }
    QCheckBox *box(const char *name, int number)
    {
        return child<QCheckBox>(form, qPrintable(QString::fromLatin1(name).arg(number)));
    }
    void open(const LinkBench &bench, int speedRow = 0)
    {
        form.start();
        choose(bench.kind);
        QTRY_VERIFY(device->findText(bench.id()) >= 0);
        device->setCurrentText(bench.id());
        speed->setCurrentIndex(speedRow);
        connection->click();
        QCOMPARE(connection->text(), QStringLiteral("断开"));
    }
    /// The entries of the log without their times.
    QStringList entries() const
    {
        const QRegularExpression stamp(QStringLiteral("\\[[\\d/]{10} [\\d:]{12}\\]:"));
        QStringList texts = log->toPlainText().split(stamp);
        texts.removeFirst();
        for (QString &text : texts)
            text.chop(1);
        return texts;
    }
};

const QString kNotConnected = QStringLiteral("转接板未连接");

} // namespace

class tst_debug_tab : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void logEntries()
    {
        const std::pair<QByteArray, QString> verdicts[] = {
            {QByteArray("00"), QStringLiteral("失败:0x0000")},
            {QByteArray("0000"), QStringLiteral("成功")},
            {QByteArray("55aa61d00230"), QStringLiteral("失败:0x0230")},
            {QByteArray(2 * 258, 'f') + "fe00", QStringLiteral("成功")}};
        for (const auto &[hex, verdict] : verdicts) {
            const QString entry = readEntry(0x61, QByteArray::fromHex(hex));
            QCOMPARE(entry.section(QLatin1Char('\n'), 0, 0), QStringLiteral("读:校验") + verdict);
        }
        const QDateTime time(QDate(2024, 3, 9), QTime(7, 5, 2, 40));
        QCOMPARE(stampedEntry(time, QStringLiteral("x")), QStringLiteral("[2024/03/09 07:05:02:040]:x\n"));
    }

    void interfacesWithoutALink()
    {
        const LogCapture log;
        DebugTab tab;
        const auto *channels = child<QGroupBox>(tab.form, "gpbPca");
        tab.form.start();
        QVERIFY(log.contains(QStringLiteral("ch341 new")));
        const std::tuple<Kind, QString, QString> links[] = {
            {Kind::Ch347, QStringLiteral("100K 400K 750K"), QStringLiteral("ch341 delete")},
            {Kind::Serial, QStringLiteral("115200 460800 921600"), QStringLiteral("CH347 delete")},
            {Kind::Ch341, QStringLiteral("20K 100K 400K"), QStringLiteral("uart deinit")}};
        for (const auto &[kind, speeds, logged] : links) {
            tab.choose(kind);
            QStringList shown;
            for (int i = 0; i < tab.speed->count(); ++i)
                shown << tab.speed->itemText(i);
            QCOMPARE(shown.join(QLatin1Char(' ')), speeds);
            QVERIFY(log.contains(logged));
            QCOMPARE(channels->isEnabled(), kind != Kind::Serial);
            for (const char *button : {"pbtnCh341Write", "pbtnCh341Read", "pbtnCh341WR"}) {
                tab.press("pbtnDebugLogClear");
                tab.press(button);
                QVERIFY(kind == Kind::Serial || tab.entries() == QStringList{kNotConnected});
            }
        }
    }

    void boardsAndChannelsAreCoupled()
    {
        DebugTab tab;
        int board = 0;
        for (const int channel : {4, 5, 6, 3, 2, 0}) {
            QCheckBox *boardBox = tab.box("chkbInf%1", ++board);
            QCheckBox *channelBox = tab.box("chkbCh%1", channel);
            QVERIFY(!channelBox->isChecked());
            boardBox->setChecked(true);
            QVERIFY2(channelBox->isChecked(), qPrintable(boardBox->objectName()));
            channelBox->setChecked(false);
            QVERIFY2(!boardBox->isChecked(), qPrintable(boardBox->objectName()));
            channelBox->setChecked(true);
        }
    }

    void sumOfTheText()
    {
        const DebugTab tab;
        const std::pair<QString, QString> sums[] = {
            {QStringLiteral("12A"), QStringLiteral("1c00")},
            {QString(258 * 2, QLatin1Char('f')), QStringLiteral("fe00")},
            {QString(), QStringLiteral("0000")}};
        for (const auto &[text, sum] : sums) {
            tab.typed->clear();
            QTest::keyClicks(tab.typed, text + QStringLiteral("x g"));
            QCOMPARE(tab.typed->text(), text);
            QCOMPARE(child<QLabel>(tab.form, "lbChk")->text(), sum);
        }
    }

    void serialWrite()
    {
        SimPty line;
        DebugTab tab;
        tab.form.start();
        tab.choose(Kind::Serial);
        tab.device->addItem(line.portName());
        tab.device->setCurrentText(line.portName());
        tab.connection->click();
        QCOMPARE(line.baudRate(), 115200);
        tab.address->setValue(0x61);
        // Three bytes, of which two are the sum, get the address but no new sum.
        const std::tuple<QString, bool, QByteArray> writes[] = {
            {QStringLiteral("aa5500a00000000000"), false, "aa5561a00000000000"},
            {QStringLiteral("AA5500A00000000000"), true, "aa5561a000000000000002"},
            {QStringLiteral("1234"), false, "1234"},
            {QStringLiteral("12"), true, "121261"},
            {QStringLiteral("1234"), true, "12344600"}};
        for (const auto &[text, check, wire] : writes) {
            tab.typed->setText(text);
            tab.check->setChecked(check);
            tab.press("pbtnCh341Write");
            QByteArray received;
            QTRY_COMPARE(received += line.readAll().toHex(), wire);
            QVERIFY(tab.entries().last().contains(QStringLiteral("长度:%1\n").arg(wire.size() / 2)));
        }
    }

    void writesAndReads()
    {
        const QString zeros = QStringLiteral("读:校验成功\n地址:0x22\n长度:4\n命令:0x00,0x00,0x00,0x00");
        const QString nothing = QStringLiteral("读:校验失败:0x0000\n地址:0x22\n长度:0\n命令:");
        const QString high =
            QStringLiteral("读:校验失败:0x01fe\n地址:0x22\n长度:4\n命令:0xff,0xff,0xff,0xff");
        // Only on a serial line the address is put in. Where nobody answers the bus stays high; the CH347
        // reports it.
        const QString toBus = QStringLiteral("aa55007100000000007001");
        const std::tuple<Kind, uint8_t, QString, QString, QString> links[] = {
            {Kind::Serial, uint8_t{0}, QStringLiteral("aa5561710000000000d101"), nothing, nothing},
            {Kind::Ch341, uint8_t{0x61}, toBus, high, zeros},
            {Kind::Ch347, uint8_t{0x61}, toBus, nothing, nothing}};
        for (const auto &[kind, busAddress, wire, nobody, failed] : links) {
            LinkBench bench(kind);
            bench.plugSensor(0x61);
            DebugTab tab;
            QCOMPARE(tab.address->value(), 0x6F);
            QCOMPARE(tab.delay->value(), 50);
            tab.open(bench);
            tab.address->setValue(0x61);
            tab.press("pbtnCh341Write");
            tab.press("pbtnCh341Read");
            QCOMPARE(tab.entries(),
                     (QStringList{QStringLiteral("写:\n地址:0x61\n长度:0\n命令:"),
                                  QStringLiteral("读:校验失败:0x0000\n地址:0x61\n长度:0\n命令:")}));
            QVERIFY(bench.writesTo(busAddress).isEmpty());
            QCOMPARE(bench.bus->journal().count(SimRecord::Kind::Read), 0);
            tab.press("pbtnDebugLogClear");

            QTest::keyClicks(tab.typed, QStringLiteral("aa5500710000000000"));
            tab.check->setChecked(true);
            tab.length->setValue(bench.line ? 3 : 11); // a serial line gives what has piled up
            tab.delay->setValue(1000);
            // Pressed again while it waits, it does nothing.
            QTimer::singleShot(20, &tab.form, [&tab] { tab.press("pbtnCh341WR"); });
            tab.press("pbtnCh341WR");
            QCOMPARE(bench.writesTo(busAddress), QStringList{wire});
            QCOMPARE(tab.entries().size(), 2);
            QVERIFY(
                tab.entries().at(0).startsWith(QStringLiteral("写:\n地址:0x61\n长度:11\n命令:0xaa,0x55,0x")));
            QCOMPARE(
                tab.entries().at(1),
                QStringLiteral("读:校验成功\n地址:0x61\n长度:11\n命令:0x55,0xaa,0x61,0xf1,0x00,0x00,0x00,"
                               "0x61,0x00,0xb2,0x02"));

            tab.address->setValue(0x22);
            tab.length->setValue(4);
            tab.press("pbtnCh341Read");
            QCOMPARE(tab.entries().last(), nobody);
            if (bench.bridge)
                bench.bridge->failTransfers();
            tab.press("pbtnCh341Read");
            QCOMPARE(tab.entries().last(), failed);
        }
    }

    void clockFollowsTheBox()
    {
        const std::tuple<Kind, int, int> clocks[] = {
            {Kind::Ch341, 0, 20}, {Kind::Ch341, 2, 400}, {Kind::Ch347, 0, 100}, {Kind::Ch347, 2, 750}};
        for (const auto &[kind, row, kHz] : clocks) {
            LinkBench bench(kind);
            bench.plugSensor(0x6F);
            DebugTab tab(bench, row);
            tab.typed->setText(QString(2 * 1000, QLatin1Char('0')));
            const auto before = bench.bus->busTime();
            tab.press("pbtnCh341Write");
            const std::chrono::duration<double, std::milli> spent = bench.bus->busTime() - before;
            const double measuredKHz = 1001 * 9 / spent.count();
            QVERIFY2(std::abs(measuredKHz - kHz) < 0.05 * kHz, qPrintable(QString::number(measuredKHz)));
        }
    }

    void setsAndGetsChannels_data() { LinkBench::addRows(true); }
    void setsAndGetsChannels()
    {
        QFETCH(Kind, kind);
        LinkBench bench(kind);
        const LogCapture log;
        DebugTab tab(bench);
        QCOMPARE(bench.writesTo(0x70), QStringList{QStringLiteral("00")});
        QCOMPARE(log.contains(QStringLiteral("ch347 connect")), kind == Kind::Ch347);
        tab.box("chkbInf%1", 4)->setChecked(true);
        tab.box("chkbCh%1", 7)->setChecked(true);
        tab.press("pbtnSetPCA9548");
        QCOMPARE(bench.bus->selectedChannels(), uint8_t{0x88});
        QVERIFY(log.contains(QStringLiteral("set pca:136")));

        tab.box("chkbInf%1", 4)->setChecked(false);
        tab.box("chkbCh%1", 0)->setChecked(true);
        tab.press("pbtnGetPCA9548");
        QVERIFY(log.contains(QStringLiteral("get pca:136")));
        for (const int channel : {0, 1, 2, 3, 4, 5, 6, 7})
            QCOMPARE(tab.box("chkbCh%1", channel)->isChecked(), channel == 3 || channel == 7);

        tab.connection->click();
        QCOMPARE(tab.connection->text(), QStringLiteral("连接"));
        QCOMPARE(log.contains(QStringLiteral("ch347 disconnect")), kind == Kind::Ch347);
        tab.press("pbtnSetPCA9548");
        QCOMPARE(bench.writesTo(0x70).size(), 2);
    }

    void looksAtTheLinkAgainBeforeItReads()
    {
        const std::function<void(DebugTab &, LinkBench &)> disturbances[] = {
            [](DebugTab &tab, LinkBench &) { tab.connection->click(); },
            [](DebugTab &tab, LinkBench &) { tab.choose(Kind::Ch347); },
            [](DebugTab &tab, LinkBench &) { tab.form.stop(); },
            [](DebugTab &, LinkBench &bench) { bench.usb.unplug(bench.bridge); }};
        for (const auto &disturb : disturbances) {
            LinkBench bench(Kind::Ch341);
            bench.plugSensor(0x6F);
            DebugTab tab(bench);
            tab.length->setValue(11);
            tab.delay->setValue(1000);
            QTimer::singleShot(20, &tab.form, [&] { disturb(tab, bench); });
            tab.press("pbtnCh341WR");
            QCOMPARE(tab.entries().size(), 2);
            QCOMPARE(tab.entries().last(), kNotConnected);
            QCOMPARE(bench.bus->journal().count(SimRecord::Kind::Read), 0);
        }
    }

    void buttonFollowsTheLink()
    {
        const QString connect = QStringLiteral("连接");
        LinkBench bench(Kind::Ch341);
        DebugTab tab(bench, 2);
        tab.choose(Kind::Ch341);
        QCOMPARE(tab.speed->currentIndex(), 2);
        QCOMPARE(tab.connection->text(), QStringLiteral("断开"));
        // Another bridge before it makes the link go down and up.
        const auto other = std::make_shared<SimCh341>(std::make_shared<SimI2cBus>(), 4, 1);
        bench.usb.plug(other, 0);
        QTRY_COMPARE(bench.writesTo(0x70).size(), 2);
        QCOMPARE(tab.connection->text(), QStringLiteral("断开"));
        bench.usb.unplug(bench.bridge);
        QTRY_COMPARE(tab.connection->text(), connect);
        bench.restore();
        tab.open(bench);
        for (const Kind kind : {Kind::Ch347, Kind::Serial}) {
            tab.choose(kind);
            QCOMPARE(tab.connection->text(), connect);
        }
    }

    void keysPressTheButtons()
    {
        const LinkBench bench(Kind::Serial);
        DebugTab tab(bench);
        tab.form.show();
        QVERIFY(QTest::qWaitForWindowActive(&tab.form));
        QTest::keyClick(&tab.form, Qt::Key_Return, Qt::ControlModifier);
        QTest::keyClick(&tab.form, Qt::Key_R, Qt::ControlModifier);
        tab.typed->setText(QStringLiteral("00"));
        QTest::keyClick(tab.typed, Qt::Key_Return);
        QCOMPARE(tab.entries().size(), 3);
        QTest::keyClick(&tab.form, Qt::Key_L, Qt::ControlModifier);
        QCOMPARE(tab.log->toPlainText(), QString());
        // Leaving the tab does not change the text of this button, a press does every time.
        tab.form.stop();
        tab.form.start();
        QCOMPARE(tab.connection->text(), QStringLiteral("断开"));
        QTest::keyClick(&tab.form, Qt::Key_O, Qt::ControlModifier);
        QCOMPARE(tab.connection->text(), QStringLiteral("连接"));
        QTest::keyClick(&tab.form, Qt::Key_O, Qt::ControlModifier);
        QCOMPARE(tab.connection->text(), QStringLiteral("断开"));
    }
};

QTEST_MAIN(tst_debug_tab)
#include "tst_debug_tab.moc"
