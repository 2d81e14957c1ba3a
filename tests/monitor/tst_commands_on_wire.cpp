// Commands of a panel from the control to the wire and from the answer to the control.

#include "tests/monitor/monitor_bench.h"

#include "tests/support/box_answer.h"
#include "tests/support/log_capture.h"

#include <QtWidgets>

#include <functional>

namespace {

/// The window, the sensor and the panel that all rows share; every row leaves them usable.
struct World : MonitorBench
{
    World()
        : sensor(plug(2, 0x61))
    {
        ready = find({QStringLiteral("0/0x61")});
        panel = MonitorBench::panel("0-0x61");
    }
    template<typename Widget>
    Widget *of(const char *name) const
    {
        return panel->findChild<Widget *>(QLatin1String(name));
    }
    void click(const char *name) const { of<QAbstractButton>(name)->click(); }
    QLineEdit *cell(const char *table, int row, int column) const
    {
        return qobject_cast<QLineEdit *>(of<QTableWidget>(table)->cellWidget(row, column));
    }
    void edit(const char *table, int row, int column, const char *text) const
    {
        QLineEdit *edited = cell(table, row, column);
        edited->setText(QLatin1String(text));
        Q_EMIT edited->editingFinished();
    }
    QString shown(const char *table, int row, int column) const
    {
        return cell(table, row, column) ? cell(table, row, column)->text() : QString();
    }
    QStringList requests()
    {
        QStringList frames;
        for (const SimRecord &record : line.journal().records(SimRecord::Kind::Request))
            frames += QString::fromLatin1(record.bytes.toHex());
        return frames;
    }
    /// True when nothing waits any more: a last question came back. Asks again, for a sensor may be starting
    /// up.
    bool settled()
    {
        auto *label = of<QLabel>("lbTemp");
        label->clear();
        constexpr int attempts = 10;
        for (int attempt = 0; attempt < attempts; ++attempt) {
            click("pbtnGetTemp");
            if (QTest::qWaitFor([label] { return !label->text().isEmpty(); }, kPatienceMs / attempts))
                return true;
        }
        return false;
    }

    std::shared_ptr<SimSensor> sensor;
    fingerForm *panel = nullptr;
    bool ready = false;
};

using Act = std::function<void(World &)>;
using Effect = std::function<bool(World &)>;

const char *const kTable = "tbwThreshold";
const char *const kCurves = "tbwCaliTable";

Act click(const char *name)
{
    return [name](World &w) { w.click(name); };
}

/// Sets a property of a control: the value of a spin box, the index of a combo box.
Act set(const char *name, const QVariant &value, const char *property = "value")
{
    return [=](World &w) { w.of<QWidget>(name)->setProperty(property, value); };
}

Act edit(const char *table, int row, int column, const char *text)
{
    return [=](World &w) { w.edit(table, row, column, text); };
}

Act ask(void (fingerForm::*request)())
{
    return [request](World &w) { (w.panel->*request)(); };
}

Act operator+(const Act &first, const Act &second)
{
    return [=](World &w) {
        first(w);
        second(w);
    };
}

/// What the sensor then keeps.
template<typename Condition>
Effect kept(Condition condition)
{
    return [condition](World &w) { return condition(w.sensor->settings()); };
}

Effect shows(const char *table, int row, int column, const char *text)
{
    return [=](World &w) { return w.shown(table, row, column) == QLatin1String(text); };
}

Effect has(const char *name, const char *property, const QVariant &value)
{
    return [=](World &w) { return w.of<QWidget>(name)->property(property) == value; };
}

/// For what changes nothing that can be seen: the sensor has obeyed.
Effect answered(const char *frame)
{
    return [bytes = QByteArray::fromHex(frame)](World &w) {
        return w.line.journal().count(SimRecord::Kind::Answer, bytes) == 1;
    };
}

Effect operator&&(const Effect &first, const Effect &second)
{
    return [=](World &w) { return first(w) && second(w); };
}

struct Row
{
    const char *name;
    Act act;
    QByteArray request;
    Effect effect;
};

using Kept = const SimSettings &;

const QVector<Row> kRows = {
    {"all parameters", set(kTable, 10, "columnCount") + click("pbtnGetThreshold"), "aa55614a0000000000aa01",
     [](World &w) {
         return !w.shown(kTable, 7, 0).isEmpty() && !w.shown(kTable, 7, 6).isEmpty() &&
                w.cell(kTable, 7, 9) != nullptr && w.cell(kTable, 7, 5) != nullptr;
     }},
    {"excitation, read again",
     edit(kTable, 1, 1, "20") + [](World &w) { w.cell(kTable, 1, 1)->setText(QStringLiteral("1")); },
     "aa5561500114000000c501",
     kept([](Kept s) { return s.excitations.at(1) == 20; }) && shows(kTable, 1, 1, "20")},
    {"range", edit(kTable, 1, 2, "22"), "aa5561520116000000c901",
     kept([](Kept s) { return s.ranges.at(1) == 22; })},
    {"filter",
     [](World &w) {
         w.cell(kTable, 1, 3)->setText(QStringLiteral("4"));
         w.cell(kTable, 1, 4)->setText(QStringLiteral("5"));
         w.edit(kTable, 1, 5, "0.5");
     },
     "aa5561590104050000003f0202", kept([](Kept s) { return s.filterFactors.at(1) == 0.5F; })},
    {"timeout", edit(kTable, 1, 6, "3600000"), "aa55615d0180ee36006203",
     kept([](Kept s) { return s.touchTimeoutsMs.at(1) == 3600000; })},
    {"adjust at power-up", click("chkbtnAutoDacPowerUp"), "aa5561400100000000a101",
     kept([](Kept s) { return s.autoDacAtPowerUp == 1; })},
    {"adjustment read", set("chkbtnAutoDacPowerUp", false, "checked") + ask(&fingerForm::getAutoDacPowerUp),
     "aa5561410000000000a101", has("chkbtnAutoDacPowerUp", "checked", true)},
    {"release of pressure",
     set("spbPressReleaseThreshold", 70000) + set("spbPressReleaseThresholdScale", 2) +
         click("pbtnSetPressReleaseThreshold"),
     "aa55614370110100022702", kept([](Kept s) { return s.pressReleaseMaximum == 70000; })},
    {"release of proximity",
     set("spbProxReleaseThreshold", 70000) + set("spbProxReleaseThresholdScale", 2) +
         click("pbtnSetProxReleaseThreshold"),
     "aa55614570110100022902", kept([](Kept s) { return s.proximityReleaseScale == 2; })},
    {"release read", set("spbProxReleaseThreshold", 1) + ask(&fingerForm::getReleaseThreshold),
     "aa5561460000000000a601", has("spbProxReleaseThreshold", "value", 70000)},
    {"clear without proximity", set("spbProxClearTouchTimeout", 1500) + click("chkbtnProxClearTouch"),
     "aa55615c0000000000bc01",
     kept([](Kept s) { return s.proximityClearDelayMs == 1500; }) &&
         has("chkbtnProxClearTouch", "checked", true)},
    {"temperature calibrated", set("dspbTempCali", 1.5) + click("pbtnTempCali"), "aa5561750000c03f00d402",
     kept([](Kept s) { return s.temperatureCalibration == 1.5F; })},
    {"pressure threshold", set("dspbTouchThreshold", 0.29) + click("pbtnTouchThreshold"),
     "aa55616a011c000000e701",
     kept([](Kept s) { return s.thresholds.at(5) == 280; }) && shows(kTable, 5, 0, "280")},
    {"automatic threshold", click("pbtnAutoThreshold"), "aa5561670300000000ca01",
     kept([](Kept s) { return s.thresholds.at(5) == 45; })},
    {"channel values", click("pbtnAutoDac"), "aa5561630000000000c301", answered("55aa61e34302")},
    {"all channels", click("pbtnChannelResetAll"), "aa5561790000000000d901", answered("55aa61f95902")},
    {"counts", ask(&fingerForm::getSensorNum), "aa5561620000000000c201", answered("55aa61e208070101005302")},
    {"channel disabled",
     [](World &w) {
         auto *box = w.of<QWidget>("sawgDataList")->findChildren<QCheckBox *>().at(3);
         box->setChecked(true);
         box->setChecked(false);
     },
     "aa55617b0300000000de01", kept([](Kept s) { return s.enabled.at(3) == 0; })},
    {"channel reset",
     [](World &w) { w.of<QWidget>("sawgDataList")->findChildren<QPushButton *>().at(7)->click(); },
     "aa55617c0700000000e301", answered("55aa61fc00000000005c02")},
    {"send type", set("tabWidget", 2, "currentIndex") + set("cbbSetSendType", 3, "currentIndex"),
     "aa55617f0000000300e201", kept([](Kept s) { return s.sendType == 3; })},
    {"calibration forces", ask(&fingerForm::getCaliNList), "aa55616d0000000000cd01",
     has("cbbCaliList", "count", 22)},
    {"calibration curves", click("pbtnCaliRefresh"), "aa55616f0000000000cf01",
     shows(kCurves, 1, 7, "2000") &&
         [](World &w) { return !w.of<QLabel>("lbCaliTableState")->text().isEmpty(); }},
    {"force as threshold", set("dspbSetPressThresholdPress", 99) + click("pbtnSetPressThreshold"),
     "aa55616900f05500000e03", kept([](Kept s) { return s.thresholds.at(0) == 22000; })},
    {"calibration point", edit(kCurves, 1, 2, "1500"), "aa5561650201dc0500a902",
     kept([](Kept s) { return s.curves.at(2).at(1) == 1500; }) && shows(kCurves, 1, 2, "1500")},
    {"software reset",
     [](World &w) {
         w.of<QWidget>("scrollArea")->findChild<QPushButton *>(QStringLiteral("pbtnReset"))->click();
     },
     "aa5561a100000000000102", [](World &w) { return w.sensor->bootLoader().isActive(SimClock::now()); }},
};

} // namespace

class TestCommandsOnWire : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_world = std::make_unique<World>();
        QVERIFY(m_world->ready);
        QVERIFY(m_world->settled());
    }
    void cleanupTestCase() { m_world.reset(); }

    void obeyed_data()
    {
        QTest::addColumn<int>("index");
        for (int i = 0; i < kRows.size(); ++i)
            QTest::newRow(kRows.at(i).name) << i;
    }
    void obeyed()
    {
        QFETCH(int, index);
        const Row &row = kRows.at(index);
        m_world->line.journal().clear();
        row.act(*m_world);
        const auto done = [&] {
            return m_world->requests().contains(QLatin1String(row.request)) && row.effect(*m_world);
        };
        QVERIFY2(QTest::qWaitFor(done, MonitorBench::kPatienceMs),
                 qPrintable(m_world->requests().join(QLatin1Char(' '))));
    }

    void refused()
    {
        QVERIFY(m_world->settled());
        m_world->click("pbtnGetThreshold");
        QVERIFY(m_world->settled());
        const QString kept = m_world->shown(kTable, 1, 1);
        m_world->sensor->setRefusal(0x50, 5);
        BoxAnswer boxes;
        boxes.expect(QStringLiteral("命令错误"), QStringLiteral("设置激励频率:5"));
        const LogCapture log;
        m_world->edit(kTable, 1, 1, "30");
        QVERIFY(QTest::qWaitFor([&] { return boxes.seen() > 0; }, MonitorBench::kPatienceMs));
        QVERIFY(log.contains(QStringLiteral("设置激励频率:失败5")));
        m_world->sensor->setRefusal(0x50, 0);
        // The table is read again, and the cell shows what the sensor has kept.
        const auto reread = [&] { return m_world->shown(kTable, 1, 1) == kept; };
        QVERIFY(QTest::qWaitFor(reread, MonitorBench::kPatienceMs));
        QVERIFY(m_world->settled());
        QVERIFY2(boxes.satisfied(), qPrintable(boxes.report()));
    }

private:
    std::unique_ptr<World> m_world;
};

QTEST_MAIN(TestCommandsOnWire)
#include "tst_commands_on_wire.moc"
