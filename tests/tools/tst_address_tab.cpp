// The address tab against the bench on every link.

#include "tests/support/LinkBench.h"
#include "tests/support/log_capture.h"
#include "tools/setSensorAddrForm.h"

#include <QtWidgets>

using namespace std::chrono_literals;

namespace {

using Kind = LinkBench::Kind;

const QString kClosed = QStringLiteral("接口未打开");
const QString kSearching = QStringLiteral("扫描中。。。");
const QString kConnected = QStringLiteral("已连接");
const QString kGone = QStringLiteral("断开");

/// The tab with its widgets by name, as a user has them before him.
struct AddressTab
{
    setSensorAddrForm form;
    QComboBox *inf = child<QComboBox>(form, "cbbInf");
    QComboBox *list = child<QComboBox>(form, "cbbInfList");
    QComboBox *argument = child<QComboBox>(form, "cbbInfArg");
    QPushButton *connection = child<QPushButton>(form, "pbtnInfConnect");
    QPushButton *set = child<QPushButton>(form, "pbtnSet");
    QLabel *argumentCaption = child<QLabel>(form, "lbInfArg");
    QLabel *state = child<QLabel>(form, "lbFingerState");
    QLabel *result = child<QLabel>(form, "lbCmdState");
    QSpinBox *current = child<QSpinBox>(form, "spbCurrAddrDec");
    QSpinBox *target = child<QSpinBox>(form, "spbTarAddrHex");

    AddressTab() = default;
    explicit AddressTab(const LinkBench &bench) { open(bench); }

    bool isFree() const { return inf->isEnabled() && list->isEnabled() && argument->isEnabled(); }
    void open(const LinkBench &bench)
    {
        form.start();
        inf->setCurrentIndex(static_cast<int>(bench.kind));
        reopen(bench);
    }
    void reopen(const LinkBench &bench)
    {
        QTRY_VERIFY(list->findText(bench.id()) >= 0);
        list->setCurrentText(bench.id());
        connection->click();
        QCOMPARE(connection->text(), QStringLiteral("断开"));
    }
};

} // namespace

class tst_address_tab : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsOnSerial()
    {
        const LogCapture log;
        AddressTab tab;
        tab.form.start();
        QCOMPARE(log.lines().mid(0, 3),
                 (QStringList{QStringLiteral("tactViewForm new"), QStringLiteral("setSensorAddrForm start"),
                              QStringLiteral("uart init")}));
        QCOMPARE(tab.argument->currentText(), QStringLiteral("460800"));

        tab.inf->setCurrentIndex(1);
        QCOMPARE(tab.argumentCaption->text(), QStringLiteral("转接板"));
        QCOMPARE(tab.argument->currentText(), QStringLiteral("转接板-1(PCA9548-4)"));
        QCOMPARE(tab.argument->count(), 14);

        // Whatever was chosen, entering the tab makes a serial link, and a press for the other kind has
        // nothing to open.
        tab.form.stop();
        tab.form.start();
        QCOMPARE(tab.inf->currentText(), QStringLiteral("IIC-CH341"));
        QCOMPARE(tab.argumentCaption->text(), QStringLiteral("波特率"));
        tab.list->addItem(QStringLiteral("1000"));
        tab.connection->click();
        QCOMPARE(tab.state->text(), kClosed);
    }

    void targetBoxesAgreeAndStayInRange()
    {
        AddressTab tab;
        auto *decimal = child<QSpinBox>(tab.form, "spbTarAddrDec");
        tab.target->setValue(0x70);
        QCOMPARE(decimal->value(), 0x6F);
        decimal->setValue(0);
        QCOMPARE(tab.target->value(), 1);
        decimal->setValue(97);
        QCOMPARE(tab.target->text(), QStringLiteral("0x61"));
    }

    void setsAnAddressAndFollowsTheSensor_data() { LinkBench::addRows(); }
    void setsAnAddressAndFollowsTheSensor()
    {
        QFETCH(Kind, kind);
        LinkBench bench(kind);
        const LogCapture log;
        AddressTab tab(bench);
        QVERIFY(log.contains(bench.name() + QStringLiteral(" connected")));
        QVERIFY(!tab.isFree());
        QTRY_COMPARE(tab.state->text(), kSearching);
        if (bench.line)
            QTRY_VERIFY(bench.line->journal().count(SimRecord::Kind::Poll, QByteArray::fromHex("00ff")) > 3);
        else
            QCOMPARE(bench.writesTo(0x70), (QStringList{QStringLiteral("00"), QStringLiteral("10")}));

        const auto sensor = bench.plugSensor(0x05, LinkBench::kBoard1);
        QTRY_COMPARE(tab.current->value(), 0x05);
        QCOMPARE(tab.state->text(), kConnected);
        if (bench.bridge)
            QCOMPARE(bench.writesTo(0x00).value(0), QStringLiteral("aa55007100000000007001"));
        else
            QCOMPARE(bench.line->baudRate(), 460800);
        setAddress(bench, tab);
        QCOMPARE(sensor->address(), uint8_t{0x61});
        QVERIFY(log.contains(QStringLiteral("set addr:0x61")));

        bench.unplug(sensor);
        QTRY_COMPARE(tab.state->text(), kGone);
        bench.plug(sensor, LinkBench::kBoard1);
        QTRY_COMPARE(tab.state->text(), kConnected);
        tab.connection->click();
        QCOMPARE(tab.connection->text(), QStringLiteral("连接"));
        QVERIFY(log.contains(bench.name() + QStringLiteral(" disconnect")));
        QVERIFY(tab.isFree());
        QVERIFY(tab.list->findText(bench.id()) >= 0);
        QCOMPARE(tab.state->text(), kClosed);
    }

    void opensAllChannelsWhenNoneIsChosen_data() { LinkBench::addRows(true); }
    void opensAllChannelsWhenNoneIsChosen()
    {
        QFETCH(Kind, kind);
        for (const auto multiplexer : {SimI2cBus::Multiplexer::Present, SimI2cBus::Multiplexer::Absent}) {
            const bool present = multiplexer == SimI2cBus::Multiplexer::Present;
            LinkBench bench(kind, multiplexer);
            bench.plugSensor(0x05, present ? 7 : SimI2cBus::kTrunk);
            AddressTab tab;
            tab.form.start();
            tab.inf->setCurrentIndex(static_cast<int>(kind));
            QCOMPARE(tab.argument->itemText(0), QStringLiteral("无PCA9548"));
            tab.argument->setCurrentIndex(0);
            tab.reopen(bench);
            QCOMPARE(bench.writesTo(0x70),
                     present ? QStringList({QStringLiteral("00"), QStringLiteral("ff")}) : QStringList());
            QTRY_COMPARE(tab.current->value(), 0x05);
        }
    }

    void showsTheAddressOfAnyFrame()
    {
        LinkBench bench(Kind::Serial);
        const auto sensor = bench.plugSensor(0x05);
        sensor->setFrameType(uint8_t{0x33});
        sensor->faults().setChance(SimFault::BadSum, SimTarget::samples(), 1.0);
        sensor->faults().setChance(SimFault::LeadingNoise, SimTarget::samples(), 0.5);
        AddressTab tab(bench);
        QTRY_COMPARE(tab.current->value(), 0x33);
        QCOMPARE(tab.state->text(), kConnected);
    }

    void survivesAPulledCable_data() { LinkBench::addRows(); }
    void survivesAPulledCable()
    {
        QFETCH(Kind, kind);
        LinkBench bench(kind);
        bench.plugSensor(0x05, LinkBench::kBoard1);
        AddressTab tab(bench);
        QTRY_COMPARE(tab.state->text(), kConnected);
        tab.set->click();
        const QString id = bench.id();
        bench.pull();
        // The CH341 alone tells that it is gone; on the other links the user closes what no longer answers.
        if (kind != Kind::Ch341) {
            QTRY_COMPARE(tab.state->text(), kGone);
            QCOMPARE(tab.connection->text(), QStringLiteral("断开"));
            tab.connection->click();
        }
        QTRY_COMPARE(tab.connection->text(), QStringLiteral("连接"));
        QCOMPARE(tab.state->text(), kClosed);
        QTRY_VERIFY(tab.list->findText(id) < 0);
        QVERIFY(tab.isFree());

        bench.restore();
        if (kind == Kind::Ch347) { // is listed again only when it is chosen again
            tab.inf->setCurrentIndex(0);
            tab.inf->setCurrentIndex(2);
        }
        tab.reopen(bench);
        QTRY_COMPARE(tab.state->text(), kConnected);
    }

    void followsABridgeThatMoves()
    {
        LinkBench bench(Kind::Ch341);
        const auto sensor = bench.plugSensor(0x05, LinkBench::kBoard1);
        AddressTab tab(bench);
        QTRY_COMPARE(tab.state->text(), kConnected);
        bench.usb.plug(std::make_shared<SimCh341>(std::make_shared<SimI2cBus>(), 4, 1), 0);
        QTRY_COMPARE(tab.list->count(), 2);
        QTRY_COMPARE(bench.writesTo(0x70).size(), 4);
        QCOMPARE(bench.writesTo(0x70).last(), QStringLiteral("10"));
        QCOMPARE(tab.list->currentText(), bench.id());
        QTRY_COMPARE(tab.state->text(), kConnected);

        // Closed while the watchdog waits for its last tick.
        QTimer *watchdog = nullptr;
        for (auto *timer : tab.form.findChildren<QTimer *>())
            watchdog = timer->interval() == 100 ? timer : watchdog;
        QVERIFY(watchdog != nullptr);
        bench.unplug(sensor);
        QSignalSpy ticks(watchdog, &QTimer::timeout);
        QTRY_VERIFY(ticks.size() >= 3);
        tab.connection->click();
        QTRY_VERIFY(!watchdog->isActive());
        QCOMPARE(tab.state->text(), kClosed);
    }

    void leavingTakesTheLinkDown()
    {
        LinkBench bench(Kind::Serial);
        bench.plugSensor(0x05);
        const LogCapture log;
        AddressTab tab(bench);
        QTRY_COMPARE(tab.state->text(), kConnected);
        tab.set->click();
        tab.form.stop();
        tab.form.stop();
        QCOMPARE(tab.state->text(), kClosed);
        QCOMPARE(tab.connection->text(), QStringLiteral("连接"));
        QCOMPARE(log.count(QStringLiteral("uart disconnect")), 1);
        QTRY_VERIFY(log.contains(QStringLiteral("uart deinit")));
        tab.set->click();
        tab.open(bench);
        QTRY_COMPARE(tab.state->text(), kConnected);
        QVERIFY(bench.writesTo(0x00).isEmpty());
    }

private:
    static void setAddress(LinkBench &bench, AddressTab &tab)
    {
        tab.target->setValue(0x61);
        tab.set->click();
        tab.set->click();
        QTRY_COMPARE(tab.result->text(), QStringLiteral("成功"));
        QTRY_COMPARE(tab.current->value(), 0x61);
        QCOMPARE(bench.writesTo(0x00).count(QStringLiteral("aa5500700000006100d001")), 1);
        QTRY_COMPARE(tab.result->text(), QString());
    }
};

QTEST_MAIN(tst_address_tab)
#include "tst_address_tab.moc"
