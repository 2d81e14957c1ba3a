// The monitor window over a real serial device: worker, tree and panels together.

#include "tests/monitor/monitor_bench.h"

#include "app/class_settings.h"
#include "monitor/PanelArea.h"
#include "tests/support/box_answer.h"
#include "tests/support/log_capture.h"

#include <QSignalSpy>
#include <QtWidgets>

namespace {

QLabel *label(const fingerForm *panel, const char *name)
{
    return panel->findChild<QLabel *>(QLatin1String(name));
}

/// Tree and panels without a worker.
struct Area : PanelArea
{
    Area()
        : PanelArea([this](uint8_t infIdx, uint8_t addr) {
            return hasWorker ? new fingerForm(infIdx, addr, nullptr) : nullptr;
        })
    {
        resize(800, 500);
        show();
    }
    static sensor_ts sensor(uint8_t addr, uint8_t prg, uint8_t infIdx)
    {
        sensor_ts sensor;
        sensor.infIdx = infIdx;
        sensor.addr = addr;
        sensor.prg = prg;
        sensor.sn = QStringLiteral("KV");
        return sensor;
    }
    void add(uint8_t addr, uint8_t prg, uint8_t infIdx = 0) { addSensor(sensor(addr, prg, infIdx)); }
    void remove(uint8_t addr, uint8_t prg, uint8_t infIdx = 0) { removeSensor(sensor(addr, prg, infIdx)); }
    /// As a user does by the keyboard.
    void closeLast()
    {
        mdi->subWindowList().last()->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    void click(int bus, int row) { Q_EMIT tree->itemClicked(tree->topLevelItem(bus)->child(row), 0); }
    QStringList windows() const
    {
        QStringList names;
        for (const QMdiSubWindow *window : mdi->subWindowList())
            names += window->objectName();
        return names;
    }

    bool hasWorker = true;
    QTreeWidget *tree = findChild<QTreeWidget *>();
    QMdiArea *mdi = findChild<QMdiArea *>();
};

} // namespace

class TestMonitor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QCoreApplication::setApplicationName(QStringLiteral("tst_monitor")); }
    void init()
    {
        class_settings::set(QStringLiteral("language"), QStringLiteral("zh_cn"), QStringLiteral("config"));
    }

    void theTreeIsAsWideAsTheUserWants()
    {
        MonitorBench bench;
        auto *tree = bench.form.findChild<QTreeWidget *>();
        auto *splitter = bench.form.findChild<QSplitter *>();
        QTRY_VERIFY(splitter->width() > 500);
        QCOMPARE(tree->width(), 100);
        QVERIFY(bench.mdi()->width() > 400);

        auto *sensor = new QTreeWidgetItem({QStringLiteral("0/0x61/KV-000000000")});
        tree->topLevelItem(0)->addChild(sensor);
        tree->topLevelItem(0)->setExpanded(true);
        const auto tipOf = [tree](const QTreeWidgetItem *item) {
            const QPoint place = tree->visualItemRect(item).topLeft() + QPoint(2, 2);
            QHelpEvent ask(QEvent::ToolTip, place, tree->viewport()->mapToGlobal(place));
            QCoreApplication::sendEvent(tree->viewport(), &ask);
            return QToolTip::text();
        };
        QTRY_COMPARE(tipOf(sensor), sensor->text(0));
        QTRY_COMPARE(tipOf(tree->topLevelItem(0)), QString());
        splitter->setSizes({300, 400});
        QTRY_COMPARE(tipOf(sensor), QString());
        splitter->setSizes({80, 600});
        QCOMPARE(tree->width(), 80);
    }

    void livesThroughADay()
    {
        MonitorBench bench;
        bench.plug(2, 0x61);
        bench.plug(19, 0x62);
        bench.form.start();
        QVERIFY(bench.find({QStringLiteral("0/0x61"), QStringLiteral("0/0x62")}));
        QCOMPARE(bench.panels(), (QStringList{QStringLiteral("0-0x61"), QStringLiteral("0-0x62")}));
        const fingerForm *panel = bench.panel("0-0x62");
        QVERIFY(panel->view());
        const auto identified = [panel] {
            return label(panel, "lbVersion")->text().count(QLatin1Char('.')) == 2;
        };
        QVERIFY(QTest::qWaitFor(identified, MonitorBench::kPatienceMs));
        const QRegularExpression rates(QStringLiteral("^[1-9]\\d*/[1-9]\\d*$"));
        for (const char *name : {"0-0x61", "0-0x62"}) {
            const auto rated = [&] {
                return rates.match(label(bench.panel(name), "lbHz")->text()).hasMatch();
            };
            QVERIFY(QTest::qWaitFor(rated, MonitorBench::kPatienceMs));
        }
        QVERIFY(!panel->view()->dataList.isEmpty());
        auto *tiled = bench.get<QCheckBox>("chkbtnMdiMode");
        tiled->click();
        for (const QMdiSubWindow *window : bench.mdi()->subWindowList())
            QCOMPARE(window->height(), bench.mdi()->height());
        tiled->click();
        QCOMPARE(bench.mdi()->viewMode(), QMdiArea::TabbedView);

        bench.button()->click();
        QVERIFY(bench.waitForSensors({}));
        QTRY_COMPARE(bench.panels(), QStringList());
        QTRY_VERIFY(!bench.connected());
        // Shortly ahead of the sweep, which goes on where it was.
        bench.plug(31, 0x66);
        QVERIFY(bench.connectLine());
        QVERIFY(bench.waitForSensors({QStringLiteral("0/0x66")}));

        bench.form.stop();
        QVERIFY(!bench.connected());
        QVERIFY(bench.waitForSensors({}));
        QVERIFY(bench.find({QStringLiteral("0/0x61"), QStringLiteral("0/0x62"), QStringLiteral("0/0x66")}));
        bench.line.removePort();
        QVERIFY(bench.waitForSensors({}));
        QTRY_COMPARE(bench.panels(), QStringList());
        bench.button()->click();
        QVERIFY(QTest::qWaitFor([&bench] { return !bench.connected(); }, MonitorBench::kPatienceMs));
    }

    void removesTheRightPanel()
    {
        Area area;
        area.add(0x61, 112); // without a view
        area.add(0x62, 2);
        area.add(0x63, 19);
        area.add(0x62, 2, 1);
        const LogCapture log;
        area.click(0, 1);
        Q_EMIT area.tree->itemClicked(area.tree->topLevelItem(0), 0);
        QCOMPARE(log.lines().mid(0, 2), (QStringList{QStringLiteral("inf:1"), QStringLiteral("addr:98")}));
        QCOMPARE(log.count(QStringLiteral("inf:1")), 1);
        class_finger *const shown = area.activeDecoder();
        QVERIFY(shown && shown == area.findChild<fingerForm *>(QStringLiteral("0-0x62"))->view());

        area.remove(0x61, 112);
        QCOMPARE(area.mdi->activeSubWindow()->objectName(), QStringLiteral("0-0x62"));
        QCOMPARE(area.activeDecoder(), shown);
        area.hide(); // nothing becomes active any more
        area.remove(0x62, 2);
        QCOMPARE(area.windows(), (QStringList{QStringLiteral("0-0x63"), QStringLiteral("1-0x62")}));
        QCOMPARE(area.tree->topLevelItem(0)->childCount(), 1);
        // A panel that the user has closed comes back as that of its own sensor.
        area.show();
        area.closeLast();
        area.click(1, 0);
        QVERIFY(area.findChild<fingerForm *>(QStringLiteral("1-0x62"))->view());
        area.hasWorker = false;
        area.closeLast();
        area.click(1, 0);
        QVERIFY(!area.findChild<fingerForm *>(QStringLiteral("1-0x62")));
    }

    void warnsOfAViewWithoutARow()
    {
        Area area;
        area.add(0x62, 2);
        BoxAnswer boxes;
        const auto expectBox = [&boxes] {
            boxes.expect(QStringLiteral("传感器类型错误"), QStringLiteral("未识别传感器类型111"));
        };
        // The sensor goes, and its panel with it, while the box stands.
        const auto goes = [&area] {
            area.remove(0x61, 111);
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        };
        expectBox();
        area.add(0x61, 111);
        area.closeLast();
        boxes.whileOpen = goes;
        expectBox();
        area.click(0, 1);
        QCOMPARE(area.windows(), QStringList{QStringLiteral("0-0x62")});
        QVERIFY2(boxes.satisfied(), qPrintable(boxes.report()));
    }

    void ignoresASensorOfAStoppedWorker()
    {
        MonitorBench bench;
        bench.plug(31, 0x61);
        bench.form.start();
        QVERIFY(bench.connectLine());
        const LogCapture log;
        // While the window waits here it hears nothing of what the worker finds. Samples flow when a sensor
        // is found.
        bool asked = false;
        const auto isSampleOfAFoundSensor = [&asked](const SimRecord &record) {
            asked = asked || record.bytes == QByteArray::fromHex("AA5561A400000000000402");
            return asked && record.kind == SimRecord::Kind::Sample;
        };
        QVERIFY(bench.line.journal().waitFor(isSampleOfAFoundSensor,
                                             std::chrono::milliseconds(MonitorBench::kPatienceMs)));
        bench.form.stop();
        QCoreApplication::processEvents();
        QCOMPARE(log.count(QStringLiteral("add tree")), 0);
        QCOMPARE(bench.panels(), QStringList());
    }

    void restartsOnceForTwoChanges()
    {
        MonitorBench bench;
        bench.form.start();
        const LogCapture log;
        auto *box = bench.get<QComboBox>("cbbSensorInf");
        box->setCurrentIndex(2);
        box->setCurrentIndex(1);
        QTRY_COMPARE_WITH_TIMEOUT(log.count(QStringLiteral("tactViewForm start")), 1,
                                  MonitorBench::kPatienceMs);
        QTRY_COMPARE_WITH_TIMEOUT(log.count(QStringLiteral("ch341 init")), 1, MonitorBench::kPatienceMs);
    }

    void changesTheLanguageOncePerVisit()
    {
        MonitorBench bench;
        QStringList started;
        bench.form.setProcessStarter([&started](const QString &program) {
            started += program;
            return true;
        });
        bench.form.start();
        bench.form.stop();
        bench.form.start();
        auto *box = bench.get<QComboBox>("cbbLanguage");
        QCOMPARE(box->currentIndex(), 0);
        box->setCurrentIndex(1);
        const QString program = QCoreApplication::applicationFilePath();
        QCOMPARE(started, (QStringList{program, program}));
        QCOMPARE(class_settings::get(QStringLiteral("language"), {}, QStringLiteral("config")),
                 QStringLiteral("en"));
    }
};

QTEST_MAIN(TestMonitor)
#include "tst_monitor.moc"
